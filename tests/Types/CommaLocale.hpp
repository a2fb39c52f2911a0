#ifndef TESTS_TYPES_COMMALOCALE_HPP
#define TESTS_TYPES_COMMALOCALE_HPP

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"

/// Runs a body of expectations where the locales of C and C++ have a decimal comma and group
/// digits, in a process of its own; says so where there is no localedef to make such a locale.
template <class Body>
void inCommaLocale(Body body) {
    if (std::system("command -v localedef > /dev/null") != 0) GTEST_SKIP() << "no localedef";
    const TempTree locales;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + locales("de_DE.UTF-8") + "' 2>&1";
    ASSERT_EQ(0, std::system(make.c_str())) << "is the package locales installed?";
    EXPECT_EQ(0, inChild([&] {
                  setenv("LOCPATH", locales.root(), 1);
                  if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) return 2;
                  std::locale::global(std::locale("de_DE.UTF-8"));
                  if (*std::localeconv()->decimal_point != ',') return 3;
                  body();
                  return testing::Test::HasFailure() ? 1 : 0;
              }));
}

#endif

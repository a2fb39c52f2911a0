#ifndef TESTS_TYPES_COMMALOCALE_HPP
#define TESTS_TYPES_COMMALOCALE_HPP

#include <gtest/gtest.h>

#include <clocale>
#include <locale>

#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"

/// Runs a body of expectations in a child process whose C and C++ locales have a decimal comma and
/// group digits. Skips the test if localedef is not installed.
template <class Body>
void inCommaLocale(Body body) {
    if (std::system("command -v localedef > /dev/null") != 0)
        GTEST_SKIP() << "localedef is not installed";
    const TempTree locales;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + locales("de_DE.UTF-8") + "' 2>&1";
    ASSERT_EQ(0, std::system(make.c_str())) << "localedef fails: is the package locales installed?";
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

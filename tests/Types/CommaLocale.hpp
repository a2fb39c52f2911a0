#ifndef TESTS_TYPES_COMMALOCALE_HPP
#define TESTS_TYPES_COMMALOCALE_HPP

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

#include "tests/support/TempTree.hpp"

/// Runs a body where the locales of C and C++ have a decimal comma and group digits; for where
/// there is no localedef to make such a locale, says so.
template <class Body>
void inCommaLocale(Body body) {
    if (std::system("command -v localedef > /dev/null") != 0) GTEST_SKIP() << "no localedef";
    const TempTree locales;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + locales("de_DE.UTF-8") + "' 2>&1";
    ASSERT_EQ(0, std::system(make.c_str())) << "is the package locales installed?";
    setenv("LOCPATH", locales.root(), 1);
    ASSERT_NE(nullptr, std::setlocale(LC_ALL, "de_DE.UTF-8"));
    const std::locale before = std::locale::global(std::locale("de_DE.UTF-8"));
    ASSERT_STREQ(",", std::localeconv()->decimal_point);
    body();
    std::locale::global(before);
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}

#endif

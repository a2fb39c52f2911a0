// Shows messages whose arguments the compiler checks.
#include <chrono>
#include <iostream>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "quotamsgs.hpp"

int main() try {
    quotamsgs::kCatalogue.check("de");
    const auto day = std::chrono::system_clock::time_point(std::chrono::hours(24 * 365 * 50 + 12));
    for (const char* language : {"en", "de"}) {
        I18NString text;
        quotamsgs::quotaFiles("eve", 12345).format(language, nullptr, text);
        text += " ";
        quotamsgs::quotaFull("eve", 99.5, day).format(language, nullptr, text);
        std::cout << text << '\n';
    }
    // quotamsgs::quotaFiles("eve");          too few arguments
    // quotamsgs::quotaFiles(12345, "eve");   a number is not a text
    // quotamsgs::quotaFiles("eve", 1.5);     a plural needs an integer
} catch (QBLThrowable& error) {
    std::cout << error.getMessage() << '\n';
}

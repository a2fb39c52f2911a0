// Converts strings from and to other encodings, with replacement and with errors.
#include <cstdio>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_string.hpp"

namespace {

void showUnits(const char* what, const I18NString& text) {
    std::printf("%-21s", what);
    for (const char16_t unit : text.toUtf16()) std::printf(" U+%04X", static_cast<unsigned>(unit));
    std::printf("\n");
}

void showBytes(const char* what, const char* bytes) {
    std::printf("%-21s", what);
    for (; *bytes != '\0'; ++bytes) std::printf(" %02X", static_cast<unsigned char>(*bytes));
    std::printf("\n");
}

void replaced() {
    const I18NString text("a\u65E5\u00E9");
    showUnits("Shift_JIS, truncated", I18NString("a\x82", "Shift_JIS"));
    showUnits("Shift_JIS, undefined", I18NString("a\x85\xA0", "Shift_JIS"));
    showUnits("UTF-8, truncated", I18NString("a\xC3"));
    showBytes("to ISO-8859-1", text.c_str("ISO-8859-1"));
    showBytes("to Shift_JIS", text.c_str("Shift_JIS"));
}

void refused() {
    I18NConverter latin1("ISO-8859-1"), utf8("UTF-8");
    latin1.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
    utf8.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
    showBytes("convertible", I18NString("\u00E9", utf8).c_str(latin1));
    try {
        I18NString("a\u65E5").c_str(latin1);
    } catch (QBLThrowable& error) {
        const char* const text = error.getMessage();
        std::printf("refused: %ld, %s\n", error.getErrorCode(), text != nullptr ? text : "no text");
    }
    try {
        const I18NString read("a\xC3", utf8);
    } catch (QBLThrowable& error) {
        std::printf("refused: %ld\n", error.getErrorCode());
    }
}

}  // namespace

int main() {
    if (qblCoreInitialize() != 0) return 1;
    I18NInitialize();
    replaced();
    refused();
    I18NTerminate();
    return qblCoreTerminate();
}

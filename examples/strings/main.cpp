// Shows common operations of strings and some surprises.
#include <algorithm>
#include <iostream>
#include <string>
#include <unordered_map>

#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLMessageText.hpp"
#include "QBLCore/Types/QBLTypesText.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_literals.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/i18n_uri.hpp"

namespace {

void showTexts() {
    const I18NString composed("caf\u00E9"), two(L"cafe\u0301");  // UTF-8, wide characters
    std::cout << composed << (composed == two ? " equals " : " differs from ") << two << '\n';

    I18NString text("plain");
    std::cout << text << ": in bytes " << text.isUsingAsciiBuffer() << ", size " << text.size();
    text += L" \U0001F600";
    std::cout << "; " << text << ": in bytes " << text.isUsingAsciiBuffer() << ", size "
              << text.size() << ", " << text.nUnits() << " units, " << text.length()
              << " code points\n";
    for (I18NStringIterator at = text.begin(); at != text.end(); ++at)
        if (*at == L'\U0001F600') *at = L'!';
    std::cout << text << ", last at " << text.rfind(L'!') << '\n';

    std::unordered_map<I18NString, int> counts;
    for (const I18NString& each : {composed, two, text}) ++counts[each];
    std::cout << counts.size() << " different texts; 50% is like 5_\\%: "
              << I18NString("50%").matchLike(I18NString("5_\\%"), L'\\') << '\n';
}

void showStandardTypes() {
    const std::string name = "na\u00EFve";  // UTF-8
    I18NString text(name);
    text += std::u16string_view(u" \u03B1\u03B2\u03B3");
    std::cout << text.utf8View()
              << " backwards: " << I18NString(std::u32string(text.rbegin(), text.rend()));
    const auto greek = std::count_if(text.begin(), text.end(), [](wchar_t c) { return c > 0x370; });
    std::cout << ", Greek letters: " << greek << ", equal: " << (text.toUtf8() == text)
              << text.starts_with(name) << (text > "na") << ("x"_i18n == text) << '\n';

    QBLByteBuffer buffer;
    buffer << std::string_view("bytes");
    std::cout << QBLMessageString(name) << " and " << buffer << '\n';
}

void showEncodings() {
    const char japanese[] = "\x93\xFA\x96\x7B";
    std::cout << "before the start [" << I18NString(japanese, "Shift_JIS") << "], ";
    I18NInitialize();
    const I18NString text(japanese, "Shift_JIS");
    int length = 0;
    const char* const bytes = text.c_str("EUC-JP", &length);
    std::cout << "then [" << text << "], " << length << " bytes in EUC-JP with the NUL, "
              << (bytes == text.c_str("EUC-JP") ? "cached" : "converted again") << '\n';
    I18NTerminate();
}

void showSurprises() {
    const I18NString broken("a\x80z");
    std::cout << "0x80 becomes U+00" << std::hex << broken.toUtf16()[1] << std::dec << '\n';

    I18NString loose;
    loose.useNormalization(false);
    loose = L"e\u0301";
    loose.normalize(I18N_NFC);
    std::cout << loose.nUnits() << " units, isNormalized() is " << loose.isNormalized() << '\n';

    I18NString escaped;
    I18NURLEncode("\"it's\"", escaped);
    std::cout << escaped << " decodes to " << I18NUriDecode(escaped.c_str()) << '\n';

    char16_t buffer[8] = u"mine";
    I18NString attached;
    attached.attach(buffer, sizeof buffer);
    attached += L" too";  // one unit more than the buffer holds
}

}  // namespace

int main() {
    try {
        showTexts();
        showStandardTypes();
        showEncodings();
        showSurprises();
    } catch (QBLThrowable& error) {
        const char* const what = error.getMessage();  // null if there is no text
        std::cout << error.getThrowableName() << ' ' << error.getErrorCode() << ": "
                  << (what != nullptr ? what : "no text") << '\n';
    }
}

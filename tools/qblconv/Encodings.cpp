#include "tools/qblconv/Encodings.hpp"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Suggest.hpp"

namespace conv {

namespace {

std::string lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

/// Returns true if ICU's converters know all options after commas in a name. ICU ignores options
/// that it does not know.
bool hasKnownOptions(const std::string& name) {
    for (std::size_t comma = name.find(','); comma != std::string::npos;
         comma = name.find(',', comma + 1)) {
        const std::string option = name.substr(comma + 1, name.find(',', comma + 1) - comma - 1);
        const bool isKnown = option.compare(0, 8, "version=") == 0 ||
                             option.compare(0, 7, "locale=") == 0 || option == "swaplfnl";
        if (!isKnown) return false;
    }
    return true;
}

Problem unknown(const std::string& name) {
    if (!hasKnownOptions(name))
        return tools::withShown(qblconvmsgs::convNoEncodingBut, name, "-f auto:" + name);
    tools::Closest closest(name);
    const int count = I18NCountEncodings();
    for (int i = 0; i < count; ++i)
        for (int k = 0; const char* const known = I18NGetEncodingName(i, k); ++k)
            closest.offer(known);
    if (closest.found().empty()) return tools::withShown(qblconvmsgs::convNoEncoding, name);
    return tools::withShown(qblconvmsgs::convNoEncodingBut, name, closest.found());
}

/// Encodes a code unit as a separate text.
std::string encoded(const I18NConverter& converter, char16_t unit) {
    I18NTextStream stream(nullptr, &converter);
    stream.put(&unit, 1);
    std::string bytes(stream.getBytes(), stream.getByteCount());
    stream.finish();
    return bytes.append(stream.getBytes(), stream.getByteCount());
}

void leaveOutInput(const char*, const char*, int, wchar_t*, int*, I18NErrorCodes*) {}
void leaveOutOutput(wchar_t, const char*, char*, int*, I18NErrorCodes*) {}

}  // namespace

std::unique_ptr<I18NConverter> openEncoding(const std::string& name, Problem& problem) {
    // The library treats these names as UTF-8.
    const bool isASCII = lower(name) == "ascii";
    if (!name.empty() && hasKnownOptions(name)) {
        try {
            return std::make_unique<I18NConverter>(isASCII ? "US-ASCII" : name.c_str());
        } catch (const I18NRuntimeError&) {  // unknown encoding
        }
    }
    problem = unknown(name);
    return nullptr;
}

void setPolicies(I18NConverter& converter, int input, int output) {
    if (input == I18N_USER_DEFINED)
        converter.setUserDefinedUnconvertibleInputSequenceCallback(leaveOutInput);
    else
        converter.setBuiltInUnconvertibleInputSequenceCallback(input);
    if (output == I18N_USER_DEFINED)
        converter.setUserDefinedUnconvertibleOutputSequenceCallback(leaveOutOutput);
    else
        converter.setBuiltInUnconvertibleOutputSequenceCallback(output);
}

std::string markIn(const I18NConverter& converter) {
    I18NConverter strict(converter);
    setPolicies(strict, I18N_STOP, I18N_STOP);
    constexpr char16_t kMark = 0xFEFF, kText = u'a';
    try {
        std::string mark = encoded(strict, kMark);
        const std::string both = mark + encoded(strict, kText);
        // If the encoding has shift states or writes its own mark, the bytes decode to another
        // text.
        I18NTextStream stream(&strict, nullptr);
        std::u16string text;
        for (const std::size_t size : {both.size(), std::size_t{0}}) {
            if (size > 0)
                stream.put(both.data(), size);
            else
                stream.finish();
            text.append(stream.getText(), stream.getTextLength());
        }
        if (text == std::u16string{kMark, kText}) return mark;
    } catch (const I18NRuntimeError&) {  // the encoding lacks the mark
    }
    return {};
}

bool isAnyTextValid(const I18NConverter& converter) {
    I18NConverter strict(converter);
    setPolicies(strict, I18N_STOP, I18N_STOP);
    try {
        for (int i = 0; i < 256; ++i) {
            const char byte = static_cast<char>(i);
            I18NTextStream stream(&strict, nullptr);
            stream.put(&byte, 1);
            stream.finish();
        }
    } catch (const I18NRuntimeError&) {
        return false;
    }
    return true;
}

bool listEncodings(const std::string& pattern) {
    std::vector<std::string> lines;
    const int count = I18NCountEncodings();
    for (int i = 0; i < count; ++i) {
        const std::string usual = I18NGetEncodingName(i, 0);
        std::string line = usual;
        bool matches = false;
        const std::string letters = tools::lettersOf(pattern);
        for (int k = 1; const char* const name = I18NGetEncodingName(i, k); ++k) {
            matches =
                matches || lower(name).find(lower(pattern)) != std::string::npos ||
                (!letters.empty() && tools::lettersOf(name).find(letters) != std::string::npos);
            if (usual != name) line.append(" ").append(name);
        }
        if (matches) lines.push_back(std::move(line));
    }
    std::sort(lines.begin(), lines.end(),
              [](const std::string& a, const std::string& b) { return lower(a) < lower(b); });
    for (const std::string& line : lines) tools::print(stdout, line + "\n");
    return !lines.empty();
}

}  // namespace conv

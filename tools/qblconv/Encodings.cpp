#include "tools/qblconv/Encodings.hpp"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "tools/qblconv/Suggest.hpp"

namespace conv {

namespace {

constexpr char16_t kMark[] = {0xFEFF, 0};

std::string lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

Problem unknown(const std::string& name) {
    Closest closest(name);
    const int count = I18NCountEncodings();
    for (int i = 0; i < count; ++i)
        for (int k = 0; const char* const known = I18NGetEncodingName(i, k); ++k)
            closest.offer(known);
    if (closest.found().empty()) return {CONV_NO_ENCODING, {name}};
    return {CONV_NO_ENCODING_BUT, {name, closest.found()}};
}

void leaveOutInput(const char*, const char*, int, wchar_t*, int*, I18NErrorCodes*) {}
void leaveOutOutput(wchar_t, const char*, char*, int*, I18NErrorCodes*) {}

}  // namespace

std::unique_ptr<I18NConverter> openEncoding(const std::string& name, Problem& problem) {
    // The library takes these for UTF-8.
    const bool isASCII = lower(name) == "ascii";
    if (!name.empty()) {
        try {
            return std::make_unique<I18NConverter>(isASCII ? "US-ASCII" : name.c_str());
        } catch (const I18NRuntimeError&) {  // there is no such encoding
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
    char bytes[32];
    int size = 0;
    I18NErrorCodes error = I18N_OK;
    strict.fromUnicodeStream(bytes, sizeof bytes, kMark, sizeof *kMark, &size, nullptr, &error);
    return error == I18N_OK && size > strict.sizeofLegacyNull()
               ? std::string(bytes, static_cast<std::size_t>(size - strict.sizeofLegacyNull()))
               : std::string();
}

bool listEncodings(const std::string& pattern) {
    std::vector<std::string> lines;
    const int count = I18NCountEncodings();
    for (int i = 0; i < count; ++i) {
        const std::string usual = I18NGetEncodingName(i, 0);
        std::string line = usual;
        bool matches = false;
        for (int k = 1; const char* const name = I18NGetEncodingName(i, k); ++k) {
            matches = matches || lower(name).find(lower(pattern)) != std::string::npos;
            if (usual != name) line.append(" ").append(name);
        }
        if (matches) lines.push_back(std::move(line));
    }
    std::sort(lines.begin(), lines.end(),
              [](const std::string& a, const std::string& b) { return lower(a) < lower(b); });
    for (const std::string& line : lines) std::printf("%s\n", line.c_str());
    return !lines.empty();
}

}  // namespace conv

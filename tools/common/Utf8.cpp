#include "tools/common/Utf8.hpp"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace tools {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // ICU's macros convert implicitly
#pragma GCC diagnostic ignored "-Wsign-conversion"
int nextCodePoint(const std::string& bytes, std::size_t& offset, std::size_t end) {
    std::size_t next = offset;
    int codePoint;
    U8_NEXT(bytes.data(), next, end, codePoint);
    if (codePoint >= 0) offset = next;
    return codePoint;
}

void appendCodePoint(std::string& out, unsigned codePoint) {
    char bytes[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, codePoint);
    out.append(bytes, length);
}
#pragma GCC diagnostic pop

void appendUtf16(std::string& out, std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (U16_IS_LEAD(c) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1]))
            c = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(text[i], text[i + 1]));
        if (c > 0xFFFF) ++i;
        if (!U16_IS_SURROGATE(c)) appendCodePoint(out, c);
    }
}

std::size_t findIllFormed(const std::string& bytes, std::size_t begin, std::size_t end) {
    while (begin < end)
        if (nextCodePoint(bytes, begin, end) < 0) return begin;
    return std::string::npos;
}

}  // namespace tools

#include "tools/common/Utf8.hpp"

namespace tools {

int nextCodePoint(const std::string& bytes, std::size_t& offset, std::size_t end) {
    const auto at = [&](std::size_t n) { return static_cast<unsigned char>(bytes[offset + n]); };
    const int lead = at(0);
    if (lead < 0x80) {
        ++offset;
        return lead;
    }
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (lead < 0xC2 || lead > 0xF4 || length > end - offset) return -1;
    int codePoint = lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) return -1;
        codePoint = codePoint << 6 | (at(i) & 0x3F);
    }
    const int least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < least || codePoint > 0x10FFFF || isSurrogate) return -1;
    offset += length;
    return codePoint;
}

std::size_t findIllFormed(const std::string& bytes, std::size_t begin, std::size_t end) {
    while (begin < end)
        if (nextCodePoint(bytes, begin, end) < 0) return begin;
    return std::string::npos;
}

void appendCodePoint(std::string& out, unsigned codePoint) {
    const auto add = [&out](unsigned byte) { out += static_cast<char>(byte); };
    if (codePoint < 0x80) return add(codePoint);
    if (codePoint < 0x800) {
        add(0xC0 | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            add(0xE0 | codePoint >> 12);
        } else {
            add(0xF0 | codePoint >> 18);
            add(0x80 | (codePoint >> 12 & 0x3F));
        }
        add(0x80 | (codePoint >> 6 & 0x3F));
    }
    add(0x80 | (codePoint & 0x3F));
}

}  // namespace tools

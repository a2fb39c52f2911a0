#ifndef TESTS_SUPPORT_BMFFILE_HPP
#define TESTS_SUPPORT_BMFFILE_HPP

#include <map>
#include <string>

/// Returns a number in the byte order of binary message files.
inline std::string bigEndian(unsigned value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

/// Returns the bytes of a binary message file with these texts.
inline std::string bmfBytes(const std::map<unsigned, std::string>& texts) {
    std::string index, block;
    for (const auto& [id, text] : texts) {
        const auto length = static_cast<unsigned>(text.size()) + 1;
        index += bigEndian(id) + bigEndian(static_cast<unsigned>(block.size())) + bigEndian(length);
        block += text + '\0';
    }
    const std::string magic("BMF1\0xyz", 8);
    return magic + bigEndian(static_cast<unsigned>(texts.size())) +
           bigEndian(static_cast<unsigned>(block.size())) + index + block;
}

#endif

#include "tools/qblmsgc/Source.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "QBLCore/FileManagement/QBLFmFile.hpp"

namespace msgc {

namespace {

/// Which editors do not show.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

Source::Source(std::string name, std::string bytes)
    : m_name(std::move(name)), m_bytes(std::move(bytes)) {
    for (std::size_t begin = 0; begin < m_bytes.size();) {
        m_lines.push_back(begin);
        const std::size_t end = m_bytes.find('\n', begin);
        begin = end == std::string::npos ? m_bytes.size() : end + 1;
    }
}

std::size_t Source::lineBegin(std::size_t line) const {
    return line < m_lines.size() ? m_lines[line] : m_bytes.size();
}

Place Source::placeOf(std::size_t offset) const {
    const auto behind = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
    if (behind == m_lines.begin()) return {1, 1};
    std::size_t begin = *(behind - 1);
    if (begin == 0 && m_bytes.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
        begin = std::min(kByteOrderMark.size(), offset);
    const auto isCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const auto at = [this](std::size_t n) {
        return m_bytes.begin() + static_cast<std::string::difference_type>(n);
    };
    const auto characters =
        std::count_if(at(begin), at(std::min(offset, m_bytes.size())), isCharacter);
    return {static_cast<std::size_t>(behind - m_lines.begin()),
            static_cast<std::size_t>(characters) + 1};
}

bool readFile(const std::string& name, std::string& bytes, std::string& problem) {
    QBLFmFile file;
    long got = 0;
    bool ok = file.open(name.c_str(), QBLFmFile::existing, 1);
    char block[65536];
    while (ok && (got = file.read(block, sizeof block)) > 0)
        bytes.append(block, static_cast<std::size_t>(got));
    ok = ok && got == 0;
    if (!ok) problem = file.getLastErrorMessage();
    return ok;
}

}  // namespace msgc

#include "tools/qblmsgc/Source.hpp"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string_view>
#include <utility>

#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "tools/common/Reason.hpp"

namespace msgc {

namespace {

/// The most bytes that are read from an input that has no size. Such an input, for example a
/// device, may never end.
constexpr std::size_t kMostOfStream = 0x4000000;

bool isPipe(int descriptor) {
    QBLFileStatus status;
    return status.get(descriptor) && S_ISFIFO(status.mode());
}

bool isRegular(int descriptor) {
    QBLFileStatus status;
    return status.get(descriptor) && status.isRegular();
}

/// Editors do not show the mark, so columns do not count it.
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
    const auto rest = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
    if (rest == m_lines.begin()) return {1, 1};
    std::size_t begin = *(rest - 1);
    if (begin == 0 && m_bytes.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
        begin = std::min(kByteOrderMark.size(), offset);
    const auto isCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const auto at = [this](std::size_t n) {
        return m_bytes.begin() + static_cast<std::string::difference_type>(n);
    };
    const std::size_t end = std::min(offset, m_bytes.size());
    const bool goesOn = begin <= m_iLastOffset && m_iLastOffset <= end;
    std::size_t characters = goesOn ? m_iLastCharacters : 0;
    characters += static_cast<std::size_t>(
        std::count_if(at(goesOn ? m_iLastOffset : begin), at(end), isCharacter));
    m_iLastOffset = end;
    m_iLastCharacters = characters;
    return {static_cast<std::size_t>(rest - m_lines.begin()), characters + 1};
}

bool readFile(const std::string& name, std::string& bytes, std::string& problem) try {
    // O_NONBLOCK: opening a pipe without a writer would block forever.
    QBLFmFile file;
    if (!file.open(name.c_str(), static_cast<QBLFmFile::createmode>(O_NONBLOCK), 1)) {
        problem = tools::reason(file.getLastErrorNumber());
        return false;
    }
    const bool hasSize = isRegular(file.getFileDescriptor());
    char block[65536];
    for (bool isStart = true;; isStart = false) {
        const long got = file.read(block, sizeof block);
        if (got > 0) {
            bytes.append(block, static_cast<std::size_t>(got));
            if (hasSize || bytes.size() <= kMostOfStream) continue;
            problem = tools::reason(EFBIG);
            return false;
        } else if (got < 0 && file.getLastErrorNumber() == EAGAIN) {
            pollfd waited = {file.getFileDescriptor(), POLLIN, 0};
            poll(&waited, 1, -1);
        } else if (got < 0 && file.getLastErrorNumber() != EINTR) {
            problem = tools::reason(file.getLastErrorNumber());
            return false;
        } else if (got == 0) {
            const bool isSilent = isStart && isPipe(file.getFileDescriptor());
            if (isSilent) problem = tools::reason(EPIPE);
            return !isSilent;
        }
    }
} catch (const std::bad_alloc&) {
    problem = tools::reason(ENOMEM);
    return false;
}

}  // namespace msgc

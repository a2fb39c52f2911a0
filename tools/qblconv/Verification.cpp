#include "tools/qblconv/Verification.hpp"

#include <algorithm>

#include "i18n/cpp/i18n_errors.hpp"
#include "tools/qblconv/Encodings.hpp"

namespace conv {

namespace {

constexpr std::size_t kLongestMark = 4;
constexpr std::size_t kLongestCharacter = 16;  // in bytes, including escape sequences around it

}  // namespace

/// Starts the verification when the input's encoding is known.
void Verification::begin(const char* encoding) {
    m_from.emplace(encoding);
    setPolicies(*m_from, I18N_SUBSTITUTE, I18N_STOP);
    m_from->useFallback(false);
    setPolicies(m_to, I18N_STOP, I18N_STOP);
    m_pBack = std::make_unique<I18NTextStream>(&m_to, &*m_from);
    m_pPlace = std::make_unique<I18NTextStream>(&*m_from, nullptr, I18N_MARK_STRIP);
    const std::string mark = m_bStripsMark ? markIn(*m_from) : std::string();
    if (mark.empty() || m_read.compare(0, mark.size(), mark) != 0) return;
    m_pPlace->put(mark.data(), mark.size());
    m_iOffset = static_cast<std::int64_t>(mark.size());
    m_read.erase(0, mark.size());
}

bool Verification::convertBack(bool isEnd) {
    try {
        m_pBack->put(m_written.data(), m_written.size());
        m_back.append(m_pBack->getBytes(), m_pBack->getByteCount());
        m_written.clear();
        if (!isEnd) return true;
        m_pBack->finish();
    } catch (const I18NRuntimeError& error) {
        if (error.getErrorCode() != I18N_CONVERSION) throw;
        m_bLost = true;
    }
    m_back.append(m_pBack->getBytes(), m_pBack->getByteCount());
    return !m_bLost;
}

bool Verification::compare(const char* encoding, bool isEnd) {
    if (m_from == std::nullopt) {
        if (!isEnd && m_read.size() < kLongestMark) return true;
        begin(encoding);
    }
    const bool isBack = convertBack(isEnd);
    const std::size_t both = std::min(m_read.size(), m_back.size());
    const auto place = std::mismatch(
        m_read.begin(), m_read.begin() + static_cast<std::ptrdiff_t>(both), m_back.begin());
    const auto same = static_cast<std::size_t>(place.first - m_read.begin());
    const bool isOver = isEnd || !isBack;
    if (same < both || (isOver && (!isBack || m_read.size() != m_back.size()))) {
        differ(same);
        return false;
    }
    m_recent.append(m_read, 0, same);
    m_read.erase(0, same);
    m_back.erase(0, same);
    if (m_recent.size() <= kLongestCharacter) return true;
    const std::size_t counted = m_recent.size() - kLongestCharacter;
    m_pPlace->put(m_recent.data(), counted);
    m_recent.erase(0, counted);
    m_iOffset += static_cast<std::int64_t>(counted);
    return true;
}

/// Stores in m_mismatch the place and the bytes of the character that contains the first
/// difference. A character ends with the byte that changes the line or the column.
/// @param at  offset of the first different byte in m_read and m_back
void Verification::differ(std::size_t at) {
    const std::string read = m_recent + m_read, back = m_recent + m_back;
    at += m_recent.size();
    const auto place = [this] { return std::pair(m_pPlace->getLine(), m_pPlace->getColumn()); };
    std::size_t begin = 0, end = 0;
    auto before = place();
    const std::size_t limit = std::min(read.size(), at + kLongestCharacter);
    while (end < limit) {
        m_pPlace->put(read.data() + end, 1);
        ++end;
        const auto now = place();
        if (now == before) continue;
        if (end > at) break;
        begin = end;
        before = now;
    }
    m_mismatch = {before.first, before.second, m_iOffset + static_cast<std::int64_t>(begin),
                  read.substr(begin, end - begin),
                  back.substr(begin, std::max(end, at + 1) - begin)};
}

}  // namespace conv

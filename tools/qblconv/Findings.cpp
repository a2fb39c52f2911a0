#include "tools/qblconv/Findings.hpp"

#include <algorithm>

namespace conv {

namespace {

const char kDigits[] = "0123456789ABCDEF";

std::string bytesInDigits(const char* bytes, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (i > 0) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

/// At least four, as Unicode writes it.
std::string inDigits(char32_t codePoint) {
    std::string text;
    for (; codePoint != 0 || text.size() < 4; codePoint >>= 4) text += kDigits[codePoint & 15];
    std::reverse(text.begin(), text.end());
    return text;
}

}  // namespace

void Findings::unconvertible(const I18NUnconvertible& what) {
    const bool isReplacement = what.isOutput && what.textOffset == m_iBadInput &&
                               what.codePoint >= 0xFFFD && what.codePoint <= 0xFFFF;
    if (isReplacement) return;
    if (!what.isOutput) m_iBadInput = what.textOffset;
    ++(what.isBestFit ? m_iBestFits : m_iCount);
    if (m_each == Each::kCounted) m_places.clear();
    m_places.push_back({what.line, what.column, what.byteOffset,
                        bytesInDigits(what.bytes, what.byteCount), what.codePoint, what.isOutput,
                        what.isCutOff, what.isBestFit});
    if (what.isOutput && m_bStops && !what.isBestFit) throw Lacking();
}

void Findings::tell(const char* from, const char* to) {
    if (m_each == Each::kCounted) return;
    for (const Place& place : m_places) say(place, from, to);
    m_places.clear();
}

void Findings::tellLast(const char* from, const char* to) {
    if (m_places.empty()) return;
    const Place last = m_places.back();
    m_places.pop_back();
    tell(from, to);
    --m_iCount;
    m_report.fail();
    say(last, from, to);
}

void Findings::say(const Place& place, const char* from, const char* to) {
    Details details = {m_name, std::to_string(place.line), std::to_string(place.column)};
    qblconvmsgs id = place.isBestFit ? CONV_BEST_FIT : CONV_NO_CHARACTER;
    if (place.isOutput) {
        details.insert(details.end(), {inDigits(place.codePoint), to});
    } else {
        id = place.isCutOff ? CONV_CUT_OFF : CONV_BAD_BYTES;
        details.insert(details.end(), {std::to_string(place.offset), place.bytes, from});
    }
    if ((m_each == Each::kWarning || place.isBestFit) && !m_report.hasFailed())
        m_report.warning(id, details);
    else
        m_report.error(id, details);
}

}  // namespace conv

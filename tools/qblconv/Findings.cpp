#include "tools/qblconv/Findings.hpp"

#include <algorithm>

#include "tools/common/Utf8.hpp"

namespace conv {

namespace {

const char kDigits[] = "0123456789ABCDEF";

/// Writes at least four digits, as Unicode does.
std::string inDigits(char32_t codePoint) {
    std::string text;
    for (; codePoint != 0 || text.size() < 4; codePoint >>= 4) text += kDigits[codePoint & 15];
    std::reverse(text.begin(), text.end());
    return text;
}

}  // namespace

std::string bytesInDigits(const char* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (i > 0) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

void Findings::unconvertible(const I18NUnconvertible& what) {
    const bool isReplacement = what.isOutput && what.textOffset == m_iBadInput &&
                               what.codePoint >= 0xFFFD && what.codePoint <= 0xFFFF;
    if (isReplacement) return;
    if (!what.isOutput) m_iBadInput = what.textOffset;
    auto kind = what.isCutOff ? Finding::Kind::kTruncated : Finding::Kind::kMalformed;
    if (what.isOutput) kind = what.isBestFit ? Finding::Kind::kBestFit : Finding::Kind::kLacking;
    std::string replacement;
    if (kind == Finding::Kind::kLacking && transliterate(what, replacement))
        kind = Finding::Kind::kTransliterated;
    ++(kind == Finding::Kind::kBestFit          ? m_iBestFits
       : kind == Finding::Kind::kTransliterated ? m_iTransliterated
                                                : m_iCount);
    if (m_each == Each::kCounted) m_places.clear();
    m_places.push_back({what.line, what.column, what.byteOffset,
                        bytesInDigits(what.bytes, static_cast<std::size_t>(what.byteCount)),
                        what.codePoint, kind, std::move(replacement)});
    if (kind != Finding::Kind::kLacking) return;
    if (m_treatment.stops) throw Lacking();
    if (m_treatment.isMarked) m_pStream->replaceBy(u"?", 1);
}

/// ICU writes a space before a fraction to separate it from a number. At the start of a line, this
/// drops the space.
bool Findings::transliterate(const I18NUnconvertible& what, std::string& replacement) {
    if (m_treatment.transliteration == nullptr) return false;
    const std::u16string* const found = m_treatment.transliteration->of(what.codePoint);
    if (found == nullptr) return false;
    const bool isAtStart = what.column == 1 && found->compare(0, 1, u" ") == 0;
    const std::u16string text = isAtStart && found->size() > 1 ? found->substr(1) : *found;
    m_pStream->replaceBy(text.data(), text.size());
    std::string utf8;
    tools::appendUtf16(utf8, text);
    replacement = shown(utf8);
    return true;
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
    m_report.countAsFailed();
    say(last, from, to);
}

void Findings::say(const Place& place, const char* from, const char* to) {
    const bool isOutput = place.kind >= Finding::Kind::kLacking;
    Finding finding = {place.kind, isOutput ? m_treatment.outputPolicy : m_treatment.inputPolicy,
                       place.line, place.column};
    finding.encoding = isOutput ? to : from;
    if (isOutput) {
        finding.codePoint = inDigits(place.codePoint);
        finding.replacement = place.replacement;
    } else {
        finding.offset = place.offset;
        finding.bytes = place.bytes;
    }
    const bool isChange = place.kind > Finding::Kind::kLacking;
    const bool isWarning = (m_each == Each::kWarning || isChange) && !m_report.hasFailed();
    m_report.finding(isWarning ? QBLSeverityWarning : QBLSeverityError, m_name, finding);
}

}  // namespace conv

#include "tools/qblconv/Reading.hpp"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <cerrno>

#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

constexpr char32_t kLatinEnd = 0x250;  // single-byte encodings have no Latin letters from here on
constexpr int kLongRun = 3;

}  // namespace

void Passes::begin() {
    m_bDone = false;
    if (!m_bWhole && m_bBegun && m_iError == 0 && !m_input.rewind()) m_iError = m_input.error();
}

std::string_view Passes::next() {
    if (m_iError != 0 || m_bDone) return {};
    if (m_bWhole) {
        m_bDone = true;
        return m_whole;
    }
    const bool isFirst = !m_bBegun;
    m_bBegun = true;
    const int got =
        isInterrupted() ? -1 : m_input.read(m_block.data(), static_cast<unsigned>(m_block.size()));
    if (got < 0) {
        m_iError = isInterrupted() ? EINTR : m_input.error();
        return {};
    }
    const std::string_view part(m_block.data(), static_cast<std::size_t>(got));
    m_bDone = m_input.isAtEnd();
    if (isFirst && m_bDone) {
        m_bWhole = true;
        m_whole = part;
    }
    return part;
}

bool Passes::finish() {
    if (m_iError == 0 && m_bBegun && !m_input.rewind()) m_iError = m_input.error();
    return m_iError == 0;
}

bool forPasses(Input& input, const std::string& name, std::vector<char>& block, FileReport& report,
               const std::function<void(Passes&)>& body) {
    Problem problem;
    Passes passes(input, block);
    bool isRead = input.spool(block, problem);
    if (isRead) {
        body(passes);
        isRead = passes.finish();
        if (!isRead) problem = qblconvmsgs::convCannotRead(name, tools::reason(passes.error()));
    }
    if (isInterrupted())
        report.countAsFailed();
    else if (!isRead)
        report.error(*problem);
    return isRead && !isInterrupted();
}

bool decode(Passes& passes, const I18NConverter& strict,
            const std::function<bool(std::u16string_view)>& take) {
    I18NTextStream stream(&strict, nullptr);
    passes.begin();
    try {
        while (true) {
            const std::string_view bytes = passes.next();
            if (passes.error() != 0) return false;
            if (bytes.empty())
                stream.finish();
            else
                stream.put(bytes.data(), bytes.size());
            if (!take({stream.getText(), stream.getTextLength()}) || bytes.empty()) return true;
        }
    } catch (const I18NRuntimeError& error) {
        if (error.getErrorCode() != I18N_CONVERSION) throw;
        return false;
    }
}

void TextLook::add(std::u16string_view text) {
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F && m_cLead == 0) {
            ++m_iCount;
            m_iRun = 0;
            passInWord(unit, (unit | 0x20) >= 'a' && (unit | 0x20) <= 'z');
            continue;
        }
        if (m_cLead != 0 && U16_IS_TRAIL(unit)) {
            addCharacter(static_cast<char32_t>(U16_GET_SUPPLEMENTARY(m_cLead, unit)));
            m_cLead = 0;
            continue;
        }
        m_cLead = U16_IS_LEAD(unit) ? unit : u'\0';
        if (m_cLead == 0) addCharacter(unit);
    }
}

/// Counts the signs of windows-1252 at the code positions where DOS encodings have accented letters
/// of Western Europe.
void TextLook::passInWord(char32_t c, bool isLetter) {
    const bool isSign =
        c == 0x201A || c == 0x201E || c == 0x2020 || c == 0x2021 || c == 0x2C6 || c == 0x2030;
    m_iSigns += isLetter && m_bAfterSign ? 1 : 0;
    m_bAfterSign = isSign && m_bAfterLetter;
    m_bAfterLetter = isLetter;
}

void TextLook::addCharacter(char32_t c) {
    ++m_iCount;
    if (c < 0x20) {
        m_iRun = 0;
        passInWord(c, false);
        const bool isUsual = (c >= 0x08 && c <= 0x0D) || c == 0x1A;
        m_iControls += isUsual ? 0 : 1;
        m_bHasShifts = m_bHasShifts || c == 0x1B || c == 0x0E || c == 0x0F;
        return;
    }
    m_bBeyondASCII = m_bBeyondASCII || c >= 0x80;
    if (m_types == Types::kNot) return;
    const int type = u_charType(static_cast<UChar32>(c));
    const bool isC1 = c >= 0x80 && c < 0xA0;
    const bool isLatin = c < kLatinEnd && (U_MASK(type) & U_GC_L_MASK) != 0;
    m_iRun = isLatin ? m_iRun + 1 : 0;
    passInWord(c, (U_MASK(type) & U_GC_L_MASK) != 0 && c != 0x2C6);
    m_iRuns += m_iRun == 1 ? 1 : 0;
    m_iLongRuns += m_iRun == kLongRun ? 1 : 0;
    if (isC1 || type == U_UNASSIGNED || type == U_PRIVATE_USE_CHAR || type == U_SURROGATE)
        m_bAssigned = false;
}

}  // namespace conv

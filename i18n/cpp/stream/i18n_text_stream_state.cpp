#include "i18n/cpp/stream/i18n_text_stream_state.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/utf/i18n_ascii_copy.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

const char kNoConverter[] = "I18NTextStream::I18NTextStream: there is no converter";
const char kNothingToChoose[] = "I18NTextStream::I18NTextStream: UTF-16 has no encoding to choose";
const char kBadBlock[] = "I18NTextStream::put: the block is null, or not what the stream reads";
const char kNotAsked[] = "I18NTextStream::replaceBy: nothing is to be replaced";
const char kBadReplacement[] = "I18NTextStream::replaceBy: the text is null or too long";
const char kEnded[] = "I18NTextStream: the stream has ended";
// The messages show at most 60 characters of the encoding's name.
const char kBadBytes[] = "I18NTextStream: byte %lld, line %lld, column %lld:%s is %s %.60s";
const char kBadCharacter[] = "I18NTextStream: line %lld, column %lld: U+%04lX is %s %.60s";
const char kNotIn[] = "not in";
const char kCutOff[] = "cut off, in";

constexpr char16_t kMark = 0xFEFF;

// If a mark begins with another mark, the longer mark comes first.
const struct {
    const char* encoding;
    const char* mark;
    std::size_t size;
} kMarks[] = {{"UTF-32LE", "\xFF\xFE\0\0", 4},
              {"UTF-32BE", "\0\0\xFE\xFF", 4},
              {"UTF-8", "\xEF\xBB\xBF", 3},
              {"UTF-16LE", "\xFF\xFE", 2},
              {"UTF-16BE", "\xFE\xFF", 2}};

// Limits the number of findings for bytes that become no text at all.
constexpr std::ptrdiff_t kSlice = 0x10000;
// If there are more findings than this, the text before them is no longer held back.
constexpr std::size_t kMostWaiting = 0x10000;

}  // namespace

I18NTextStreamState::I18NTextStreamState(const I18NConverter* from, const I18NConverter* to,
                                         I18NByteOrderMark mark, I18NTextStreamListener* listener)
    : m_pInput(from != nullptr ? std::make_unique<I18NStreamInput>(*from) : nullptr),
      m_pOutput(to != nullptr ? std::make_unique<I18NStreamOutput>(*to, *this) : nullptr),
      m_pListener(listener),
      m_bStrips((mark & I18N_MARK_STRIP) != 0),
      m_bChooses((mark & I18N_MARK_CHOOSE) != 0) {
    if (from == nullptr && to == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, kNoConverter));
    if (from == nullptr && m_bChooses) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, kNothingToChoose));
}

// Sets m_bEnded. put() clears it when it succeeds, so a call that throws ends the stream.
void I18NTextStreamState::begin(bool fits) {
    if (!fits) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, kBadBlock));
    if (m_bEnded) QBL_THROW(QBLIllegalStateError(0, kEnded));
    m_bEnded = true;
    m_result.clear();
}

void I18NTextStreamState::put(const char* block, std::size_t size) {
    begin(m_pInput != nullptr && (block != nullptr || size == 0));
    const char* at = block;
    const char* const end = block + size;
    if (m_bChooses) collectMark(at, end);
    if (at != end) decode(at, end, false);
    m_bEnded = false;
}

void I18NTextStreamState::put(const char16_t* units, std::size_t count) {
    begin(m_pInput == nullptr && (units != nullptr || count == 0));
    while (count > 0) {
        const auto piece = std::min(count, static_cast<std::size_t>(m_text + kText - room()));
        std::memcpy(room(), units, piece * sizeof *units);
        passOn(piece, Ending::kNone);
        units += piece;
        count -= piece;
    }
    m_bEnded = false;
}

void I18NTextStreamState::finish() {
    begin(true);
    if (m_bChooses) chooseByMark();
    if (m_pInput != nullptr)
        decode(m_mark, m_mark, true);
    else
        passOn(0, Ending::kText);
}

const char* I18NTextStreamState::inputEncoding() const {
    return m_pInput != nullptr ? m_pInput->converter().getEncoding() : nullptr;
}

void I18NTextStreamState::collectMark(const char*& at, const char* end) {
    while (m_bChooses && at != end) {
        m_mark[m_iMark++] = *at++;
        const bool isOpen =
            m_iMark < kLongestMark &&
            std::any_of(std::begin(kMarks), std::end(kMarks), [this](const auto& known) {
                return std::memcmp(known.mark, m_mark, std::min(known.size, m_iMark)) == 0;
            });
        if (!isOpen) chooseByMark();
    }
}

void I18NTextStreamState::chooseByMark() {
    m_bChooses = false;
    const auto* found =
        std::find_if(std::begin(kMarks), std::end(kMarks), [this](const auto& known) {
            return known.size <= m_iMark && std::memcmp(known.mark, m_mark, known.size) == 0;
        });
    QBL_ALLOC_TRY
    if (found != std::end(kMarks))
        m_pInput = std::make_unique<I18NStreamInput>(found->encoding, *m_pInput);
    QBL_ALLOC_CATCH
    decode(m_mark, m_mark + m_iMark, false);
}

void I18NTextStreamState::decode(const char* at, const char* end, bool flush) {
    I18NProgress progress = I18NProgress::kFull;
    while (progress == I18NProgress::kFull || at != end) {
        const char* const begin = at;
        copyASCII(at, end);
        if (at != begin && at == end && !flush) break;
        const char* const slice = end - at > kSlice ? at + kSlice : end;
        const bool isLast = flush && slice == end;
        char16_t* text = room();
        progress = m_pInput->decode(at, slice, isLast, text, m_text + kText);
        Ending ending = Ending::kNone;
        if (progress == I18NProgress::kRefused) ending = Ending::kRefusal;
        if (progress == I18NProgress::kDone && isLast) ending = Ending::kText;
        passOn(static_cast<std::size_t>(text - room()), ending);
    }
}

// Copies a run of ASCII directly from the input to the output. Does nothing while other text waits
// in the text buffer or in a converter, because that text must be output first.
void I18NTextStreamState::copyASCII(const char*& at, const char* end) {
    if (m_pOutput == nullptr || m_iKept + m_iHeld > 0 || m_iCounted != m_iStart) return;
    const I18NPlainASCII* const from = m_pInput->plain();
    const I18NPlainASCII* const to = m_pOutput->plain();
    if (from == nullptr || to == nullptr || !m_pInput->findings.empty()) return;
    static_assert(2 * I18NPlainASCII::kMostOdd == I18NASCIICopy::kMostOdd);
    static const I18NASCIICopier kCopier = i18nASCIICopier();
    const auto most = static_cast<std::size_t>(end - at);
    m_result.reserve(most);
    I18NASCIICopy copy = {at, end, m_result.end(), m_position.isAfterCR()};
    std::copy(std::begin(from->odd()), std::end(from->odd()), copy.odd);
    std::copy(std::begin(to->odd()), std::end(to->odd()), copy.odd + I18NPlainASCII::kMostOdd);
    kCopier(copy);
    const auto size = static_cast<std::size_t>(copy.at - at);
    if (size == 0) return;
    m_bStrips = false;  // the text does not begin with a mark
    m_result.setEnd(copy.out);
    m_pInput->pass(at, size);
    m_pOutput->pass(size);
    m_position.passASCII(at, copy.at, copy.lines);
    m_iStart += static_cast<std::int64_t>(size);
    m_iCounted = m_iStart;
    at = copy.at;
}

void I18NTextStreamState::stripMark(std::size_t& units) {
    m_bStrips = false;
    if (m_text[0] != kMark) return;
    // Keeps U+FEFF if it replaces unconvertible bytes.
    if (m_pInput != nullptr && !m_pInput->findings.empty() && m_pInput->findings[0].at == 0) return;
    if (m_pInput != nullptr) m_pInput->dropFirstUnit();
    --units;
    std::memmove(m_text, m_text + 1, units * sizeof *m_text);
}

// Converts to output the units that were held back, and the given number of new units after them.
void I18NTextStreamState::passOn(std::size_t units, Ending ending) {
    if (m_bStrips && units > 0) stripMark(units);
    units += m_iHeld;
    m_iHeld = 0;
    try {
        bool isOver = false;
        do {
            const std::size_t part = portion(units, ending);
            isOver = ending != Ending::kNone && part == units;
            // Bytes that become no text are reported at once, unless text before them is held back.
            if (part > 0 || isOver || units == 0) convert(part, isOver ? ending : Ending::kNone);
            units -= part;
            m_iHeld = units;
            keepUndecided();
            if (part == 0) break;
        } while (!isOver && units > 0);
    } catch (...) {
        // Everything before the refused place has been converted, and nothing after it.
        if (m_pOutput != nullptr) m_pOutput->shiftBack(m_result);
        throw;
    }
}

std::size_t I18NTextStreamState::portion(std::size_t units, Ending ending) const {
    if (m_pOutput == nullptr || areTooManyWaiting()) return units;
    const std::size_t part = m_pOutput->portion(m_text + m_iKept, units);
    return part == 0 && ending != Ending::kNone ? units : part;
}

bool I18NTextStreamState::areTooManyWaiting() const {
    return m_pInput != nullptr && m_pInput->findings.size() > kMostWaiting;
}

// Converts in pieces. A piece ends where the input has a finding, so that the finding can be
// reported there.
void I18NTextStreamState::convert(std::size_t units, Ending ending) {
    const std::size_t end = m_iKept + units;
    while (true) {
        const bool isEnd = m_iKept == end;
        // The last unit may be the first half of a pair. The next text decides this, so findings
        // after the unit are not reported yet.
        const bool isOpen = ending == Ending::kNone && m_iKept > 0 &&
                            i18nIsHigh(m_text[m_iKept - 1]) && !areTooManyWaiting();
        tellInputs(m_iStart + static_cast<std::int64_t>(m_iKept) - (isOpen ? 1 : 0),
                   isEnd && ending == Ending::kRefusal);
        if (isEnd) break;
        encode(nextFinding(end), false);
    }
    if (ending == Ending::kText) encode(end, true);
}

/// Returns where the next piece ends; never between units that may be the halves of a pair.
std::size_t I18NTextStreamState::nextFinding(std::size_t end) const {
    if (m_pInput == nullptr) return end;
    for (auto next = m_pInput->findings.begin() + static_cast<std::ptrdiff_t>(m_iTold);
         next != m_pInput->findings.end(); ++next) {
        const std::int64_t at = next->at - m_iStart;
        if (at >= static_cast<std::int64_t>(end)) break;
        const auto place = static_cast<std::size_t>(at);
        if (place > m_iKept && !i18nIsHigh(m_text[place - 1])) return place;
    }
    return end;
}

void I18NTextStreamState::encode(std::size_t end, bool flush) {
    char16_t* const text = m_text + m_iKept;
    const std::size_t units = end - m_iKept;
    if (m_pOutput == nullptr)
        m_result.append(text, units * sizeof *text);
    else if (m_pOutput->encode(text, text + units, flush, m_result) == I18NProgress::kRefused) {
        --m_iReplacedOutput;
        refuse(described(m_pOutput->lastFinding()));
    }
    m_iKept = end;
}

// Keeps undecided units in the buffer. If they turn out not to be convertible, the report needs
// their line and column.
void I18NTextStreamState::keepUndecided() {
    const int undecided = m_pOutput != nullptr ? m_pOutput->undecided() : 0;
    const std::size_t waiting = std::min(m_iKept, static_cast<std::size_t>(undecided));
    const std::int64_t end = m_iStart + static_cast<std::int64_t>(m_iKept - waiting);
    countTo(end);
    if (m_pInput != nullptr) {
        auto& findings = m_pInput->findings;
        findings.erase(findings.begin(), findings.begin() + static_cast<std::ptrdiff_t>(m_iTold));
        m_iTold = 0;
    }
    if (waiting + m_iHeld > 0)
        std::memmove(m_text, m_text + m_iKept - waiting, (waiting + m_iHeld) * sizeof *m_text);
    m_iStart = end;
    m_iKept = waiting;
}

void I18NTextStreamState::tellInputs(std::int64_t end, bool isRefused) {
    if (m_pInput == nullptr) return;
    const auto& findings = m_pInput->findings;
    while (m_iTold < findings.size() && findings[m_iTold].at <= end) {
        const I18NInputFinding& finding = findings[m_iTold++];
        tellInput(finding, isRefused && m_iTold == findings.size());
    }
}

void I18NTextStreamState::tellInput(const I18NInputFinding& finding, bool isRefused) {
    countTo(finding.at);
    if (finding.at == 0) m_bStrips = false;  // the text after it is not at the start
    I18NUnconvertible what = {};
    what.isCutOff = finding.cutOff;
    what.bytes = finding.bytes;
    what.byteCount = finding.length;
    what.byteOffset = finding.offset;
    what.textOffset = finding.at;
    what.line = m_position.line();
    what.column = m_position.column();
    tell(what);
    if (isRefused) refuse(what);
    ++m_iReplacedInput;
    m_position.passSequence();
    m_iCounted = finding.at + finding.units;
}

I18NUnconvertible I18NTextStreamState::described(const I18NOutputFinding& finding) {
    countTo(finding.at);
    I18NUnconvertible what = {};
    what.isOutput = true;
    what.isCutOff = finding.cutOff;
    what.isBestFit = finding.bestFit;
    what.byteOffset = -1;
    what.codePoint = finding.codePoint;
    what.textOffset = finding.at;
    what.line = m_position.line();
    // All code points that replace a sequence of bytes have the column of the sequence.
    what.column = m_position.column() - (finding.at < m_iCounted ? 1 : 0);
    return what;
}

const I18NReplacement* I18NTextStreamState::found(const I18NOutputFinding& finding) {
    tellInputs(finding.at, false);
    m_bReplaced = false;
    m_bMayReplace = !finding.bestFit;
    try {
        tell(described(finding));
    } catch (...) {
        m_bMayReplace = false;
        throw;
    }
    m_bMayReplace = false;
    ++(finding.bestFit ? m_iBestFits : m_iReplacedOutput);
    return m_bReplaced ? &m_replacement : nullptr;
}

void I18NTextStreamState::replaceBy(const char16_t* units, std::size_t count) {
    if (!m_bMayReplace) QBL_THROW(QBLIllegalStateError(0, kNotAsked));
    if (count > I18NReplacement::kMost || (units == nullptr && count > 0))
        QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, kBadReplacement));
    std::copy_n(units, count, m_replacement.units);
    m_replacement.count = count;
    m_bReplaced = true;
}

void I18NTextStreamState::tell(const I18NUnconvertible& what) {
    if (m_pListener != nullptr) m_pListener->unconvertible(what);
}

void I18NTextStreamState::refuse(const I18NUnconvertible& what) const {
    char text[256];
    const char* const how = what.isCutOff ? kCutOff : kNotIn;
    const auto line = static_cast<long long>(what.line);
    const auto column = static_cast<long long>(what.column);
    if (what.isOutput) {
        std::snprintf(text, sizeof text, kBadCharacter, line, column,
                      static_cast<unsigned long>(what.codePoint), how,
                      m_pOutput->converter().getEncoding());
    } else {
        char bytes[3 * I18NInputFinding::kMostBytes + 1] = "";
        for (int i = 0; i < what.byteCount; ++i)
            std::snprintf(bytes + 3 * i, 4, " %02X", static_cast<unsigned char>(what.bytes[i]));
        std::snprintf(text, sizeof text, kBadBytes, static_cast<long long>(what.byteOffset), line,
                      column, bytes, how, inputEncoding());
    }
    QBL_THROW(I18NRuntimeError(I18N_CONVERSION, text));
}

void I18NTextStreamState::countTo(std::int64_t end) {
    static_assert(kText <= I18NTextPosition::kMost);
    if (end <= m_iCounted) return;
    m_position.pass(m_text + (m_iCounted - m_iStart), m_text + (end - m_iStart));
    m_iCounted = end;
}

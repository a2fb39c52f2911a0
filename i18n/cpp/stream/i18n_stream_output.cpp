#include <cxxabi.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/i18n_converter_callbacks.hpp"
#include "i18n/cpp/stream/i18n_stream_icu.hpp"
#include "i18n/cpp/stream/i18n_stream_sides.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

// The number of units to pass at once to converters whose output depends on that number.
constexpr std::size_t kPortion = 0x1000;
// No encoding with tables has this character.
constexpr char16_t kNoCharacter = 0xFFFF;

// The output of converters to these encodings depends on how much text they get at once, or they
// lose a pair that comes in two pieces.
bool dependsOnPortions(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return i18nIsMarkedUTF16(icu) || i18nIsLMBCS(type) || type == UCNV_SCSU || type == UCNV_BOCU1 ||
           type == UCNV_HZ || type == UCNV_COMPOUND_TEXT;
}

// UTF-16 in the machine's byte order, which is little-endian.
void copyWellFormed(const char16_t*& text, const char16_t* end, char*& at) {
    const std::size_t good = i18nWellFormedUTF16(text, static_cast<std::size_t>(end - text));
    std::memcpy(at, text, good * sizeof *text);
    text += good;
    at += good * sizeof *text;
}

}  // namespace

I18NStreamOutput::I18NStreamOutput(const I18NConverter& converter, I18NOutputFinder& finder)
    : m_converter(converter),
      m_finder(finder),
      m_pICU(I18NConverterAccess::icu(m_converter)),
      m_iMaxBytes(static_cast<std::size_t>(ucnv_getMaxCharSize(m_pICU))),
      m_form(i18nFormOf(m_pICU)),
      m_mappings(m_converter),
      m_bInPortions(dependsOnPortions(m_pICU)),
      m_bFits(m_converter.usesFallback()) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(m_pICU);
    ucnv_setFromUCallBack(m_pICU, callback, this, &m_policy, &m_pPolicyContext, &status);
    // ICU reports characters with best fits only if its fallback is off. treat() applies the best
    // fits.
    m_converter.useFallback(false);
    m_pTable = I18NEncodingTable::of(m_pICU);
}

std::size_t I18NStreamOutput::portion(const char16_t* text, std::size_t units) const {
    if (m_bInPortions && units < kPortion) return 0;
    if (m_bInPortions) units = kPortion;
    // Some ICU converters lose a pair that comes in two pieces, or a surrogate after a lone
    // surrogate.
    std::size_t end = units;
    while (end > 0 && i18nIsHigh(text[end - 1])) --end;
    return end > 0 || units == 0 ? end : units - 1;
}

I18NProgress I18NStreamOutput::encode(char16_t* text, const char16_t* end, bool flush,
                                      I18NStreamBuffer& bytes) {
    if (m_mappings.mayLoseAny()) return encodeAroundLost(text, end, flush, bytes);
    if (m_mappings.mayLose()) mask(text, end);
    return encodePieces(text, end, flush, bytes);
}

const I18NPlainASCII* I18NStreamOutput::plain() const {
    return m_bUnfinished ? nullptr : i18nPlainOf(m_form, m_pTable.get());
}

// Replaces each character about which ICU would not ask the policy by a character about which ICU
// asks.
void I18NStreamOutput::mask(char16_t* text, const char16_t* end) {
    const std::int64_t decided = m_iUnits - undecided();
    const auto isOver = [&](const Masked& masked) { return masked.at < decided; };
    m_masked.erase(m_masked.begin(), std::find_if_not(m_masked.begin(), m_masked.end(), isOver));
    char16_t* at = text;
    while ((at += m_mappings.firstSuspect(at, end) - at) != end) {
        if (m_mappings.isLost(at, 1)) {
            QBL_ALLOC_TRY
            m_masked.push_back({m_iUnits + (at - text), *at});
            QBL_ALLOC_CATCH
            *at = kNoCharacter;
        }
        ++at;
    }
}

// ICU's converter to compound text drops some characters and holds back lone surrogates. This
// function itself asks the policy about these.
I18NProgress I18NStreamOutput::encodeAroundLost(const char16_t* text, const char16_t* end,
                                                bool flush, I18NStreamBuffer& bytes) {
    int length = 0;
    for (const char16_t* at = text; at != end; at += length) {
        const bool isPair = U16_IS_LEAD(*at) && end - at > 1 && U16_IS_TRAIL(at[1]);
        const bool isLone = U16_IS_SURROGATE(*at) && !isPair;
        length = isPair ? 2 : 1;
        if (isLone ? U16_IS_LEAD(*at) && at + 1 == end : !m_mappings.isLost(at, length)) continue;
        I18NProgress progress = encodePieces(text, at, false, bytes);
        if (progress == I18NProgress::kDone) progress = treatLost(at, length, bytes);
        if (progress != I18NProgress::kDone) return progress;
        text = at + length;
    }
    return encodePieces(text, end, flush, bytes);
}

I18NProgress I18NStreamOutput::treatLost(const char16_t* units, int length,
                                         I18NStreamBuffer& bytes) {
    bytes.reserve(kI18NStreamSlack);
    UConverterFromUnicodeArgs args = {};
    args.size = sizeof args;
    args.converter = m_pICU;
    m_pBegin = units;
    args.source = args.sourceLimit = m_pEnd = units + length;
    args.target = bytes.end();
    args.targetLimit = bytes.limit();
    const bool isLone = length == 1 && U16_IS_SURROGATE(*units);
    UErrorCode status = isLone ? U_ILLEGAL_CHAR_FOUND : U_INVALID_CHAR_FOUND;
    const UChar32 codePoint = length == 2 ? U16_GET_SUPPLEMENTARY(units[0], units[1]) : *units;
    found(&args, units, length, codePoint, isLone ? UCNV_ILLEGAL : UCNV_UNASSIGNED, &status);
    bytes.setEnd(args.target);
    m_iUnits += length;
    return settle(status);
}

I18NProgress I18NStreamOutput::encodePieces(const char16_t* text, const char16_t* end, bool flush,
                                            I18NStreamBuffer& bytes) {
    I18NProgress progress = I18NProgress::kDone;
    do {
        bytes.reserve(static_cast<std::size_t>(end - text) * m_iMaxBytes + kI18NStreamSlack);
        const char16_t* piece = end;
        if (m_form != I18NStreamForm::kOther || m_pTable != nullptr) {
            if (!m_bUnfinished) {
                const char16_t* const begin = text;
                encodeWithoutICU(text, end, bytes);
                if (text == end && !flush) break;
                m_piece.choose(text - begin);
            }
            piece = text + std::min(end - text, m_piece.size(m_bUnfinished));
        }
        progress = encodeByICU(text, piece, flush && piece == end, bytes);
        m_bUnfinished = progress != I18NProgress::kDone || undecided() != 0;
    } while (progress == I18NProgress::kFull || (progress == I18NProgress::kDone && text != end));
    return progress;
}

void I18NStreamOutput::encodeWithoutICU(const char16_t*& text, const char16_t* end,
                                        I18NStreamBuffer& bytes) {
    const char16_t* const begin = text;
    char* to = bytes.end();
    if (m_form == I18NStreamForm::kUTF8)
        i18nEncodeWellFormedUTF8(text, end, to);
    else if (m_form == I18NStreamForm::kUTF16)
        copyWellFormed(text, end, to);
    else
        m_pTable->encode(text, end, to, bytes.limit());
    bytes.setEnd(to);
    m_iUnits += text - begin;
}

I18NProgress I18NStreamOutput::encodeByICU(const char16_t*& text, const char16_t* end, bool flush,
                                           I18NStreamBuffer& bytes) {
    m_pBegin = text;
    m_pEnd = end;
    char* to = bytes.end();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(m_pICU, &to, bytes.limit(), &text, end, nullptr, flush, &status);
    bytes.setEnd(to);
    m_iUnits += text - m_pBegin;
    return settle(status);
}

I18NProgress I18NStreamOutput::settle(UErrorCode status) {
    if (m_thrown != nullptr) std::rethrow_exception(std::exchange(m_thrown, nullptr));
    return i18nProgressOf(status, m_bRefused);
}

void I18NStreamOutput::shiftBack(I18NStreamBuffer& bytes) {
    static const char16_t kNone = 0;
    const char16_t* text = &kNone;
    m_bLeavesOut = true;
    do bytes.reserve(kI18NStreamSlack);
    while (encodeByICU(text, &kNone, true, bytes) == I18NProgress::kFull);
}

int I18NStreamOutput::undecided() const {
    UErrorCode status = U_ZERO_ERROR;
    return std::max<int>(ucnv_fromUCountPending(m_pICU, &status), 0);
}

TAV_CATCHES_UNWINDING
void I18NStreamOutput::found(UConverterFromUnicodeArgs* args, const UChar* units, int length,
                             UChar32 codePoint, UConverterCallbackReason reason,
                             UErrorCode* status) {
    const std::int64_t at = i18nWhereICUIs(args, m_pBegin, m_pEnd, m_iUnits) - length;
    const auto isBefore = [](const Masked& known, std::int64_t place) { return known.at < place; };
    const auto masked = std::lower_bound(m_masked.begin(), m_masked.end(), at, isBefore);
    if (masked != m_masked.end() && masked->at == at) {
        units = &masked->unit;
        codePoint = masked->unit;
    } else if (at >= m_iUnits) {
        // The converter to ISCII reports the character that it has looked up. This may not be the
        // character in the text.
        units = m_pBegin + (at - m_iUnits);
        codePoint = length == 2 ? U16_GET_SUPPLEMENTARY(units[0], units[1]) : *units;
    }
    m_finding = {at, static_cast<char32_t>(codePoint), *status == U_TRUNCATED_CHAR_FOUND, false};
    // No exception from here may cross ICU's frames.
    try {
        m_finding.bestFit =
            m_bFits && reason == UCNV_UNASSIGNED && m_mappings.hasFit(units, length);
        m_pReplacement = m_finder.found(m_finding);
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (...) {
        m_thrown = std::current_exception();
        return;
    }
    treat(args, units, length, codePoint, reason, status);
    m_bRefused = U_FAILURE(*status) && *status != U_BUFFER_OVERFLOW_ERROR;
}

void I18NStreamOutput::treat(UConverterFromUnicodeArgs* args, const UChar* units, int length,
                             UChar32 codePoint, UConverterCallbackReason reason,
                             UErrorCode* status) {
    if (m_finding.bestFit) {
        ucnv_setFallback(m_pICU, true);
        write(args, units, static_cast<std::size_t>(length), status);
        ucnv_setFallback(m_pICU, false);
    } else if (m_pReplacement != nullptr) {
        // Characters of the replacement that the encoding lacks are left out without a report.
        m_bLeavesOut = true;
        write(args, m_pReplacement->units, m_pReplacement->count, status);
        m_bLeavesOut = false;
    } else {
        m_policy(m_pPolicyContext, args, units, length, codePoint, reason, status);
    }
}

// Writes in the current shift state.
void I18NStreamOutput::write(UConverterFromUnicodeArgs* args, const UChar* units,
                             std::size_t length, UErrorCode* status) {
    *status = U_ZERO_ERROR;
    if (length > 0) ucnv_cbFromUWriteUChars(args, &units, units + length, 0, status);
}

void I18NStreamOutput::callback(const void* context, UConverterFromUnicodeArgs* args,
                                const UChar* units, int32_t length, UChar32 codePoint,
                                UConverterCallbackReason reason, UErrorCode* status) {
    auto* side = static_cast<I18NStreamOutput*>(const_cast<void*>(context));
    if (i18nIsAboutText(reason) && side->m_bLeavesOut)
        *status = U_ZERO_ERROR;
    else if (i18nIsAboutText(reason))
        side->found(args, units, length, codePoint, reason, status);
    else
        side->m_policy(side->m_pPolicyContext, args, units, length, codePoint, reason, status);
}

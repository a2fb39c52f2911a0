#include "i18n/cpp/stream/i18n_stream_sides.hpp"

#include <cxxabi.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/i18n_converter_callbacks.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

constexpr std::size_t kLeastBuffer = 4096;
// The maximum that one replacement needs, and what ICU writes around it.
constexpr std::size_t kSlack = 64;
// The bytes or units of UTF-8 and UTF-16 that ICU gets where the faster functions stop. These
// continue after that.
constexpr std::ptrdiff_t kPiece = 8;
// The number of units to pass at once to converters whose output depends on that number.
constexpr std::size_t kPortion = 0x1000;
// No encoding with tables has this character.
constexpr char16_t kNoCharacter = 0xFFFF;

I18NProgress progressOf(UErrorCode status, bool refused) {
    if (U_SUCCESS(status)) return I18NProgress::kDone;
    if (status == U_BUFFER_OVERFLOW_ERROR) return I18NProgress::kFull;
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    if (!refused) QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, nullptr));
    return I18NProgress::kRefused;
}

bool isAboutText(UConverterCallbackReason reason) { return reason <= UCNV_IRREGULAR; }

// Returns ICU's position in the stream. If the text that ICU has kept turns out not to fit the text
// that follows, ICU reads the kept text again from its own buffer. The end of that buffer
// corresponds to the start of this call's source. The contents do not show which one ICU reads,
// because the same bytes or units may occur more than once.
template <class Args, class Unit>
std::int64_t whereICUIs(const Args* args, const Unit* begin, const Unit* end, std::int64_t before) {
    if (args->sourceLimit != end) return before - (args->sourceLimit - args->source);
    return before + (args->source - begin);
}

bool isUTF16(UConverterType type) {
    return type == UCNV_UTF16_LittleEndian || type == UCNV_UTF16_BigEndian || type == UCNV_UTF16;
}

// Returns true for the UTF-16 converters that read and write byte-order marks.
bool isMarkedUTF16(const UConverter* icu) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getName(icu, &status);
    return isUTF16(ucnv_getType(icu)) && name != nullptr && std::strchr(name, ',') != nullptr;
}

bool isLMBCS(UConverterType type) { return type >= UCNV_LMBCS_1 && type <= UCNV_LMBCS_LAST; }

// Converters from these encodings treat malformed text differently if they get it in pieces.
bool dependsOnBlocks(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return isMarkedUTF16(icu) || isLMBCS(type) || type == UCNV_BOCU1 || type == UCNV_CESU8 ||
           type == UCNV_IMAP_MAILBOX || type == UCNV_COMPOUND_TEXT;
}

// Converters to these encodings depend on how much text they get at once, or lose a pair in two
// pieces.
bool dependsOnPortions(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return isMarkedUTF16(icu) || isLMBCS(type) || type == UCNV_SCSU || type == UCNV_BOCU1 ||
           type == UCNV_HZ || type == UCNV_COMPOUND_TEXT;
}

I18NStreamForm formOf(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    if (type == UCNV_UTF8) return I18NStreamForm::kUTF8;
    if (type != UCNV_UTF16_LittleEndian) return I18NStreamForm::kOther;
    return isMarkedUTF16(icu) ? I18NStreamForm::kOther : I18NStreamForm::kUTF16;
}

// UTF-16 in the machine's byte order, which is little-endian.
void copyWellFormed(const char*& at, const char* end, char16_t*& text, const char16_t* limit) {
    const auto room = static_cast<std::size_t>(limit - text);
    const std::size_t units = std::min(static_cast<std::size_t>(end - at) / sizeof *text, room);
    std::memcpy(text, at, units * sizeof *text);
    const std::size_t good = i18nWellFormedUTF16(text, units);
    text += good;
    at += good * sizeof *text;
}
void copyWellFormed(const char16_t*& text, const char16_t* end, char*& at) {
    const std::size_t good = i18nWellFormedUTF16(text, static_cast<std::size_t>(end - text));
    std::memcpy(at, text, good * sizeof *text);
    text += good;
    at += good * sizeof *text;
}

}  // namespace

I18NStreamBuffer::~I18NStreamBuffer() { std::free(m_pBytes); }

void I18NStreamBuffer::reserve(std::size_t more) {
    if (m_iCapacity - m_iSize >= more) return;
    std::size_t needed = 0;
    const bool fits = !__builtin_add_overflow(m_iSize, more, &needed);
    const std::size_t twice = m_iCapacity <= SIZE_MAX / 2 ? m_iCapacity * 2 : 0;
    const std::size_t capacity = std::max({needed, twice, kLeastBuffer});
    auto* bytes = fits ? std::realloc(m_pBytes, capacity) : nullptr;
    if (bytes == nullptr) qblThrowNoMemory(QBL_HERE);
    m_pBytes = static_cast<char*>(bytes);
    m_iCapacity = capacity;
}

void I18NStreamBuffer::append(const void* bytes, std::size_t size) {
    if (size == 0) return;
    reserve(size);
    std::memcpy(end(), bytes, size);
    m_iSize += size;
}

I18NStreamInput::I18NStreamInput(const I18NConverter& converter)
    : m_converter(converter), m_pICU(I18NConverterAccess::icu(m_converter)) {
    listen();
}

I18NStreamInput::I18NStreamInput(const char* encoding, const I18NStreamInput& policy)
    : m_converter(encoding), m_pICU(I18NConverterAccess::icu(m_converter)) {
    const I18NConverter& other = policy.m_converter;
    const int number = other.getBuiltInUnconvertibleInputSequenceCallback();
    // The getter returns I18N_LOOKUP for a converter that was given no policy, too.
    const bool none =
        number == I18N_LOOKUP && policy.m_policy != LOOKUP_UNCONVERTIBLE_INPUT_CALLBACK;
    if (!none) m_converter.setBuiltInUnconvertibleInputSequenceCallback(number);
    m_converter.setUserDefinedUnconvertibleInputSequenceCallback(
        other.getUserDefinedUnconvertibleInputSequenceCallback());
    listen();
}

void I18NStreamInput::listen() {
    UErrorCode status = U_ZERO_ERROR;
    m_form = formOf(m_pICU);
    m_bByteByByte = dependsOnBlocks(m_pICU);
    m_bIsUTF16 = isUTF16(ucnv_getType(m_pICU));
    m_bIsBOCU = ucnv_getType(m_pICU) == UCNV_BOCU1;
    ucnv_reset(m_pICU);
    ucnv_setToUCallBack(m_pICU, callback, this, &m_policy, &m_pPolicyContext, &status);
}

I18NProgress I18NStreamInput::decode(const char*& at, const char* end, bool flush, char16_t*& text,
                                     const char16_t* limit) {
    m_pSlice = at;
    m_iSlice = m_iBytes;
    const I18NProgress progress = decodeSlice(at, end, flush, text, limit);
    remember(at);
    return progress;
}

I18NProgress I18NStreamInput::decodeSlice(const char*& at, const char* end, bool flush,
                                          char16_t*& text, const char16_t* limit) {
    I18NProgress progress = I18NProgress::kDone;
    UErrorCode status = U_ZERO_ERROR;
    if (m_form == I18NStreamForm::kOther && !m_bByteByByte)
        return decodeByICU(at, end, flush, text, limit);
    if (m_bByteByByte) {
        while (at != end && progress == I18NProgress::kDone) {
            const char16_t* const before = text;
            progress = decodeByICU(at, at + 1, false, text, limit);
            if (m_bIsBOCU && (text != before || ucnv_toUCountPending(m_pICU, &status) == 0))
                m_iSequence = m_iBytes;
        }
        if (progress != I18NProgress::kDone || !flush) return progress;
        return decodeByICU(at, end, true, text, limit);
    }
    do {
        if (!m_bUnfinished) {
            const char* const begin = at;
            const char16_t* const textBegin = text;
            if (m_form == I18NStreamForm::kUTF8)
                i18nDecodeWellFormedUTF8(at, end, text, limit);
            else
                copyWellFormed(at, end, text, limit);
            m_iBytes += at - begin;
            m_iUnits += text - textBegin;
        }
        const char* const piece = at + std::min(end - at, kPiece);
        progress = decodeByICU(at, piece, flush && piece == end, text, limit);
        m_bUnfinished =
            progress != I18NProgress::kDone || ucnv_toUCountPending(m_pICU, &status) != 0;
    } while (progress == I18NProgress::kDone && at != end);
    return progress;
}

I18NProgress I18NStreamInput::decodeByICU(const char*& at, const char* end, bool flush,
                                          char16_t*& text, const char16_t* limit) {
    m_pBegin = at;
    m_pEnd = end;
    m_pText = text;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(m_pICU, &text, limit, &at, end, nullptr, flush, &status);
    m_iBytes += at - m_pBegin;
    m_iUnits += text - m_pText;
    return progressOf(status, m_bRefused);
}

// Keeps the end of the slice for findings that end in the next one.
void I18NStreamInput::remember(const char* end) {
    const std::ptrdiff_t size = std::min<std::ptrdiff_t>(end - m_pSlice, kHistory);
    if (size == 0) return;
    std::memmove(m_history, m_history + size, static_cast<std::size_t>(kHistory - size));
    std::memcpy(m_history + kHistory - size, end - size, static_cast<std::size_t>(size));
}

// Requires: `begin` is at most kHistory bytes before the slice.
void I18NStreamInput::copySource(std::int64_t begin, std::int64_t end,
                                 I18NInputFinding& finding) const {
    finding.offset = begin;
    finding.length =
        static_cast<int>(std::min<std::int64_t>(end - begin, I18NInputFinding::kMostBytes));
    for (int i = 0; i < finding.length; ++i) {
        const std::int64_t at = begin - m_iSlice + i;
        finding.bytes[i] = at >= 0 ? m_pSlice[at] : m_history[kHistory + at];
    }
}

bool I18NStreamInput::hasInSource(std::int64_t offset, const char* bytes, int length) const {
    I18NInputFinding there;
    copySource(offset, offset + length, there);
    return std::memcmp(there.bytes, bytes, static_cast<std::size_t>(there.length)) == 0;
}

// Finds in the source the bytes that ICU reports. Usually they end where ICU is. The exceptions:
//   UTF-16   ICU keeps a byte of the unit after a lone surrogate.
//   ISCII    ICU keeps a lead byte while it refuses the bytes after it, and reports it at the end.
//   SCSU     ICU drops bytes that cannot define a window, and reports the command with the last of
//            them; the finding has all of them.
//   BOCU-1   ICU reports no bytes if a sequence leads out of Unicode. Its start is known, because
//            ICU gets the input byte by byte.
// If kHistory does not reach the bytes, they are assumed to end where ICU is. ICU's arrays of
// offsets are no better: they also count back from there, and lack findings whose replacement is
// empty.
void I18NStreamInput::locate(const char* bytes, int length, std::int64_t end,
                             I18NInputFinding& finding) const {
    if (m_bIsBOCU && length == 0) return copySource(m_iSequence, end, finding);
    // A unit begins at an even offset. Its bytes alone do not show that, since they may be equal.
    const int step = m_bIsUTF16 ? 2 : 1;
    const std::int64_t last = (end - length) / step * step;
    const std::int64_t first = std::max<std::int64_t>(m_iSlice - kHistory, 0);
    for (std::int64_t at = last; at >= first && at > last - kHistory; at -= step)
        if (hasInSource(at, bytes, length)) return copySource(at, at + length, finding);
    for (std::int64_t at = last; at >= first && at > last - kHistory; at -= step)
        if (hasInSource(at, bytes, 1)) return copySource(at, end, finding);
    finding.offset = last;
    finding.length = std::min(length, I18NInputFinding::kMostBytes);
    std::memcpy(finding.bytes, bytes, static_cast<std::size_t>(finding.length));
}

void I18NStreamInput::dropFirstUnit() {
    --m_iUnits;
    for (I18NInputFinding& finding : findings) --finding.at;
}

void I18NStreamInput::found(UConverterToUnicodeArgs* args, const char* bytes, int length,
                            UConverterCallbackReason reason, UErrorCode* status) {
    I18NInputFinding finding = {};
    locate(bytes, length, whereICUIs(args, m_pBegin, m_pEnd, m_iBytes), finding);
    if (length == 0 && finding.length > 0) {  // BOCU-1; the policy gets them, too
        bytes = finding.bytes;
        length = finding.length;
    }
    finding.at = m_iUnits + (args->target - m_pText);
    finding.cutOff = *status == U_TRUNCATED_CHAR_FOUND;

    // The policy writes to a separate buffer, so that the length of its text is known wherever that
    // goes.
    UChar replacement[kSlack];
    UConverterToUnicodeArgs aside = *args;
    aside.target = replacement;
    aside.targetLimit = replacement + kSlack;
    aside.offsets = nullptr;
    m_policy(m_pPolicyContext, &aside, bytes, length, reason, status);
    m_bRefused = U_FAILURE(*status);
    finding.units = static_cast<int>(aside.target - replacement);
    const bool noted = tavContain([&] { findings.push_back(finding); });
    if (!noted)
        *status = U_MEMORY_ALLOCATION_ERROR;
    else if (!m_bRefused)
        ucnv_cbToUWriteUChars(args, replacement, finding.units, 0, status);
}

void I18NStreamInput::callback(const void* context, UConverterToUnicodeArgs* args,
                               const char* bytes, int32_t length, UConverterCallbackReason reason,
                               UErrorCode* status) {
    auto* side = static_cast<I18NStreamInput*>(const_cast<void*>(context));
    if (isAboutText(reason))
        side->found(args, bytes, length, reason, status);
    else
        side->m_policy(side->m_pPolicyContext, args, bytes, length, reason, status);
}

I18NStreamOutput::I18NStreamOutput(const I18NConverter& converter, I18NOutputFinder& finder)
    : m_converter(converter),
      m_finder(finder),
      m_pICU(I18NConverterAccess::icu(m_converter)),
      m_iMaxBytes(static_cast<std::size_t>(ucnv_getMaxCharSize(m_pICU))),
      m_form(formOf(m_pICU)),
      m_mappings(m_converter),
      m_bInPortions(dependsOnPortions(m_pICU)),
      m_bFits(m_converter.usesFallback()) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(m_pICU);
    ucnv_setFromUCallBack(m_pICU, callback, this, &m_policy, &m_pPolicyContext, &status);
    // ICU reports characters that have best fits only without fallback. treat() then applies the
    // best fits.
    m_converter.useFallback(false);
}

std::size_t I18NStreamOutput::portion(const char16_t* text, std::size_t units) const {
    if (m_bInPortions && units < kPortion) return 0;
    if (m_bInPortions) units = kPortion;
    // Some ICU converters lose a pair that comes in two pieces.
    return units > 0 && i18nIsHigh(text[units - 1]) ? units - 1 : units;
}

I18NProgress I18NStreamOutput::encode(char16_t* text, const char16_t* end, bool flush,
                                      I18NStreamBuffer& bytes) {
    if (m_mappings.mayLoseAny()) return encodeAroundLost(text, end, flush, bytes);
    if (m_mappings.mayLose()) mask(text, end);
    return encodePieces(text, end, flush, bytes);
}

// Replaces characters for which ICU would not ask a policy by a character for which it does.
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

// This converter would drop some characters and hold back lone surrogates. For these, this function
// asks the policy itself.
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
    bytes.reserve(kSlack);
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
        bytes.reserve(static_cast<std::size_t>(end - text) * m_iMaxBytes + kSlack);
        const char16_t* piece = end;
        if (m_form != I18NStreamForm::kOther) {
            if (!m_bUnfinished) {
                const char16_t* const begin = text;
                char* to = bytes.end();
                if (m_form == I18NStreamForm::kUTF8)
                    i18nEncodeWellFormedUTF8(text, end, to);
                else
                    copyWellFormed(text, end, to);
                bytes.setEnd(to);
                m_iUnits += text - begin;
            }
            piece = text + std::min(end - text, kPiece);
        }
        progress = encodeByICU(text, piece, flush && piece == end, bytes);
        m_bUnfinished = progress != I18NProgress::kDone || undecided() != 0;
    } while (progress == I18NProgress::kFull || (progress == I18NProgress::kDone && text != end));
    return progress;
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
    return progressOf(status, m_bRefused);
}

void I18NStreamOutput::shiftBack(I18NStreamBuffer& bytes) {
    static const char16_t kNone = 0;
    const char16_t* text = &kNone;
    m_bLeavesOut = true;
    do bytes.reserve(kSlack);
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
    const std::int64_t at = whereICUIs(args, m_pBegin, m_pEnd, m_iUnits) - length;
    const auto isBefore = [](const Masked& known, std::int64_t place) { return known.at < place; };
    const auto masked = std::lower_bound(m_masked.begin(), m_masked.end(), at, isBefore);
    if (masked != m_masked.end() && masked->at == at) {
        units = &masked->unit;
        codePoint = masked->unit;
    } else if (at >= m_iUnits) {
        // The converter to ISCII reports the character that it has looked up, which may be another
        // one.
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
        // Characters that the encoding lacks are left out without a report.
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
    if (isAboutText(reason) && side->m_bLeavesOut)
        *status = U_ZERO_ERROR;
    else if (isAboutText(reason))
        side->found(args, units, length, codePoint, reason, status);
    else
        side->m_policy(side->m_pPolicyContext, args, units, length, codePoint, reason, status);
}

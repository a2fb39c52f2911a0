#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/i18n_converter_callbacks.hpp"
#include "i18n/cpp/stream/i18n_stream_icu.hpp"
#include "i18n/cpp/stream/i18n_stream_sides.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

// The lead byte of ISCII that ICU keeps while it refuses the bytes after it.
constexpr char kExtension = '\xF0';

// Converters from these encodings treat malformed text differently if they get it in pieces.
bool dependsOnBlocks(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return i18nIsMarkedUTF16(icu) || i18nIsLMBCS(type) || type == UCNV_CESU8 ||
           type == UCNV_IMAP_MAILBOX || type == UCNV_COMPOUND_TEXT;
}

// ICU does not report all bytes of each sequence in these encodings.
bool hidesSequences(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return type == UCNV_BOCU1 || type == UCNV_SCSU;
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

}  // namespace

I18NStreamInput::I18NStreamInput(const I18NConverter& converter)
    : m_converter(converter), m_pICU(I18NConverterAccess::icu(m_converter)) {
    listen();
}

I18NStreamInput::I18NStreamInput(const char* encoding, const I18NStreamInput& policy)
    : m_converter(encoding), m_pICU(I18NConverterAccess::icu(m_converter)) {
    const I18NConverter& other = policy.m_converter;
    const int number = other.getBuiltInUnconvertibleInputSequenceCallback();
    // The getter also returns I18N_LOOKUP for a converter whose policy was never set.
    const bool none =
        number == I18N_LOOKUP && policy.m_policy != LOOKUP_UNCONVERTIBLE_INPUT_CALLBACK;
    if (!none) m_converter.setBuiltInUnconvertibleInputSequenceCallback(number);
    m_converter.setUserDefinedUnconvertibleInputSequenceCallback(
        other.getUserDefinedUnconvertibleInputSequenceCallback());
    listen();
}

void I18NStreamInput::listen() {
    UErrorCode status = U_ZERO_ERROR;
    m_form = i18nFormOf(m_pICU);
    m_bIsUTF16 = i18nIsUTF16(ucnv_getType(m_pICU));
    m_bIsISCII = ucnv_getType(m_pICU) == UCNV_ISCII;
    m_bFollowsSequences = hidesSequences(m_pICU);
    m_bByteByByte = m_bFollowsSequences || dependsOnBlocks(m_pICU);
    m_pTable = I18NDecodingTable::of(m_pICU);
    ucnv_reset(m_pICU);
    ucnv_setToUCallBack(m_pICU, callback, this, &m_policy, &m_pPolicyContext, &status);
}

I18NProgress I18NStreamInput::decode(const char*& at, const char* end, bool flush, char16_t*& text,
                                     const char16_t* limit) {
    m_pSlice = at;
    m_iSlice = m_iBytes;
    if (m_bIsISCII) findLead(at, end);
    const I18NProgress progress = decodeSlice(at, end, flush, text, limit);
    remember(at);
    return progress;
}

I18NProgress I18NStreamInput::decodeSlice(const char*& at, const char* end, bool flush,
                                          char16_t*& text, const char16_t* limit) {
    if (m_bByteByByte) return decodeBytes(at, end, flush, text, limit);
    if (m_form == I18NStreamForm::kOther && m_pTable == nullptr)
        return decodeByICU(at, end, flush, text, limit);
    I18NProgress progress = I18NProgress::kDone;
    do {
        if (!m_bUnfinished) {
            const char* const begin = at;
            decodeWithoutICU(at, end, text, limit);
            if (at == end && !flush) break;
            if (at != end && text == limit) return I18NProgress::kFull;
            m_piece.choose(at - begin);
        }
        const char* const piece = at + std::min(end - at, m_piece.size(m_bUnfinished));
        progress = decodeByICU(at, piece, flush && piece == end, text, limit);
        UErrorCode status = U_ZERO_ERROR;
        m_bUnfinished =
            progress != I18NProgress::kDone || ucnv_toUCountPending(m_pICU, &status) != 0;
    } while (progress == I18NProgress::kDone && at != end);
    return progress;
}

void I18NStreamInput::decodeWithoutICU(const char*& at, const char* end, char16_t*& text,
                                       const char16_t* limit) {
    const char* const begin = at;
    const char16_t* const textBegin = text;
    if (m_form == I18NStreamForm::kUTF8)
        i18nDecodeWellFormedUTF8(at, end, text, limit);
    else if (m_form == I18NStreamForm::kUTF16)
        copyWellFormed(at, end, text, limit);
    else
        m_pTable->decode(at, end, text, limit);
    m_iBytes += at - begin;
    m_iUnits += text - textBegin;
}

I18NProgress I18NStreamInput::decodeBytes(const char*& at, const char* end, bool flush,
                                          char16_t*& text, const char16_t* limit) {
    I18NProgress progress = I18NProgress::kDone;
    while (at != end && progress == I18NProgress::kDone) {
        const char16_t* const before = text;
        if (m_bFollowsSequences) noteByte(*at);
        progress = decodeByICU(at, at + 1, false, text, limit);
        if (m_bFollowsSequences) followSequence(text != before);
    }
    if (progress != I18NProgress::kDone || !flush) return progress;
    return decodeByICU(at, end, true, text, limit);
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
    return i18nProgressOf(status, m_bRefused);
}

// Requires: ICU gets this byte next.
void I18NStreamInput::noteByte(char byte) {
    const std::int64_t place = m_iBytes - m_iSequence;
    if (place < I18NInputFinding::kMostBytes) m_sequence[place] = byte;
}

// If there is no room for all text of a sequence, ICU keeps the rest of this text. ICU writes the
// rest in the call that takes the first byte of the next sequence.
void I18NStreamInput::followSequence(bool hasText) {
    UErrorCode status = U_ZERO_ERROR;
    const int pending = ucnv_toUCountPending(m_pICU, &status);
    if (hasText || pending == 0) m_iSequence = m_iBytes - pending;
}

void I18NStreamInput::findLead(const char* at, const char* end) {
    while (end != at)
        if (*--end == kExtension) {
            m_iLead = m_iBytes + (end - at);
            return;
        }
}

// Keeps the last bytes of the slice, because a finding in the next slice may begin there.
void I18NStreamInput::remember(const char* end) {
    const std::ptrdiff_t size = std::min<std::ptrdiff_t>(end - m_pSlice, kHistory);
    if (size == 0) return;
    std::memmove(m_history, m_history + size, static_cast<std::size_t>(kHistory - size));
    std::memcpy(m_history + kHistory - size, end - size, static_cast<std::size_t>(size));
}

// Requires: `offset` is at most kHistory bytes before the slice.
const char* I18NStreamInput::sourceAt(std::int64_t offset) const {
    const std::int64_t at = offset - m_iSlice;
    return at >= 0 ? m_pSlice + at : m_history + kHistory + at;
}

// Sets the bytes of a finding, and their offset in the source. Usually these are the bytes that ICU
// reports, and they end at ICU's position. The exceptions:
//   UTF-16   ICU keeps a byte of the unit after a lone surrogate.
//   ISCII    ICU keeps a lead byte while it refuses the bytes after the lead byte, and reports the
//            lead byte at the end.
//   SCSU     ICU drops bytes that cannot define a window, and reports the command with only the
//            last of these bytes. The finding has all of them.
//   BOCU-1   ICU reports no bytes if a sequence leads out of Unicode.
//   GSM      ICU reports no bytes if the byte after an escape has no character, and converts the
//            escape alone.
// ICU's arrays of offsets are no better. ICU also computes these offsets back from the end, and the
// arrays lack findings whose replacement is empty.
void I18NStreamInput::locate(const char* bytes, int length, std::int64_t end,
                             I18NInputFinding& finding) const {
    if (m_bFollowsSequences) {
        bytes = m_sequence;
        length = static_cast<int>(std::min<std::int64_t>(end - m_iSequence, sizeof m_sequence));
        finding.offset = m_iSequence;
    } else if (length == 0 && !finding.cutOff && end > 0) {
        bytes = sourceAt(end - 1);
        length = 1;
        finding.offset = end - 1;
    } else if (m_bIsISCII && finding.cutOff && *bytes == kExtension) {
        finding.offset = m_iLead;
    } else {
        // A unit begins at an even offset.
        const int step = m_bIsUTF16 ? 2 : 1;
        finding.offset = (end - length) / step * step;
    }
    finding.length = std::min(length, I18NInputFinding::kMostBytes);
    std::memcpy(finding.bytes, bytes, static_cast<std::size_t>(finding.length));
}

const I18NPlainASCII* I18NStreamInput::plain() const {
    return m_bUnfinished ? nullptr : i18nPlainOf(m_form, m_pTable.get());
}

void I18NStreamInput::pass(const char* at, std::size_t size) {
    m_pSlice = at;
    m_iSlice = m_iBytes;
    m_iBytes += static_cast<std::int64_t>(size);
    m_iUnits += static_cast<std::int64_t>(size);
    remember(at + size);
}

void I18NStreamInput::dropFirstUnit() {
    --m_iUnits;
    for (I18NInputFinding& finding : findings) --finding.at;
}

void I18NStreamInput::found(UConverterToUnicodeArgs* args, const char* bytes, int length,
                            UConverterCallbackReason reason, UErrorCode* status) {
    I18NInputFinding finding = {};
    finding.cutOff = *status == U_TRUNCATED_CHAR_FOUND;
    locate(bytes, length, i18nWhereICUIs(args, m_pBegin, m_pEnd, m_iBytes), finding);
    if (length == 0 && finding.length > 0) {  // BOCU-1 and GSM: the policy also gets these bytes
        bytes = finding.bytes;
        length = finding.length;
    }
    finding.at = m_iUnits + (args->target - m_pText);

    // The policy writes to a separate buffer. So the length of its text is known, even if the
    // target has no room for all of it.
    UChar replacement[kI18NStreamSlack];
    UConverterToUnicodeArgs aside = *args;
    aside.target = replacement;
    aside.targetLimit = replacement + kI18NStreamSlack;
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
    if (i18nIsAboutText(reason))
        side->found(args, bytes, length, reason, status);
    else
        side->m_policy(side->m_pPolicyContext, args, bytes, length, reason, status);
}

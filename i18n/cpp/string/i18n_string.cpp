#include "i18n/cpp/i18n_string.hpp"

#include <emmintrin.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <utility>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/string/i18n_block.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

const char kMalloc[] = "malloc failed to allocate memory.";
const char kStatic[] = "Cannot resize a static external buffer.";

std::atomic<bool> g_bForceUnicodeString{false};

/// Returns a capacity that grows by half, capped at `most`, but never below `needed`.
int grown(int present, std::int64_t needed, std::int64_t most) {
    if (needed > most) qblThrowNoMemory(QBL_HERE, kMalloc);
    const std::int64_t more = std::int64_t{present} + present / 2;
    return static_cast<int>(more > needed ? (more < most ? more : most) : needed);
}

constexpr std::int64_t kMostBytes = INT_MAX;

/// Copies bytes by two moves of one word each, which may overlap. Requires: `length` is from one to
/// two words.
/// @return both words combined by OR. All bytes are ASCII if and only if no byte of the result has
///     its top bit set
template <class Word>
Word copyTwo(char* out, const char* bytes, std::size_t length) {
    Word first, last;
    std::memcpy(&first, bytes, sizeof first);
    std::memcpy(&last, bytes + length - sizeof last, sizeof last);
    std::memcpy(out, &first, sizeof first);
    std::memcpy(out + length - sizeof last, &last, sizeof last);
    return first | last;
}

/// @return true if all bytes are ASCII
bool copyShort(char* out, const char* bytes, std::size_t length) {
    if (length >= 16) {
        const auto* const from = reinterpret_cast<const __m128i*>(bytes);
        const auto* const tail = reinterpret_cast<const __m128i*>(bytes + length - 16);
        const __m128i first = _mm_loadu_si128(from), last = _mm_loadu_si128(tail);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + length - 16), last);
        return _mm_movemask_epi8(_mm_or_si128(first, last)) == 0;
    }
    if (length >= 8) return (copyTwo<std::uint64_t>(out, bytes, length) & 0x8080808080808080) == 0;
    if (length >= 4) return (copyTwo<std::uint32_t>(out, bytes, length) & 0x80808080) == 0;
    unsigned all = 0;
    for (std::size_t i = 0; i < length; ++i) all |= static_cast<unsigned char>(out[i] = bytes[i]);
    return all < 0x80;
}

}  // namespace

I18NString::I18NString(Bare, I18NStringAllocator allocator, void* context) noexcept
    : m_pCodeUnits(nullptr),
      m_pUnicodeString(nullptr),
      m_allocator(allocator),
      m_allocatorContext(context),
      m_pConverted(nullptr),
      m_convertedLength(0),
      m_pContents(nullptr),
      m_pConvertedEncoding(nullptr),
      m_flags(kI18NNormalized),
      m_pAsciiBuffer(m_asciiInline),
      m_asciiBufCapacity(kInline),
      m_asciiBufLength(0),
      m_unitLength(0),
      m_unitCapacity(0) {
    m_asciiInline[0] = '\0';
}

I18NString::I18NString(I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    if (isForceUnicodeString()) leaveAscii();
}

I18NString::I18NString(const I18NString& other, I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    m_flags.store(static_cast<unsigned char>(other.m_flags.load(std::memory_order_relaxed) &
                                             ~static_cast<unsigned>(kI18NStaticBuffer)),
                  std::memory_order_relaxed);
    if (other.m_pUnicodeString != nullptr || isForceUnicodeString()) {
        leaveAscii();
        put(0, 0, I18NTextView(other));
    } else if (other.m_asciiBufCapacity <= kInline) {
        std::memcpy(m_asciiInline, other.m_asciiInline, sizeof m_asciiInline);
        m_asciiBufLength = other.m_asciiBufLength;
    } else {
        reserveAscii(other.m_asciiBufLength);
        m_asciiBufLength = other.m_asciiBufLength;
        std::memcpy(m_pAsciiBuffer, other.ascii(), static_cast<std::size_t>(m_asciiBufLength) + 1);
    }
}

I18NString::I18NString(I18NString&& other) noexcept
    : I18NString(Bare(), other.m_allocator, other.m_allocatorContext) {
    take(other);
}

I18NString::I18NString(const void* utf16, int byteLength, I18NStringAllocator allocator,
                       void* context)
    : I18NString(Bare(), allocator, context) {
    // The memory need not be aligned like char16_t.
    const char* bytes = static_cast<const char*>(utf16);
    const auto unit = [bytes](int i) {
        char16_t value = 0;
        std::memcpy(&value, bytes + std::ptrdiff_t{i} * 2, sizeof value);
        return value;
    };
    const int most = byteLength < 0 ? INT_MAX / 2 - 1 : byteLength / 2;
    int length = 0;
    bool ascii = !isForceUnicodeString();
    for (; utf16 != nullptr && length < most && unit(length) != 0; ++length)
        ascii = ascii && unit(length) < 0x80;
    if (ascii) {
        reserveAscii(length);
        char* out = m_pAsciiBuffer;
        for (int i = 0; i < length; ++i) out[i] = static_cast<char>(unit(i));
        out[length] = '\0';
        m_asciiBufLength = length;
    } else {
        leaveAscii();
        reserveUnits(length);
        if (length != 0) std::memcpy(m_pCodeUnits, bytes, static_cast<std::size_t>(length) * 2);
        m_unitLength = length;
        alias();
        renormalize();
    }
    changed();
}

I18NString::I18NString(int count, wchar_t c, I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    if (isForceUnicodeString()) leaveAscii();
    const std::int64_t width = c > 0xFFFF && c <= 0x10FFFF ? 2 : 1;
    if (count > 0) resize(grown(0, count * width, kMostBytes / 2 - 1), c);
}

I18NString::I18NString(const wchar_t* text, I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    assign(I18NWideText(text).view());
}

I18NString::I18NString(const char* bytes, const char* encoding, int length,
                       I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    if (!setShort(bytes, encoding, length)) setBytes(bytes, encoding, length);
}

I18NString::I18NString(const char* bytes, const I18NConverter& converter, int length,
                       I18NStringAllocator allocator, void* context)
    : I18NString(Bare(), allocator, context) {
    const int size = converter.getEffectiveBufferSize(bytes, length);
    const auto counted = static_cast<std::size_t>(size);
    if (bytes != nullptr && i18nKeepsASCII(converter.getEncoding()) &&
        i18nIsPlainASCII(bytes, counted))
        setBytes(bytes, nullptr, size);
    else
        setConverted(bytes, converter, length);
}

// Releases memory in the order of the fields. Does not free a caller's buffer.
void I18NString::destroy() noexcept {
    if (m_pUnicodeString != nullptr) {
        if (!hasFlag(kI18NStaticBuffer)) release(m_pCodeUnits);
        m_pUnicodeString->~UnicodeString();
        release(m_pUnicodeString);
    }
    dropConversions(m_pConverted.load(std::memory_order_acquire));
    m_pConverted.store(nullptr, std::memory_order_relaxed);
    if (m_asciiBufCapacity > kInline) release(m_pAsciiBuffer);
}

// Takes over the contents of the other string and leaves that string empty. Requires: both strings
// have the same allocator, and no other thread uses them.
void I18NString::take(I18NString& other) noexcept {
    m_pCodeUnits = std::exchange(other.m_pCodeUnits, nullptr);
    m_pUnicodeString = std::exchange(other.m_pUnicodeString, nullptr);
    m_pContents = std::exchange(other.m_pContents, nullptr);
    constexpr auto kAlone = std::memory_order_relaxed;
    m_flags.store(other.m_flags.load(kAlone), kAlone);
    other.m_flags.store(static_cast<unsigned char>((m_flags.load(kAlone) & kI18NNoNormalization) |
                                                   kI18NNormalized | kI18NChanged),
                        kAlone);
    std::memcpy(m_asciiInline, other.m_asciiInline, sizeof m_asciiInline);
    m_asciiBufCapacity = std::exchange(other.m_asciiBufCapacity, kInline);
    m_pAsciiBuffer = m_asciiBufCapacity > kInline ? other.m_pAsciiBuffer : m_asciiInline;
    other.m_pAsciiBuffer = other.m_asciiInline;
    other.m_asciiInline[0] = '\0';
    m_asciiBufLength = std::exchange(other.m_asciiBufLength, 0);
    m_unitLength = std::exchange(other.m_unitLength, 0);
    m_unitCapacity = std::exchange(other.m_unitCapacity, 0);
    m_pConverted.store(other.m_pConverted.load(kAlone), kAlone);
    other.m_pConverted.store(nullptr, kAlone);
    m_convertedLength = std::exchange(other.m_convertedLength, 0);
    m_pConvertedEncoding = std::exchange(other.m_pConvertedEncoding, nullptr);
}

void I18NString::recreate(I18NString&& fresh) noexcept {
    destroy();
    m_allocator = fresh.m_allocator;
    m_allocatorContext = fresh.m_allocatorContext;
    take(fresh);
    setChangedFlag(true);
}

I18NString& I18NString::operator=(const I18NString& other) {
    if (this == &other) return *this;
    assign(I18NTextView(other));
    return *this;
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): see the declaration
I18NString& I18NString::operator=(I18NString&& other) {
    const bool movable = m_allocator == other.m_allocator &&
                         m_allocatorContext == other.m_allocatorContext &&
                         !hasFlag(kI18NStaticBuffer) && !other.hasFlag(kI18NStaticBuffer) &&
                         hasFlag(kI18NNoNormalization) == other.hasFlag(kI18NNoNormalization);
    if (!movable) return *this = static_cast<const I18NString&>(other);
    if (this == &other) return *this;
    recreate(std::move(other));
    return *this;
}

I18NString& I18NString::operator=(const char* utf8) {
    setBytes(utf8, nullptr, -1);
    return *this;
}

I18NString& I18NString::operator=(const wchar_t* text) {
    assign(I18NWideText(text).view());
    return *this;
}

I18NString& I18NString::operator=(wchar_t c) {
    assign(I18NWideText(c).view());
    return *this;
}

void I18NString::setForceUnicodeString(bool force) {
    g_bForceUnicodeString.store(force, std::memory_order_relaxed);
}

bool I18NString::isForceUnicodeString() {
    return g_bForceUnicodeString.load(std::memory_order_relaxed);
}

// Some programs copy strings byte by byte. In such a copy, m_pAsciiBuffer points into the original.
// This function corrects the pointer.
bool I18NString::isUsingAsciiBuffer() const {
    if (m_pUnicodeString != nullptr) return false;
    char* const inlined = const_cast<char*>(m_asciiInline);
    if (m_asciiBufCapacity <= kInline &&
        __atomic_load_n(&m_pAsciiBuffer, __ATOMIC_RELAXED) != inlined)
        __atomic_store_n(&m_pAsciiBuffer, inlined, __ATOMIC_RELAXED);
    return true;
}

// Requires: no other thread uses the string, or the calling thread holds the string's lock.
void I18NString::setFlag(Flags flag, bool on) {
    const unsigned char flags = m_flags.load(std::memory_order_relaxed);
    m_flags.store(static_cast<unsigned char>(on ? flags | flag : flags & ~flag),
                  std::memory_order_release);
}

char* I18NString::allocate(int size) const {
    char* block = nullptr;
    I18NBlock::resize(m_allocator, m_allocatorContext, block, size);
    return block;
}

void I18NString::release(void* block) const noexcept {
    I18NBlock::free(m_allocator, m_allocatorContext, block);
}

void I18NString::reserveAscii(int units) {
    if (m_asciiBufCapacity <= kInline) {
        m_pAsciiBuffer = m_asciiInline;
        if (units <= kInline) return;
    } else if (units < m_asciiBufCapacity) {
        return;
    }
    const bool inlined = m_asciiBufCapacity <= kInline;
    const int capacity =
        grown(inlined ? 0 : m_asciiBufCapacity, std::int64_t{units} + 1, kMostBytes);
    if (inlined) {
        char* const block = allocate(capacity);
        std::memcpy(block, m_asciiInline, static_cast<std::size_t>(m_asciiBufLength) + 1);
        m_pAsciiBuffer = block;
    } else {
        I18NBlock::resize(m_allocator, m_allocatorContext, m_pAsciiBuffer, capacity);
    }
    m_asciiBufCapacity = capacity;
}

void I18NString::reserveUnits(int units) {
    if (m_pCodeUnits != nullptr && units <= m_unitCapacity) return;
    if (hasFlag(kI18NStaticBuffer)) QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, kStatic));
    resizeUnits(grown(m_unitCapacity, units, kMostBytes / 2 - 1));
}

// The ICU string must never point to units that are freed, not even after a failure.
void I18NString::resizeUnits(int capacity) {
    char* block = reinterpret_cast<char*>(m_pCodeUnits);
    const auto show = [&] {
        if (block == reinterpret_cast<char*>(m_pCodeUnits)) return;
        m_pCodeUnits = reinterpret_cast<char16_t*>(block);
        if (block != nullptr) alias();
    };
    try {
        I18NBlock::resize(m_allocator, m_allocatorContext, block, capacity * 2 + 2);
    } catch (...) {
        m_unitCapacity = std::min(m_unitCapacity, capacity);  // may be smaller despite the error
        show();
        throw;
    }
    show();
    m_unitCapacity = capacity;
}

void I18NString::createUnicodeString() {
    void* const memory = allocate(static_cast<int>(sizeof(icu::UnicodeString)));
    m_pUnicodeString = new (memory) icu::UnicodeString;
}

void I18NString::leaveAscii(int units) {
    if (!isUsingAsciiBuffer()) return;
    const int length = m_asciiBufLength;
    const int capacity = std::max({15, length, units});
    auto* const block =
        reinterpret_cast<char16_t*>(allocate(grown(0, std::int64_t{capacity} * 2 + 2, kMostBytes)));
    try {
        createUnicodeString();
    } catch (...) {
        release(block);
        throw;
    }
    i18nWiden(ascii(), static_cast<std::size_t>(length), block);
    m_pCodeUnits = block;
    m_unitCapacity = capacity;
    m_unitLength = length;
    alias();
}

// The ICU string only reads the units. After each change of the units, this makes the ICU string
// refer to them again.
void I18NString::alias() {
    m_pCodeUnits[m_unitLength] = 0;
    m_pUnicodeString->setTo(m_pCodeUnits, m_unitLength, m_unitLength + 1);
    m_pContents = m_pCodeUnits;
}

// Conversions of the old contents are freed when the string is converted again, not before. So the
// pointer to the new conversion differs from the old pointer.
void I18NString::changed() {
    const unsigned known = m_flags.load(std::memory_order_relaxed) & ((1U << kExemptShift) - 1);
    m_flags.store(static_cast<unsigned char>(known | kI18NChanged), std::memory_order_release);
}

const icu::UnicodeString& I18NString::getUnicodeString() {
    leaveAscii();
    return *m_pUnicodeString;
}

void I18NString::assign(const I18NTextView& text) {
    const I18NString* const owner = text.owner();
    if (owner == this) return;
    const bool from943 = owner != nullptr && owner->hasFlag(kI18NFromCodePage943);
    if (isUsingAsciiBuffer() && !isForceUnicodeString() && text.isASCII()) {
        reserveAscii(text.length());
        text.copyTo(m_pAsciiBuffer);
        m_asciiBufLength = text.length();
        m_pAsciiBuffer[m_asciiBufLength] = '\0';
        setFlag(kI18NNormalized, true);
        changed();
    } else if (leaveAscii(); owner != nullptr && !owner->hasFlag(kI18NNoNormalization)) {
        // Keeps the owner's text in its form, whichever form that is.
        put(0, m_unitLength, text);
        setFlag(kI18NNormalized, owner->hasFlag(kI18NNormalized) || hasFlag(kI18NNoNormalization));
    } else {
        const bool before = hasFlag(kI18NFromCodePage943);
        setFlag(kI18NFromCodePage943, from943);
        try {
            spliceUnits(0, m_unitLength, text);
        } catch (...) {
            setFlag(kI18NFromCodePage943, before);
            throw;
        }
    }
    setFlag(kI18NFromCodePage943, from943);
}

// The fast path for a new string with a short ASCII text.
bool I18NString::setShort(const char* bytes, const char* encoding, int length) {
    if (bytes == nullptr || length < -1 || length > kInline || isForceUnicodeString()) return false;
    if (encoding != nullptr && !i18nKeepsASCII(encoding)) return false;
    const std::size_t counted =
        length < 0 ? std::strlen(bytes) : strnlen(bytes, static_cast<std::size_t>(length));
    if (counted > kInline || (length > 0 && counted != static_cast<std::size_t>(length)))
        return false;
    if (!copyShort(m_asciiInline, bytes, counted)) {
        m_asciiInline[0] = '\0';
        return false;
    }
    m_asciiInline[counted] = '\0';
    m_asciiBufLength = static_cast<int>(counted);
    return true;
}

void I18NString::setBytes(const char* bytes, const char* encoding, int length) {
    const int newSize = length == -1 ? 0 : length;
    QBL_ASSERT(newSize >= 0);
    if (bytes == nullptr) {
        bytes = "";
        length = 0;
    }
    if (i18nKeepsASCII(encoding)) {
        const std::size_t counted =
            length >= 0 ? static_cast<std::size_t>(length) : std::strlen(bytes);
        if (counted > static_cast<std::size_t>(kMostBytes / 2 - 1))
            qblThrowNoMemory(QBL_HERE, kMalloc);
        const bool mayBeASCII = !isForceUnicodeString() && isUsingAsciiBuffer();
        const bool plain = mayBeASCII && i18nIsPlainASCII(bytes, counted);
        const std::size_t all = plain || length < 0 ? counted : strnlen(bytes, counted);
        // The bytes after a NUL must be ASCII, too.
        if (plain || (mayBeASCII && all != counted && i18nIsASCII(bytes, counted))) {
            reserveAscii(static_cast<int>(all));
            if (all != 0) std::memmove(m_pAsciiBuffer, bytes, all);
            m_asciiBufLength = static_cast<int>(all);
            m_pAsciiBuffer[all] = '\0';
            setFlag(kI18NNormalized, true);
            changed();
            return;
        }
        if (i18nIsUTF8(encoding)) return decodeUTF8(bytes, static_cast<int>(all));
    }
    setConverted(bytes, encoding, length);
}

// Replaces the contents by the contents of a string with the same allocator.
void I18NString::replaceBy(I18NString& fresh) noexcept {
    destroy();
    take(fresh);
    setChangedFlag(true);
}

void I18NString::attach(void* buffer, int bytes) {
    const bool aligned = reinterpret_cast<std::uintptr_t>(buffer) % alignof(char16_t) == 0;
    if (buffer == nullptr || bytes < 2 || !aligned)
        QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    leaveAscii();
    if (!hasFlag(kI18NStaticBuffer)) {
        if (buffer == m_pCodeUnits) return;
        release(m_pCodeUnits);
    }
    setFlag(kI18NStaticBuffer, true);
    setFlag(kI18NNormalized, false);
    setFlag(kI18NFromCodePage943, false);
    m_pCodeUnits = static_cast<char16_t*>(buffer);
    m_unitCapacity = bytes / 2 - 1;
    const char16_t* const end = m_pCodeUnits + m_unitCapacity;
    m_unitLength =
        static_cast<int>(std::find(m_pCodeUnits, const_cast<char16_t*>(end), u'\0') - m_pCodeUnits);
    alias();
    changed();
}

int I18NString::copyToExternalBuffer(void* buffer, int bytes) const {
    if (buffer == nullptr || bytes < 2) return 0;
    const I18NTextView text(*this);
    const int units = std::min(bytes / 2 - 1, text.length());
    // The caller's memory need not be aligned like char16_t.
    char* out = static_cast<char*>(buffer);
    for (int i = 0; i <= units; ++i, out += 2) {
        const char16_t unit = i < units ? text[i] : u'\0';
        std::memcpy(out, &unit, sizeof unit);
    }
    return units * 2 + 2;
}

char16_t* I18NString::getExternalBuffer() {
    leaveAscii();
    return m_pCodeUnits;
}

void I18NString::resizeExternalBuffer() {
    leaveAscii();
    if (hasFlag(kI18NStaticBuffer)) {
        constexpr int kUnits = 15;
        auto* const block = reinterpret_cast<char16_t*>(allocate(kUnits * 2 + 2));
        setFlag(kI18NStaticBuffer, false);
        m_pCodeUnits = block;
        m_unitLength = 0;
        m_unitCapacity = kUnits;
        alias();
        changed();
        QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, kStatic));
    }
    resizeUnits(m_unitLength);
}

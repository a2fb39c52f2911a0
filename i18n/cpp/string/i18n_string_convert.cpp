// Conversions that a string keeps. Several threads may call c_str() of a constant string, and the
// result stays valid until the string changes or is destroyed. So a string has a chain of
// conversions, newest first. Each conversion holds the bytes in an encoding, and the key by which
// it is found. Text stored as ASCII needs no conversion if the encoding is compatible with ASCII.
//
// m_pConverted is the head of the chain. The flag kI18NChanged tells whether the text has changed
// since the last conversion. If so, the whole chain is stale. The chain has two states:
//   current   the flag is clear: each conversion in the chain is of the present text. The chain may
//             be empty.
//   stale     the flag is set: no thread may use a conversion in the chain. The next conversion or
//             the destructor frees the chain.
// Operations that change the text set kI18NChanged. No other thread uses the string during such an
// operation. The next conversion makes the chain current again. Threads that call constant
// operations at the same time only add conversions. So no published conversion is changed or freed
// while these operations run.
//
// conversion() searches and converts without a lock, because allocators and callbacks are foreign
// code that may use strings. It publishes the conversion under the string's lock. There are 64
// locks; the string's address selects one. Under the lock, conversion() searches again. If two
// threads have made the same conversion, the second thread discards its own conversion. Discarded
// and stale conversions are freed only after the thread has released the lock.
//
// Memory order: publishing first stores the head and then clears kI18NChanged, each with release. A
// reader first loads the flag and then the head, each with acquire. So a reader that sees a current
// chain does not see a stale head, and all conversions in the chain are complete. m_flags is
// changed by a separate load and store, not by one atomic operation. This is safe, because a thread
// that changes the flags holds the string's lock, or no other thread uses the string. The same
// holds for every use of m_convertedLength and m_pConvertedEncoding. In isUsingAsciiBuffer(),
// several threads may store m_pAsciiBuffer at the same time. They all store the same value, with
// relaxed order.
//
// The release of the flag alone is not enough. When a conversion is added to a current chain, the
// flag is already clear, so readers synchronise only with the store of the head.
//
// Tests: I18NStringTest.ConvertsOneConstantStringOnManyThreads (x64-tsan, x86-asan) detects wrong
// bytes. ConversionsCallAllocatorsWithoutALock deadlocks if a lock is held too long. A missing lock
// or a weaker order shows only if two threads are within a few instructions of each other. Almost
// no test run achieves that, so do not rely on tests when you change the locks or the orders.
#include <unicode/ucnv.h>

#include <cstdio>
#include <cstring>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/converter/i18n_icu_calls.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_bytes.hpp"
#include "i18n/cpp/string/i18n_inert.hpp"

char gI18NNullString[4] = {};

namespace {

/// A lock per string would cost more than it saves: few strings are converted at the same time.
struct StringLocks {
    QBLThreadCriticalSection locks[64];
};

/// Returns true for code page 943. The Japanese substitutions apply to text from this code page.
bool isCodePage943(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getAlias(encoding, 0, &status);
    return U_SUCCESS(status) && name != nullptr && std::strncmp(name, "ibm-943_P15A", 12) == 0;
}

void settle(int code) {
    if (code < 0) QBL_THROW(I18NRuntimeError(code, nullptr));
}

/// Returns one name for all spellings of an encoding. The number of spellings is unlimited, and
/// they may come from a program's clients.
/// @return the name; empty for an unknown encoding
std::string anyNameOf(const char* encoding) {
    if (encoding == nullptr || i18nIsUTF8(encoding)) return "UTF8";
    if (i18nIsUTF16(encoding)) return "UTF16";
    const char* const name =
        std::strchr(encoding, ',') == nullptr ? i18nCanonicalEncoding(encoding) : nullptr;
    return name != nullptr ? name : "";
}

}  // namespace

// If this string is empty, decodes in place. Otherwise decodes into a new string, because the bytes
// may be part of the present contents. If normalisation fails, the string is empty again.
void I18NString::decodeUTF8(const char* bytes, int length) {
    const unsigned char flags = m_flags.load(std::memory_order_relaxed);
    const bool noNormalization = hasFlag(kI18NNoNormalization);
    if (m_pUnicodeString != nullptr || m_asciiBufLength != 0 || m_asciiBufCapacity > kInline ||
        m_pConverted.load(std::memory_order_relaxed) != nullptr) {
        I18NString fresh(Bare(), m_allocator, m_allocatorContext);
        fresh.setFlag(kI18NNoNormalization, noNormalization);
        fresh.decodeUTF8(bytes, length);
        if (hasFlag(kI18NStaticBuffer)) return assign(I18NTextView(fresh));
        return replaceBy(fresh);
    }
    leaveAscii(length);
    const I18NDecoded decoded =
        i18nDecodeUTF8(bytes, static_cast<std::size_t>(length), m_pCodeUnits);
    m_unitLength = static_cast<int>(decoded.units);
    alias();
    m_flags.store(
        static_cast<unsigned char>((flags & kI18NNoNormalization) | kI18NNormalized | kI18NChanged),
        std::memory_order_release);
    const std::size_t doubtful = decoded.doubtTo - decoded.doubtFrom;
    if (noNormalization || i18nIsInert(m_pCodeUnits + decoded.doubtFrom, doubtful)) return;
    try {
        renormalize();
    } catch (...) {
        recreate(I18NString(Bare(), m_allocator, m_allocatorContext));
        m_flags.store(flags, std::memory_order_release);
        throw;
    }
}

// Decodes bytes that are not ASCII or UTF-8.
void I18NString::setConverted(const char* bytes, const char* encoding, int length) {
    if (i18nIsUTF16(encoding)) {
        leaveAscii();
        const I18NString fresh(static_cast<const void*>(bytes), length);
        return assign(I18NTextView(fresh));
    }
    if (!I18NConverter::isInitialized()) {
        remove();
        return;
    }
    const I18NConverter converter(encoding);
    // The bytes of a string end at the first NUL, in all encodings.
    const int whole = converter.getEffectiveBufferSize(bytes, length);
    int end = 0;
    while (end + converter.sizeofLegacyNull() <= whole &&
           !i18nIsNull(bytes + end, converter.sizeofLegacyNull()))
        end += converter.sizeofLegacyNull();
    if (end + converter.sizeofLegacyNull() > whole) end = whole;
    setConverted(bytes, converter, end);
}

// Takes over the block that the converter allocates. Releases a caller's buffer.
void I18NString::setConverted(const char* bytes, const I18NConverter& converter, int length) {
    void* converted = nullptr;
    int size = 0;
    if (bytes != nullptr)
        converter.toUnicode(&converted, &size, bytes, length, m_allocator, m_allocatorContext);
    I18NBlock units(m_allocator, m_allocatorContext, static_cast<char*>(converted));
    I18NString fresh(Bare(), m_allocator, m_allocatorContext);
    fresh.createUnicodeString();
    if (units.get() == nullptr) {
        fresh.reserveUnits(0);
    } else {
        fresh.m_pCodeUnits = reinterpret_cast<char16_t*>(units.release());
        fresh.m_unitLength = fresh.m_unitCapacity = size / 2 - 1;
        fresh.alias();
    }
    fresh.setFlag(kI18NNoNormalization, hasFlag(kI18NNoNormalization));
    // Text from other encodings deliberately counts as normalised, because their tables give form
    // C.
    if (isCodePage943(converter.getEncoding())) {
        fresh.setFlag(kI18NFromCodePage943, true);
        fresh.renormalize();
    }
    replaceBy(fresh);
}

/// A conversion of the contents. It stays valid until the contents change, so that two threads can
/// use two encodings of one constant string.
struct I18NString::Conversion {
    Conversion* next;
    I18NBytes bytes;
    std::string key;       // the encoding and everything else that affects the bytes
    std::string encoding;  // one name for all spellings; empty if only the key counts
};

int I18NString::getIndexFromPtr(const void* string) {
    return static_cast<int>((reinterpret_cast<std::uintptr_t>(string) >> 3) & 63);
}

QBLThreadCriticalSection& I18NString::getLockFromPtr(const void* string) {
    return qblImmortal<StringLocks>().locks[getIndexFromPtr(string)];
}

I18NByteWriter::~I18NByteWriter() = default;

const I18NString::Conversion* I18NString::findConversion(const char* key) const {
    if (hasFlag(kI18NChanged)) return nullptr;  // the chain is stale
    const Conversion* at = m_pConverted.load(std::memory_order_acquire);
    while (at != nullptr && at->key != key) at = at->next;
    return at;
}

const I18NString::Conversion* I18NString::findSameEncoding(const std::string& encoding) const {
    if (encoding.empty() || hasFlag(kI18NChanged)) return nullptr;
    const Conversion* at = m_pConverted.load(std::memory_order_acquire);
    while (at != nullptr && at->encoding != encoding) at = at->next;
    return at;
}

void I18NString::dropConversions(Conversion* chain) noexcept {
    while (chain != nullptr) delete std::exchange(chain, chain->next);
}

const char* I18NString::bytes(const char* encoding, int* length, I18NStringAllocator allocator,
                              void* context) const {
    if (isUsingAsciiBuffer() && i18nKeepsASCII(encoding)) {
        if (length != nullptr) *length = m_asciiBufLength + 1;
        return ascii();
    }
    const char* const key = encoding != nullptr ? encoding : "UTF8";
    const Conversion* const made = conversion(key, encoding, nullptr, allocator, context);
    if (length != nullptr) *length = made->bytes.length;
    return made->bytes.block.get();
}

// The key includes the policy, because the policy affects the bytes.
const char* I18NString::c_str(const I18NConverter& converter, int* length,
                              I18NStringAllocator allocator, void* context) const {
    if (isUsingAsciiBuffer() && i18nKeepsASCII(converter.getEncoding())) {
        if (length != nullptr) *length = m_asciiBufLength + 1;
        return ascii();
    }
    const I18NUserOutputCallback callback =
        converter.getUserDefinedUnconvertibleOutputSequenceCallback();
    // Published settings never change, so the address of the settings identifies the replacement
    // tables.
    const bool looksUp = converter.is(I18NConverter::kHasContext, I18NConverter::kOutput);
    char key[120];
    std::snprintf(key, sizeof key, "%.60s %d %p %lx", converter.getEncoding(),
                  converter.getBuiltInUnconvertibleOutputSequenceCallback(),
                  static_cast<const void*>(looksUp ? &I18NSettings::now() : nullptr),
                  static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(callback)));
    const Conversion* const made =
        conversion(key, converter.getEncoding(), &converter, allocator, context);
    if (length != nullptr) *length = made->bytes.length;
    return made->bytes.block.get();
}

const I18NString::Conversion* I18NString::conversion(const char* key, const char* encoding,
                                                     const I18NConverter* converter,
                                                     I18NStringAllocator allocator,
                                                     void* context) const {
    if (const Conversion* found = findConversion(key)) return found;
    if (allocator == nullptr) {
        allocator = m_allocator;
        context = m_allocatorContext;
    }
    QBL_ALLOC_TRY
    // Only conversions after the first need the name. The first conversion is stored without it, so
    // a look-up under another name of the same encoding does not find it and makes a second one.
    // Threads that make the first conversion at the same time under other names add one each.
    const bool isFirst =
        hasFlag(kI18NChanged) || m_pConverted.load(std::memory_order_acquire) == nullptr;
    const std::string anyName =
        converter == nullptr && !isFirst ? anyNameOf(encoding) : std::string();
    if (const Conversion* found = findSameEncoding(anyName)) return found;
    // Converts before taking the lock: allocators and callbacks of converters may use strings.
    const I18NTextView text(*this);
    std::unique_ptr<Conversion> made(new Conversion{
        nullptr,
        converter != nullptr ? i18nToBytes(text, *converter, I18NBlock(allocator, context))
                             : i18nToBytes(text, encoding, I18NBlock(allocator, context)),
        key, anyName});
    Conversion* stale = nullptr;
    const Conversion* published = nullptr;
    {
        QBLThreadGuard guard(getLockFromPtr(this));
        if (const Conversion* found = findConversion(key)) return found;
        if (const Conversion* found = findSameEncoding(anyName)) return found;
        Conversion* const chain = m_pConverted.load(std::memory_order_relaxed);
        (hasFlag(kI18NChanged) ? stale : made->next) = chain;
        m_convertedLength = made->bytes.length;
        m_pConvertedEncoding = made->key.c_str();
        published = made.get();
        m_pConverted.store(made.release(), std::memory_order_release);
        m_flags.store(static_cast<unsigned char>(m_flags.load(std::memory_order_relaxed) &
                                                 ~static_cast<unsigned>(kI18NChanged)),
                      std::memory_order_release);
    }
    dropConversions(stale);
    return published;
    I18N_ALLOC_CATCH
}

void I18NString::toBytes(char** out, const char* encoding, int* length,
                         I18NStringAllocator allocator, void* context) const {
    if (out == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    I18NBytes bytes = i18nToBytes(I18NTextView(*this), encoding, I18NBlock(allocator, context));
    *out = bytes.block.release();
    if (length != nullptr) *length = bytes.length;
}

void I18NString::toBytes(char** out, const I18NConverter& converter, int* length,
                         I18NStringAllocator allocator, void* context) const {
    if (out == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    I18NBytes bytes = i18nToBytes(I18NTextView(*this), converter, I18NBlock(allocator, context));
    *out = bytes.block.release();
    if (length != nullptr) *length = bytes.length;
}

void I18NString::toBytes(I18NByteWriter& writer, const char* encoding) const {
    const I18NTextView text(*this);
    if (text.ascii() != nullptr && i18nKeepsASCII(encoding))
        return settle(writer.write(text.ascii(), text.length()));
    const I18NBytes bytes = i18nToBytes(text, encoding, I18NBlock());
    settle(writer.write(bytes.block.get(), bytes.length - bytes.zero));
}

void I18NString::toBytes(I18NByteWriter& writer, const I18NConverter& converter) const {
    const I18NBytes bytes = i18nToBytes(I18NTextView(*this), converter, I18NBlock());
    settle(writer.write(bytes.block.get(), bytes.length - bytes.zero));
}

void I18NString::freeBuffer(char** block) {
    if (block == nullptr) return;
    int error = I18N_OK;
    if (*block != nullptr && *block != gI18NNullString)
        I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, *block, 0, &error);
    *block = nullptr;
    if (error != I18N_OK) qblThrowNoMemory(QBL_HERE);
}

void I18NFreeBuffer(char*& block) { I18NString::freeBuffer(&block); }

void I18NFreeBuffer(void*& block) {
    char* bytes = static_cast<char*>(block);
    I18NString::freeBuffer(&bytes);
    block = nullptr;
}

std::u16string I18NString::toUtf16() const {
    QBL_ALLOC_TRY
    const I18NTextView text(*this);
    std::u16string units(static_cast<std::size_t>(text.length()), u'\0');
    text.copyTo(&units[0]);
    return units;
    I18N_ALLOC_CATCH
}

std::string I18NString::toUtf8() const {
    QBL_ALLOC_TRY
    const I18NTextView text(*this);
    if (text.ascii() != nullptr)
        return std::string(text.ascii(), static_cast<std::size_t>(text.length()));
    const auto length = static_cast<std::size_t>(text.length());
    std::string bytes(i18nLengthUTF8(text.units(), length), '\0');
    i18nEncodeUTF8(text.units(), length, &bytes[0]);
    return bytes;
    I18N_ALLOC_CATCH
}

std::ostream& operator<<(std::ostream& out, const I18NString& text) {
    if (text.empty()) return out << "";
    int length = 0;
    const char* const bytes = text.c_str(nullptr, &length);
    return out << std::string_view(bytes, static_cast<std::size_t>(length) - 1);
}

std::istream& operator>>(std::istream& in, I18NString& text) {
    QBL_ALLOC_TRY
    std::string word;
    in >> word;
    if (!word.empty()) text = word.c_str();
    return in;
    I18N_ALLOC_CATCH
}

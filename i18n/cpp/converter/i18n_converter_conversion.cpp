// The conversions of I18NConverter: fixed, allocating and streaming, in both directions.

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/converter/i18n_icu_calls.hpp"
#include "i18n/cpp/converter/i18n_table_calls.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_block.hpp"

namespace {

constexpr int kUnicodeNull = 2;
constexpr int kUnit = 2;

void report(I18NErrorCodes code, I18NErrorCodes* error) {
    if (error != nullptr)
        *error = code;
    else if (code != I18N_OK)
        QBL_THROW(I18NRuntimeError(code, nullptr));
}

// Returns the function for a conversion.
// @param isPending  true if ICU holds output that did not fit; the tables are then not used
auto runner(bool isInput, bool isPending) {
    if (isPending) return isInput ? i18nToUnicode : i18nFromUnicode;
    return isInput ? i18nToUnicodeByTable : i18nFromUnicodeByTable;
}

// The part of a source to convert. nullSize is the size of the NUL after this part, which a stream
// counts as consumed; 0 if there is no NUL.
struct Source {
    const char* begin;
    const char* end;
    int nullSize;
};

Source nullTerminated(const void* units) {
    const auto* begin = static_cast<const char*>(units);
    return {begin, begin + i18nBytesBeforeNull(begin, kUnicodeNull), kUnicodeNull};
}

Source counted(const void* units, int size) {
    const auto* begin = static_cast<const char*>(units);
    const char* end = begin + (size - size % kUnit);
    if (end == begin || !i18nIsNull(end - kUnit, kUnicodeNull)) return {begin, end, 0};
    return {begin, end - kUnit, kUnicodeNull};
}

Source piece(const void* units, int size) {
    if (size >= 0) return counted(units, size);
    Source source = nullTerminated(units);
    // The number of bytes consumed must fit an int; the next call takes the rest.
    constexpr int kMost = INT_MAX - INT_MAX % kUnit - kUnicodeNull;
    if (source.end - source.begin > kMost) source = {source.begin, source.begin + kMost, 0};
    return source;
}

struct Counters {
    Counters(int* writtenOut, int* consumedOut)
        : written(writtenOut != nullptr ? *writtenOut : ignored),
          consumed(consumedOut != nullptr ? *consumedOut : ignored) {
        written = consumed = 0;
    }
    int ignored = 0;
    int& written;
    int& consumed;
};

void requireOutput(const void* destination, int* size) {
    if (destination == nullptr || size == nullptr)
        QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    *size = 0;
}

}  // namespace

void I18NConverter::reset() { reset(kInput); }

void I18NConverter::reset(Direction direction) const {
    set(kPending, direction, false);
    if (direction == kInput)
        ucnv_resetToUnicode(m_pConverter);
    else
        ucnv_resetFromUnicode(m_pConverter);
}

void I18NConverter::set(Flag flag, Direction direction, bool on) const {
    const int bit = flag << direction;
    m_cFlags = static_cast<unsigned char>(on ? m_cFlags | bit : m_cFlags & ~bit);
}

// Converts into the caller's buffer and terminates the output with a NUL. If only the NUL fits, no
// text is converted and the call succeeds, because callers rely on this. Only a smaller buffer is
// an error. A streaming call, however, reports I18N_STREAM_FULL if only the NUL fits, because the
// caller would otherwise repeat the call forever.
I18NErrorCodes I18NConverter::convert(Direction direction, char* destination, int size,
                                      const char*& source, const char* end, bool flush,
                                      int& written) const {
    size = std::max(size, 0);
    if (direction == kInput) size -= size % kUnit;
    const int nullSize = direction == kInput ? kUnicodeNull : m_iNullSize;
    const auto run = runner(direction == kInput, is(kPending, direction));
    const int room = size - nullSize;
    char* at = destination;
    UErrorCode status = U_ZERO_ERROR;
    // Uses only whole units of the encoding, so that the NUL is a whole unit, too. Only a stream
    // can continue half a unit.
    const int used = flush ? room - room % nullSize : room;
    if (room > 0) status = run(m_pConverter, at, destination + used, source, end, flush);
    const int text = static_cast<int>(at - destination);
    const int null = std::min(nullSize, size - text);
    std::memset(at, 0, static_cast<std::size_t>(null));
    written = text + null;

    const bool nothingTaken = !flush && room == 0 && (source != end || is(kPending, direction));
    if (room < 0 || nothingTaken) status = U_BUFFER_OVERFLOW_ERROR;
    const bool full = status == U_BUFFER_OVERFLOW_ERROR;
    if (full && !flush) {
        if (room > 0) set(kPending, direction, true);
        return I18N_STREAM_FULL;
    }
    if (U_FAILURE(status)) {
        reset(direction);
        return full ? I18N_TOO_SMALL : I18N_CONVERSION;
    }
    if (room > 0) set(kPending, direction, false);
    return I18N_OK;
}

// Converts into a block that is large enough for most texts. Collects the output that does not fit
// in a string, and then enlarges the block once, by whole steps. So a first size that is much too
// small does not cause many allocations of blocks.
char* I18NConverter::allocate(Direction direction, int* size, const char* source, const char* end,
                              bool flush, I18NStringAllocator allocator, void* context) const {
    const int nullSize = direction == kInput ? kUnicodeNull : m_iNullSize;
    const std::int64_t length = end - source;
    const std::int64_t step = direction == kInput ? m_iMaxBytes * kUnit : m_iMaxBytes;
    std::int64_t capacity = direction == kInput ? length * kUnit : (length / kUnit + 1) * step;
    I18NBlock block(allocator, context);
    block.resize(capacity + nullSize);
    try {
        char* at = block.get();
        UErrorCode status = runner(direction == kInput, is(kPending, direction))(
            m_pConverter, at, at + capacity, source, end, flush);
        std::int64_t used = at - block.get();
        std::string rest;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            alignas(UChar) char part[4096];
            at = part;
            status = runner(direction == kInput, true)(m_pConverter, at, part + sizeof part, source,
                                                       end, flush);
            rest.append(part, static_cast<std::size_t>(at - part));
        }
        if (U_FAILURE(status)) QBL_THROW(I18NRuntimeError(I18N_CONVERSION, nullptr));
        if (!rest.empty()) {
            const std::int64_t missing = used + static_cast<std::int64_t>(rest.size()) - capacity;
            capacity += (missing + step - 1) / step * step;
            block.resize(capacity + nullSize);
            std::memcpy(block.get() + used, rest.data(), rest.size());
            used += static_cast<std::int64_t>(rest.size());
        }
        std::memset(block.get() + used, 0, static_cast<std::size_t>(nullSize));
        *size = static_cast<int>(used) + nullSize;
    } catch (const std::length_error&) {
        reset(direction);
        qblThrowNoMemory(QBL_HERE);
    } catch (...) {
        reset(direction);
        qblRethrowTranslated(QBL_HERE);
    }
    set(kPending, direction, false);
    return block.release();
}

void I18NConverter::fromUnicode(char* destination, int size, const void* source,
                                I18NErrorCodes* error) const {
    if (destination == nullptr || size <= 0 || source == nullptr)
        return report(I18N_ARGUMENT, error);
    const Source text = nullTerminated(source);
    const char* at = text.begin;
    int written = 0;
    report(convert(kOutput, destination, size, at, text.end, true, written), error);
}

void I18NConverter::fromUnicode(char** destination, int* size, const void* source,
                                I18NStringAllocator allocator, void* context) const {
    requireOutput(destination, size);
    *destination = nullptr;
    if (source == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    const Source text = nullTerminated(source);
    *destination = allocate(kOutput, size, text.begin, text.end, true, allocator, context);
}

void I18NCountedText::fromUnicode(const I18NConverter& converter, char** destination, int* size,
                                  const char16_t* units, int length, I18NStringAllocator allocator,
                                  void* context) {
    const auto* begin = reinterpret_cast<const char*>(units);
    *destination =
        converter.allocate(I18NConverter::kOutput, size, begin,
                           begin + std::ptrdiff_t{length} * kUnit, true, allocator, context);
}

void I18NConverter::fromUnicodeStream(char* destination, int size, const void* source,
                                      int sourceSize, int* written, int* consumed,
                                      I18NErrorCodes* error) const {
    Counters counters(written, consumed);
    if (destination == nullptr || size <= 0 || (source == nullptr && sourceSize != 0))
        return report(I18N_ARGUMENT, error);
    if (sourceSize == 0 && !is(kPending, kOutput)) return report(I18N_OK, error);
    const Source text = piece(source, sourceSize);
    const char* at = text.begin;
    const I18NErrorCodes code =
        convert(kOutput, destination, size, at, text.end, false, counters.written);
    counters.consumed = static_cast<int>(at - text.begin);
    // Does not count the NUL after a failure: the caller passes the rest again, and the rest must
    // end with the NUL.
    if (code == I18N_OK && at == text.end) counters.consumed += text.nullSize;
    report(code, error);
}

void I18NConverter::fromUnicodeStream(char** destination, int* size, const void* source,
                                      int sourceSize, I18NStringAllocator allocator,
                                      void* context) const {
    requireOutput(destination, size);
    *destination = nullptr;
    if (source == nullptr && sourceSize != 0) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    if (sourceSize == 0 && !is(kPending, kOutput)) return;
    const Source text = sourceSize < 0 ? nullTerminated(source) : counted(source, sourceSize);
    *destination = allocate(kOutput, size, text.begin, text.end, false, allocator, context);
}

void I18NConverter::toUnicode(void* destination, int size, const char* source, int length,
                              I18NErrorCodes* error) const {
    if (destination == nullptr || source == nullptr) return report(I18N_ARGUMENT, error);
    if (length < 0) length = getEffectiveBufferSize(source, length);
    const char* at = source;
    int written = 0;
    report(
        convert(kInput, static_cast<char*>(destination), size, at, source + length, true, written),
        error);
}

void I18NConverter::toUnicode(void** destination, int* size, const char* source, int length,
                              I18NStringAllocator allocator, void* context) const {
    requireOutput(destination, size);
    *destination = nullptr;
    if (source == nullptr && length > 0) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    if (source == nullptr) return;
    if (length < 0) length = getEffectiveBufferSize(source, length);
    *destination = allocate(kInput, size, source, source + length, true, allocator, context);
}

void I18NConverter::toUnicodeStream(void* destination, int size, const char* source, int length,
                                    int* written, int* consumed, I18NErrorCodes* error) const {
    Counters counters(written, consumed);
    if (destination == nullptr || (source == nullptr && length != 0))
        return report(I18N_ARGUMENT, error);
    if (length < 0) length = getEffectiveBufferSize(source, length);
    if (length == 0 && !is(kPending, kInput)) return report(I18N_OK, error);
    const char* at = source;
    const I18NErrorCodes code = convert(kInput, static_cast<char*>(destination), size, at,
                                        source + length, false, counters.written);
    counters.consumed = static_cast<int>(at - source);
    report(code, error);
}

void I18NConverter::toUnicodeStream(void** destination, int* size, const char* source, int length,
                                    I18NStringAllocator allocator, void* context) const {
    requireOutput(destination, size);
    *destination = nullptr;
    if (source == nullptr && length != 0) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    if (length < 0) length = getEffectiveBufferSize(source, length);
    if (length == 0 && !is(kPending, kInput)) return;
    *destination = allocate(kInput, size, source, source + length, false, allocator, context);
}

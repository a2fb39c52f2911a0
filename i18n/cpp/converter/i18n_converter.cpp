#include "i18n/cpp/i18n_converter.hpp"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/converter/i18n_holders.hpp"
#include "i18n/cpp/converter/i18n_icu_calls.hpp"
#include "i18n/cpp/i18n_converter_callbacks.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/locale/i18n_icu.hpp"

namespace {

// The message shows at most 60 characters of the name.
const char kBadEncoding[] = "The specified encoding is not valid: \"%.60s\".";

// Indexed by policy.
const UConverterToUCallback kInputCallbacks[] = {
    ESCAPE_UNCONVERTIBLE_INPUT_CALLBACK, LOOKUP_UNCONVERTIBLE_INPUT_CALLBACK,
    SUBSTITUTE_UNCONVERTIBLE_INPUT_CALLBACK, USER_DEFINED_UNCONVERTIBLE_INPUT_CALLBACK,
    STOP_UNCONVERTIBLE_INPUT_CALLBACK};
const UConverterFromUCallback kOutputCallbacks[] = {
    ESCAPE_UNCONVERTIBLE_OUTPUT_CALLBACK, LOOKUP_UNCONVERTIBLE_OUTPUT_CALLBACK,
    SUBSTITUTE_UNCONVERTIBLE_OUTPUT_CALLBACK, USER_DEFINED_UNCONVERTIBLE_OUTPUT_CALLBACK,
    STOP_UNCONVERTIBLE_OUTPUT_CALLBACK};
constexpr int kLastPolicy = I18N_STOP;
static_assert(std::size(kInputCallbacks) == kLastPolicy + 1 &&
                  std::size(kOutputCallbacks) == kLastPolicy + 1,
              "each policy has its callbacks");

bool isPolicy(int policy) { return policy >= I18N_ESCAPE && policy <= kLastPolicy; }

bool needsContext(int policy) { return policy == I18N_LOOKUP || policy == I18N_USER_DEFINED; }

void settle(UErrorCode status) {
    if (U_SUCCESS(status)) return;
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, nullptr));
}

using Block = std::unique_ptr<char[]>;

Block allocated(std::size_t size) {
    QBL_ALLOC_TRY
    return Block(new char[size]);
    QBL_ALLOC_CATCH
}

void freeUnless(const char* room, const char* block) {
    if (block != room) delete[] block;
}

// The number of bytes that a name and its NUL take in a block. It is rounded up, so that the memory
// after the name is aligned for all types.
std::size_t nameSize(std::size_t length) {
    constexpr std::size_t kAlign = alignof(std::max_align_t);
    return (length + kAlign) / kAlign * kAlign;
}

// The names of encodings are too short for a call of strlen() to pay off.
std::size_t lengthOf(const char* name) {
    std::size_t length = 0;
    while (name[length] != '\0') ++length;
    return length;
}

// ICU's UTF-16 and UTF-32 write a byte-order mark. Their variants in the machine's byte order do
// not.
const char* withoutMark(const char* name) {
    const char* canonical = i18nCanonicalEncoding(name);
    if (canonical == nullptr) return name;
    if (std::strcmp(canonical, "UTF-16") == 0) return "UTF16_PlatformEndian";
    if (std::strcmp(canonical, "UTF-32") == 0) return "UTF32_PlatformEndian";
    return name;
}

// ICU has no newer function that tells the size of a clone or puts a clone into the caller's
// memory.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
UConverter* cloneInto(void* room, int32_t* size, const UConverter* converter) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* clone = ucnv_safeClone(converter, room, size, &status);
    if (U_FAILURE(status)) settle(status);
    return clone;
}
#pragma GCC diagnostic pop

int saturated(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}

// Returns another converter of the same encoding, in its initial state.
UConverter* reopened(const UConverter* converter) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* other = ucnv_open(ucnv_getName(converter, &status), &status);
    settle(status);
    UConverterToUCallback toCallback = nullptr;
    UConverterFromUCallback fromCallback = nullptr;
    const void *toContext = nullptr, *fromContext = nullptr;
    ucnv_getToUCallBack(converter, &toCallback, &toContext);
    ucnv_getFromUCallBack(converter, &fromCallback, &fromContext);
    ucnv_setToUCallBack(other, toCallback, toContext, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(other, fromCallback, fromContext, nullptr, nullptr, &status);
    ucnv_setFallback(other, ucnv_usesFallback(converter));
    return other;
}

const I18NConverter* preparedFor(const char* name) {
    if (!I18NConverter::isInitialized()) return nullptr;
    if (i18nIsUTF8(name)) return &i18nHolders().utf8->getConverter();
    if (i18nIsUTF16(name)) return &i18nHolders().utf16->getConverter();
    if (I18NConverter::isPlatformDefault(name))
        return &i18nHolders().platformDefault->getConverter();
    return nullptr;
}

}  // namespace

I18NConverter::I18NConverter()
    : m_iInputPolicy(I18N_LOOKUP),
      m_iOutputPolicy(I18N_LOOKUP),
      m_inputCallback(nullptr),
      m_outputCallback(nullptr),
      m_cFlags(0),
      m_outputContext(),
      m_iMaxBytes(0),
      m_iNullSize(0),
      m_pConverter(nullptr),
      m_iCloneSize(0),
      m_inputContext() {}

I18NConverter::I18NConverter(const char* encoding) : I18NConverter() {
    if (encoding == nullptr || *encoding == '\0') encoding = I18NGetToolkitDefaultEncoding();
    if (const I18NConverter* prepared = preparedFor(encoding)) {
        adopt(*prepared, encoding);
    } else {
        i18nPrepareICU();
        create(encoding);
    }
}

I18NConverter::I18NConverter(const I18NConverter& other) : I18NConverter() {
    adopt(other, other.getEncoding());
}

I18NConverter& I18NConverter::operator=(const I18NConverter& other) {
    if (this != &other) adopt(other, other.getEncoding());
    return *this;
}

I18NConverter::~I18NConverter() {
    ucnv_close(m_pConverter);
    freeUnless(m_room, m_outputContext.encoding);
}

void I18NConverter::create(const I18NConverter& other) { *this = other; }

void I18NConverter::create(const char* name) {
    const std::size_t size = std::strlen(name) + 1;
    m_outputContext.encoding = m_inputContext.encoding =
        static_cast<char*>(std::memcpy(allocated(size).release(), name, size));
    // ICU takes a name with a "/" for the path of a file, and trusts the contents of that file.
    UErrorCode status = std::strchr(name, '/') == nullptr ? U_ZERO_ERROR : U_FILE_ACCESS_ERROR;
    m_pConverter = ucnv_open(withoutMark(name), &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) settle(status);
    if (U_FAILURE(status)) {
        char text[sizeof kBadEncoding + 60];
        std::snprintf(text, sizeof text, kBadEncoding, name);
        QBL_THROW(I18NRuntimeError(I18N_ENCODING, text));
    }
    // A clone of ICU's compound-text converter would share memory with it. Closing the first of the
    // two would free that memory.
    if (ucnv_getType(m_pConverter) != UCNV_COMPOUND_TEXT)
        cloneInto(nullptr, &m_iCloneSize, m_pConverter);  // only tells the size
    ucnv_setFallback(m_pConverter, true);
    m_iMaxBytes = ucnv_getMaxCharSize(m_pConverter);
    m_iNullSize = ucnv_getMinCharSize(m_pConverter);
}

// Makes this converter a copy of the other one, under the given name. After a failure, this
// converter is unchanged. The name and the ICU converter share m_room. They share a block instead
// if they are too large for m_room, or if m_room is in use. Separate allocations would cost more
// than everything else here.
void I18NConverter::adopt(const I18NConverter& other, const char* encoding) {
    const std::size_t length = lengthOf(encoding);
    const std::size_t before = nameSize(length);
    const std::size_t needed = before + static_cast<std::size_t>(other.m_iCloneSize);
    Block block;
    char* name = m_room;
    if (m_pConverter != nullptr || needed > kRoom) {
        block = allocated(needed);
        name = block.get();
    }
    std::memcpy(name, encoding, length + 1);
    int32_t size = other.m_iCloneSize;
    UConverter* clone = size != 0 ? cloneInto(name + before, &size, other.m_pConverter)
                                  : reopened(other.m_pConverter);

    if (m_pConverter != nullptr) {
        ucnv_close(m_pConverter);
        freeUnless(m_room, m_outputContext.encoding);
    }
    m_iInputPolicy = other.m_iInputPolicy;
    m_iOutputPolicy = other.m_iOutputPolicy;
    m_inputCallback = other.m_inputCallback;
    m_outputCallback = other.m_outputCallback;
    m_cFlags = other.m_cFlags;
    m_outputContext = other.m_outputContext;
    m_iMaxBytes = other.m_iMaxBytes;
    m_iNullSize = other.m_iNullSize;
    m_pConverter = clone;
    m_iCloneSize = other.m_iCloneSize;
    m_inputContext = other.m_inputContext;
    m_outputContext.encoding = m_inputContext.encoding = name;
    block.release();  // NOLINT(bugprone-unused-return-value): the contexts own the block

    // The clone still refers to the contexts of the other converter.
    UErrorCode status = U_ZERO_ERROR;
    if (is(kHasContext, kInput))
        ucnv_setToUCallBack(clone, kInputCallbacks[m_iInputPolicy], &m_inputContext, nullptr,
                            nullptr, &status);
    if (is(kHasContext, kOutput))
        ucnv_setFromUCallBack(clone, kOutputCallbacks[m_iOutputPolicy], &m_outputContext, nullptr,
                              nullptr, &status);
}

void I18NConverter::setBuiltInUnconvertibleInputSequenceCallback(int policy) {
    if (isPolicy(policy)) installInput(policy, nullptr);
}

void I18NConverter::setBuiltInUnconvertibleOutputSequenceCallback(int policy) {
    if (isPolicy(policy)) installOutput(policy, nullptr);
}

void I18NConverter::setUserDefinedUnconvertibleInputSequenceCallback(
    I18NUserInputCallback callback) {
    if (callback != nullptr) installInput(I18N_USER_DEFINED, callback);
}

void I18NConverter::setUserDefinedUnconvertibleOutputSequenceCallback(
    I18NUserOutputCallback callback) {
    if (callback != nullptr) installOutput(I18N_USER_DEFINED, callback);
}

void I18NConverter::installInput(int policy, I18NUserInputCallback callback) {
    const char* const canonical =
        policy == I18N_LOOKUP ? i18nCanonicalEncoding(m_inputContext.encoding) : nullptr;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(m_pConverter, kInputCallbacks[policy],
                        needsContext(policy) ? &m_inputContext : nullptr, nullptr, nullptr,
                        &status);
    settle(status);
    set(kHasContext, kInput, needsContext(policy));
    m_iInputPolicy = policy;
    m_inputCallback = m_inputContext.callback = callback;
    if (policy == I18N_LOOKUP) m_inputContext.canonicalName = canonical;
}

void I18NConverter::installOutput(int policy, I18NUserOutputCallback callback) {
    const char* const canonical =
        policy == I18N_LOOKUP ? i18nCanonicalEncoding(m_outputContext.encoding) : nullptr;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(m_pConverter, kOutputCallbacks[policy],
                          needsContext(policy) ? &m_outputContext : nullptr, nullptr, nullptr,
                          &status);
    settle(status);
    set(kHasContext, kOutput, needsContext(policy));
    m_iOutputPolicy = policy;
    m_outputCallback = m_outputContext.callback = callback;
    if (policy == I18N_LOOKUP) m_outputContext.canonicalName = canonical;
}

void I18NConverter::useFallback(bool on) { ucnv_setFallback(m_pConverter, on); }
bool I18NConverter::usesFallback() const { return ucnv_usesFallback(m_pConverter) != 0; }

int I18NConverter::numLegacyBytes(int codeUnits) const {
    return saturated(std::int64_t{m_iMaxBytes} * codeUnits + m_iNullSize);
}

int I18NConverter::numLegacyCodePoints(int bytes) const {
    return saturated((std::int64_t{bytes} - m_iNullSize) / m_iMaxBytes);
}

int I18NConverter::numUnicodeBytes(int codeUnits) const {
    return saturated(std::int64_t{codeUnits} * 2 + sizeofUnicodeNull());
}

int I18NConverter::numUnicodeCodePoints(int bytes) const {
    return static_cast<int>((std::int64_t{bytes} - sizeofUnicodeNull()) / 2);
}

int I18NConverter::getEffectiveBufferSize(const char* text, int length) const {
    if (text == nullptr) return 0;
    if (length < 0)
        return saturated(static_cast<std::int64_t>(i18nBytesBeforeNull(text, m_iNullSize)));
    if (length < m_iNullSize) return length;
    const int lastUnit = (length / m_iNullSize - 1) * m_iNullSize;
    return i18nIsNull(text + lastUnit, m_iNullSize) ? length - m_iNullSize : length;
}

bool I18NConverter::isUTF8(const char* encoding) { return i18nIsUTF8(encoding); }
bool I18NConverter::isISO8859(const char* encoding) { return i18nIsISO8859(encoding); }
bool I18NConverter::isWindows1252(const char* encoding) { return i18nIsWindows1252(encoding); }
bool I18NConverter::isUTF16(const char* encoding) { return i18nIsUTF16(encoding); }
bool I18NConverter::isUTF32(const char* encoding) { return i18nIsUTF32(encoding); }

bool I18NConverter::isPlatformDefault(const char* encoding) {
    return encoding != nullptr && std::strcmp(encoding, I18NGetPlatformDefaultEncoding()) == 0;
}

bool I18NConverter::shouldUseBOM(const char* encoding) {
    if (encoding == nullptr) return false;
    i18nPrepareICU();
    const char* canonical = i18nCanonicalEncoding(encoding);
    return canonical != nullptr &&
           (std::strncmp(canonical, "UTF-1", 5) == 0 || std::strncmp(canonical, "UTF-3", 5) == 0);
}

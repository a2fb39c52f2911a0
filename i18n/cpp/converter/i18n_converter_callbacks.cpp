#include "i18n/cpp/i18n_converter_callbacks.hpp"

#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"

namespace {

// If the target is full, ICU can store this many bytes or code units of a callback's output. ICU
// does not check whether the callback writes more.
constexpr int kRoomInICU = 32;
static_assert(I18N_USER_REPLACEMENT_LIMIT <= kRoomInICU);

// Larger than the limit, for functions that write too much.
constexpr int kUserArray = 256;

constexpr char32_t kNoCharacter = 0xFFFF;

// ICU also calls the callbacks for reset, close and clone. These calls pass no text.
bool isAboutText(UConverterCallbackReason reason) { return reason <= UCNV_IRREGULAR; }

int limited(int count) { return std::clamp<int>(count, 0, I18N_USER_REPLACEMENT_LIMIT); }

std::string_view canonicalName(const char* cached, const char* encoding) {
    if (cached == nullptr && encoding != nullptr)
        tavContain([&] { cached = i18nCanonicalEncoding(encoding); });
    return cached != nullptr ? cached : "";
}

// UTF-16 with at most as many code units as ICU stores; never splits a surrogate pair.
class Replacement {
public:
    void append(char32_t codePoint) {
        if (codePoint > 0x10FFFF || U_IS_SURROGATE(codePoint)) return;
        m_bFull = m_bFull || m_iLength + U16_LENGTH(codePoint) > kRoomInICU;
        if (!m_bFull) U16_APPEND_UNSAFE(m_units, m_iLength, codePoint);
    }
    bool isCut() const { return m_bFull; }
    void write(UConverterToUnicodeArgs* args, UErrorCode* status) const {
        *status = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(args, m_units, m_iLength, 0, status);
    }

private:
    UChar m_units[kRoomInICU];
    int m_iLength = 0;
    bool m_bFull = false;  // something was cut off; nothing may follow it
};

void writeBytes(UConverterFromUnicodeArgs* args, const char* bytes, int length,
                UErrorCode* status) {
    *status = U_ZERO_ERROR;
    if (length > 0) ucnv_cbFromUWriteBytes(args, bytes, length, 0, status);
}

}  // namespace

void ESCAPE_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                         const char* bytes, int32_t length,
                                         UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_TO_U_CALLBACK_ESCAPE(context, args, bytes, length, reason, status);
}

void LOOKUP_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                         const char* bytes, int32_t length,
                                         UConverterCallbackReason reason, UErrorCode* status) {
    const auto* with = static_cast<const I18NInputCallbackContext*>(context);
    if (!isAboutText(reason) || with == nullptr) return;
    const char32_t* entry = I18NSettings::now().replacements.findInput(
        canonicalName(with->canonicalName, with->encoding),
        std::string_view(bytes, static_cast<std::size_t>(length)));
    Replacement replacement;
    replacement.append(entry != nullptr ? *entry : kNoCharacter);
    replacement.write(args, status);
}

void SUBSTITUTE_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                             const char* bytes, int32_t length,
                                             UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_TO_U_CALLBACK_SUBSTITUTE(context, args, bytes, length, reason, status);
}

void USER_DEFINED_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                               const char* bytes, int32_t length,
                                               UConverterCallbackReason reason,
                                               UErrorCode* status) {
    const auto* with = static_cast<const I18NInputCallbackContext*>(context);
    if (!isAboutText(reason) || with == nullptr || with->callback == nullptr) return;
    wchar_t codePoints[kUserArray] = {};
    int count = 0;
    I18NErrorCodes error = I18N_OK;
    // An exception must not cross ICU's frames; it counts as an error.
    const bool returned = tavContain(
        [&] { with->callback(with->encoding, bytes, length, codePoints, &count, &error); });
    if (!returned || error != I18N_OK) return;
    Replacement replacement;
    for (int i = 0; i < limited(count); ++i)
        replacement.append(static_cast<char32_t>(codePoints[i]));
    if (!replacement.isCut()) replacement.write(args, status);
}

void STOP_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                       const char* bytes, int32_t length,
                                       UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_TO_U_CALLBACK_STOP(context, args, bytes, length, reason, status);
}

void ESCAPE_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context, UConverterFromUnicodeArgs* args,
                                          const UChar* units, int32_t length, UChar32 codePoint,
                                          UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_FROM_U_CALLBACK_ESCAPE(context, args, units, length, codePoint, reason, status);
}

void LOOKUP_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context, UConverterFromUnicodeArgs* args,
                                          const UChar* units, int32_t length, UChar32 codePoint,
                                          UConverterCallbackReason reason, UErrorCode* status) {
    const auto* with = static_cast<const I18NOutputCallbackContext*>(context);
    if (!isAboutText(reason) || with == nullptr) return;
    const std::string* entry = I18NSettings::now().replacements.findOutput(
        canonicalName(with->canonicalName, with->encoding), static_cast<char32_t>(codePoint));
    if (entry == nullptr)
        UCNV_FROM_U_CALLBACK_SUBSTITUTE(nullptr, args, units, length, codePoint, reason, status);
    else if (entry->size() <= kRoomInICU)
        writeBytes(args, entry->data(), static_cast<int>(entry->size()), status);
}

void SUBSTITUTE_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context, UConverterFromUnicodeArgs* args,
                                              const UChar* units, int32_t length, UChar32 codePoint,
                                              UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_FROM_U_CALLBACK_SUBSTITUTE(context, args, units, length, codePoint, reason, status);
}

void USER_DEFINED_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context,
                                                UConverterFromUnicodeArgs* args, const UChar*,
                                                int32_t, UChar32 codePoint,
                                                UConverterCallbackReason reason,
                                                UErrorCode* status) {
    const auto* with = static_cast<const I18NOutputCallbackContext*>(context);
    if (!isAboutText(reason) || with == nullptr || with->callback == nullptr) return;
    char bytes[kUserArray] = {};
    int count = 0;
    I18NErrorCodes error = I18N_OK;
    const bool returned = tavContain([&] {
        with->callback(static_cast<wchar_t>(codePoint), with->encoding, bytes, &count, &error);
    });
    if (returned && error == I18N_OK) writeBytes(args, bytes, limited(count), status);
}

void STOP_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context, UConverterFromUnicodeArgs* args,
                                        const UChar* units, int32_t length, UChar32 codePoint,
                                        UConverterCallbackReason reason, UErrorCode* status) {
    UCNV_FROM_U_CALLBACK_STOP(context, args, units, length, codePoint, reason, status);
}

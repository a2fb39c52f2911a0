#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"

namespace {

constexpr wchar_t kNoCharacter = 0xFFFF;

/// @return the canonical name of an encoding if the arguments are valid, else null
const char* check(const char* encoding, bool given, I18NErrorCodes* error) {
    I18NErrorCodes ignored = I18N_OK;
    I18NErrorCodes& result = error != nullptr ? *error : ignored;
    result = I18N_ARGUMENT;
    if (encoding == nullptr || !given) return nullptr;
    const char* canonical = i18nCanonicalEncoding(encoding);
    result = canonical != nullptr ? I18N_OK : I18N_ENCODING;
    return canonical;
}

}  // namespace

bool I18NInternalResources::getReplacementSequence(const char* encoding, wchar_t character,
                                                   unsigned char** bytes, int* length,
                                                   I18NErrorCodes* error) const {
    if (bytes != nullptr) *bytes = nullptr;
    if (length != nullptr) *length = 0;
    const char* canonical = check(encoding, bytes != nullptr && length != nullptr, error);
    if (canonical == nullptr) return false;
    const std::string* found =
        I18NSettings::now().replacements.findOutput(canonical, static_cast<char32_t>(character));
    if (found == nullptr) return false;
    // The interface has a pointer to bytes that are not const, but callers do not write to them.
    *bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(found->data()));
    *length = static_cast<int>(found->size());
    return true;
}

bool I18NInternalResources::getReplacementSequence(const char* encoding, unsigned char* bytes,
                                                   int length, wchar_t* character,
                                                   I18NErrorCodes* error) const {
    if (character != nullptr) *character = kNoCharacter;
    const bool given = bytes != nullptr && length >= 0 && character != nullptr;
    const char* canonical = check(encoding, given, error);
    if (canonical == nullptr) return false;
    const char32_t* found = I18NSettings::now().replacements.findInput(
        canonical,
        std::string_view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)));
    if (found == nullptr) return false;
    *character = static_cast<wchar_t>(*found);
    return true;
}

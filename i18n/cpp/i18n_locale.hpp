#ifndef I18N_CPP_I18N_LOCALE_HPP
#define I18N_CPP_I18N_LOCALE_HPP

#include <unicode/uversion.h>

#include <string>

#include "QBLCore/Frame/QBLExport.h"

U_NAMESPACE_BEGIN
class Locale;
U_NAMESPACE_END

class I18NString;

/// A language with, as far as they are given, a country and a variant.
///
/// Threads: any thread may read one; changing one is not synchronised.
class QBL_API I18NLocale {
public:
    /// The process's default locale.
    I18NLocale();
    /// @param id  like "en_US", "en-US" or "en_US.UTF-8", of which the encoding is dropped; null or
    ///     empty means the default locale. One with a "/" in front of its keywords is not valid.
    /// @throws QBLOutOfMemoryError
    explicit I18NLocale(const char* id);
    explicit I18NLocale(const I18NString& id);
    /// @param country, variant  null or empty for none
    I18NLocale(const char* language, const char* country, const char* variant = nullptr);
    I18NLocale(const I18NLocale& other);
    I18NLocale& operator=(const I18NLocale& other);
    ~I18NLocale();

    bool operator==(const I18NLocale& other) const;
    bool operator!=(const I18NLocale& other) const { return !(*this == other); }

    /// In lower case, of two or three letters as a rule.
    const char* getLanguage() const;
    /// In upper case; empty if there is none.
    const char* getCountry() const;
    /// In upper case; empty if there is none.
    const char* getVariant() const;
    /// All of them, as in "fr_FR_EURO", with the script and the keywords if there are any.
    const char* getName() const;
    /// Whether there is a language that consists of letters.
    bool isValid() const;
    /// The same for ICU, owned by this object.
    const icu::Locale* getICULocale() const { return static_cast<const icu::Locale*>(m_pLocale); }

    static I18NLocale getDefault() { return I18NLocale(); }

private:
    void* m_pLocale;  // an icu::Locale
};

/// The name of the process's default locale.
QBL_API std::string xI18NGetDefaultLocaleName();

#endif

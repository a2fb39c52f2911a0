#ifndef I18N_CPP_I18N_LOCALE_HPP
#define I18N_CPP_I18N_LOCALE_HPP

#include <unicode/uversion.h>

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

U_NAMESPACE_BEGIN
class Locale;
U_NAMESPACE_END

class I18NString;

/// A language with an optional country and an optional variant.
///
/// Threads: any thread may read a locale; changes are not synchronised.
class QBL_API I18NLocale {
public:
    /// The process's default locale.
    I18NLocale();
    /// @param id  like "en_US", "en-US" or "en_US.UTF-8"; the encoding is dropped. Null or empty
    ///     means the default locale. A name with a "/" before its keywords gives an invalid locale
    /// @throws QBLOutOfMemoryError
    explicit I18NLocale(const char* id);
    explicit I18NLocale(const I18NString& id);
    /// @param country, variant  null or empty to leave it out
    I18NLocale(const char* language, const char* country, const char* variant = nullptr);
    I18NLocale(const I18NLocale& other);
    I18NLocale& operator=(const I18NLocale& other);
    ~I18NLocale();

    bool operator==(const I18NLocale& other) const;
    bool operator!=(const I18NLocale& other) const { return !(*this == other); }

    /// In lower case, usually two or three letters.
    const char* getLanguage() const;
    /// In upper case; empty if the locale has none.
    const char* getCountry() const;
    /// In upper case; empty if the locale has none.
    const char* getVariant() const;
    /// The whole name, such as "fr_FR_EURO", including the script and the keywords if there are
    /// any.
    const char* getName() const;
    /// Returns true if the locale has a language that consists of letters.
    bool isValid() const;
    /// The locale as an ICU object, which this object owns.
    const icu::Locale* getICULocale() const { return static_cast<const icu::Locale*>(m_pLocale); }

    static I18NLocale getDefault() { return I18NLocale(); }

private:
    void* m_pLocale;  // an icu::Locale
};

/// The name of the process's default locale.
QBL_API std::string xI18NGetDefaultLocaleName();

#endif

#include "tools/common/Reason.hpp"

#include <langinfo.h>
#include <unicode/locid.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "QBLCore/Resources/QBLResource.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"
#include "QBLCore/Utility/QBLUtStrTok.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_locale.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace tools {

namespace {

const char kEnglish[] = "en";

struct Release {
    void operator()(QBLResource* resource) const { QBLResourceFactory::release(resource); }
};

/// The language of the catalogue that supplies the messages; English if there is no catalogue.
std::string languageOf(const std::string& catalogue, const std::string& locales) {
    const std::unique_ptr<QBLResource, Release> found(
        QBLResourceFactory::findAndGet(catalogue, locales.c_str(), 0));
    if (found == nullptr) return kEnglish;
    const std::string& path = found->getResourceFileName();
    const std::string file = path.substr(path.rfind('/') + 1);
    const std::size_t begin = catalogue.size() - (catalogue.rfind('/') + 1);
    const std::size_t end = file.find_first_of("_.", begin + 1);
    if (begin >= file.size() || file[begin] != '_') return kEnglish;
    return file.substr(begin + 1, end - begin - 1);
}

/// The country with the most speakers of a language.
std::string countryOf(const std::string& language) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(language.c_str());
    locale.addLikelySubtags(status);
    return U_SUCCESS(status) ? locale.getCountry() : "";
}

/// @return null if no such locale is installed
locale_t openLocale(const std::string& language, const std::string& locales) {
    const auto open = [](const std::string& name) {
        return newlocale(LC_MESSAGES_MASK | LC_CTYPE_MASK, name.c_str(), nullptr);
    };
    QBLUtStrTok tokens(locales.c_str());
    std::string token;
    while (tokens.nextToken(token)) {
        const I18NLocale named(token.c_str());
        if (named.getLanguage() != language) continue;
        for (const std::string& country : {std::string(named.getCountry()), countryOf(language)}) {
            if (country.empty()) continue;
            std::string name = language;
            name.append("_").append(country);
            for (const std::string& each : {name + ".UTF-8", token, name})
                if (const locale_t found = open(each)) return found;
        }
    }
    return nullptr;
}

/// @return an empty string if the converter does not know the C library's name of the encoding
std::string toUtf8(const char* text, const char* encoding) {
    if (I18NConverter::isUTF8(encoding)) return text;
    try {
        const I18NConverter from(encoding), to("UTF-8");
        I18NTextStream stream(&from, &to);
        stream.put(text, std::strlen(text));
        const std::string utf8(stream.getBytes(), stream.getByteCount());
        stream.finish();
        return utf8 + std::string(stream.getBytes(), stream.getByteCount());
    } catch (const I18NRuntimeError&) {
        return {};
    }
}

Reasons& processReasons() {
    static Reasons s_reasons;
    return s_reasons;
}

}  // namespace

Reasons::Reasons(const std::string& catalogue, const std::string& locales) {
    const std::string language = languageOf(catalogue, locales);
    if (language != kEnglish) m_locale = openLocale(language, locales);
}

Reasons::~Reasons() {
    if (m_locale != nullptr) freelocale(m_locale);
}

Reasons::Reasons(Reasons&& other) noexcept : m_locale(std::exchange(other.m_locale, nullptr)) {}

Reasons& Reasons::operator=(Reasons&& other) noexcept {
    std::swap(m_locale, other.m_locale);
    return *this;
}

std::string Reasons::text(int error) const {
    if (m_locale != nullptr) {
        std::string utf8 = toUtf8(strerror_l(error, m_locale), nl_langinfo_l(CODESET, m_locale));
        if (!utf8.empty()) return utf8;
    }
    const char* const english = strerrordesc_np(error);
    return english != nullptr ? english : "Unknown error " + std::to_string(error);
}

void setReasonLanguage(const std::string& catalogue, const std::string& locales) {
    // The C library prefers LANGUAGE to the requested locale.
    unsetenv("LANGUAGE");
    processReasons() = Reasons(catalogue, locales);
}

std::string reason(int error) { return processReasons().text(error); }

}  // namespace tools

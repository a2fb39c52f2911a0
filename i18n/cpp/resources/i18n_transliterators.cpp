#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"
#include "i18n/cpp/resources/i18n_xml_entities.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_url_encoding.hpp"

namespace {

const char kNoXMLTransliterator[] = "XML entity transliterator creation failed.";
const char kNoURLTransliterator[] = "URL encoding transliterator creation failed.";

}  // namespace

const icu::Transliterator* I18NLazyTransliterator::get(const char16_t* name, const char* rules,
                                                       const char* failure) {
    if (made != nullptr) return made.get();
    i18nRequireSpareMemory();  // ICU crashes if it cannot allocate the parser of the rules
    UParseError place;
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> candidate(icu::Transliterator::createFromRules(
        name, icu::UnicodeString::fromUTF8(rules), UTRANS_FORWARD, place, error));
    if (error == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    if (U_FAILURE(error) || candidate == nullptr)
        QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, failure));
    made = std::move(candidate);
    return made.get();
}

void I18NInternalResources::transliterate(std::u16string& text) { i18nReplaceXMLEntities(text); }

const icu::Transliterator* I18NInternalResources::getTransliterator() {
    QBLThreadGuard guard(m_data.lock);
    return m_data.xmlEntities.get(u"QBL-XMLEntities", kI18NXMLEntityRules, kNoXMLTransliterator);
}

const char* I18NInternalResources::getTransliterationData() { return kI18NXMLEntityRules; }

void I18NInternalResources::urlEncode(std::u16string_view text, std::u16string& out) {
    QBL_ALLOC_TRY
    i18nURLEncode(text, out);
    I18N_ALLOC_CATCH
}

const icu::Transliterator* I18NInternalResources::getURLEncodeTranslit() {
    QBLThreadGuard guard(m_data.lock);
    return m_data.urlEncoding.get(u"QBL-URLEncoding", kI18NURLRules, kNoURLTransliterator);
}

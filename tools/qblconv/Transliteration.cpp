#include "tools/qblconv/Transliteration.hpp"

#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Encodings.hpp"

namespace conv {

namespace {

constexpr int kMostUnits = 8;  // longest replacement that a text stream accepts

class Refusing : public I18NTextStreamListener {
public:
    void unconvertible(const I18NUnconvertible&) override { isRefused = true; }
    bool isRefused = false;
};

std::unique_ptr<icu::Transliterator> open(const char* name) {
    UErrorCode code = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> made(
        icu::Transliterator::createInstance(name, UTRANS_FORWARD, code));
    if (made == nullptr || U_FAILURE(code))
        QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, "ICU has no data for transliteration"));
    return made;
}

/// Returns the ISO code for a currency sign, because ICU does not transliterate currency signs;
/// null for other characters.
const char16_t* currencyCode(char32_t sign) {
    switch (sign) {
        case 0xA3:
            return u"GBP";
        case 0xA5:
            return u"JPY";
        case 0x20A9:
            return u"KRW";
        case 0x20AC:
            return u"EUR";
        case 0x20B9:
            return u"INR";
        case 0x20BD:
            return u"RUB";
        default:
            return nullptr;
    }
}

bool isOfAlphabet(UChar32 c) {
    UErrorCode code = U_ZERO_ERROR;
    switch (uscript_getScript(c, &code)) {
        case USCRIPT_GREEK:
        case USCRIPT_CYRILLIC:
        case USCRIPT_ARMENIAN:
        case USCRIPT_GEORGIAN:
        case USCRIPT_HANGUL:
            return true;
        default:
            return false;
    }
}

icu::UnicodeString applied(const icu::Transliterator& rules, icu::UnicodeString text) {
    rules.transliterate(text);
    return text;
}

icu::UnicodeString compatible(const icu::UnicodeString& text) {
    UErrorCode code = U_ZERO_ERROR;
    const icu::Normalizer2* const nfkc = icu::Normalizer2::getNFKCInstance(code);
    icu::UnicodeString result = nfkc != nullptr ? nfkc->normalize(text, code) : text;
    return U_SUCCESS(code) ? result : text;
}

}  // namespace

struct Transliteration::Transliterators {
    std::unique_ptr<icu::Transliterator> ascii = open("Latin-ASCII"), latin = open("Any-Latin");
};

Transliteration::Transliteration(const I18NConverter& to) : m_to(to) {
    setPolicies(m_to, I18N_STOP, I18N_ESCAPE);
    m_to.useFallback(false);
}

Transliteration::~Transliteration() = default;

const std::u16string* Transliteration::of(char32_t codePoint) {
    auto known = m_results.find(codePoint);
    if (known == m_results.end()) known = m_results.emplace(codePoint, find(codePoint)).first;
    return known->second.isKnown ? &known->second.text : nullptr;
}

Transliteration::Result Transliteration::find(char32_t codePoint) {
    const auto c = static_cast<UChar32>(codePoint);
    if (const char16_t* const code = currencyCode(codePoint)) {
        if (hasAll(code)) return {true, code};
    }
    if (ublock_getCode(c) == UBLOCK_COMBINING_DIACRITICAL_MARKS) return {true, {}};
    const bool isText = u_isdefined(c) && !U_IS_SURROGATE(codePoint);
    if (!isText || u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT)) return {false, {}};
    if (m_pTransliterators == nullptr) m_pTransliterators = std::make_unique<Transliterators>();
    const icu::Transliterator &ascii = *m_pTransliterators->ascii,
                              &latin = *m_pTransliterators->latin;
    const icu::UnicodeString itself(c);
    const icu::UnicodeString letters = isOfAlphabet(c) ? applied(latin, itself) : itself;
    const icu::UnicodeString variant = compatible(itself);
    for (const icu::UnicodeString& each : {applied(ascii, itself), variant, applied(ascii, variant),
                                           letters, applied(ascii, letters)}) {
        const bool fits = !each.isEmpty() && each != itself && each.length() <= kMostUnits;
        std::u16string text(each.getBuffer(), static_cast<std::size_t>(each.length()));
        if (fits && hasAll(text)) return {true, std::move(text)};
    }
    return {false, {}};
}

bool Transliteration::hasAll(const std::u16string& text) const {
    Refusing listener;
    I18NTextStream stream(nullptr, &m_to, I18N_MARK_KEEP, &listener);
    stream.put(text.data(), text.size());
    stream.finish();
    return !listener.isRefused;
}

}  // namespace conv

#include "QBLCore/Messages/internal/QBLIntegerStyle.hpp"

#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <iterator>
#include <limits>
#include <map>
#include <memory>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"

namespace {

// Callers choose the locales. The number of styles and the length of locale names are therefore
// limited. Beyond these limits, ICU writes the integers.
const std::size_t kMaxStyles = 256;
const std::size_t kLongestName = 256;

struct Styles {
    QBLThreadCriticalSection lock{0};
    std::map<std::string, std::unique_ptr<QBLIntegerStyle>> byLocale;  // guarded by lock
};

std::string toUtf8(const icu::UnicodeString& text) {
    std::string utf8;
    return text.toUTF8String(utf8);
}

}  // namespace

const QBLIntegerStyle* QBLIntegerStyle::get(const std::string& locale) {
    Styles& styles = qblImmortal<Styles>();
    QBLThreadGuard guard(styles.lock);
    const auto known = styles.byLocale.find(locale);
    if (known != styles.byLocale.end()) return known->second.get();
    if (styles.byLocale.size() >= kMaxStyles || locale.size() > kLongestName) return nullptr;
    auto style = std::make_unique<QBLIntegerStyle>();
    const Result result = style->learn(locale);
    if (result == kFailed) return nullptr;  // such as a shortage, which is not remembered
    if (result == kDiffers) style.reset();
    return (styles.byLocale[locale] = std::move(style)).get();
}

void QBLIntegerStyle::append(int value, std::string& out) const {
    char digits[std::numeric_limits<int>::digits10 + 2] = {};
    const char* digit = digits;
    auto count = static_cast<int>(std::to_chars(digits, std::end(digits), value).ptr - digits);
    if (value < 0) {
        ++digit;
        --count;
    }
    const bool grouped = m_iPrimary > 0 && count >= m_iPrimary + m_iMinimum;
    if (value < 0) out += m_negativePrefix;
    while (count-- > 0) {
        out += m_digits[*digit++ - '0'];
        const bool groupEnds =
            count == m_iPrimary || (count > m_iPrimary && (count - m_iPrimary) % m_iSecondary == 0);
        if (grouped && count > 0 && groupEnds) out += m_separator;
    }
    if (value < 0) out += m_negativeSuffix;
}

QBLIntegerStyle::Result QBLIntegerStyle::learn(const std::string& locale) {
    i18nPrepareICU();
    i18nRequireSpareMemory();
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale(locale.c_str()), status));
    const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(format.get());
    if (U_FAILURE(status)) return kFailed;
    if (decimal == nullptr) return kDiffers;

    typedef icu::DecimalFormatSymbols Symbols;
    const Symbols* symbols = decimal->getDecimalFormatSymbols();
    if (symbols == nullptr) return kFailed;
    m_digits[0] = toUtf8(symbols->getSymbol(Symbols::kZeroDigitSymbol));
    for (int digit = 1; digit < 10; ++digit)
        m_digits[digit] = toUtf8(symbols->getSymbol(
            static_cast<Symbols::ENumberFormatSymbol>(Symbols::kOneDigitSymbol + digit - 1)));
    m_separator = toUtf8(symbols->getSymbol(Symbols::kGroupingSeparatorSymbol));
    icu::UnicodeString affix;
    m_negativePrefix = toUtf8(decimal->getNegativePrefix(affix));
    m_negativeSuffix = toUtf8(decimal->getNegativeSuffix(affix));
    m_iPrimary = decimal->isGroupingUsed() ? decimal->getGroupingSize() : 0;
    m_iSecondary = decimal->getSecondaryGroupingSize() > 0 ? decimal->getSecondaryGroupingSize()
                                                           : std::max(m_iPrimary, 1);
    m_iMinimum = std::max<int>(decimal->getMinimumGroupingDigits(), 1);

    for (const int sample : {0, 5, -6, 789, 1234, -4321, 12345, 678901, -2345678, 34567890,
                             456789012, INT_MAX, INT_MIN}) {
        std::string ours;
        append(sample, ours);
        icu::UnicodeString theirs;
        format->format(static_cast<int32_t>(sample), theirs);
        if (theirs.isBogus()) return kFailed;
        if (ours != toUtf8(theirs)) return kDiffers;
    }
    return kLearnt;
}

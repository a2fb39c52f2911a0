#include "i18n/cpp/locale/i18n_settings.hpp"

#include <algorithm>
#include <atomic>
#include <tuple>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/locale/i18n_locale_names.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

/// All settings that have been published.
struct Published {
    QBLThreadCriticalSection lock{0};
    std::vector<std::unique_ptr<const I18NSettings>> all QBL_GUARDED_BY(lock);

    int numberOf(const std::vector<char32_t>& list) const QBL_REQUIRES(lock) {
        int last = 0;
        if (list.empty()) return last;
        for (const auto& earlier : all) {
            if (earlier->nonNormalizable == list) return earlier->nonNormalizableID;
            last = std::max(last, earlier->nonNormalizableID);
        }
        return last < I18NSettings::kMostLists ? last + 1 : 0;
    }
};

std::atomic<const I18NSettings*> g_now{nullptr};  // null for the defaults

/// Returns the code point at an offset, or the lone surrogate, and moves the offset after it.
char32_t nextOf(std::u16string_view text, std::size_t& i) {
    const char16_t unit = text[i++];
    const bool isPair = i18nIsHigh(unit) && i < text.size() && i18nIsLow(text[i]);
    return isPair ? i18nCombine(unit, text[i++]) : unit;
}

}  // namespace

const I18NLocaleSettings* I18NSettings::find(const I18NLocale& locale) const {
    auto found = locales.find(std::string_view(locale.getName()));
    if (found == locales.end()) found = locales.find(i18nPlainName(locale));
    return found != locales.end() && found->second.inUse ? &found->second : nullptr;
}

bool I18NLocaleSettings::operator==(const I18NLocaleSettings& other) const {
    const auto all = [](const I18NLocaleSettings& s) {
        return std::tie(s.name, s.inUse, s.lcid, s.defaultVariant, s.csvEncoding);
    };
    return all(*this) == all(other);
}

bool I18NSettings::operator==(const I18NSettings& other) const {
    const auto all = [](const I18NSettings& s) {
        return std::tie(s.utf8BytesPerCodePoint, s.replaceScaledZero, s.negativeZero,
                        s.nonNormalizable, s.jaSubstitutions, s.locales, s.replacements);
    };
    return all(*this) == all(other);
}

bool I18NSettings::isNonNormalizable(std::u16string_view text) const {
    const std::vector<char32_t>& all = nonNormalizable;
    if (all.empty()) return false;
    // Few texts have a unit that any of these characters could begin with.
    const bool pairs = all.back() > 0xFFFF;
    const char32_t first = pairs ? std::min<char32_t>(all.front(), 0xD800) : all.front();
    const char32_t last = pairs ? 0xFFFF : all.back();
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] < first || text[i] > last) {
            ++i;
            continue;
        }
        const char32_t codePoint = nextOf(text, i);
        if (std::binary_search(all.begin(), all.end(), codePoint)) return true;
    }
    return false;
}

char32_t I18NSettings::getJaSubstitution(char32_t codePoint) const {
    const auto found = jaSubstitutions.find(codePoint);
    return found != jaSubstitutions.end() ? found->second : codePoint;
}

bool I18NSettings::substituteJa(std::u16string& text) const {
    if (jaSubstitutions.empty()) return false;
    std::u16string result;
    bool any = false;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t begin = i;
        const char32_t codePoint = nextOf(text, i);
        const char32_t other = getJaSubstitution(codePoint);
        if (other == codePoint) {
            result.append(text, begin, i - begin);
            continue;
        }
        char16_t units[2];
        result.append(units, static_cast<std::size_t>(i18nPutCodePoint(units, other)));
        any = true;
    }
    if (any) text.swap(result);
    return any;
}

const I18NSettings& I18NSettings::now() {
    const I18NSettings* settings = g_now.load(std::memory_order_acquire);
    return settings != nullptr ? *settings : qblImmortal<I18NSettings>();
}

void I18NSettings::publish(std::unique_ptr<I18NSettings> settings) {
    const I18NSettings* chosen = nullptr;
    if (settings != nullptr) {
        Published& published = qblImmortal<Published>();
        QBLThreadGuard guard(published.lock);
        for (const auto& earlier : published.all)
            if (*earlier == *settings) chosen = earlier.get();
        if (chosen == nullptr) {
            settings->nonNormalizableID = published.numberOf(settings->nonNormalizable);
            published.all.push_back(std::move(settings));
            chosen = published.all.back().get();
        }
    }
    g_now.store(chosen, std::memory_order_release);
}

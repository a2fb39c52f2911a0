// Texts of the standard library. Each is taken as a whole, and may be a part of the string itself.
#include <climits>
#include <functional>
#include <string>
#include <string_view>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

bool isASCII(std::string_view utf8) { return i18nIsASCII(utf8.data(), utf8.size()); }

/// @throws QBLOutOfMemoryError if a string cannot have that many units
int checked(std::size_t units) {
    i18nRequireLength(units < INT_MAX ? static_cast<int>(units) : INT_MAX);
    return static_cast<int>(units);
}

I18NTextView viewOf(std::u16string_view units) {
    return I18NTextView(units.data(), checked(units.size()));
}

I18NTextView viewOfASCII(std::string_view ascii) {
    return I18NTextView(ascii.data() != nullptr ? ascii.data() : "", checked(ascii.size()));
}

/// Decodes each part between NUL characters, because the decoder stops at them.
std::u16string decoded(std::string_view utf8) {
    checked(utf8.size());
    QBL_ALLOC_TRY
    std::u16string units(utf8.size(), u'\0');
    std::size_t length = 0;
    for (;;) {
        const std::string_view part = utf8.substr(0, utf8.find('\0'));
        length += i18nDecodeUTF8(part.data(), part.size(), &units[length]).units;
        if (part.size() == utf8.size()) break;
        utf8.remove_prefix(part.size() + 1);
        units[length++] = u'\0';  // the decoder may have written after its result
    }
    units.resize(length);
    return units;
    I18N_ALLOC_CATCH
}

template <class Char>
std::u16string encoded(std::basic_string_view<Char> text) {
    checked(text.size());
    QBL_ALLOC_TRY
    std::u16string units;
    units.reserve(text.size());
    for (const Char c : text) {
        char16_t pair[2];
        const int count = i18nPutCodePoint(pair, static_cast<char32_t>(c));
        units.append(pair, static_cast<std::size_t>(count));
    }
    return units;
    I18N_ALLOC_CATCH
}

template <class String>
String codePointsOf(const I18NString& string) {
    QBL_ALLOC_TRY
    const I18NTextView text(string);
    String out;
    out.reserve(static_cast<std::size_t>(text.length()));
    for (int i = 0; i < text.length(); i = text.next(i))
        out.push_back(static_cast<typename String::value_type>(text.codePointAt(i)));
    return out;
    I18N_ALLOC_CATCH
}

}  // namespace

I18NString& I18NString::set(std::string_view utf8) {
    if (utf8.find('\0') != utf8.npos) return set(std::u16string_view(decoded(utf8)));
    setBytes(utf8.data(), nullptr, checked(utf8.size()));
    return *this;
}

I18NString& I18NString::set(std::u16string_view units) {
    const std::less<const char16_t*> before;
    QBL_ALLOC_TRY
    // The units may be those of this string.
    const bool own = m_pCodeUnits != nullptr && !before(units.data(), m_pCodeUnits) &&
                     !before(m_pCodeUnits + m_unitLength, units.data());
    if (own)
        assign(viewOf(std::u16string(units)));
    else
        assign(viewOf(units));
    return *this;
    I18N_ALLOC_CATCH
}

I18NString& I18NString::set(std::u32string_view text) {
    return set(std::u16string_view(encoded(text)));
}

I18NString& I18NString::set(std::wstring_view text) {
    return set(std::u16string_view(encoded(text)));
}

I18NString& I18NString::add(std::string_view utf8) {
    const std::less<const char*> before;
    const bool own =
        !before(utf8.data(), ascii()) && !before(ascii() + m_asciiBufLength, utf8.data());
    if (own || !isASCII(utf8)) return add(std::u16string_view(decoded(utf8)));
    const I18NTextView text = viewOfASCII(utf8);
    if (!appendShort(text.ascii(), text.length())) splice(nUnits(), 0, text);
    return *this;
}

I18NString& I18NString::add(std::u16string_view units) {
    I18NString text;
    text.useNormalization(false);
    text.set(units);
    splice(nUnits(), 0, I18NTextView(text));
    return *this;
}

I18NString& I18NString::add(std::u32string_view text) {
    return add(std::u16string_view(encoded(text)));
}

I18NString& I18NString::add(std::wstring_view text) {
    return add(std::u16string_view(encoded(text)));
}

bool I18NString::has(Place place, const I18NString& text) const {
    const int last = nUnits() - text.nUnits();
    if (place == kAnywhere) return find(text) >= 0;
    if (place == kAtEnd) return last >= 0 && find(text, last) >= 0;
    return rfind(text, 0) == 0;
}

std::u32string I18NString::toUtf32() const { return codePointsOf<std::u32string>(*this); }

std::wstring I18NString::toWide() const { return codePointsOf<std::wstring>(*this); }

std::size_t I18NTextHash::operator()(std::string_view utf8) const {
    return (*this)(I18NString(utf8));
}

#include <cstring>

#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_inert.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

/// Decodes a text without normalising it. The string that takes the text normalises it.
I18NString asItIs(const char* utf8) {
    I18NString text;
    text.useNormalization(false);
    text = utf8;
    return text;
}

}  // namespace

// The fast path for ASCII. Requires: the text is not part of this string.
bool I18NString::appendShort(const char* ascii, int length) {
    if (m_pUnicodeString != nullptr || isForceUnicodeString()) return false;
    const std::int64_t newLength = std::int64_t{m_asciiBufLength} + length;
    i18nRequireLength(newLength);
    reserveAscii(static_cast<int>(newLength));
    if (length != 0)  // for length 0, the pointer may be null
        std::memcpy(m_pAsciiBuffer + m_asciiBufLength, ascii, static_cast<std::size_t>(length));
    m_asciiBufLength = static_cast<int>(newLength);
    m_pAsciiBuffer[newLength] = '\0';
    changed();
    return true;
}

I18NString& I18NString::append(const I18NString& other) {
    if (this != &other && other.m_pUnicodeString == nullptr &&
        appendShort(other.ascii(), other.m_asciiBufLength))
        return *this;
    splice(nUnits(), 0, I18NTextView(other));
    return *this;
}

I18NString& I18NString::append(const char* utf8) {
    const std::size_t length = utf8 != nullptr ? std::strlen(utf8) : 0;
    i18nRequireLength(static_cast<std::int64_t>(length));
    const bool own = utf8 >= ascii() && utf8 <= ascii() + m_asciiBufLength;
    if (own || !i18nIsASCII(utf8, length))
        splice(nUnits(), 0, I18NTextView(asItIs(utf8)));
    else if (!appendShort(utf8, static_cast<int>(length)))
        splice(nUnits(), 0, I18NTextView(utf8, static_cast<int>(length)));
    return *this;
}

I18NString& I18NString::append(const wchar_t* text) {
    splice(nUnits(), 0, I18NWideText(text).view());
    return *this;
}

I18NString& I18NString::append(wchar_t c) {
    splice(nUnits(), 0, I18NWideText(c).view());
    return *this;
}

I18NString& I18NString::insert(I18NStringOffset offset, const I18NString& other) {
    splice(offset, 0, I18NTextView(other));
    return *this;
}

I18NString& I18NString::insert(I18NStringOffset offset, const char* utf8) {
    splice(offset, 0, I18NTextView(asItIs(utf8)));
    return *this;
}

I18NString& I18NString::insert(I18NStringOffset offset, const wchar_t* text) {
    splice(offset, 0, I18NWideText(text).view());
    return *this;
}

I18NString& I18NString::insert(I18NStringOffset offset, wchar_t c) {
    splice(offset, 0, I18NWideText(c).view());
    return *this;
}

I18NString& I18NString::replace(I18NStringOffset offset, int count, const I18NString& other) {
    splice(offset, count, I18NTextView(other));
    return *this;
}

I18NString& I18NString::replace(I18NStringOffset offset, int count, const char* utf8) {
    splice(offset, count, I18NTextView(asItIs(utf8)));
    return *this;
}

I18NString& I18NString::replace(I18NStringOffset offset, int count, const wchar_t* text) {
    splice(offset, count, I18NWideText(text).view());
    return *this;
}

I18NString& I18NString::replace(I18NStringOffset offset, int count, wchar_t c) {
    splice(offset, count, I18NWideText(c).view());
    return *this;
}

I18NString& I18NString::erase(I18NStringOffset offset, int count) {
    splice(offset, count, I18NTextView("", 0));
    return *this;
}

I18NString& I18NString::remove() { return erase(0); }

// Builds the added text in the string itself, unless the added text may combine.
void I18NString::fill(int copies, const I18NTextView& unit) {
    const int length = nUnits(), width = unit.length(), newLength = length + copies * width;
    if (isUsingAsciiBuffer() && !isForceUnicodeString() && unit.isASCII()) {
        reserveAscii(newLength);
        std::memset(m_pAsciiBuffer + length, unit[0], static_cast<std::size_t>(copies));
        m_asciiBufLength = newLength;
        m_pAsciiBuffer[newLength] = '\0';
        return changed();
    }
    leaveAscii(newLength);
    const auto addTo = [&](I18NString& text) {
        text.reserveUnits(text.m_unitLength + copies * width);
        char16_t* out = text.m_pCodeUnits + text.m_unitLength;
        for (int i = 0; i < copies; ++i, out += width) unit.copyTo(out);
        text.m_unitLength += copies * width;
        text.alias();
        text.changed();
    };
    const bool pair = length > 0 && i18nIsHigh(m_pCodeUnits[length - 1]) && i18nIsLow(unit[0]);
    const bool inert = !pair && i18nIsInert(unit.units(), static_cast<std::size_t>(width));
    if (inert || hasFlag(kI18NNoNormalization)) {
        addTo(*this);
        if (length == 0) setFlag(kI18NNormalized, true);
        return;
    }
    I18NString text(Bare(), m_allocator, m_allocatorContext);
    text.leaveAscii(newLength - length);
    addTo(text);
    spliceUnits(length, 0, I18NTextView(text));
}

I18NString& I18NString::resize(int units, wchar_t fill) {
    const int length = nUnits();
    if (units <= length) return erase(units < 0 ? 0 : units);
    const I18NWideText one(fill);
    i18nRequireLength(units);
    this->fill((units - length) / one.view().length(), one.view());
    return *this;
}

I18NString& I18NString::trimLeading(wchar_t c) {
    const I18NStringOffset kept = findFirstNotOf(c);
    return kept < 0 ? remove() : kept > 0 ? erase(0, kept) : *this;
}

I18NString& I18NString::trimTrailing(wchar_t c) {
    const I18NStringOffset kept = findLastNotOf(c);
    return kept < 0 ? remove() : erase(incrementOffset(kept));
}

I18NString& I18NString::trim(wchar_t c) { return trimTrailing(c).trimLeading(c); }

I18NString operator+(const I18NString& a, const I18NString& b) { return I18NString(a) += b; }

I18NString operator+(const I18NString& a, const char* utf8) { return I18NString(a) += utf8; }

I18NString operator+(const I18NString& a, const wchar_t* b) { return I18NString(a) += b; }

I18NString operator+(const I18NString& a, wchar_t b) { return I18NString(a) += b; }

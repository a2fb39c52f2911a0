#include "i18n/cpp/i18n_string_iterator.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"

namespace {

// Deliberately the same text as in all earlier versions, including its blanks and names.
const char kRetired[] =
    "QBL_ASSERT_NAMED(FALSE, \"The I18NStringIteratorValue (I18N_ICU_NAMESPACE::UnicodeString "
    "*pString, I18NStringOffset offset) constructor is deprecated.  Please use the alternate "
    "constructor.\");";

}  // namespace

I18NStringIteratorValue::I18NStringIteratorValue(I18NString& string, I18NStringOffset offset)
    : m_pI18NString(&string), m_offset(offset) {}

I18NStringIteratorValue::I18NStringIteratorValue(icu::UnicodeString*, I18NStringOffset offset)
    : m_pI18NString(nullptr), m_offset(offset) {
    qblAssertFailed(QBL_HERE, kRetired);
}

I18NStringIteratorValue::operator wchar_t() const {
    if (m_pI18NString->isUsingAsciiBuffer())
        QBL_ASSERT(m_offset <= m_pI18NString->m_asciiBufLength);
    return m_pI18NString->codePointAt(m_offset);
}

bool I18NStringIteratorValue::operator==(wchar_t c) const {
    return static_cast<wchar_t>(*this) == c;
}

I18NStringIteratorValue& I18NStringIteratorValue::operator=(wchar_t c) {
    // Deliberately stricter than reading: at the end, reading gives 0, but there is nothing to
    // replace.
    if (m_pI18NString->isUsingAsciiBuffer()) QBL_ASSERT(m_offset < m_pI18NString->m_asciiBufLength);
    const I18NStringOffset next = m_pI18NString->incrementOffset(m_offset);
    if (next >= 0) m_pI18NString->replace(m_offset, next - m_offset, c);
    return *this;
}

// Self-assignment replaces the code point by itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
I18NStringIteratorValue& I18NStringIteratorValue::operator=(const I18NStringIteratorValue& other) {
    return *this = static_cast<wchar_t>(other);
}

I18NStringIterator& I18NStringIterator::operator++() {
    const I18NStringOffset next = m_pString->incrementOffset(m_offset);
    if (next >= 0) m_offset = next;
    return *this;
}

I18NStringIterator I18NStringIterator::operator++(int) {
    const I18NStringIterator before(*this);
    ++*this;
    return before;
}

I18NStringIterator& I18NStringIterator::operator--() {
    const I18NStringOffset before = m_pString->decrementOffset(m_offset);
    if (before >= 0) m_offset = before;
    return *this;
}

I18NStringIterator I18NStringIterator::operator--(int) {
    const I18NStringIterator before(*this);
    --*this;
    return before;
}

I18NStringIterator& I18NStringIterator::operator+=(int n) {
    for (I18NStringOffset next; n > 0; --n, m_offset = next)
        if ((next = m_pString->incrementOffset(m_offset)) < 0) break;
    return *this;
}

int I18NStringIterator::operator-(const I18NStringIterator& other) const {
    if (m_offset < other.m_offset) return -(other - *this);
    int count = 0;
    for (I18NStringOffset at = other.m_offset; at < m_offset; ++count)
        if ((at = m_pString->incrementOffset(at)) < 0) break;
    return count;
}

#ifndef I18N_CPP_I18N_STRING_ITERATOR_HPP
#define I18N_CPP_I18N_STRING_ITERATOR_HPP

#include "i18n/cpp/i18n_string.hpp"

/// The code point at a position of a string. It can be read, and replaced by assignment.
///
/// Threads: as for the string. Assigning changes the string; all other operations only read it.
class QBL_API I18NStringIteratorValue {
public:
    I18NStringIteratorValue(I18NString& string, I18NStringOffset offset);
    /// @throws QBLAssertError always: this constructor is retired
    I18NStringIteratorValue(icu::UnicodeString* string, I18NStringOffset offset);
    I18NStringIteratorValue(const I18NStringIteratorValue&) = default;

    /// Returns the code point; 0 at the end.
    /// @throws QBLAssertError beyond the end of a string that is stored as ASCII
    operator wchar_t() const;
    bool operator==(wchar_t c) const;
    bool operator!=(wchar_t c) const { return !(*this == c); }
    /// Replaces the code point in the string.
    /// @throws QBLAssertError at or beyond the end of a string that is stored as ASCII
    I18NStringIteratorValue& operator=(wchar_t c);
    I18NStringIteratorValue& operator=(const I18NStringIteratorValue& other);

private:
    I18NString* m_pI18NString;
    I18NStringOffset m_offset;
};

/// A position in a string, moved by code points. Changes of the string do not adjust it.
///
/// Threads: one thread at a time may use an iterator. Any number of iterators may point into a
/// string that no thread changes.
class QBL_API I18NStringIterator {
public:
    I18NStringIterator(const I18NString& string, I18NStringOffset offset)
        : m_pString(const_cast<I18NString*>(&string)), m_offset(offset) {}

    /// These operators do not move the iterator beyond the ends of the string.
    I18NStringIterator& operator++();
    I18NStringIterator operator++(int);
    I18NStringIterator& operator--();
    I18NStringIterator operator--(int);
    /// @param n  code points; a value below 1 does not move the iterator
    I18NStringIterator& operator+=(int n);
    friend I18NStringIterator operator+(I18NStringIterator at, int n) { return at += n; }
    /// Returns the number of code points from the other iterator to this iterator; negative if this
    /// iterator comes first.
    int operator-(const I18NStringIterator& other) const;
    bool operator==(const I18NStringIterator& other) const { return m_offset == other.m_offset; }
    bool operator!=(const I18NStringIterator& other) const { return m_offset != other.m_offset; }
    I18NStringIteratorValue operator*() const {
        return I18NStringIteratorValue(*m_pString, m_offset);
    }
    I18NStringOffset getOffset() const { return m_offset; }

private:
    I18NString* m_pString;
    I18NStringOffset m_offset;
};

#endif

#ifndef I18N_CPP_I18N_STRING_ITERATOR_HPP
#define I18N_CPP_I18N_STRING_ITERATOR_HPP

#include <cstddef>
#include <iterator>
#include <type_traits>

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
    bool operator==(const I18NStringIteratorValue& other) const {
        return *this == static_cast<wchar_t>(other);
    }
    bool operator!=(const I18NStringIteratorValue& other) const { return !(*this == other); }
    /// Compares with the number of another character type or integer type.
    template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    bool operator==(Number c) const {
        // A negative char is not a code point. NOLINTNEXTLINE(bugprone-signed-char-misuse)
        return static_cast<long long>(static_cast<wchar_t>(*this)) == static_cast<long long>(c);
    }
    template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    bool operator!=(Number c) const {
        return !(*this == c);
    }
    /// Replaces the code point in the string.
    /// @throws QBLAssertError at or beyond the end of a string that is stored as ASCII
    I18NStringIteratorValue& operator=(wchar_t c);
    I18NStringIteratorValue& operator=(const I18NStringIteratorValue& other);

private:
    I18NString* m_pI18NString;
    I18NStringOffset m_offset;
};

/// A position in a string, moved by code points. Changes of the string do not adjust it. A lone
/// surrogate is a code point of its own.
///
/// The iterator satisfies the concept std::bidirectional_iterator of C++20, and works with the
/// algorithms of C++17 for bidirectional iterators that only read. It refers to a code point by an
/// I18NStringIteratorValue, because the string has no wchar_t that it could refer to. So give the
/// variable of a loop the type wchar_t: for (wchar_t c : text).
///
/// Threads: one thread at a time may use an iterator. Any number of iterators may point into a
/// string that no thread changes.
class QBL_API I18NStringIterator {
public:
    typedef std::bidirectional_iterator_tag iterator_category;
    typedef wchar_t value_type;
    typedef std::ptrdiff_t difference_type;
    typedef void pointer;
    typedef I18NStringIteratorValue reference;

    /// An iterator of no string. It can only be assigned and compared.
    I18NStringIterator() : m_pString(nullptr), m_offset(0) {}
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
    /// iterator comes first; 0 if the iterator that comes first is outside the string.
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

inline std::reverse_iterator<I18NStringIterator> I18NString::rbegin() const {
    return std::reverse_iterator<I18NStringIterator>(end());
}
inline std::reverse_iterator<I18NStringIterator> I18NString::rend() const {
    return std::reverse_iterator<I18NStringIterator>(begin());
}

#endif

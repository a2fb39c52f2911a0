#ifndef I18N_CPP_I18N_STRING_HPP
#define I18N_CPP_I18N_STRING_HPP

#include <unicode/uversion.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_std_text.hpp"

U_NAMESPACE_BEGIN
class UnicodeString;
U_NAMESPACE_END

class I18NByteWriter;
class I18NConverter;
class I18NPatternCode;
class I18NPooledString;
struct I18NPooledStringEntry;
class I18NStringIterator;
class I18NTextView;
class QBLThreadCriticalSection;

/// A position in a string in UTF-16 code units, whether the text is stored as ASCII or as UTF-16.
typedef int I18NStringOffset;

/// The normalisation forms of the Unicode Standard, Annex #15.
enum I18NNormalizationForms { I18N_NFC, I18N_NFD, I18N_NFKC, I18N_NFKD };

/// A Unicode string. A text of ASCII characters is stored as bytes; up to 32 characters need no
/// allocation. Any other text is stored as UTF-16, together with an ICU string that refers to it.
/// ASCII text given as bytes in an encoding other than UTF-8, windows-1252 and ISO-8859 is stored
/// as UTF-16, too. A string that is stored as UTF-16 stays so until create() is called or another
/// string is moved into it. Offsets and counts are in UTF-16 code units, byte lengths are in bytes,
/// and a length of -1 means up to the terminating NUL.
///
/// The string keeps its contents in normalisation form C unless useNormalization(false) is called.
/// A text is not normalised if it has a character that the resource file exempts from
/// normalisation. Text is case-sensitive, and texts compare by their code units.
///
/// An allocator passed to a constructor provides the memory of the string from then on. It must
/// behave like realloc(3).
///
/// A wide character is a code point. A code point above U+FFFF is stored as a surrogate pair, a
/// surrogate is stored unchanged, and a value beyond U+10FFFF is stored as U+FFFD.
///
/// A standard text is a std::string, std::string_view or anything else that kI18NIsStdText
/// accepts. Its chars are UTF-8, and it is taken as a whole, including NUL characters.
///
/// Errors: operations throw QBLOutOfMemoryError, and I18NRuntimeError where documented. The string
/// is unchanged after an error, except in resizeExternalBuffer().
///
/// Threads: any number of threads may call constant operations of one string at the same time,
/// including c_str() and toBytes(). No other call may run at the same time as an operation that
/// changes the string.
class QBL_API I18NString {
public:
    /// @name Making a string
    /// @{

    explicit I18NString(I18NStringAllocator allocator = nullptr, void* context = nullptr);
    /// The copy uses the allocator given here, not the original's allocator. It has the same text,
    /// even if that text is not in form C.
    I18NString(const I18NString& other, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    I18NString(I18NString&& other) noexcept;
    /// Reads UTF-16 from memory of any alignment, up to a zero unit; an odd byte at the end is
    /// ignored. Char pointers are accepted because UTF-16 is often kept in buffers of char.
    /// So I18NString("abc", 3) also selects this constructor, and reads one unit. For three bytes
    /// of text write I18NString("abc", nullptr, 3).
    I18NString(const void* utf16, int byteLength, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    I18NString(int count, wchar_t c, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    explicit I18NString(const wchar_t* text, I18NStringAllocator allocator = nullptr,
                        void* context = nullptr);
    /// Decodes bytes; a null encoding means UTF-8. In UTF-8, each ill-formed sequence becomes an
    /// error value: U+0015, U+009F, U+FFFF or U+10FFFF. In other encodings, bytes that are not
    /// convertible are replaced as under I18N_SUBSTITUTE. If the encoding needs a converter, a
    /// string constructed before the internationalisation layer is initialised is empty.
    /// @throws I18NRuntimeError -3 if a converter is needed and the encoding is unknown;
    ///     QBLAssertError for a length below -1
    explicit I18NString(const char* bytes, const char* encoding = nullptr, int length = -1,
                        I18NStringAllocator allocator = nullptr, void* context = nullptr);
    /// Decodes bytes with a converter and its policies; also works before the layer is initialised.
    /// @throws I18NRuntimeError -4 without a message if the policy of the converter refuses the
    ///     bytes
    I18NString(const char* bytes, const I18NConverter& converter, int length = -1,
               I18NStringAllocator allocator = nullptr, void* context = nullptr);
    /// Takes a standard text, with the error values above for ill-formed UTF-8.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    explicit I18NString(const Text& text) : I18NString() {
        set(i18nViewOf(text));
    }
    ~I18NString() {
        if (m_pUnicodeString != nullptr || m_asciiBufCapacity > kInline ||
            m_pConverted.load(std::memory_order_relaxed) != nullptr)
            destroy();
    }

    /// Reinitialises the string like the constructor with these arguments, including the allocator.
    template <class... Arguments>
    void create(const Arguments&... arguments) {
        recreate(I18NString(arguments...));
    }
    /// @}

    /// @name Assigning
    /// @{

    /// The string keeps its allocator and its useNormalization() setting. A text that normalize()
    /// brought to another form keeps that form.
    I18NString& operator=(const I18NString& other);
    // Copies, and can throw, if the allocators or the useNormalization() settings differ, or if
    // either string uses a caller's buffer.
    I18NString& operator=(I18NString&& other);  // NOLINT(performance-noexcept-move-constructor)
    I18NString& operator=(const char* utf8);
    I18NString& operator=(const wchar_t* text);
    I18NString& operator=(wchar_t c);
    I18NString& operator=(const I18NPooledString& text);
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NString& operator=(const Text& text) {
        set(i18nViewOf(text));
        return *this;
    }
    /// @}

    /// @name Changing the text
    /// @{

    I18NString& append(const I18NString& other);
    I18NString& append(const char* utf8);
    I18NString& append(const wchar_t* text);
    I18NString& append(wchar_t c);
    I18NString& append(const I18NPooledString& text);
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NString& append(const Text& text) {
        return add(i18nViewOf(text));
    }
    template <class Text>
    I18NString& operator+=(const Text& text) {
        return append(text);
    }
    /// An offset beyond the end means the end, and a negative offset means the beginning.
    I18NString& insert(I18NStringOffset offset, const I18NString& other);
    I18NString& insert(I18NStringOffset offset, const char* utf8);
    I18NString& insert(I18NStringOffset offset, const wchar_t* text);
    I18NString& insert(I18NStringOffset offset, wchar_t c);
    I18NString& replace(I18NStringOffset offset, int count, const I18NString& other);
    I18NString& replace(I18NStringOffset offset, int count, const char* utf8);
    I18NString& replace(I18NStringOffset offset, int count, const wchar_t* text);
    I18NString& replace(I18NStringOffset offset, int count, wchar_t c);
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NString& insert(I18NStringOffset offset, const Text& text) {
        return insert(offset, alike(i18nViewOf(text)));
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NString& replace(I18NStringOffset offset, int count, const Text& text) {
        return replace(offset, count, alike(i18nViewOf(text)));
    }
    /// A negative count means everything up to the end, as in replace().
    I18NString& erase(I18NStringOffset offset, int count = -1);
    /// Empties the string.
    I18NString& remove();
    /// Truncates the string to a number of units, or appends `fill` up to that number. Only whole
    /// characters are appended, so the string can stay one unit short if `fill` is a surrogate
    /// pair. The appended characters may combine in form C.
    I18NString& resize(int units, wchar_t fill = L' ');
    I18NString& trimLeading(wchar_t c = L' ');
    I18NString& trimTrailing(wchar_t c = L' ');
    I18NString& trim(wchar_t c = L' ');
    /// @}

    /// @name Searching
    /// @{

    /// @return the offset of the first match at or after start, or -1 if there is no match. An
    ///     empty text is found at start unless start is beyond the end.
    I18NStringOffset find(const I18NString& text, I18NStringOffset start = 0) const;
    I18NStringOffset find(const wchar_t* text, I18NStringOffset start = 0) const;
    I18NStringOffset find(wchar_t c, I18NStringOffset start = 0) const;
    /// Finds the last match that begins at or before start; -1 means the end of the string.
    I18NStringOffset rfind(const I18NString& text, I18NStringOffset start = -1) const;
    I18NStringOffset rfind(const wchar_t* text, I18NStringOffset start = -1) const;
    I18NStringOffset rfind(wchar_t c, I18NStringOffset start = -1) const;
    /// Finds the first or last code point that is in a set, or that is not in it.
    I18NStringOffset findFirstOf(const I18NString& set, I18NStringOffset start = 0) const;
    I18NStringOffset findFirstOf(const wchar_t* set, I18NStringOffset start = 0) const;
    I18NStringOffset findFirstOf(wchar_t c, I18NStringOffset start = 0) const;
    I18NStringOffset findFirstNotOf(const I18NString& set, I18NStringOffset start = 0) const;
    I18NStringOffset findFirstNotOf(const wchar_t* set, I18NStringOffset start = 0) const;
    I18NStringOffset findFirstNotOf(wchar_t c, I18NStringOffset start = 0) const;
    I18NStringOffset findLastOf(const I18NString& set, I18NStringOffset start = -1) const;
    I18NStringOffset findLastOf(const wchar_t* set, I18NStringOffset start = -1) const;
    I18NStringOffset findLastOf(wchar_t c, I18NStringOffset start = -1) const;
    I18NStringOffset findLastNotOf(const I18NString& set, I18NStringOffset start = -1) const;
    I18NStringOffset findLastNotOf(const wchar_t* set, I18NStringOffset start = -1) const;
    I18NStringOffset findLastNotOf(wchar_t c, I18NStringOffset start = -1) const;
    /// The same for standard texts. Brings the text to form C first, unless useNormalization() is
    /// switched off for this string.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset find(const Text& text, I18NStringOffset start = 0) const {
        return find(alike(i18nViewOf(text)), start);
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset rfind(const Text& text, I18NStringOffset start = -1) const {
        return rfind(alike(i18nViewOf(text)), start);
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset findFirstOf(const Text& text, I18NStringOffset start = 0) const {
        return findFirstOf(alike(i18nViewOf(text)), start);
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset findFirstNotOf(const Text& text, I18NStringOffset start = 0) const {
        return findFirstNotOf(alike(i18nViewOf(text)), start);
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset findLastOf(const Text& text, I18NStringOffset start = -1) const {
        return findLastOf(alike(i18nViewOf(text)), start);
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NStringOffset findLastNotOf(const Text& text, I18NStringOffset start = -1) const {
        return findLastNotOf(alike(i18nViewOf(text)), start);
    }
    /// Returns true if the text begins with, ends with or contains another text, by code units.
    /// @param text  a string, a code point, a null-terminated or a standard text. Null is empty,
    ///     and an empty text is at both ends of every string
    template <class Text>
    bool starts_with(const Text& text) const {
        return has(kAtBeginning, wanted(text));
    }
    template <class Text>
    bool ends_with(const Text& text) const {
        return has(kAtEnd, wanted(text));
    }
    template <class Text>
    bool contains(const Text& text) const {
        return has(kAnywhere, wanted(text));
    }
    /// @}

    /// @name Lengths
    /// @{

    bool empty() const { return nUnits() == 0; }
    /// The number of code units.
    int nUnits() const { return m_pUnicodeString == nullptr ? m_asciiBufLength : m_unitLength; }
    /// The number of code points; a surrogate pair counts once.
    int length() const { return nCodePoints(); }
    int nCodePoints() const;
    /// The size of the UTF-16 form in bytes including the terminating NUL; deliberately 0 if empty.
    int size() const;
    static int length(const I18NString& other) { return other.length(); }
    static int length(const char* utf8) { return I18NString(utf8).length(); }
    static int length(const wchar_t* text) { return I18NString(text).length(); }
    static int size(const I18NString& other) { return other.size(); }
    static int size(const char* utf8) { return I18NString(utf8).size(); }
    static int size(const wchar_t* text) { return I18NString(text).size(); }
    /// Deliberately always 0: the display width of a text was never defined.
    int displaySize() const { return 0; }
    /// @}

    /// @name Iterating over code points
    /// @{

    /// Returns the offset after the code point at an offset, or -1 if the offset is not in the
    /// string.
    I18NStringOffset incrementOffset(I18NStringOffset offset) const;
    /// Returns the offset of the code point before an offset, or -1 at the beginning and outside
    /// the string.
    I18NStringOffset decrementOffset(I18NStringOffset offset) const;
    /// Returns the code point at an offset; 0 at the end and outside the string.
    wchar_t codePointAt(I18NStringOffset offset) const;
    I18NStringIterator begin() const;
    I18NStringIterator end() const;
    std::reverse_iterator<I18NStringIterator> rbegin() const;
    std::reverse_iterator<I18NStringIterator> rend() const;
    /// @}

    /// @name Bytes in an encoding
    /// @{

    /// Returns the text in an encoding, followed by a NUL of the encoding's width. The bytes belong
    /// to the string and stay valid until the string is changed or destroyed; a repeated call
    /// returns the same bytes. Characters that the encoding lacks are replaced as under
    /// I18N_SUBSTITUTE.
    /// @param encoding  null for UTF-8
    /// @param length  receives the number of bytes including the NUL; may be null. An empty string
    ///     that is stored as UTF-16 has four bytes
    /// @param allocator, context  used for the conversion; null means the string's allocator and
    ///     context. They must stay usable until the string is destroyed, or until it is changed and
    ///     then converted again
    /// @throws I18NRuntimeError -3 if a converter is needed and the encoding is unknown
    const char* c_str(const char* encoding = nullptr, int* length = nullptr,
                      I18NStringAllocator allocator = nullptr, void* context = nullptr) const {
        if (m_pUnicodeString != nullptr || encoding != nullptr)
            return bytes(encoding, length, allocator, context);
        if (length != nullptr) *length = m_asciiBufLength + 1;
        return ascii();
    }
    /// Converts with a converter and its policies.
    /// @throws I18NRuntimeError -4 without a message if the policy of the converter refuses the
    ///     text
    const char* c_str(const I18NConverter& converter, int* length = nullptr,
                      I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Returns the bytes in a block that the caller owns. The caller frees the block with
    /// freeBuffer(), or with the allocator if one is given.
    /// @param length  receives the number of bytes including the NUL; may be null
    void toBytes(char** out, const char* encoding = nullptr, int* length = nullptr,
                 I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    void toBytes(char** out, const I18NConverter& converter, int* length = nullptr,
                 I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Writes the text without a NUL.
    /// @throws I18NRuntimeError with the writer's code if the writer fails
    void toBytes(I18NByteWriter& writer, const char* encoding = nullptr) const;
    void toBytes(I18NByteWriter& writer, const I18NConverter& converter) const;
    /// Frees a block of the default allocator and sets the pointer to null. Does not free the
    /// shared empty text.
    static void freeBuffer(char** block);
    /// @}

    /// @name Normalisation
    /// @{

    /// Brings the contents to a normalisation form. While normalisation is switched off, this only
    /// makes isNormalized() return true.
    /// @throws I18NRuntimeError
    I18NString& normalize(I18NNormalizationForms form = I18N_NFC);
    /// Sets whether later changes bring the contents to normalisation form C. The default is true.
    void useNormalization(bool use);
    /// Returns true if the contents are known to be in normalisation form C.
    bool isNormalized() const { return hasFlag(kI18NNormalized); }
    /// @}

    /// @name How the text is stored
    /// @{

    /// While true, the process stores each new or changed string as UTF-16. A string that is
    /// constructed or assigned by a move keeps the storage of its source.
    static void setForceUnicodeString(bool force);
    static bool isForceUnicodeString();
    bool isUsingAsciiBuffer() const;
    /// @}

    /// @name Buffers of the caller
    /// @{

    /// Stores the string in a caller's UTF-16 buffer from now on. The string takes the text that is
    /// in the buffer, up to a zero unit or the last unit of the buffer, and writes a terminating
    /// NUL there. The buffer must live until the string is destroyed or releases it. attach(),
    /// create(), resizeExternalBuffer() and I18NConverter::toUnicode() release it. Any other change
    /// for which the buffer is too small throws I18NRuntimeError -7.
    /// @param buffer  aligned like char16_t
    /// @param bytes  size of the buffer, at least 2
    /// @throws I18NRuntimeError -10 for a null pointer, a smaller size or an odd address
    void attach(void* buffer, int bytes);
    /// Copies the text in UTF-16 with a terminating NUL. Truncates the text if the buffer is too
    /// small for both.
    /// @return the number of bytes written including the NUL; 0 if the buffer is null or below 2
    ///     bytes
    int copyToExternalBuffer(void* buffer, int bytes) const;
    /// Returns the text as null-terminated UTF-16, valid until the next change. The string moves to
    /// UTF-16. The caller must not write to the buffer, because c_str() could still return
    /// conversions of the old text.
    char16_t* getExternalBuffer();
    /// Makes the string's buffer exactly as large as its text needs.
    /// @throws I18NRuntimeError -7 for a string that uses a caller's buffer. The string releases
    ///     that buffer and is empty then
    void resizeExternalBuffer();
    /// @}

    /// @name LIKE patterns
    /// @{

    /// Returns true if the whole text matches an SQL LIKE pattern. "%" matches any text, and "_"
    /// matches one code point. After the escape character, "%", "_" and the escape character match
    /// themselves.
    /// @param escape  0 for no escape character
    bool matchLike(const I18NString& pattern, wchar_t escape = 0) const;
    bool matchLike(const I18NPatternCode& pattern) const;
    /// Finds the leftmost part of the text that matches. If several matches begin there, finds the
    /// shortest.
    /// @param from  where the search begins
    /// @param start, end  receive the offsets of the part
    bool substringLike(const I18NPatternCode& pattern, I18NStringOffset from,
                       I18NStringOffset& start, I18NStringOffset& end) const;
    bool substringLike(const I18NString& pattern, wchar_t escape, I18NStringOffset from,
                       I18NStringOffset& start, I18NStringOffset& end) const;
    /// Prepares a pattern for repeated use. Free it with deletePatternCode().
    static I18NPatternCode* getPatternCode(const I18NString& pattern, wchar_t escape = 0);
    static void deletePatternCode(I18NPatternCode* code);
    /// @}

    /// @name UTF-16, UTF-8 and ICU
    /// @{

    /// Returns an ICU string with the contents, valid until the next change. The string moves to
    /// UTF-16. The caller must not change the ICU string.
    const icu::UnicodeString& getUnicodeString();

    std::u16string toUtf16() const;
    std::string toUtf8() const;
    /// Lone surrogates stay as they are.
    std::u32string toUtf32() const;
    std::wstring toWide() const;
    /// Returns c_str() as a view without the NUL; valid as long as the bytes of c_str().
    std::string_view utf8View() const {
        int length = 0;
        const char* const bytes = c_str(nullptr, &length);
        return empty() ? std::string_view()
                       : std::string_view(bytes, static_cast<std::size_t>(length) - 1);
    }
    /// @}

    /// @name Comparing
    /// @{

    /// Returns a negative number, 0 or a positive number if this text is less than, equal to or
    /// greater than the other.
    int compare(const I18NString& other) const;
    int compare(const char* utf8) const;
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    int compare(const Text& text) const {
        return compareTo(i18nViewOf(text));
    }
    friend bool operator==(const I18NString& a, const I18NString& b) {
        if (a.nUnits() != b.nUnits()) return false;
        if (a.m_pUnicodeString != nullptr || b.m_pUnicodeString != nullptr)
            return a.compare(b) == 0;
        return std::memcmp(a.ascii(), b.ascii(), static_cast<std::size_t>(a.nUnits())) == 0;
    }
    friend bool operator!=(const I18NString& a, const I18NString& b) { return !(a == b); }
    friend bool operator<(const I18NString& a, const I18NString& b) { return a.compare(b) < 0; }
    friend bool operator<=(const I18NString& a, const I18NString& b) { return a.compare(b) <= 0; }
    friend bool operator>(const I18NString& a, const I18NString& b) { return a.compare(b) > 0; }
    friend bool operator>=(const I18NString& a, const I18NString& b) { return a.compare(b) >= 0; }
    /// An empty string equals null and "".
    friend bool operator==(const I18NString& a, const char* b) { return a.compare(b) == 0; }
    friend bool operator==(const char* a, const I18NString& b) { return b.compare(a) == 0; }
    friend bool operator!=(const I18NString& a, const char* b) { return a.compare(b) != 0; }
    friend bool operator!=(const char* a, const I18NString& b) { return b.compare(a) != 0; }
    /// Standard texts. A null-terminated text can be ordered, too.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend bool operator==(const I18NString& a, const Text& b) {
        return a.compare(b) == 0;
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend bool operator==(const Text& a, const I18NString& b) {
        return b.compare(a) == 0;
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend bool operator!=(const I18NString& a, const Text& b) {
        return a.compare(b) != 0;
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend bool operator!=(const Text& a, const I18NString& b) {
        return b.compare(a) != 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<(const I18NString& a, const Text& b) {
        return a.compare(b) < 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<(const Text& a, const I18NString& b) {
        return b.compare(a) > 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<=(const I18NString& a, const Text& b) {
        return a.compare(b) <= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<=(const Text& a, const I18NString& b) {
        return b.compare(a) >= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>(const I18NString& a, const Text& b) {
        return a.compare(b) > 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>(const Text& a, const I18NString& b) {
        return b.compare(a) < 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>=(const I18NString& a, const Text& b) {
        return a.compare(b) >= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>=(const Text& a, const I18NString& b) {
        return b.compare(a) <= 0;
    }
    /// @}

    /// Appends standard texts, or appends to them.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend I18NString operator+(const I18NString& a, const Text& b) {
        I18NString sum(a);
        sum.append(b);
        return sum;
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    friend I18NString operator+(const Text& a, const I18NString& b) {
        I18NString sum(a);
        sum.append(b);
        return sum;
    }

    /// @name Locks of conversions
    /// @{

    /// The lock that guards conversions of the string at an address, and the index of that lock.
    /// All strings share 64 locks.
    static int getIndexFromPtr(const void* string);
    static QBLThreadCriticalSection& getLockFromPtr(const void* string);
    /// @}

private:
    enum Flags : unsigned char {
        kI18NChanged = 0x01,
        kI18NNormalized = 0x02,
        kI18NStaticBuffer = 0x04,
        kI18NFromCodePage943 = 0x08,
        kI18NNoNormalization = 0x10
    };
    // The higher bits of the flags tell whether the text has a character that is exempt from
    // normalisation. 0 means unknown. Otherwise the bits are twice the ID of the list of exempt
    // characters, plus 1 if the text has such a character.
    static constexpr int kExemptShift = 5;
    static constexpr int kInline = 32;
    struct Conversion;
    struct Bare {};  // stored as ASCII, even under setForceUnicodeString(true)
    I18NString(Bare, I18NStringAllocator allocator, void* context) noexcept;
    friend class I18NConverter;
    friend struct I18NPooledStringEntry;
    friend class I18NTextView;
    friend class I18NStringIteratorValue;

    enum Place { kAtBeginning, kAtEnd, kAnywhere };
    bool has(Place place, const I18NString& text) const;
    static const I18NString& wanted(const I18NString& text) { return text; }
    static I18NString wanted(wchar_t c) { return I18NString(1, c); }
    static std::string_view wanted(std::nullptr_t) { return std::string_view(); }
    static std::string_view wanted(const char* utf8) {
        return utf8 != nullptr ? std::string_view(utf8) : std::string_view();
    }
    static std::wstring_view wanted(const wchar_t* text) {
        return text != nullptr ? std::wstring_view(text) : std::wstring_view();
    }
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    static auto wanted(const Text& text) {
        return i18nViewOf(text);
    }
    template <class View>
    bool has(Place place, const View& text) const {
        return has(place, alike(text));
    }
    /// Makes a string that normalises its text as this string does.
    template <class View>
    I18NString alike(const View& text) const {
        I18NString other;
        other.useNormalization(!hasFlag(kI18NNoNormalization));
        other.set(text);
        return other;
    }

    I18NString& set(std::string_view utf8);
    I18NString& set(std::u16string_view units);
    I18NString& set(std::u32string_view text);
    I18NString& set(std::wstring_view text);
    I18NString& add(std::string_view utf8);
    I18NString& add(std::u16string_view units);
    I18NString& add(std::u32string_view text);
    I18NString& add(std::wstring_view text);
    int compareTo(std::string_view utf8) const;
    template <class View>
    int compareTo(const View& text) const {
        return compare(alike(text));
    }

    bool hasFlag(Flags flag) const { return (m_flags.load(std::memory_order_acquire) & flag) != 0; }
    void setFlag(Flags flag, bool on);
    void setChangedFlag(bool changed) { setFlag(kI18NChanged, changed); }

    char* allocate(int size) const;
    void release(void* block) const noexcept;
    void destroy() noexcept;
    void take(I18NString& other) noexcept;
    void recreate(I18NString&& fresh) noexcept;
    const char* ascii() const {
        return m_asciiBufCapacity <= kInline ? m_asciiInline : m_pAsciiBuffer;
    }

    void reserveAscii(int units);
    void reserveUnits(int units);
    void resizeUnits(int capacity);
    /// Converts the stored text from ASCII to UTF-16, if it is not in UTF-16 yet. No function
    /// converts back.
    /// @param units  the least capacity of the UTF-16 buffer
    void leaveAscii(int units = 0);
    void createUnicodeString();
    void alias();
    void changed();

    void replaceBy(I18NString& fresh) noexcept;
    void assign(const I18NTextView& text);
    bool appendShort(const char* ascii, int length);
    void splice(I18NStringOffset offset, int count, const I18NTextView& text);
    void spliceUnits(int offset, int count, const I18NTextView& text);
    void combine(int offset, int count, const I18NTextView& text, bool pairs);
    void setConverted(const char* bytes, const char* encoding, int length);
    void setConverted(const char* bytes, const I18NConverter& converter, int length);
    void setBytes(const char* bytes, const char* encoding, int length);
    void decodeUTF8(const char* bytes, int length);
    void put(int offset, int count, const I18NTextView& text);
    void renormalize();
    void fill(int copies, const I18NTextView& unit);
    int knownExempt() const;
    void setExempt(int found);
    bool hasJapaneseSubstitutions() const;
    const char* bytes(const char* encoding, int* length, I18NStringAllocator allocator,
                      void* context) const;
    bool setShort(const char* bytes, const char* encoding, int length);
    const Conversion* findConversion(const char* key) const;
    const Conversion* findSameEncoding(const std::string& encoding) const;
    const Conversion* conversion(const char* key, const char* encoding,
                                 const I18NConverter* converter, I18NStringAllocator allocator,
                                 void* context) const;
    static void dropConversions(Conversion* chain) noexcept;

    char16_t* m_pCodeUnits;
    icu::UnicodeString* m_pUnicodeString;  // null while the text is stored as ASCII
    I18NStringAllocator m_allocator;
    void* m_allocatorContext;
    mutable std::atomic<Conversion*> m_pConverted;  // newest first; written under the lock
    mutable int m_convertedLength;                  // of the newest conversion; used under the lock
    const char16_t* m_pContents;
    mutable const char* m_pConvertedEncoding;  // of the newest conversion; used under the lock
    mutable std::atomic<unsigned char> m_flags;
    char m_asciiInline[kInline + 1];
    mutable char* m_pAsciiBuffer;
    int m_asciiBufCapacity;  // kInline while the text is in m_asciiInline; else the block's size
    int m_asciiBufLength;
    int m_unitLength;
    int m_unitCapacity;  // units that fit before the NUL
};

/// Receives the bytes that I18NString::toBytes() writes.
///
/// Threads: write() is called by the thread that calls toBytes().
class QBL_API I18NByteWriter {
public:
    virtual ~I18NByteWriter();
    /// @return 0 on success; a negative code of I18NErrorCodes ends the writing
    virtual int write(const char* bytes, int length) = 0;
};

/// Frees a block as I18NString::freeBuffer does.
///
/// Threads: any thread.
QBL_API void I18NFreeBuffer(char*& block);
QBL_API void I18NFreeBuffer(void*& block);
/// The shared empty text, which is never freed.
extern QBL_API char gI18NNullString[4];

QBL_API I18NString operator+(const I18NString& a, const I18NString& b);
QBL_API I18NString operator+(const I18NString& a, const char* utf8);
QBL_API I18NString operator+(const I18NString& a, const wchar_t* b);
QBL_API I18NString operator+(const I18NString& a, wchar_t b);
/// Writes the UTF-8 form, without a terminating NUL.
QBL_API std::ostream& operator<<(std::ostream& out, const I18NString& text);
/// Reads a word up to white space as UTF-8.
QBL_API std::istream& operator>>(std::istream& in, I18NString& text);

template <>
struct std::hash<I18NString> {
    QBL_API std::size_t operator()(const I18NString& text) const noexcept;
};

/// A hash for containers that look up strings by UTF-8 without making a string, since C++20:
///     std::unordered_map<I18NString, int, I18NTextHash, std::equal_to<>> counts;
///     counts.find("word");
///
/// The hash of UTF-8 is the hash of its form C. So a key with useNormalization(false) that is not
/// in form C equals its own UTF-8, but is found only by an I18NString with the same code units.
///
/// Threads: any thread may call it.
struct I18NTextHash {
    typedef void is_transparent;
    std::size_t operator()(const I18NString& text) const noexcept {
        return std::hash<I18NString>()(text);
    }
    /// @throws QBLOutOfMemoryError if the text is not ASCII and memory runs out
    QBL_API std::size_t operator()(std::string_view utf8) const;
};

#include "i18n/cpp/i18n_string_iterator.hpp"

#endif

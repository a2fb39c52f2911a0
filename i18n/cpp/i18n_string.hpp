#ifndef I18N_CPP_I18N_STRING_HPP
#define I18N_CPP_I18N_STRING_HPP

#include <unicode/uversion.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_allocator.h"

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

/// A position in a string, in UTF-16 code units, whatever the string is kept in.
typedef int I18NStringOffset;

/// The normalisation forms of the Unicode Standard, Annex #15.
enum I18NNormalizationForms { I18N_NFC, I18N_NFD, I18N_NFKC, I18N_NFKD };

/// A Unicode string. A text of ASCII characters given in an encoding that keeps them is kept as
/// bytes, up to 32 of them without any allocation; every other one as UTF-16, with an ICU string
/// beside it. A string that has left ASCII stays in UTF-16, unless another one is moved into it.
/// Offsets and counts are in UTF-16 code units, byte lengths are in bytes, and a length of -1 means
/// up to the terminating zero.
///
/// Contents are kept in normalisation form C unless that is switched off. A string that holds a
/// character which the resources exempt stays as it is given. Text is case-sensitive and compares
/// in the order of its code units.
///
/// An allocator given with a constructor gets the string its memory from then on, and does what
/// realloc(3) does.
///
/// A wide character is a code point: above U+FFFF it becomes a surrogate pair, a surrogate stays
/// what it is, and what is beyond Unicode becomes U+FFFD.
///
/// Errors: QBLOutOfMemoryError; I18NRuntimeError where said. A string is as it was after an error.
///
/// Threads: one at a time for each object, but for the constant operations: any number of threads
/// may call those at a time, c_str() and toBytes() included.
class QBL_API I18NString {
public:
    /// @name Making a string
    /// @{

    explicit I18NString(I18NStringAllocator allocator = nullptr, void* context = nullptr);
    /// A copy has the allocator given here, not that of the original. Its text is the same, also if
    /// that is in another form.
    I18NString(const I18NString& other, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    I18NString(I18NString&& other) noexcept;
    /// From UTF-16 memory of any alignment, up to a zero unit; an odd byte at the end is ignored.
    /// I18NString("abc", 3) comes here too, since UTF-16 is often kept in buffers of char: it reads
    /// one unit. For three bytes of text write I18NString("abc", nullptr, 3).
    I18NString(const void* utf16, int byteLength, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    I18NString(int count, wchar_t c, I18NStringAllocator allocator = nullptr,
               void* context = nullptr);
    explicit I18NString(const wchar_t* text, I18NStringAllocator allocator = nullptr,
                        void* context = nullptr);
    /// From bytes; null for UTF-8. Ill-formed UTF-8 gives error values in its place, and what other
    /// encodings do not have is replaced as by I18N_SUBSTITUTE. What needs a converter is empty
    /// until the internationalisation layer is initialised.
    /// @throws I18NRuntimeError -3 for an encoding that is not there, if a converter is needed
    explicit I18NString(const char* bytes, const char* encoding = nullptr, int length = -1,
                        I18NStringAllocator allocator = nullptr, void* context = nullptr);
    /// From bytes by a converter, with its policies; works before the layer is initialised too.
    /// @throws I18NRuntimeError -4, without a text, for bytes that its policy refuses
    I18NString(const char* bytes, const I18NConverter& converter, int length = -1,
               I18NStringAllocator allocator = nullptr, void* context = nullptr);
    ~I18NString() {
        if (m_pUnicodeString != nullptr || m_asciiBufCapacity > kInline ||
            m_pConverted.load(std::memory_order_relaxed) != nullptr)
            destroy();
    }

    /// Make the object anew, as the constructors do, with the allocator given here.
    template <class... Arguments>
    void create(const Arguments&... arguments) {
        recreate(I18NString(arguments...));
    }
    /// @}

    /// @name Assigning
    /// @{

    /// Keep the allocator that the string has, and whether it is normalised. A text that was
    /// brought to another form by normalize() stays in it.
    I18NString& operator=(const I18NString& other);
    // Strings with different allocators, or with a caller's buffer, are copied, which can fail.
    I18NString& operator=(I18NString&& other);  // NOLINT(performance-noexcept-move-constructor)
    I18NString& operator=(const char* utf8);
    I18NString& operator=(const wchar_t* text);
    I18NString& operator=(wchar_t c);
    I18NString& operator=(const I18NPooledString& text);
    /// @}

    /// @name Changing the text
    /// @{

    I18NString& append(const I18NString& other);
    I18NString& append(const char* utf8);
    I18NString& append(const wchar_t* text);
    I18NString& append(wchar_t c);
    I18NString& append(const I18NPooledString& text);
    template <class Text>
    I18NString& operator+=(const Text& text) {
        return append(text);
    }
    /// Offsets beyond the end count as the end, negative ones as the beginning.
    I18NString& insert(I18NStringOffset offset, const I18NString& other);
    I18NString& insert(I18NStringOffset offset, const char* utf8);
    I18NString& insert(I18NStringOffset offset, const wchar_t* text);
    I18NString& insert(I18NStringOffset offset, wchar_t c);
    I18NString& replace(I18NStringOffset offset, int count, const I18NString& other);
    I18NString& replace(I18NStringOffset offset, int count, const char* utf8);
    I18NString& replace(I18NStringOffset offset, int count, const wchar_t* text);
    I18NString& replace(I18NStringOffset offset, int count, wchar_t c);
    /// A negative count means all to the end, as everywhere.
    I18NString& erase(I18NStringOffset offset, int count = -1);
    /// Empties the string.
    I18NString& remove();
    /// Cuts the string to a number of units, or fills it up to that: with whole characters, that
    /// may then combine.
    I18NString& resize(int units, wchar_t fill = L' ');
    I18NString& trimLeading(wchar_t c = L' ');
    I18NString& trimTrailing(wchar_t c = L' ');
    I18NString& trim(wchar_t c = L' ');
    /// @}

    /// @name Searching
    /// @{

    /// @return the offset found; -1 when there is none. An empty text is found where the search
    ///     starts, if that is in the string.
    I18NStringOffset find(const I18NString& text, I18NStringOffset start = 0) const;
    I18NStringOffset find(const wchar_t* text, I18NStringOffset start = 0) const;
    I18NStringOffset find(wchar_t c, I18NStringOffset start = 0) const;
    /// The last one that begins at start or before; -1 starts at the end.
    I18NStringOffset rfind(const I18NString& text, I18NStringOffset start = -1) const;
    I18NStringOffset rfind(const wchar_t* text, I18NStringOffset start = -1) const;
    I18NStringOffset rfind(wchar_t c, I18NStringOffset start = -1) const;
    /// The first or last code point that is, or is not, one of those in a text.
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
    /// @}

    /// @name Lengths
    /// @{

    bool empty() const { return nUnits() == 0; }
    /// Code units.
    int nUnits() const { return m_pUnicodeString == nullptr ? m_asciiBufLength : m_unitLength; }
    /// Code points; a surrogate pair counts once.
    int length() const { return nCodePoints(); }
    int nCodePoints() const;
    /// Bytes of the UTF-16 form with its terminator, but 0 for an empty string.
    int size() const;
    static int length(const I18NString& other) { return other.length(); }
    static int length(const char* utf8) { return I18NString(utf8).length(); }
    static int length(const wchar_t* text) { return I18NString(text).length(); }
    static int size(const I18NString& other) { return other.size(); }
    static int size(const char* utf8) { return I18NString(utf8).size(); }
    static int size(const wchar_t* text) { return I18NString(text).size(); }
    /// Deliberately always 0: how wide a text is shown was never settled.
    int displaySize() const { return 0; }
    /// @}

    /// @name Going through code points
    /// @{

    /// The offset behind the code point at an offset; -1 unless that is in the string.
    I18NStringOffset incrementOffset(I18NStringOffset offset) const;
    /// The offset of the code point before an offset; -1 unless there is one.
    I18NStringOffset decrementOffset(I18NStringOffset offset) const;
    /// The code point at an offset; 0 at the end and outside.
    wchar_t codePointAt(I18NStringOffset offset) const;
    I18NStringIterator begin() const;
    I18NStringIterator end() const;
    /// @}

    /// @name Bytes in an encoding
    /// @{

    /// The text in an encoding, with a zero of its width behind it. It belongs to the string and
    /// stays until the string is changed or destroyed; asked for again it is the same. What the
    /// encoding does not have is replaced as by I18N_SUBSTITUTE.
    /// @param encoding  null for UTF-8
    /// @param length  receives the bytes, the zero included; null if not wanted. An empty string
    ///     that is kept in UTF-16 has four of them.
    /// @param allocator, context  for the conversion; null means the string's own. They must last
    ///     as long as the string, or until it is converted again after a change
    /// @throws I18NRuntimeError -3 for an encoding that is not there, if a converter is needed
    const char* c_str(const char* encoding = nullptr, int* length = nullptr,
                      I18NStringAllocator allocator = nullptr, void* context = nullptr) const {
        if (m_pUnicodeString != nullptr || encoding != nullptr)
            return bytes(encoding, length, allocator, context);
        if (length != nullptr) *length = m_asciiBufLength + 1;
        return ascii();
    }
    /// The same by a converter, with its policies.
    /// @throws I18NRuntimeError -4, without a text, for text that its policy refuses
    const char* c_str(const I18NConverter& converter, int* length = nullptr,
                      I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// The same as a block of the caller's, to be freed by freeBuffer(); one that an allocator was
    /// given for, by that.
    /// @param length  receives the bytes, the zero included; null if not wanted
    void toBytes(char** out, const char* encoding = nullptr, int* length = nullptr,
                 I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    void toBytes(char** out, const I18NConverter& converter, int* length = nullptr,
                 I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Writes the text without the zero.
    /// @throws I18NRuntimeError with the writer's code when it fails
    void toBytes(I18NByteWriter& writer, const char* encoding = nullptr) const;
    void toBytes(I18NByteWriter& writer, const I18NConverter& converter) const;
    /// Frees a block of the default allocator and sets the pointer to null; a shared empty text
    /// stays.
    static void freeBuffer(char** block);
    /// @}

    /// @name Normalisation
    /// @{

    /// Sets the contents to a normalisation form; does nothing but claim to where it is switched
    /// off.
    /// @throws I18NRuntimeError
    I18NString& normalize(I18NNormalizationForms form = I18N_NFC);
    /// Whether contents are brought to normalisation form C from now on; they are at first.
    void useNormalization(bool use);
    /// Whether the contents are known to be in normalisation form C.
    bool isNormalized() const { return hasFlag(kI18NNormalized); }
    /// @}

    /// @name How the text is kept
    /// @{

    /// While true every new string is kept in UTF-16, for the whole process.
    static void setForceUnicodeString(bool force);
    static bool isForceUnicodeString();
    bool isUsingAsciiBuffer() const;
    /// @}

    /// @name Buffers of the caller
    /// @{

    /// Makes a caller's UTF-16 buffer the string's own: with the text that is in it, up to a zero,
    /// and in its place from then on. The unit behind the text is made a zero, at the latest the
    /// last. The buffer must live until the string lets go of it, which create(),
    /// resizeExternalBuffer() and I18NConverter::toUnicode() do. Any other change for which it is
    /// too small throws I18NRuntimeError -7.
    /// @param buffer  aligned as units are
    /// @param bytes  of the buffer, 2 at least
    /// @throws I18NRuntimeError -10 for null, fewer bytes, or an odd address
    void attach(void* buffer, int bytes);
    /// Copies as much as fits in UTF-16, with a zero behind it.
    /// @return bytes written, the zero included; 0 for null or less than 2 bytes
    int copyToExternalBuffer(void* buffer, int bytes) const;
    /// The text in UTF-16, with a zero behind it, until the next change. The string leaves ASCII.
    /// What is written there passes its conversions by: it is for reading.
    char16_t* getExternalBuffer();
    /// Gives the string a buffer that has just room for its text.
    /// @throws I18NRuntimeError -7 for a string with a caller's buffer, which it lets go of
    void resizeExternalBuffer();
    /// @}

    /// @name LIKE patterns
    /// @{

    /// Whether the whole text matches an SQL LIKE pattern: "%" stands for any text, "_" for one
    /// code point, and after the escape character both, and that character, for themselves.
    /// @param escape  0 for none
    bool matchLike(const I18NString& pattern, wchar_t escape = 0) const;
    bool matchLike(const I18NPatternCode& pattern) const;
    /// Finds the leftmost part that matches, and of those that begin there the shortest.
    /// @param from  where to begin
    /// @param start, end  receive the part's offsets
    bool substringLike(const I18NPatternCode& pattern, I18NStringOffset from,
                       I18NStringOffset& start, I18NStringOffset& end) const;
    bool substringLike(const I18NString& pattern, wchar_t escape, I18NStringOffset from,
                       I18NStringOffset& start, I18NStringOffset& end) const;
    /// A pattern made ready, to be freed by deletePatternCode().
    static I18NPatternCode* getPatternCode(const I18NString& pattern, wchar_t escape = 0);
    static void deletePatternCode(I18NPatternCode* code);
    /// @}

    /// @name UTF-16, UTF-8 and ICU
    /// @{

    /// The ICU string with the contents, which the string leaves ASCII for. It is valid until the
    /// next change, which is not to be made through it.
    const icu::UnicodeString& getUnicodeString();

    std::u16string toUtf16() const;
    std::string toUtf8() const;
    /// @}

    /// @name Comparing
    /// @{

    /// Negative, 0 or positive as this is before, equal to or behind the other.
    int compare(const I18NString& other) const;
    int compare(const char* utf8) const;
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
    /// @}

    /// @name Locks of conversions
    /// @{

    /// The lock that conversions of the string at an address are made under; 64 locks serve all.
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
    // The other bits of the flags say what is known of the characters in the text that must not be
    // normalised: 0 for nothing, else twice the number of the list of these, and one more if the
    // text has any.
    static constexpr int kExemptShift = 5;
    static constexpr int kInline = 32;
    struct Conversion;
    struct Bare {};  // for a string in ASCII, whatever is asked for of all strings
    I18NString(Bare, I18NStringAllocator allocator, void* context) noexcept;
    friend class I18NConverter;
    friend struct I18NPooledStringEntry;
    friend class I18NTextView;
    friend class I18NStringIteratorValue;

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
    icu::UnicodeString* m_pUnicodeString;  // null while the text is kept in ASCII
    I18NStringAllocator m_allocator;
    void* m_allocatorContext;
    mutable std::atomic<Conversion*>
        m_pConverted;               // the newest first; under the lock, but for reads
    mutable int m_convertedLength;  // of the newest, under the lock
    const char16_t* m_pContents;
    mutable const char* m_pConvertedEncoding;  // of the newest, under the lock
    mutable std::atomic<unsigned char> m_flags;
    char m_asciiInline[kInline + 1];
    mutable char* m_pAsciiBuffer;
    int m_asciiBufCapacity;  // kInline while the text is in the object; else bytes, with the zero
    int m_asciiBufLength;
    int m_unitLength;
    int m_unitCapacity;  // units that fit before the zero
};

/// Where a text is written to, piece by piece.
///
/// Threads: write() is called by the thread that calls toBytes().
class QBL_API I18NByteWriter {
public:
    virtual ~I18NByteWriter();
    /// @return 0; a negative code of I18NErrorCodes ends the writing
    virtual int write(const char* bytes, int length) = 0;
};

/// Frees a block as I18NString::freeBuffer does.
///
/// Threads: any thread.
QBL_API void I18NFreeBuffer(char*& block);
QBL_API void I18NFreeBuffer(void*& block);
/// The empty text that is shared, and never freed.
extern QBL_API char gI18NNullString[4];

QBL_API I18NString operator+(const I18NString& a, const I18NString& b);
QBL_API I18NString operator+(const I18NString& a, const char* utf8);
QBL_API I18NString operator+(const I18NString& a, const wchar_t* b);
QBL_API I18NString operator+(const I18NString& a, wchar_t b);
/// Writes the UTF-8 form, without the terminating zero.
QBL_API std::ostream& operator<<(std::ostream& out, const I18NString& text);
/// Reads a word up to white space, as UTF-8.
QBL_API std::istream& operator>>(std::istream& in, I18NString& text);

template <>
struct std::hash<I18NString> {
    QBL_API std::size_t operator()(const I18NString& text) const noexcept;
};

#endif

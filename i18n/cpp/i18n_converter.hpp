#ifndef I18N_CPP_I18N_CONVERTER_HPP
#define I18N_CPP_I18N_CONVERTER_HPP

#include <cstddef>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_converter_types.h"

class I18NConverterAccess;
class I18NLocale;
class I18NString;
struct UConverter;

/// What the lookup and user-defined callbacks of i18n_converter_callbacks.hpp know of the
/// converter they work for.
///
/// Threads: as the converter.
struct I18NInputCallbackContext {
    const char* encoding;            ///< as it was named
    I18NUserInputCallback callback;  ///< null unless the policy is I18N_USER_DEFINED
    const char* canonicalName;       ///< ICU's first name of it; null is asked for at each call
};
struct I18NOutputCallbackContext {
    const char* encoding;
    I18NUserOutputCallback callback;
    const char* canonicalName;
};

/// Converts text between UTF-16, in the machine's byte order and without a byte-order mark, and
/// the bytes of an encoding that is given by name. Any name that ICU knows will do.
///
/// There are three forms each way. The fixed and the allocating ones convert a whole text and end
/// it with a NUL, the output's own: two bytes wide in Unicode, and in bytes as wide as the
/// smallest character of the encoding. The streaming ones take a text in pieces cut anywhere, and
/// keep in the converter what a piece leaves unfinished; the last piece goes through one of the
/// other forms, so that a sequence cut off at the end is noticed.
///
/// What cannot be converted is treated as the policy of the direction says. Until one is set,
/// the converter substitutes, although the getters call it I18N_LOOKUP.
///
/// Once the internationalisation layer is initialised, converters for UTF-8, UTF-16 and the
/// platform's encoding are copies of prepared ones. This includes "ASCII", which is UTF-8 from
/// then on and strict 7-bit US-ASCII before.
///
///     I18NConverter latin("ISO-8859-1");
///     latin.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
///     I18NErrorCodes error;
///     latin.fromUnicode(bytes, sizeof bytes, u"text", &error);
///
/// An error parameter receives I18N_OK or what failed; without one the same failure throws an
/// I18NRuntimeError with that code and no text. Unicode memory need not be aligned.
///
/// Threads: one thread at a time; also the conversions, although const, change the state that
/// streaming keeps. Any number of threads may copy a converter that no thread changes.
class QBL_API I18NConverter {
public:
    /// @name Making a converter
    /// @{

    /// @param encoding  null or empty means UTF-8
    /// @throws I18NRuntimeError with I18N_ENCODING if there is no such encoding.
    /// @throws QBLOutOfMemoryError
    explicit I18NConverter(const char* encoding);
    /// The copy has everything of the other, also what streaming has left unfinished, and is
    /// independent of it.
    I18NConverter(const I18NConverter& other);
    I18NConverter& operator=(const I18NConverter& other);
    ~I18NConverter();
    /// Assigns; a failure leaves this converter as it was.
    void create(const I18NConverter& other);
    /// @}

    /// @name Encoding
    /// @{

    /// The name given to the constructor, or "UTF-8" for none; owned by the converter.
    const char* getEncoding() const { return m_outputContext.encoding; }
    /// @}

    /// @name Policies
    /// @{

    int getBuiltInUnconvertibleInputSequenceCallback() const { return m_iInputPolicy; }
    int getBuiltInUnconvertibleOutputSequenceCallback() const { return m_iOutputPolicy; }
    /// Null unless one is set.
    I18NUserInputCallback getUserDefinedUnconvertibleInputSequenceCallback() const {
        return m_inputCallback;
    }
    I18NUserOutputCallback getUserDefinedUnconvertibleOutputSequenceCallback() const {
        return m_outputCallback;
    }
    /// Sets the policy of a direction and forgets its function.
    /// @param policy  an I18NUnconvertiblePolicy; any other number is ignored.
    ///        I18N_USER_DEFINED without a function makes such conversions fail
    void setBuiltInUnconvertibleInputSequenceCallback(int policy);
    void setBuiltInUnconvertibleOutputSequenceCallback(int policy);
    /// Sets the policy I18N_USER_DEFINED with this function, which must not use the converter.
    /// Null is ignored.
    void setUserDefinedUnconvertibleInputSequenceCallback(I18NUserInputCallback callback);
    void setUserDefinedUnconvertibleOutputSequenceCallback(I18NUserOutputCallback callback);

    /// Whether a character that the encoding lacks may become another one that its table takes for
    /// similar, a best fit, such as the full-width form of a letter or a letter without its accent.
    /// Reading the bytes again then gives the other character. Such mappings are on at first;
    /// without them the policy of the output decides. A few converters of ICU apply those of
    /// private-use characters in any case, and the one to compound text drops what it lacks; a
    /// text stream treats both as lacking.
    void useFallback(bool on);
    bool usesFallback() const;
    /// @}

    /// @name Sizes
    /// @{

    /// Bytes that so many UTF-16 code units need at most in the encoding, with a NUL. Escape
    /// sequences and replacements of the policies may need more. Ends at the limits of int.
    int numLegacyBytes(int codeUnits) const;
    /// The reverse: code units that so many bytes hold at least.
    int numLegacyCodePoints(int bytes) const;
    /// Bytes of so many UTF-16 code units and a NUL; ends at the limits of int.
    int numUnicodeBytes(int codeUnits) const;
    int numUnicodeCodePoints(int bytes) const;
    /// The width of a NUL in the encoding: 1, in UTF-16 2, in UTF-32 4.
    int sizeofLegacyNull() const { return m_iNullSize; }
    int sizeofUnicodeNull() const { return 2; }
    /// The length in bytes of text in the encoding, without the NUL.
    /// @param text  null gives 0
    /// @param length  in bytes; a NUL in the last place is not counted. Below 0 the text ends
    ///        with a NUL
    int getEffectiveBufferSize(const char* text, int length) const;
    /// @}

    /// @name From Unicode to bytes
    /// @{

    /// @param size  of the destination, in bytes; what is no whole unit of the encoding is not
    ///        used. The NUL is written in any case, cut to this size if it is smaller. A size of
    ///        just a NUL takes no text and is no failure
    /// @param source  UTF-16 that ends with a NUL
    /// @param error  I18N_ARGUMENT for a null pointer or no size, I18N_TOO_SMALL if the text did
    ///        not fit, I18N_CONVERSION if it cannot be converted
    void fromUnicode(char* destination, int size, const void* source,
                     I18NErrorCodes* error = nullptr) const;
    /// @param destination  receives a block from the allocator, for the caller to free; null
    ///        after a failure
    /// @param size  receives the bytes of the text, NUL included
    /// @param allocator  null for realloc(3), and then free(3) takes the block back
    /// @throws I18NRuntimeError with I18N_ARGUMENT or I18N_CONVERSION, QBLOutOfMemoryError
    void fromUnicode(char** destination, int* size, const void* source,
                     I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// From a string, with its allocator if none is given. An empty one gives four zero bytes,
    /// which without any allocator are the shared empty text (I18NString::freeBuffer leaves it).
    void fromUnicode(char** destination, int* size, const I18NString& source,
                     I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Converts a piece of a text; the output of each call ends with a NUL.
    /// @param sourceSize  in bytes, of which whole code units are used; 0 only writes what an
    ///        I18N_STREAM_FULL before has left, if there is any. If the last unit is a NUL, it
    ///        is not converted but consumed. Below 0 the source ends with a NUL, to be consumed
    ///        too
    /// @param written  receives the bytes written, NUL included; may be null
    /// @param consumed  receives the bytes used of the source; may be null
    /// @param error  I18N_STREAM_FULL when the destination was too small: go on with the rest of
    ///        the source, in a larger one if it has no room but for the NUL. I18N_ARGUMENT for a
    ///        null pointer, but for a source of size 0, or no size; I18N_CONVERSION
    void fromUnicodeStream(char* destination, int size, const void* source, int sourceSize,
                           int* written, int* consumed, I18NErrorCodes* error = nullptr) const;
    /// Into a block from the allocator, into which everything fits; none for a source size of 0
    /// when nothing is left to be written.
    void fromUnicodeStream(char** destination, int* size, const void* source, int sourceSize,
                           I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// @}

    /// @name From bytes to Unicode
    /// @{

    /// @param size  of the destination, in bytes; an odd byte is not used. The NUL is written
    ///        if there are two. Just two bytes take no text, and are no failure
    /// @param length  of the source, in bytes; below 0 it ends with a NUL
    /// @param error  I18N_ARGUMENT for a null pointer, I18N_TOO_SMALL, I18N_CONVERSION
    void toUnicode(void* destination, int size, const char* source, int length,
                   I18NErrorCodes* error = nullptr) const;
    /// As the allocating fromUnicode(). A null source without a length gives no block.
    void toUnicode(void** destination, int* size, const char* source, int length,
                   I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Replaces a string's contents, with a block of its allocator; a buffer of its owner's is let
    /// go of. A null source or a length of 0 empties it.
    void toUnicode(I18NString& destination, const char* source, int length) const;
    /// As fromUnicodeStream(), but that a NUL within the length is text, and one that ends the
    /// source does not count as consumed. A destination of no size is too small.
    void toUnicodeStream(void* destination, int size, const char* source, int length, int* written,
                         int* consumed, I18NErrorCodes* error = nullptr) const;
    void toUnicodeStream(void** destination, int* size, const char* source, int length,
                         I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Forgets what streaming to Unicode has left unfinished.
    void reset();
    /// @}

    /// @name What names tell
    /// @{

    /// What can be told from a name alone. Letters count in either case, and null or empty is
    /// none of these, but for UTF-8.
    /// Null, empty, UTF8, UTF-8 and ASCII.
    static bool isUTF8(const char* encoding);
    /// Begins with ISO-8859 or ISO8859.
    static bool isISO8859(const char* encoding);
    static bool isWindows1252(const char* encoding);
    /// UTF16, UTF-16, UCS2, UCS-2, or begins with UTF16_P.
    static bool isUTF16(const char* encoding);
    /// UTF32, UTF-32, UCS4, UCS-4, or begins with UTF32_P.
    static bool isUTF32(const char* encoding);
    /// Exactly I18NGetPlatformDefaultEncoding(), letter by letter.
    static bool isPlatformDefault(const char* encoding);
    /// Whether files in this encoding usually begin with a byte-order mark: UTF-16 and UTF-32,
    /// under any of their names.
    static bool shouldUseBOM(const char* encoding);
    static bool shouldUseBOM(const I18NString& encoding);
    /// @}

    /// @name The process and its locales
    /// @{

    /// Whether the internationalisation layer is initialised.
    static bool isInitialized();
    /// The usual encoding of a locale's text files, as of I18NInternalResources.
    /// @param encoding  receives its name
    static void getEncodingForLocale(I18NString& encoding, const I18NLocale& locale);
    /// @}

private:
    friend class I18NConverterAccess;
    friend class I18NString;
    friend struct I18NCountedText;

    enum Direction : unsigned char { kInput = 0, kOutput = 1 };
    enum Flag : unsigned char {
        kPending = 1,    // ICU keeps output that had no room
        kHasContext = 4  // ICU has the address of our context
    };

    static constexpr int kRoom = 320;

    I18NConverter();
    void create(const char* name);
    void adopt(const I18NConverter& other, const char* encoding);
    void installInput(int policy, I18NUserInputCallback callback);
    void installOutput(int policy, I18NUserOutputCallback callback);

    I18NErrorCodes convert(Direction direction, char* destination, int size, const char*& source,
                           const char* end, bool flush, int& written) const;
    char* allocate(Direction direction, int* size, const char* source, const char* end, bool flush,
                   I18NStringAllocator allocator, void* context) const;
    bool is(Flag flag, Direction direction) const { return (m_cFlags >> direction & flag) != 0; }
    void set(Flag flag, Direction direction, bool on) const;
    void reset(Direction direction) const;

    int m_iInputPolicy;
    int m_iOutputPolicy;
    I18NUserInputCallback m_inputCallback;
    I18NUserOutputCallback m_outputCallback;
    mutable unsigned char m_cFlags;             // of each direction
    I18NOutputCallbackContext m_outputContext;  // the name's block is owned, or m_room
    int m_iMaxBytes;                            // of a code unit in the encoding
    int m_iNullSize;
    UConverter* m_pConverter;
    int m_iCloneSize;
    I18NInputCallbackContext m_inputContext;
    // The name, and the clone of a converter for a Unicode encoding, if both have room, so that
    // making one allocates nothing.
    alignas(std::max_align_t) char m_room[kRoom];
};

#endif

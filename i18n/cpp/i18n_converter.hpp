#ifndef I18N_CPP_I18N_CONVERTER_HPP
#define I18N_CPP_I18N_CONVERTER_HPP

#include <cstddef>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"
#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_converter_types.h"

class I18NConverterAccess;
class I18NLocale;
class I18NString;
struct UConverter;

/// What the lookup and user-defined callbacks of i18n_converter_callbacks.hpp know about the
/// converter that calls them.
///
/// Threads: as for the converter.
struct I18NInputCallbackContext {
    const char* encoding;            ///< the name given to the constructor
    I18NUserInputCallback callback;  ///< null unless the policy is I18N_USER_DEFINED
    const char* canonicalName;       ///< ICU's first name; if null, each call looks it up
};
struct I18NOutputCallbackContext {
    const char* encoding;
    I18NUserOutputCallback callback;
    const char* canonicalName;
};

/// Converts text between UTF-16 and the bytes of a named encoding. The UTF-16 text is in the
/// machine's byte order and has no byte-order mark. Any name that ICU knows is valid, unless it
/// contains a "/".
///
/// Each direction has three forms. The fixed form writes into the caller's buffer, and the
/// allocating form returns a block. Both convert a whole text and terminate the output with a NUL.
/// The NUL has two bytes in UTF-16. In any other encoding, it is as wide as the encoding's smallest
/// character. The streaming form takes a text in pieces, cut anywhere. The converter keeps the
/// unfinished end of each piece. Convert the last piece with the fixed or the allocating form, so
/// that a truncated sequence at the end is detected.
///
/// The policy of each direction decides what happens to text that cannot be converted. Until a
/// policy is set, the converter substitutes, although the getters return I18N_LOOKUP.
///
/// Once the internationalisation layer is initialised, converters for UTF-8, UTF-16 and the
/// platform's encoding are copies of prepared converters. From then on, the name "ASCII" means
/// UTF-8; before, it means strict 7-bit US-ASCII.
///
///     I18NConverter latin("ISO-8859-1");
///     latin.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
///     I18NErrorCodes error;
///     latin.fromUnicode(bytes, sizeof bytes, u"text", &error);
///
/// An error parameter receives I18N_OK or the error code. If the parameter is null, or if the
/// operation has no such parameter, a failure throws an I18NRuntimeError with that code and no
/// message. UTF-16 memory need not be aligned.
///
/// Threads: one thread at a time. This includes conversions: they are const, but change the
/// streaming state. Any number of threads may copy a converter that no thread changes.
class QBL_API I18NConverter {
public:
    /// @name Making a converter
    /// @{

    /// @param encoding  null or empty means UTF-8
    /// @throws I18NRuntimeError with I18N_ENCODING if there is no such encoding
    /// @throws QBLOutOfMemoryError
    explicit I18NConverter(const char* encoding);
    /// Copies everything, including the state of an unfinished stream. The copy is independent of
    /// the original.
    I18NConverter(const I18NConverter& other);
    I18NConverter& operator=(const I18NConverter& other);
    ~I18NConverter();
    /// Assigns the other converter. After a failure, this converter is unchanged.
    void create(const I18NConverter& other);
    /// @}

    /// @name Encoding
    /// @{

    /// The name given to the constructor, or "UTF-8" if that was null or empty; owned by the
    /// converter.
    const char* getEncoding() const { return m_outputContext.encoding; }
    /// @}

    /// @name Policies
    /// @{

    int getBuiltInUnconvertibleInputSequenceCallback() const { return m_iInputPolicy; }
    int getBuiltInUnconvertibleOutputSequenceCallback() const { return m_iOutputPolicy; }
    /// Null unless a function is set.
    I18NUserInputCallback getUserDefinedUnconvertibleInputSequenceCallback() const {
        return m_inputCallback;
    }
    I18NUserOutputCallback getUserDefinedUnconvertibleOutputSequenceCallback() const {
        return m_outputCallback;
    }
    /// Sets the policy of a direction and removes the function of that direction.
    /// @param policy  an I18NUnconvertiblePolicy; any other number is ignored. If I18N_USER_DEFINED
    ///     is set here, conversions fail where they would call a function
    void setBuiltInUnconvertibleInputSequenceCallback(int policy);
    void setBuiltInUnconvertibleOutputSequenceCallback(int policy);
    /// Sets this function and the policy I18N_USER_DEFINED. The function must not use the
    /// converter. A null function is ignored.
    void setUserDefinedUnconvertibleInputSequenceCallback(I18NUserInputCallback callback);
    void setUserDefinedUnconvertibleOutputSequenceCallback(I18NUserOutputCallback callback);

    /// Sets whether the converter may replace a character that the encoding lacks by a best fit:
    /// another character that the encoding's table lists as similar, such as a full-width form of a
    /// letter or a letter without its accent. Decoding the bytes then gives that other character. A
    /// new converter uses best fits. If they are off, the output policy decides. A few ICU
    /// converters always use best fits for private-use characters. The converter to compound text
    /// drops characters that the encoding lacks. A text stream treats all these as characters that
    /// the encoding lacks.
    void useFallback(bool on);
    bool usesFallback() const;
    /// @}

    /// @name Sizes
    /// @{

    /// Returns the maximum number of bytes that this many UTF-16 code units and a NUL take in the
    /// encoding. Escape sequences and the replacements of a policy may take more. The result is
    /// limited to the range of int.
    int numLegacyBytes(int codeUnits) const;
    /// Returns how many code units are certain to fit into this many bytes together with a NUL.
    int numLegacyCodePoints(int bytes) const;
    /// Returns the number of bytes that this many UTF-16 code units and a NUL take, limited to the
    /// range of int.
    int numUnicodeBytes(int codeUnits) const;
    int numUnicodeCodePoints(int bytes) const;
    /// The width of a NUL in the encoding: 2 in UTF-16, 4 in UTF-32, usually 1 in others.
    int sizeofLegacyNull() const { return m_iNullSize; }
    int sizeofUnicodeNull() const { return 2; }
    /// Returns the length in bytes of text in the encoding, without the NUL.
    /// @param text  null gives 0
    /// @param length  in bytes; a NUL at the end is not counted. A negative length means that the
    ///     text is null-terminated
    int getEffectiveBufferSize(const char* text, int length) const;
    /// @}

    /// @name From Unicode to bytes
    /// @{

    /// @param size  of the destination, in bytes; a rest smaller than a unit of the encoding is not
    ///     used. The NUL is always written. It is truncated if the destination is smaller than the
    ///     NUL. If only the NUL fits, no text is converted and the call succeeds
    /// @param source  null-terminated UTF-16
    /// @param error  receives I18N_ARGUMENT for a null pointer or a size below 1, I18N_TOO_SMALL if
    ///     the text does not fit, I18N_CONVERSION if it cannot be converted
    void fromUnicode(char* destination, int size, const void* source,
                     I18NErrorCodes* error = nullptr) const;
    /// @param destination  receives a block from the allocator, which the caller frees; null after
    ///     a failure
    /// @param size  receives the number of bytes including the NUL
    /// @param allocator  null means realloc(3); free the block with free(3) then
    /// @throws I18NRuntimeError with I18N_ARGUMENT or I18N_CONVERSION, QBLOutOfMemoryError
    void fromUnicode(char** destination, int* size, const void* source,
                     I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Converts a string. If no allocator is given, uses the string's allocator. An empty string
    /// gives four zero bytes. If neither the call nor the string has an allocator, these bytes are
    /// the shared empty text, which I18NString::freeBuffer() does not free.
    void fromUnicode(char** destination, int* size, const I18NString& source,
                     I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Converts a piece of a text and writes a NUL after the output of each call.
    /// @param sourceSize  in bytes; an odd byte at the end is not used. A size of 0 only writes
    ///     output that did not fit in an earlier call (I18N_STREAM_FULL). If the last unit is a
    ///     NUL, it is consumed but not converted. A negative size means that the source is
    ///     null-terminated; the NUL is consumed, too
    /// @param written  receives the number of bytes written including the NUL; may be null
    /// @param consumed  receives the number of bytes used of the source; may be null
    /// @param error  receives I18N_STREAM_FULL if the destination is too small. In this case, call
    ///     again with the rest of the source. The destination must then be larger if this one has
    ///     room only for the NUL. Receives I18N_ARGUMENT for a size below 1 or a null pointer,
    ///     except a null source of size 0. Receives I18N_CONVERSION if the text cannot be converted
    void fromUnicodeStream(char* destination, int size, const void* source, int sourceSize,
                           int* written, int* consumed, I18NErrorCodes* error = nullptr) const;
    /// Converts a piece of a text into a block from the allocator. The block has room for all
    /// output. Gives no block if sourceSize is 0 and no earlier output is left.
    void fromUnicodeStream(char** destination, int* size, const void* source, int sourceSize,
                           I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// @}

    /// @name From bytes to Unicode
    /// @{

    /// @param size  of the destination, in bytes; an odd byte at the end is not used. The NUL is
    ///     written if two bytes fit. If only the NUL fits, no text is converted and the call
    ///     succeeds
    /// @param length  of the source, in bytes; a negative length means that the source is
    ///     null-terminated
    /// @param error  receives I18N_ARGUMENT for a null pointer, I18N_TOO_SMALL or I18N_CONVERSION
    void toUnicode(void* destination, int size, const char* source, int length,
                   I18NErrorCodes* error = nullptr) const;
    /// Like the allocating fromUnicode(). A null source of length 0 or below gives no block.
    void toUnicode(void** destination, int* size, const char* source, int length,
                   I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Replaces the contents of a string. The new block comes from the string's allocator. The
    /// string releases a caller's buffer. A null source or a length of 0 only empties the string.
    void toUnicode(I18NString& destination, const char* source, int length) const;
    /// Like fromUnicodeStream(), with these differences: A NUL within the length is text. A NUL
    /// that terminates the source does not count as consumed. A destination of size 0 gives
    /// I18N_STREAM_FULL.
    void toUnicodeStream(void* destination, int size, const char* source, int length, int* written,
                         int* consumed, I18NErrorCodes* error = nullptr) const;
    void toUnicodeStream(void** destination, int* size, const char* source, int length,
                         I18NStringAllocator allocator = nullptr, void* context = nullptr) const;
    /// Discards the unfinished end of a text that was streamed to Unicode.
    void reset();
    /// @}

    /// @name Encoding names
    /// @{

    /// These functions look only at the name, except shouldUseBOM(). They ignore case, except
    /// isPlatformDefault(). For null and for an empty name, isUTF8() returns true, and the other
    /// functions return false.
    ///
    /// Returns true for null, an empty name, UTF8, UTF-8 and ASCII.
    static bool isUTF8(const char* encoding);
    /// Returns true for names that begin with ISO-8859 or ISO8859.
    static bool isISO8859(const char* encoding);
    static bool isWindows1252(const char* encoding);
    /// Returns true for UTF16, UTF-16, UCS2, UCS-2 and names that begin with UTF16_P.
    static bool isUTF16(const char* encoding);
    /// Returns true for UTF32, UTF-32, UCS4, UCS-4 and names that begin with UTF32_P.
    static bool isUTF32(const char* encoding);
    /// Returns true if the name equals I18NGetPlatformDefaultEncoding(), including the case.
    static bool isPlatformDefault(const char* encoding);
    /// Returns true if files in this encoding usually begin with a byte-order mark: UTF-16 and
    /// UTF-32, under any of their names.
    static bool shouldUseBOM(const char* encoding);
    static bool shouldUseBOM(const I18NString& encoding);
    /// @}

    /// @name The process and its locales
    /// @{

    /// Returns true if the internationalisation layer is initialised.
    static bool isInitialized();
    /// Gets the usual encoding of a locale's text files, as I18NInternalResources does.
    /// @param encoding  receives the name
    static void getEncodingForLocale(I18NString& encoding, const I18NLocale& locale);
    /// @}

private:
    friend class I18NConverterAccess;
    friend class I18NString;
    friend struct I18NCountedText;

    enum Direction : unsigned char { kInput = 0, kOutput = 1 };
    enum Flag : unsigned char {
        kPending = 1,    // ICU holds output that did not fit
        kHasContext = 4  // ICU holds the address of our context
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
    mutable unsigned char m_cFlags;             // for each direction
    I18NOutputCallbackContext m_outputContext;  // owns the block of the name, unless that is m_room
    int m_iMaxBytes;                            // of a code unit in the encoding
    int m_iNullSize;
    UConverter* m_pConverter;
    int m_iCloneSize;
    I18NInputCallbackContext m_inputContext;
    // Holds the name, and the clone of a converter for a Unicode encoding, if both fit. Making such
    // a converter then allocates nothing.
    alignas(std::max_align_t) char m_room[kRoom];
};

#endif

#ifndef I18N_CPP_I18N_TEXT_STREAM_HPP
#define I18N_CPP_I18N_TEXT_STREAM_HPP

#include <cstddef>
#include <cstdint>

#include "QBLCore/Frame/QBLExport.h"

class I18NConverter;
class I18NTextStreamState;

/// Something in a text that could not be converted, or not to itself, and where. It is valid while
/// the listener is being called.
struct I18NUnconvertible {
    /// Whether it is a code point that the output's encoding does not have; otherwise it is bytes
    /// that mean nothing in the input's.
    bool isOutput;
    /// Whether the text ended in the middle of it: of a sequence of bytes, or of a surrogate pair.
    bool isCutOff;
    /// Whether it is a code point that became another one, its best fit in the output's encoding.
    bool isBestFit;
    /// The bytes as they stand in the input, and how many they are; null and 0 for output.
    const char* bytes;
    int byteCount;
    /// Of the first of them, in bytes from the start of the input; -1 for output.
    std::int64_t byteOffset;
    /// The code point or lone surrogate; 0 for input.
    char32_t codePoint;
    /// Where it, or what replaces it, stands in the text, in UTF-16 code units from the start.
    std::int64_t textOffset;
    /// Both from 1. A line ends with LF, CR or CR LF. A column is a code point or a lone surrogate,
    /// and bytes that are not convertible are one column each time, whatever replaces them.
    std::int64_t line;
    std::int64_t column;
};

/// Is told what a text stream could not convert.
///
/// Threads: is called by the thread that calls the stream.
class QBL_API I18NTextStreamListener {
public:
    virtual ~I18NTextStreamListener();

    /// Called within put() and finish(), in the order of the text, on their thread, and before a
    /// policy treats it; may not use the stream, except for I18NTextStream::replaceBy(). What it
    /// throws comes out there, and ends the stream in front of it.
    virtual void unconvertible(const I18NUnconvertible& what) = 0;
};

/// What a text stream does with a byte-order mark at the start: U+FEFF, in the input's encoding.
enum I18NByteOrderMark {
    I18N_MARK_KEEP = 0,   ///< takes it for text
    I18N_MARK_STRIP = 1,  ///< leaves it out of the text
    /// Takes UTF-8, UTF-16LE, UTF-16BE, UTF-32LE or UTF-32BE for the input's encoding where it
    /// begins with the mark of one of them. FF FE 00 00 is UTF-32LE.
    I18N_MARK_CHOOSE = 2,
    I18N_MARK_CHOOSE_AND_STRIP = 3
};

/// Converts a text that comes in blocks, cut anywhere: bytes to bytes, bytes to UTF-16, or UTF-16
/// to bytes. The result, and what is told about it, does not depend on where the blocks are cut.
/// Some converters of ICU look at what they get as a whole: those to SCSU, BOCU-1, LMBCS, HZ,
/// compound text and UTF-16 with a version in its name. They get portions of one size, so that the
/// output of a put() may come with a later one; it can differ from that of I18NConverter, which
/// gives them all at once, and still stands for the same text. A NUL is a character as any other.
///
/// What is not convertible is treated as the policies of the converters say that the stream is
/// made with. It is also counted, and the listener is told. Of what a converter drops because
/// Unicode calls it ignorable, such as U+200B, the listener is told too; under I18N_STOP as well,
/// which goes on behind it. So it is of best fits, if the converter uses them
/// (I18NConverter::useFallback()); otherwise they are not convertible. The converter to compound
/// text itself drops what it lacks: a stream treats that by the policy. ISCII and LMBCS have a few
/// characters that do not come back and of which ICU does not tell: U+0A70, U+0A71, U+200C and
/// U+200D, and U+FFFE and U+FFFF. Once ICU's converter to ISCII has refused a character, it also
/// takes and refuses others wrongly.
///
///     I18NTextStream stream(&shiftJIS, &utf8);
///     while (const std::size_t size = read(block)) {
///         stream.put(block, size);
///         write(stream.getBytes(), stream.getByteCount());
///     }
///     stream.finish();
///     write(stream.getBytes(), stream.getByteCount());
///
/// Memory: what the largest block has needed; it is kept for the next ones.
///
/// Errors: I18NRuntimeError with I18N_CONVERSION and a text that says where, for what a policy
/// refuses; QBLOutOfMemoryError. Any error of put() or finish() ends the stream; the output has
/// what was converted in front of it, and nothing else. After a refusal, and what a listener
/// throws, it goes back to the first shift state, so that other texts can follow.
///
/// Threads: one at a time.
class QBL_API I18NTextStream {
public:
    /// @name Making a stream
    /// @{

    /// @param from  of the bytes put in; null if UTF-16 is
    /// @param to  of the bytes that come out; null if UTF-16 is to. The stream copies both, with
    ///        their policies and without what they have left unfinished
    /// @param listener  may be null; must outlive the stream
    /// @throws I18NRuntimeError with I18N_ARGUMENT without any converter, or if the encoding is to
    ///         be chosen for UTF-16 input; QBLOutOfMemoryError
    I18NTextStream(const I18NConverter* from, const I18NConverter* to,
                   I18NByteOrderMark mark = I18N_MARK_KEEP,
                   I18NTextStreamListener* listener = nullptr);
    ~I18NTextStream();
    I18NTextStream(const I18NTextStream&) = delete;
    I18NTextStream& operator=(const I18NTextStream&) = delete;
    /// @}

    /// @name Converting
    /// @{

    /// Converts the next block. The output is that of this call alone.
    /// @param block  null if the size is 0
    /// @throws I18NRuntimeError with I18N_ARGUMENT for a null block or the other kind of input;
    ///         QBLIllegalStateError after the end. Neither changes anything. See also above.
    void put(const char* block, std::size_t size);
    void put(const char16_t* units, std::size_t count);
    /// Ends the text: a sequence cut off is not convertible, and an encoding with shift states
    /// goes back to its first one. There is output of this call, too.
    void finish();

    /// Replaces the code point that the listener is being told of, in place of the policy, by a
    /// text that the output's encoding has; what it lacks of the text is left out. The code point
    /// counts as replaced.
    /// @param units  copied
    /// @param count  at most 8; 0 leaves the code point out
    /// @throws QBLIllegalStateError unless called within unconvertible() for output that is not a
    ///         best fit; I18NRuntimeError with I18N_ARGUMENT if the text is null or too long
    void replaceBy(const char16_t* units, std::size_t count);
    /// @}

    /// @name Output
    /// @{

    /// The output of the last put() or finish(), until the next one. Bytes if there is a converter
    /// for them, else text; the other pair gives null and 0. It does not end with a NUL.
    const char* getBytes() const;
    std::size_t getByteCount() const;
    const char16_t* getText() const;
    std::size_t getTextLength() const;
    /// @}

    /// @name Counts and places
    /// @{

    /// What has been replaced or dropped since the start, as often as the listener was told; what
    /// ended the stream does not count.
    std::int64_t getReplacedInput() const;
    std::int64_t getReplacedOutput() const;
    /// How many code points became their best fits since the start; they do not count as replaced.
    std::int64_t getBestFits() const;
    /// Line and column behind the text that has come out; up to a few code points less while
    /// some wait for a following one that the output's encoding might join to them.
    std::int64_t getLine() const;
    std::int64_t getColumn() const;
    /// The name of the input's encoding, by its mark if that is to choose and has come; null for
    /// UTF-16. Owned by the stream, until the next put() or finish().
    const char* getInputEncoding() const;
    /// @}

private:
    I18NTextStreamState* m_pState;
};

#endif

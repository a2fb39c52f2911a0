#ifndef I18N_CPP_I18N_TEXT_STREAM_HPP
#define I18N_CPP_I18N_TEXT_STREAM_HPP

#include <cstddef>
#include <cstdint>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class I18NConverter;
class I18NTextStreamState;

/// A place in a text that could not be converted, or that was converted to a best fit. The object
/// is valid only during the call of the listener.
struct I18NUnconvertible {
    /// True for a code point that the output's encoding lacks; false for bytes that are not valid
    /// in the input's encoding.
    bool isOutput;
    /// True if the text ended in the middle of a sequence of bytes or of a surrogate pair.
    bool isCutOff;
    /// True if the code point was replaced by its best fit in the output's encoding.
    bool isBestFit;
    /// The bytes as they are in the input, and their number; null and 0 for output. The number may
    /// be 0 in the last report if a text in IMAP-mailbox-name ends in the middle of a shift.
    const char* bytes;
    int byteCount;
    /// The offset of the first byte from the start of the input; -1 for output.
    std::int64_t byteOffset;
    /// The code point or unpaired surrogate; 0 for input.
    char32_t codePoint;
    /// The offset of the code point, or of the replacement of the bytes: in UTF-16 code units from
    /// the start of the text.
    std::int64_t textOffset;
    /// `line` and `column` count from 1. A line ends with LF, CR or CR LF. A column is a code point
    /// or an unpaired surrogate. Each sequence of bytes that is not convertible counts as one
    /// column, whatever replaces it.
    std::int64_t line;
    std::int64_t column;
};

/// Receives reports about text that a stream could not convert.
///
/// Threads: the thread that calls the stream calls the listener.
class QBL_API I18NTextStreamListener {
public:
    virtual ~I18NTextStreamListener();

    /// put() and finish() call this in the order of the text, before the policy applies. The
    /// listener must not use the stream, except I18NTextStream::replaceBy(). If the listener
    /// throws, put() or finish() passes the exception on, and the output ends before the reported
    /// place.
    virtual void unconvertible(const I18NUnconvertible& what) = 0;
};

/// What a text stream does with a byte-order mark at the start of the input: U+FEFF in the input's
/// encoding.
enum I18NByteOrderMark {
    I18N_MARK_KEEP = 0,   ///< treats the mark as text
    I18N_MARK_STRIP = 1,  ///< removes the mark
    /// If the input begins with the byte-order mark of UTF-8, UTF-16LE, UTF-16BE, UTF-32LE or
    /// UTF-32BE, uses that encoding for the input. FF FE 00 00 means UTF-32LE.
    I18N_MARK_CHOOSE = 2,
    I18N_MARK_CHOOSE_AND_STRIP = 3
};

/// Converts a text that arrives in blocks, cut anywhere: bytes to bytes, bytes to UTF-16, or UTF-16
/// to bytes. The result and the reports to the listener do not depend on where the blocks are cut.
/// A NUL is a character like any other.
///
/// The output of some ICU converters depends on how much text they get at a time. These are the
/// converters to SCSU, BOCU-1, LMBCS, HZ, compound text, and UTF-16 with a version in its name. The
/// stream passes them portions of one size, so the output of a put() may come with a later put() or
/// with finish(). I18NConverter passes the whole text at once, so its output may differ from the
/// stream's output. Both represent the same text.
///
/// The stream applies the policies of its converters to text that is not convertible. It also
/// counts such text and reports it to the listener. If the output converter uses best fits
/// (I18NConverter::useFallback()), the stream reports these; otherwise those characters are not
/// convertible. The stream also reports characters that a converter drops because Unicode calls
/// them ignorable, such as U+200B. I18N_STOP does not stop at ignorable characters.
///
/// Some ICU converters need care. The converter to compound text drops characters that the encoding
/// lacks; a stream applies the policy to them instead. U+0A70, U+0A71, U+200C and U+200D in ISCII,
/// and U+FFFE and U+FFFF in LMBCS, do not survive a round trip; ICU does not report that. After the
/// converter to ISCII has refused a character, it may wrongly convert or refuse other characters.
/// The converters to CESU-8, UTF-7, IMAP-mailbox-name, LMBCS and BOCU-1 write unpaired surrogates
/// without a report. At the end of the text, however, BOCU-1 reports an unpaired surrogate, and HZ
/// drops it.
///
///     I18NTextStream stream(&shiftJIS, &utf8);
///     while (const std::size_t size = read(block)) {
///         stream.put(block, size);
///         write(stream.getBytes(), stream.getByteCount());
///     }
///     stream.finish();
///     write(stream.getBytes(), stream.getByteCount());
///
/// Memory: the stream keeps the memory that its largest block needed. The process also keeps up to
/// 1 MB for each of the last eight encodings of inputs and the last eight encodings of outputs.
///
/// Errors: QBLOutOfMemoryError, and I18NRuntimeError with I18N_CONVERSION if a policy refuses a
/// character; the message tells where. Any error of put() or finish() ends the stream. The output
/// then contains everything that was converted before the error, and nothing else. After a refusal
/// or an exception from the listener, the output also returns to the initial shift state, so that
/// other text can follow.
///
/// Threads: one thread at a time may use a stream.
class QBL_API I18NTextStream {
public:
    /// @name Making a stream
    /// @{

    /// @param from  converts the input bytes; null if the input is UTF-16
    /// @param to  converts to the output bytes; null if the output is UTF-16. The stream copies
    ///     both converters with their policies, but without their unfinished text
    /// @param listener  may be null; must outlive the stream
    /// @throws I18NRuntimeError with I18N_ARGUMENT if both converters are null, or if `mark`
    ///     chooses the encoding and the input is UTF-16; QBLOutOfMemoryError
    I18NTextStream(const I18NConverter* from, const I18NConverter* to,
                   I18NByteOrderMark mark = I18N_MARK_KEEP,
                   I18NTextStreamListener* listener = nullptr);
    ~I18NTextStream();
    I18NTextStream(const I18NTextStream&) = delete;
    I18NTextStream& operator=(const I18NTextStream&) = delete;
    /// @}

    /// @name Converting
    /// @{

    /// Converts the next block. Replaces the output of the previous call.
    /// @param block  may be null if the size is 0
    /// @throws I18NRuntimeError with I18N_ARGUMENT for a null block or the wrong kind of input;
    ///     QBLIllegalStateError after the end. These two errors change nothing. The comment of the
    ///     class describes other errors
    void put(const char* block, std::size_t size);
    void put(const char16_t* units, std::size_t count);
    /// Ends the text. A truncated sequence at the end is not convertible, and an encoding with
    /// shift states returns to its initial state. This call has output, too, like put().
    void finish();

    /// Replaces the reported code point by a text, instead of applying the policy. Characters of
    /// this text that the output's encoding lacks are left out. The code point counts as replaced.
    /// @param units  copied
    /// @param count  at most 8; 0 removes the code point
    /// @throws QBLIllegalStateError unless called within unconvertible() for output that is not a
    ///     best fit; I18NRuntimeError with I18N_ARGUMENT if the text is null or too long
    void replaceBy(const char16_t* units, std::size_t count);
    /// @}

    /// @name Output
    /// @{

    /// The output of the last put() or finish(), valid until the next one. If the stream has an
    /// output converter, getBytes() and getByteCount() return the output; otherwise getText() and
    /// getTextLength() do. The other two return null and 0. There is no terminating NUL.
    const char* getBytes() const;
    std::size_t getByteCount() const;
    const char16_t* getText() const;
    std::size_t getTextLength() const;
    /// @}

    /// @name Counts and positions
    /// @{

    /// The number of places that have been replaced or dropped since the start: each report to the
    /// listener is one place. A place that ended the stream does not count.
    std::int64_t getReplacedInput() const;
    std::int64_t getReplacedOutput() const;
    /// The number of code points that became best fits since the start; they do not count as
    /// replaced.
    std::int64_t getBestFits() const;
    /// The line and column after the text that has been output. They may lag by a few code points,
    /// because the output's encoding might combine these with the next code point.
    std::int64_t getLine() const;
    std::int64_t getColumn() const;
    /// The name of the input's encoding; null for UTF-16. If a byte-order mark has chosen the
    /// encoding, this is the name of the chosen encoding. Owned by the stream, valid until the next
    /// put() or finish().
    const char* getInputEncoding() const;
    /// @}

private:
    I18NTextStreamState* m_pState;
};

#endif

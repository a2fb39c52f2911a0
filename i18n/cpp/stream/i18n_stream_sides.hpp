#ifndef I18N_CPP_STREAM_I18N_STREAM_SIDES_HPP
#define I18N_CPP_STREAM_I18N_STREAM_SIDES_HPP

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include "i18n/cpp/converter/i18n_code_tables.hpp"
#include "i18n/cpp/converter/i18n_icu_piece.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/stream/i18n_stream_mappings.hpp"

/// The parts of a text stream: a converter for each direction, and the buffer for the output. The
/// converters report unconvertible text to the stream. Offsets count from the start of the stream.

/// Bytes that were not convertible.
struct I18NInputFinding {
    std::int64_t offset;  ///< of the first byte
    std::int64_t at;      ///< of the replacement in the text
    int units;            ///< length of the replacement
    int length;
    bool cutOff;                           ///< the input ended in the middle of the bytes
    static constexpr int kMostBytes = 16;  // more than ICU reports at once
    char bytes[kMostBytes];
};

/// A code point that was not convertible, or only to its best fit.
struct I18NOutputFinding {
    std::int64_t at;
    char32_t codePoint;
    bool cutOff;
    bool bestFit;
};

/// A text to write in place of a code point.
struct I18NReplacement {
    static constexpr std::size_t kMost = 8;  // as many as fit into ICU's overflow buffer
    char16_t units[kMost];
    std::size_t count;
};

/// Receives a code point after all text before it has been converted, and before the policy
/// applies.
class I18NOutputFinder {
public:
    /// @return the text to write, valid until the next call; null to apply the policy
    virtual const I18NReplacement* found(const I18NOutputFinding& finding) = 0;

protected:
    ~I18NOutputFinder() = default;
};

enum class I18NProgress {
    kDone,    ///< all input is used
    kFull,    ///< the output is full; call again
    kRefused  ///< the policy refused text; see the last finding
};

/// Well-formed text in the first two forms is converted without ICU.
enum class I18NStreamForm { kUTF8, kUTF16, kOther };

/// A buffer of bytes that grows and is reused.
class I18NStreamBuffer {
public:
    I18NStreamBuffer() = default;
    ~I18NStreamBuffer();
    I18NStreamBuffer(const I18NStreamBuffer&) = delete;
    I18NStreamBuffer& operator=(const I18NStreamBuffer&) = delete;

    /// Makes room after the present bytes. @throws QBLOutOfMemoryError
    void reserve(std::size_t more);
    void clear() { m_iSize = 0; }
    void append(const void* bytes, std::size_t size);
    const char* begin() const { return m_pBytes; }
    char* end() { return m_pBytes + m_iSize; }
    char* limit() { return m_pBytes + m_iCapacity; }
    std::size_t size() const { return m_iSize; }
    void setEnd(const char* end) { m_iSize = static_cast<std::size_t>(end - m_pBytes); }

private:
    char* m_pBytes = nullptr;
    std::size_t m_iSize = 0;
    std::size_t m_iCapacity = 0;
};

class I18NStreamInput {
public:
    explicit I18NStreamInput(const I18NConverter& converter);
    /// Uses another encoding, and takes the policy from an input that has not converted anything
    /// yet.
    I18NStreamInput(const char* encoding, const I18NStreamInput& policy);
    I18NStreamInput(const I18NStreamInput&) = delete;
    I18NStreamInput& operator=(const I18NStreamInput&) = delete;

    const I18NConverter& converter() const { return m_converter; }
    /// @param text  advances past the units written
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    I18NProgress decode(const char*& at, const char* end, bool flush, char16_t*& text,
                        const char16_t* limit);
    /// Returns the ASCII characters that the stream may copy instead of decoding them. Returns null
    /// if it may copy no characters, or while ICU keeps the start of a character.
    const I18NPlainASCII* plain() const;
    /// Advances the positions past ASCII bytes that the stream has copied.
    void pass(const char* at, std::size_t size);
    /// Makes offsets count from the second unit of the text.
    void dropFirstUnit();

    /// In the order of the text. The owner of this object removes the findings that it has handled.
    std::vector<I18NInputFinding> findings;

private:
    void listen();
    I18NProgress decodeSlice(const char*& at, const char* end, bool flush, char16_t*& text,
                             const char16_t* limit);
    void decodeWithoutICU(const char*& at, const char* end, char16_t*& text, const char16_t* limit);
    I18NProgress decodeByICU(const char*& at, const char* end, bool flush, char16_t*& text,
                             const char16_t* limit);
    I18NProgress decodeBytes(const char*& at, const char* end, bool flush, char16_t*& text,
                             const char16_t* limit);
    void noteByte(char byte);
    void followSequence(bool hasText);
    void findLead(const char* at, const char* end);
    void remember(const char* end);
    const char* sourceAt(std::int64_t offset) const;
    /// Sets the bytes of a finding and their offset in the source.
    void locate(const char* bytes, int length, std::int64_t end, I18NInputFinding& finding) const;
    void found(UConverterToUnicodeArgs* args, const char* bytes, int length,
               UConverterCallbackReason reason, UErrorCode* status);
    static void callback(const void* context, UConverterToUnicodeArgs* args, const char* bytes,
                         int32_t length, UConverterCallbackReason reason, UErrorCode* status);

    I18NConverter m_converter;
    UConverter* m_pICU;
    UConverterToUCallback m_policy = nullptr;
    const void* m_pPolicyContext = nullptr;
    bool m_bRefused = false;
    I18NStreamForm m_form = I18NStreamForm::kOther;
    std::shared_ptr<I18NDecodingTable> m_pTable;  // may be null
    I18NIcuPiece m_piece;
    bool m_bByteByByte = false;
    bool m_bUnfinished = false;  // ICU keeps bytes of a sequence
    bool m_bIsUTF16 = false;
    bool m_bIsISCII = false;
    std::int64_t m_iLead = 0;  // where the last lead byte is; ISCII only
    // For BOCU-1 and SCSU: where the current sequence begins, and its first bytes.
    bool m_bFollowsSequences = false;
    std::int64_t m_iSequence = 0;
    char m_sequence[I18NInputFinding::kMostBytes] = {};
    std::int64_t m_iBytes = 0;  // number of bytes before m_pBegin
    std::int64_t m_iUnits = 0;  // number of units before m_pText
    // For bytes that ICU does not report: the slice that is being decoded, and the last bytes
    // before it.
    static constexpr int kHistory = 64;
    char m_history[kHistory] = {};
    const char* m_pSlice = nullptr;
    std::int64_t m_iSlice = 0;  // number of bytes before m_pSlice
    // For the current call of ICU.
    const char* m_pBegin = nullptr;
    const char* m_pEnd = nullptr;
    const char16_t* m_pText = nullptr;
};

class I18NStreamOutput {
public:
    I18NStreamOutput(const I18NConverter& converter, I18NOutputFinder& finder);
    I18NStreamOutput(const I18NStreamOutput&) = delete;
    I18NStreamOutput& operator=(const I18NStreamOutput&) = delete;

    const I18NConverter& converter() const { return m_converter; }
    /// Returns how many units of a text to convert now if more text may follow. The other units are
    /// converted together with the text that follows.
    std::size_t portion(const char16_t* text, std::size_t units) const;
    /// Exceptions of the finder leave this function. In that case, all text before the finding has
    /// been converted.
    /// @param text  changed where characters are hidden from ICU
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    I18NProgress encode(char16_t* text, const char16_t* end, bool flush, I18NStreamBuffer& bytes);
    /// plain() and pass() work as in I18NStreamInput.
    const I18NPlainASCII* plain() const;
    void pass(std::size_t size) { m_iUnits += static_cast<std::int64_t>(size); }
    /// The finding that the policy has refused.
    const I18NOutputFinding& lastFinding() const { return m_finding; }
    /// Ends the output after a refusal. Outputs undecided text if it can be converted, and leaves
    /// it out if not.
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    void shiftBack(I18NStreamBuffer& bytes);
    /// The number of units at the end of the text that may still turn out not to be convertible.
    int undecided() const;

private:
    /// A character that is hidden from ICU.
    struct Masked {
        std::int64_t at;
        char16_t unit;
    };
    void mask(char16_t* text, const char16_t* end);
    I18NProgress encodePieces(const char16_t* text, const char16_t* end, bool flush,
                              I18NStreamBuffer& bytes);
    I18NProgress encodeAroundLost(const char16_t* text, const char16_t* end, bool flush,
                                  I18NStreamBuffer& bytes);
    void encodeWithoutICU(const char16_t*& text, const char16_t* end, I18NStreamBuffer& bytes);
    I18NProgress treatLost(const char16_t* units, int length, I18NStreamBuffer& bytes);
    I18NProgress encodeByICU(const char16_t*& text, const char16_t* end, bool flush,
                             I18NStreamBuffer& bytes);
    I18NProgress settle(UErrorCode status);
    void found(UConverterFromUnicodeArgs* args, const UChar* units, int length, UChar32 codePoint,
               UConverterCallbackReason reason, UErrorCode* status);
    void treat(UConverterFromUnicodeArgs* args, const UChar* units, int length, UChar32 codePoint,
               UConverterCallbackReason reason, UErrorCode* status);
    static void write(UConverterFromUnicodeArgs* args, const UChar* units, std::size_t length,
                      UErrorCode* status);
    static void callback(const void* context, UConverterFromUnicodeArgs* args, const UChar* units,
                         int32_t length, UChar32 codePoint, UConverterCallbackReason reason,
                         UErrorCode* status);

    I18NConverter m_converter;
    I18NOutputFinder& m_finder;
    UConverter* m_pICU;
    std::size_t m_iMaxBytes;  // maximum for a code unit
    I18NStreamForm m_form;
    std::shared_ptr<I18NEncodingTable> m_pTable;  // may be null
    I18NIcuPiece m_piece;
    I18NStreamMappings m_mappings;
    std::vector<Masked> m_masked;
    bool m_bInPortions;  // passes ICU portions of one size
    bool m_bFits;        // best fits are applied
    UConverterFromUCallback m_policy = nullptr;
    const void* m_pPolicyContext = nullptr;
    I18NOutputFinding m_finding = {};
    const I18NReplacement* m_pReplacement = nullptr;  // for m_finding
    std::exception_ptr m_thrown;                      // the exception of the finder
    bool m_bRefused = false;
    bool m_bUnfinished = false;
    bool m_bLeavesOut = false;  // leaves out unconvertible text, without a finding
    std::int64_t m_iUnits = 0;  // number of units before m_pBegin
    const char16_t* m_pBegin = nullptr;
    const char16_t* m_pEnd = nullptr;
};

#endif

#ifndef I18N_CPP_STREAM_I18N_STREAM_SIDES_HPP
#define I18N_CPP_STREAM_I18N_STREAM_SIDES_HPP

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/stream/i18n_stream_mappings.hpp"

/// What a text stream is made of: a converter each way whose policies are listened to, and the
/// buffer for what comes out. Offsets are those of the whole stream.

/// Bytes that were not convertible.
struct I18NInputFinding {
    std::int64_t offset;  ///< in bytes
    std::int64_t at;      ///< in the text, where the replacement stands
    int units;            ///< of the replacement
    int length;
    bool cutOff;                           ///< the input ended
    static constexpr int kMostBytes = 16;  // more than ICU has at a time
    char bytes[kMostBytes];
};

/// A code point that was not convertible, or only to another one.
struct I18NOutputFinding {
    std::int64_t at;
    char32_t codePoint;
    bool cutOff;
    bool bestFit;
};

/// A text to write in place of a code point.
struct I18NReplacement {
    static constexpr std::size_t kMost = 8;  // that fit where ICU keeps what does not fit elsewhere
    char16_t units[kMost];
    std::size_t count;
};

/// Hears of a code point once all in front of it is converted, and before the policy is asked.
class I18NOutputFinder {
public:
    /// @return what to write; null to ask the policy. It is used before the next call.
    virtual const I18NReplacement* found(const I18NOutputFinding& finding) = 0;

protected:
    ~I18NOutputFinder() = default;
};

enum class I18NProgress {
    kDone,    ///< all was taken
    kFull,    ///< there is more; call again
    kRefused  ///< by the policy, of which the last finding tells
};

/// What is converted without ICU as far as it is well-formed.
enum class I18NStreamForm { kUTF8, kUTF16, kOther };

/// Bytes that grow and are used again.
class I18NStreamBuffer {
public:
    I18NStreamBuffer() = default;
    ~I18NStreamBuffer();
    I18NStreamBuffer(const I18NStreamBuffer&) = delete;
    I18NStreamBuffer& operator=(const I18NStreamBuffer&) = delete;

    /// Makes room behind what there is. @throws QBLOutOfMemoryError
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
    /// Another encoding, with the policy of a side that has not been used.
    I18NStreamInput(const char* encoding, const I18NStreamInput& policy);
    I18NStreamInput(const I18NStreamInput&) = delete;
    I18NStreamInput& operator=(const I18NStreamInput&) = delete;

    const I18NConverter& converter() const { return m_converter; }
    /// @param text  moves on behind what was written
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    I18NProgress decode(const char*& at, const char* end, bool flush, char16_t*& text,
                        const char16_t* limit);
    /// Counts the text from behind its first unit.
    void dropFirstUnit();

    /// In the order of the text; whoever has dealt with them takes them out.
    std::vector<I18NInputFinding> findings;

private:
    void listen();
    I18NProgress decodeSlice(const char*& at, const char* end, bool flush, char16_t*& text,
                             const char16_t* limit);
    I18NProgress decodeByICU(const char*& at, const char* end, bool flush, char16_t*& text,
                             const char16_t* limit);
    void remember(const char* end);
    void copySource(std::int64_t begin, std::int64_t end, I18NInputFinding& finding) const;
    bool hasInSource(std::int64_t offset, const char* bytes, int length) const;
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
    bool m_bByteByByte = false;
    bool m_bUnfinished = false;  // ICU keeps something
    bool m_bIsUTF16 = false;
    bool m_bIsBOCU = false;
    std::int64_t m_iSequence = 0;  // of BOCU-1: where the present one begins
    std::int64_t m_iBytes = 0;     // in front of m_pBegin
    std::int64_t m_iUnits = 0;     // in front of m_pText
    // The source of findings: the slice that is being decoded, and the last bytes before it.
    static constexpr int kHistory = 64;
    char m_history[kHistory] = {};
    const char* m_pSlice = nullptr;
    std::int64_t m_iSlice = 0;  // in front of m_pSlice
    // Of the call that is being made.
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
    /// How much of a text to convert at once, of which more may come; the rest comes with that.
    std::size_t portion(const char16_t* text, std::size_t units) const;
    /// What the finder throws comes out here; all in front of its finding is converted then.
    /// @param text  is changed where ICU is to be kept from characters
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    I18NProgress encode(char16_t* text, const char16_t* end, bool flush, I18NStreamBuffer& bytes);
    /// What the policy has refused.
    const I18NOutputFinding& lastFinding() const { return m_finding; }
    /// Ends text that something refused: what is undecided comes out if it can be converted, and
    /// is left out if not.
    /// @throws QBLOutOfMemoryError, I18NRuntimeError
    void shiftBack(I18NStreamBuffer& bytes);
    /// Units at the end of the text that may still be found not convertible.
    int undecided() const;

private:
    /// A character that ICU is kept from.
    struct Masked {
        std::int64_t at;
        char16_t unit;
    };
    void mask(char16_t* text, const char16_t* end);
    I18NProgress encodePieces(const char16_t* text, const char16_t* end, bool flush,
                              I18NStreamBuffer& bytes);
    I18NProgress encodeAroundLost(const char16_t* text, const char16_t* end, bool flush,
                                  I18NStreamBuffer& bytes);
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
    std::size_t m_iMaxBytes;  // of a code unit
    I18NStreamForm m_form;
    I18NStreamMappings m_mappings;
    std::vector<Masked> m_masked;
    bool m_bInPortions;  // of one size
    bool m_bFits;        // best fits are applied
    UConverterFromUCallback m_policy = nullptr;
    const void* m_pPolicyContext = nullptr;
    I18NOutputFinding m_finding = {};
    const I18NReplacement* m_pReplacement = nullptr;  // of that finding
    std::exception_ptr m_thrown;                      // by the finder
    bool m_bRefused = false;
    bool m_bUnfinished = false;
    bool m_bLeavesOut = false;  // what is not convertible, without a finding
    std::int64_t m_iUnits = 0;  // in front of m_pBegin
    const char16_t* m_pBegin = nullptr;
    const char16_t* m_pEnd = nullptr;
};

#endif

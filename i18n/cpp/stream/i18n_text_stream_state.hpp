#ifndef I18N_CPP_STREAM_I18N_TEXT_STREAM_STATE_HPP
#define I18N_CPP_STREAM_I18N_TEXT_STREAM_STATE_HPP

#include <memory>

#include "i18n/cpp/i18n_text_stream.hpp"
#include "i18n/cpp/stream/i18n_stream_sides.hpp"
#include "i18n/cpp/stream/i18n_text_position.hpp"

/// The implementation of a text stream. Converts blocks to text piece by piece, in a buffer that
/// fits a processor's cache, and converts each piece to output before the next one. Reports
/// unconvertible text after the text before it has been output, and before the text after it is
/// output. Lines and columns are counted up to the reported place.
class I18NTextStreamState final : public I18NOutputFinder {
public:
    I18NTextStreamState(const I18NConverter* from, const I18NConverter* to, I18NByteOrderMark mark,
                        I18NTextStreamListener* listener);

    void put(const char* block, std::size_t size);
    void put(const char16_t* units, std::size_t count);
    void finish();
    void replaceBy(const char16_t* units, std::size_t count);

    bool hasOutput() const { return m_pOutput != nullptr; }
    const I18NStreamBuffer& result() const { return m_result; }
    std::int64_t replacedInput() const { return m_iReplacedInput; }
    std::int64_t replacedOutput() const { return m_iReplacedOutput; }
    std::int64_t bestFits() const { return m_iBestFits; }
    const I18NTextPosition& position() const { return m_position; }
    const char* inputEncoding() const;

private:
    enum class Ending { kNone, kText, kRefusal };

    void begin(bool fits);
    void decode(const char* at, const char* end, bool flush);
    void copyASCII(const char*& at, const char* end);
    void collectMark(const char*& at, const char* end);
    void chooseByMark();
    void stripMark(std::size_t& units);
    void passOn(std::size_t units, Ending ending);
    void convert(std::size_t units, Ending ending);
    void encode(std::size_t end, bool flush);
    std::size_t portion(std::size_t units, Ending ending) const;
    bool areTooManyWaiting() const;
    std::size_t nextFinding(std::size_t end) const;
    void keepUndecided();
    const I18NReplacement* found(const I18NOutputFinding& finding) override;
    void tellInputs(std::int64_t end, bool isRefused);
    void tellInput(const I18NInputFinding& finding, bool isRefused);
    I18NUnconvertible described(const I18NOutputFinding& finding);
    void tell(const I18NUnconvertible& what);
    [[noreturn]] void refuse(const I18NUnconvertible& what) const;
    void countTo(std::int64_t end);
    char16_t* room() { return m_text + m_iKept + m_iHeld; }

    static constexpr std::size_t kText = 0x4000;
    static constexpr std::size_t kLongestMark = 4;

    std::unique_ptr<I18NStreamInput> m_pInput;
    std::unique_ptr<I18NStreamOutput> m_pOutput;
    I18NStreamBuffer m_result;
    I18NTextStreamListener* m_pListener;
    bool m_bEnded = false;
    bool m_bStrips;
    bool m_bChooses;  // true until the encoding is chosen
    std::size_t m_iMark = 0;
    char m_mark[kLongestMark] = {};

    I18NTextPosition m_position;
    std::int64_t m_iCounted = 0;  // offset up to which m_position has counted; skips replacements
    std::int64_t m_iStart = 0;    // the offset of the text in the buffer
    std::size_t m_iKept = 0;      // units in the buffer that are converted
    std::size_t m_iHeld = 0;      // units after these, not converted yet, such as half a pair
    std::int64_t m_iReplacedInput = 0;
    std::int64_t m_iReplacedOutput = 0;
    std::int64_t m_iBestFits = 0;
    std::size_t m_iTold = 0;  // number of input findings that have been reported
    I18NReplacement m_replacement = {};
    bool m_bMayReplace = false;  // during a report that replaceBy() may answer
    bool m_bReplaced = false;
    char16_t m_text[kText];
};

#endif

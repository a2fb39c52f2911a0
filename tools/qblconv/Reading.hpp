#ifndef TOOLS_QBLCONV_READING_HPP
#define TOOLS_QBLCONV_READING_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// The bytes of an input, as often as they are wanted. An input that fits into the block is read
/// once.
///
/// Threads: one at a time for each object.
class Passes {
public:
    /// @param input  that can be rewound, at its start
    Passes(Input& input, std::vector<char>& block) : m_input(input), m_block(block) {}

    /// Begins a pass.
    void begin();
    /// The next part. @return empty at the end, and on failure
    std::string_view next();
    /// Brings the input back to its start, for others. @return false on failure
    bool finish();
    /// An errno if a pass failed, EINTR if the work is to end, else 0. No pass has bytes then.
    int error() const { return m_iError; }

private:
    Input& m_input;
    std::vector<char>& m_block;
    std::string_view m_whole;  // the input, once it is known to fit into the block
    bool m_bWhole = false;
    bool m_bBegun = false;  // a pass has read from the input
    bool m_bDone = false;   // this pass has given the whole
    int m_iError = 0;
};

/// Calls a function with an input's passes, and brings the input back to its start.
/// @param name  of the input, as shown
/// @return false, with the reason in the report, if the input could not be read; also if the work
///     is to end
bool forPasses(Input& input, const std::string& name, std::vector<char>& block, FileReport& report,
               const std::function<void(Passes&)>& body);

/// Decodes bytes in one pass.
/// @param strict  a converter that stops
/// @param take  is called with each part of the text; false ends the pass
/// @return whether all bytes were valid up to there, and could be read
bool decode(Passes& passes, const I18NConverter& strict,
            const std::function<bool(std::u16string_view)>& take);

/// What a text consists of, as far as it tells whether it was read in its own encoding.
///
/// Threads: one at a time for each object.
class TextLook {
public:
    enum class Types { kNot, kChecked };
    /// @param types  whether the types of characters are looked up, which takes most of the time
    explicit TextLook(Types types) : m_types(types) {}

    void add(std::u16string_view text);

    /// Whether no character, as far as types are checked, is a C1 control, for private use, or not
    /// assigned by Unicode.
    bool isAssigned() const { return m_bAssigned; }
    /// Whether there are C0 controls other than those for lines, columns and the end of a file.
    bool hasControls() const { return m_iControls > 0; }
    bool isBeyondASCII() const { return m_bBeyondASCII; }
    /// Whether at least half of it are such.
    bool isMostlyControls() const { return m_iControls > 0 && 2 * m_iControls >= m_iCount; }
    /// Whether one of them is ESC, SO or SI, which the encodings of ISO 2022 consist of.
    bool hasShifts() const { return m_bHasShifts; }
    /// Whether more than a quarter of the places with Latin letters beyond ASCII have three or more
    /// of them in a row, as the letters of other scripts look in a Latin encoding, or whether there
    /// are signs within words, as letters of DOS look in windows-1252.
    bool isOddLatin() const { return 4 * m_iLongRuns > m_iRuns || 16 * m_iSigns > m_iRuns; }

private:
    void addCharacter(char32_t c);
    void passInWord(char32_t c, bool isLetter);

    const Types m_types;
    bool m_bAssigned = true;
    bool m_bBeyondASCII = false;
    bool m_bHasShifts = false;
    std::int64_t m_iControls = 0;
    std::int64_t m_iCount = 0;
    std::int64_t m_iRuns = 0;      // of Latin letters beyond ASCII
    std::int64_t m_iLongRuns = 0;  // of them
    int m_iRun = 0;                // letters in the one that is read
    std::int64_t m_iSigns = 0;     // between two letters
    bool m_bAfterLetter = false;
    bool m_bAfterSign = false;  // with a letter before it
    char16_t m_cLead = 0;       // of a pair that the last part has cut
};

}  // namespace conv

#endif

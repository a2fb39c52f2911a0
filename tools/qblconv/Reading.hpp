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

/// Reads the bytes of an input repeatedly. Reads an input that fits into the block only once.
///
/// Threads: one at a time for each object.
class Passes {
public:
    /// @param input  a rewindable input at its start
    Passes(Input& input, std::vector<char>& block) : m_input(input), m_block(block) {}

    /// Starts a pass.
    void begin();
    /// Returns the next part; empty at the end and on failure.
    std::string_view next();
    /// Rewinds the input for other readers.
    /// @return false on failure
    bool finish();
    /// An errno if a pass failed, EINTR after an interrupt, else 0. After an error, all passes are
    /// empty.
    int error() const { return m_iError; }

private:
    Input& m_input;
    std::vector<char>& m_block;
    std::string_view m_whole;  // the whole input, if it fits into the block
    bool m_bWhole = false;
    bool m_bBegun = false;  // a pass has read from the input
    bool m_bDone = false;   // this pass has returned the whole input
    int m_iError = 0;
};

/// Calls a function with an input's passes and rewinds the input.
/// @param name  the input's name, as shown() returns it
/// @return false, with the reason in the report, if the input cannot be read; also false after an
///     interrupt
bool forPasses(Input& input, const std::string& name, std::vector<char>& block, FileReport& report,
               const std::function<void(Passes&)>& body);

/// Decodes an input in one pass.
/// @param strict  a converter with the policy I18N_STOP
/// @param take  called with each part of the text; returns false to end the pass
/// @return true if all bytes that the pass has read were valid and readable
bool decode(Passes& passes, const I18NConverter& strict,
            const std::function<bool(std::u16string_view)>& take);

/// Statistics about the characters of a text. They help to tell whether the text was read in its
/// own encoding.
///
/// Threads: one at a time for each object.
class TextLook {
public:
    enum class Types { kNot, kChecked };
    /// @param types  whether to check the categories of characters, which takes most of the time
    explicit TextLook(Types types) : m_types(types) {}

    void add(std::u16string_view text);

    /// Returns true if no checked character is a C1 control, private use or unassigned.
    bool isAssigned() const { return m_bAssigned; }
    /// Returns true if there are C0 controls other than line ends, tabs and the end-of-file
    /// character.
    bool hasControls() const { return m_iControls > 0; }
    bool isBeyondASCII() const { return m_bBeyondASCII; }
    /// Returns true if at least half of the characters are controls that hasControls() counts.
    bool isMostlyControls() const { return m_iControls > 0 && 2 * m_iControls >= m_iCount; }
    /// Returns true if there is an ESC, SO or SI. ISO 2022 encodings use these to switch between
    /// character sets.
    bool hasShifts() const { return m_bHasShifts; }
    /// Returns true if the encoding seems to be wrong, in one of two ways. First: more than a
    /// quarter of the runs of Latin letters beyond ASCII have three or more letters, as if a text
    /// in another script is read in a Latin encoding. Second: many signs are inside words, as if a
    /// text in a DOS encoding is read in windows-1252.
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
    std::int64_t m_iRuns = 0;      // runs of Latin letters beyond ASCII
    std::int64_t m_iLongRuns = 0;  // runs of three or more letters
    int m_iRun = 0;                // letters in the current run
    std::int64_t m_iSigns = 0;     // signs between two letters
    bool m_bAfterLetter = false;
    bool m_bAfterSign = false;  // the sign follows a letter
    char16_t m_cLead = 0;       // high surrogate at the end of the last part
};

}  // namespace conv

#endif

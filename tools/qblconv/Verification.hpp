#ifndef TOOLS_QBLCONV_VERIFICATION_HPP
#define TOOLS_QBLCONV_VERIFICATION_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace conv {

/// The first place where a text does not come back from its converted form.
struct Mismatch {
    std::int64_t line, column, offset;
    std::string bytes;  // of the character there, as they were read; empty after the end
    std::string back;   // what they come back as; empty for nothing
};

/// Converts what was written back, and compares it with what was read, byte for byte.
///
/// Threads: one at a time for each object.
class Verification {
public:
    /// @param to  the encoding written
    /// @param stripsMark  whether a byte-order mark at the start of the input is left out
    Verification(const I18NConverter& to, bool stripsMark) : m_to(to), m_bStripsMark(stripsMark) {}

    void read(const char* bytes, std::size_t size) { m_read.append(bytes, size); }
    void wrote(const char* bytes, std::size_t size) { m_written.append(bytes, size); }
    /// Compares what has come.
    /// @param encoding  that is being read, as far as known
    /// @param isEnd  whether all has been read and written
    /// @return false at the first difference, which mismatch() tells
    bool compare(const char* encoding, bool isEnd);
    const Mismatch& mismatch() const { return m_mismatch; }

private:
    void begin(const char* encoding);
    bool convertBack(bool isEnd);
    void differ(std::size_t at);

    I18NConverter m_to;
    const bool m_bStripsMark;
    std::optional<I18NConverter> m_from;       // none until a mark would have come
    std::unique_ptr<I18NTextStream> m_pBack;   // from m_to to m_from
    std::unique_ptr<I18NTextStream> m_pPlace;  // counts lines and columns of what came back
    std::string m_written;                     // to be converted back
    std::string m_read, m_back;                // to be compared
    std::string m_recent;                      // the last bytes that came back, not counted yet
    std::int64_t m_iOffset = 0;                // of m_recent in the input
    bool m_bLost = false;                      // what was written cannot be read
    Mismatch m_mismatch = {};
};

}  // namespace conv

#endif

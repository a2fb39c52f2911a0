#ifndef TOOLS_QBLCONV_VERIFICATION_HPP
#define TOOLS_QBLCONV_VERIFICATION_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace conv {

/// The first place where the converted text does not convert back to the input.
struct Mismatch {
    std::int64_t line, column, offset;
    std::string bytes;  // the input's bytes of the character at this place; empty after the end
    std::string back;   // these bytes after the round trip; may be empty
};

/// Converts the output back and compares it with the input, byte by byte.
///
/// Threads: one at a time for each object.
class Verification {
public:
    /// @param to  the encoding of the output
    /// @param stripsMark  whether the conversion removes a byte-order mark at the start of the
    ///     input
    Verification(const I18NConverter& to, bool stripsMark) : m_to(to), m_bStripsMark(stripsMark) {}

    void read(const char* bytes, std::size_t size) { m_read.append(bytes, size); }
    void wrote(const char* bytes, std::size_t size) { m_written.append(bytes, size); }
    /// Compares the bytes received so far.
    /// @param encoding  the encoding of the input, as far as known
    /// @param isEnd  whether the whole input has been read and written
    /// @return false at the first difference, which mismatch() returns
    bool compare(const char* encoding, bool isEnd);
    const Mismatch& mismatch() const { return m_mismatch; }

private:
    void begin(const char* encoding);
    bool convertBack(bool isEnd);
    void differ(std::size_t at);

    I18NConverter m_to;
    const bool m_bStripsMark;
    std::optional<I18NConverter> m_from;  // set when enough bytes for a byte-order mark were read
    std::unique_ptr<I18NTextStream> m_pBack;   // from m_to to m_from
    std::unique_ptr<I18NTextStream> m_pPlace;  // counts lines and columns of m_recent
    std::string m_written;                     // not converted back yet
    std::string m_read, m_back;                // not compared yet
    std::string m_recent;                      // the last bytes converted back, not counted yet
    std::int64_t m_iOffset = 0;                // of m_recent in the input
    bool m_bLost = false;                      // the output cannot be decoded
    Mismatch m_mismatch = {};
};

}  // namespace conv

#endif

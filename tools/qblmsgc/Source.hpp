#ifndef TOOLS_QBLMSGC_SOURCE_HPP
#define TOOLS_QBLMSGC_SOURCE_HPP

#include <cstddef>
#include <string>
#include <vector>

namespace msgc {

/// A place in a source; both numbers begin with 1.
struct Place {
    std::size_t line;
    std::size_t column;  // in characters
};

/// A file that is compiled: its name, and its bytes with an index of the lines.
///
/// Threads: one at a time.
class Source {
public:
    Source(std::string name, std::string bytes);

    const std::string& name() const { return m_name; }
    const std::string& bytes() const { return m_bytes; }
    std::size_t lineCount() const { return m_lines.size(); }
    /// Where a line begins, from 0. The offset behind the last one is that of the file's end.
    std::size_t lineBegin(std::size_t line) const;
    /// Costs as much as the distance from the offset asked for before, in the same line.
    Place placeOf(std::size_t offset) const;

private:
    std::string m_name;
    std::string m_bytes;
    std::vector<std::size_t> m_lines;
    // Of the last place asked for: its offset, and the characters before it in its line.
    mutable std::size_t m_iLastOffset = 0;
    mutable std::size_t m_iLastCharacters = 0;
};

/// Reads a file as a whole.
/// @return false if that failed; problem then receives the reason
bool readFile(const std::string& name, std::string& bytes, std::string& problem);

}  // namespace msgc

#endif

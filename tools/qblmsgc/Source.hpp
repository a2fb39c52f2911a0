#ifndef TOOLS_QBLMSGC_SOURCE_HPP
#define TOOLS_QBLMSGC_SOURCE_HPP

#include <cstddef>
#include <string>
#include <vector>

namespace msgc {

/// A place in a source. Both numbers begin with 1.
struct Place {
    std::size_t line;
    std::size_t column;  // in characters
};

/// A source file: its name, and its bytes with an index of the lines.
///
/// Threads: one at a time.
class Source {
public:
    Source(std::string name, std::string bytes);

    const std::string& name() const { return m_name; }
    const std::string& bytes() const { return m_bytes; }
    std::size_t lineCount() const { return m_lines.size(); }
    /// The offset of a line; lines count from 0. For the number after the last line, the end of the
    /// file.
    std::size_t lineBegin(std::size_t line) const;
    /// Finds the place of an offset. The cost is proportional to the distance from the last offset
    /// in the same line.
    Place placeOf(std::size_t offset) const;

private:
    std::string m_name;
    std::string m_bytes;
    std::vector<std::size_t> m_lines;
    // The last offset, and the number of characters before it in its line.
    mutable std::size_t m_iLastOffset = 0;
    mutable std::size_t m_iLastCharacters = 0;
};

/// Reads a whole file.
/// @return false, with the reason in problem, on failure
bool readFile(const std::string& name, std::string& bytes, std::string& problem);

}  // namespace msgc

#endif

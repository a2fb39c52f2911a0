#ifndef TOOLS_QBLMSGC_CATALOGUE_HPP
#define TOOLS_QBLMSGC_CATALOGUE_HPP

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace msgc {

/// A message of a catalogue, with where it stands in the source.
struct Entry {
    /// From here on, up to the next mark, the text stands in the source byte by byte.
    struct Mark {
        std::size_t text;
        std::size_t source;
    };

    unsigned id = 0;
    std::string name;     // empty if it has none
    std::string text;     // UTF-8
    bool asIs = false;    // the text is no pattern
    bool isWhole = true;  // all of the text could be read
    std::string comment;  // the lines above it, each with a line end
    std::size_t offset = 0;
    std::size_t nameOffset = 0;
    std::vector<Mark> marks;

    /// Where a byte of the text stands in the source.
    std::size_t offsetOf(std::size_t textOffset) const {
        const auto next =
            std::upper_bound(marks.begin(), marks.end(), textOffset,
                             [](std::size_t at, const Mark& mark) { return at < mark.text; });
        const Mark found = next == marks.begin() ? Mark{0, offset} : *(next - 1);
        return found.source + (textOffset - found.text);
    }
};

using Entries = std::vector<Entry>;

}  // namespace msgc

#endif

#ifndef TOOLS_QBLMSGC_CATALOGUE_HPP
#define TOOLS_QBLMSGC_CATALOGUE_HPP

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace msgc {

/// A message of a catalogue, with its place in the source.
struct Entry {
    /// From this mark to the next one, the text and the source have the same bytes.
    struct Mark {
        std::size_t text;
        std::size_t source;
    };

    unsigned id = 0;
    std::string name;     // empty if the message has no name
    std::string text;     // UTF-8
    bool asIs = false;    // the text is not a pattern
    bool isWhole = true;  // the whole text is valid
    std::string comment;  // the comment lines above the message, each with a line end
    std::size_t offset = 0;
    std::size_t nameOffset = 0;
    std::vector<Mark> marks;

    /// The offset in the source of a byte of the text.
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

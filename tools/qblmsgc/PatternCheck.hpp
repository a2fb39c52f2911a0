#ifndef TOOLS_QBLMSGC_PATTERNCHECK_HPP
#define TOOLS_QBLMSGC_PATTERNCHECK_HPP

#include <string>
#include <vector>

#include "tools/qblmsgc/ArgumentType.hpp"
#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// An error or a surprise in a pattern.
struct PatternFinding {
    bool isError;
    std::size_t offset;  // byte offset in the text
    PlacedMessage message;
};

/// Parses a text as an ICU message pattern and checks it.
struct PatternCheck {
    /// @param text  well-formed UTF-8
    /// @param asIs  true if the author marked the text as not a pattern
    PatternCheck(const std::string& text, bool asIs);

    bool hasErrors() const;

    /// A use of an argument that fits no value of the type that an earlier use has.
    struct Conflict {
        std::size_t offset;  // byte offset in the text
        int number;
        ArgumentType type;
    };

    ArgumentTypes arguments;  // each with the type that fits all its uses
    std::vector<Conflict> conflicts;
    std::vector<PatternFinding> findings;
};

/// Checks the texts of a source and reports the findings.
void checkPatterns(const Entries& entries, const Source& source, Report& report);

}  // namespace msgc

#endif

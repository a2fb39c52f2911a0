#ifndef TOOLS_QBLMSGC_PATTERNCHECK_HPP
#define TOOLS_QBLMSGC_PATTERNCHECK_HPP

#include <set>
#include <string>
#include <vector>

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// What is wrong with a pattern, or surprises in it.
struct PatternFinding {
    bool isError;
    std::size_t offset;  // in the text, in bytes
    qblmsgcmsgs id;
    std::string detail;
};

/// A text as the message pattern that ICU takes it for.
struct PatternCheck {
    /// @param text  well-formed UTF-8
    /// @param asIs  it is meant to be no pattern
    PatternCheck(const std::string& text, bool asIs);

    bool hasErrors() const;

    std::set<int> arguments;  // their numbers
    std::vector<PatternFinding> findings;
};

/// Reports what is found in the texts of a source.
void checkPatterns(const Entries& entries, const Source& source, Report& report);

}  // namespace msgc

#endif

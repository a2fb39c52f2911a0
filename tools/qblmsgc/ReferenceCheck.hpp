#ifndef TOOLS_QBLMSGC_REFERENCECHECK_HPP
#define TOOLS_QBLMSGC_REFERENCECHECK_HPP

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// A source that was read.
struct Parsed {
    const Source& source;
    const Entries& entries;
};

/// Warns of what a translation has otherwise than its reference: identifiers, names as far as both
/// have them, and the arguments that the texts show.
void compareWithReference(const Parsed& translation, const Parsed& reference, Report& report);

}  // namespace msgc

#endif

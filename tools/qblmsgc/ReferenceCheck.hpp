#ifndef TOOLS_QBLMSGC_REFERENCECHECK_HPP
#define TOOLS_QBLMSGC_REFERENCECHECK_HPP

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// A parsed source.
struct Parsed {
    const Source& source;
    const Entries& entries;
};

/// Warns about differences between a translation and its reference. Compares identifiers, the names
/// of messages that have a name in both, and the arguments in the texts.
void compareWithReference(const Parsed& translation, const Parsed& reference, Report& report);

}  // namespace msgc

#endif

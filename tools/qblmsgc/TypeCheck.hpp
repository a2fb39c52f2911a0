#ifndef TOOLS_QBLMSGC_TYPECHECK_HPP
#define TOOLS_QBLMSGC_TYPECHECK_HPP

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// Checks what the option --typed requires of a source: each argument has one type, and the
/// messages have different functions.
void checkTypes(const Entries& entries, const Source& source, Report& report);

/// Checks that each text of a translation can show the arguments that the functions of the
/// reference accept.
void compareTypes(const Parsed& translation, const Parsed& reference, Report& report);

/// Returns a checksum of the identifiers, of their names, and of the types of the arguments, from 1
/// to 0xFFFFFF. Comments and texts do not change it. A plain argument counts as a text. The names
/// are included, because otherwise two messages with the same arguments could exchange their
/// identifiers unnoticed.
unsigned shapeOf(const Entries& entries);

}  // namespace msgc

#endif

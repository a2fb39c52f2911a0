#ifndef TOOLS_QBLMSGC_SOURCEPARSER_HPP
#define TOOLS_QBLMSGC_SOURCEPARSER_HPP

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// Returns true if a header cannot use a name for an enumerator or enum: a keyword of C++20 or C17,
/// a name reserved for compilers, or a macro of the system or of a common standard header.
bool isReserved(const std::string& name);

/// Parses a source: UTF-8, line by line.
///
///     # a comment; those right above a message belong to it
///     104 BAD_BYTE "{0}:{1}: not a character\n"
///         "a text may go on in further lines"
///     0x69 "a message without a name"
///     106 BRACE = "a text that is not a pattern: {"
///
/// In a text, \" \\ \n \r \t and \uXXXX have the same meaning as in C.
///
/// @return all messages that can be read, in the order of the file. The report receives all errors
///     except errors in patterns.
Entries parseSource(const Source& source, Report& report);

}  // namespace msgc

#endif

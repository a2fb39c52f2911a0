#ifndef TOOLS_QBLMSGC_SOURCEPARSER_HPP
#define TOOLS_QBLMSGC_SOURCEPARSER_HPP

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

/// Whether no enumerator or enum of a header can have that name: a keyword of C++20 or C17, a name
/// that compilers keep to themselves, or a macro of the system or of a common standard header.
bool isReserved(const std::string& name);

/// Reads a source: UTF-8, by lines.
///
///     # a comment; those right above a message belong to it
///     104 BAD_BYTE "{0}:{1}: not a character\n"
///         "a text may go on in further lines"
///     0x69 "a message without a name"
///     106 BRACE = "a text that is no pattern: {"
///
/// In a text \" \\ \n \r \t and \uXXXX stand for the characters that they do in C.
///
/// @return all messages that can be read, in the order of the file; what is wrong with it, wrong
///     patterns aside, is in the report
Entries parseSource(const Source& source, Report& report);

}  // namespace msgc

#endif

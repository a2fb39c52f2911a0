#ifndef QBLCORE_MESSAGES_QBLXMLESCAPE_HPP
#define QBLCORE_MESSAGES_QBLXMLESCAPE_HPP

#include <string>
#include <string_view>

#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// Makes a text fit for XML, between tags and in attribute values: the five characters with a
/// meaning there become the entities of XML 1.0, section 4.6. What XML does not admit becomes
/// U+FFFD: control characters, U+FFFE, U+FFFF and ill-formed UTF-8. A combining mark at the
/// beginning becomes a character reference, or it would combine with what is in front of the text.
/// Reports insert texts as they are, so parameters of doubtful origin are escaped on their way in:
///
///     message << qblXmlEscape(fileName);
///
/// Threads: any thread.
QBL_API I18NString qblXmlEscape(const I18NString& text);
/// The same for UTF-8.
QBL_API std::string qblXmlEscape(std::string_view utf8);

#endif

#ifndef QBLCORE_MESSAGES_QBLXMLESCAPE_HPP
#define QBLCORE_MESSAGES_QBLXMLESCAPE_HPP

#include <string>
#include <string_view>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class I18NString;

/// Escapes a text for XML, between tags and in attribute values. The five special characters become
/// the entities of XML 1.0, section 4.6. U+FFFD replaces what XML does not allow: U+FFFE, U+FFFF,
/// ill-formed UTF-8, and characters below U+0020 except tab, line feed and carriage return. A
/// combining mark at the beginning becomes a character reference, so that it does not combine with
/// the character before the text. The XML of errors and messages contains texts without escaping,
/// so escape parameters from untrusted sources:
///
///     message << qblXmlEscape(fileName);
///
/// Threads: any thread may call these functions.
QBL_API I18NString qblXmlEscape(const I18NString& text);
/// Does the same for UTF-8 text.
QBL_API std::string qblXmlEscape(std::string_view utf8);

#endif

#ifndef TOOLS_COMMON_MESSAGETEXT_HPP
#define TOOLS_COMMON_MESSAGETEXT_HPP

#include <optional>
#include <string>

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Messages/QBLTypedMessage.hpp"

namespace tools {

/// A tool's catalogue, as findCatalogue() finds it.
struct Catalogue {
    std::string base;  // base name, with a directory if the catalogue is next to the program
    unsigned shape;
};

/// The messages of a tool's catalogue in one language. If the catalogue is missing, unreadable, or
/// of another version than the program, the messages have the English texts that are built into the
/// program.
///
/// Threads: one at a time for each object.
class MessageText {
public:
    MessageText(Catalogue catalogue, std::string locales);

    /// The formatted text, without a line end.
    std::string text(const QBLTypedMessage& message);
    /// The text of a message without arguments.
    std::string text(unsigned id);
    /// A `<Message>` element with the text, the name of the catalogue, the identifier and the
    /// arguments. Programs can show the message in another language.
    std::string element(QBLSeverity severity, const QBLTypedMessage& message);

private:
    std::string textOf(const QBLMessageComponents& message);

    const Catalogue m_catalogue;
    const std::string m_locales;
    QBLMessageFile m_message;          // keeps the file and the last pattern
    std::optional<bool> m_bIsOfShape;  // unknown before the first text
};

}  // namespace tools

#endif

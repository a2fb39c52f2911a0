#ifndef TOOLS_COMMON_MESSAGETEXT_HPP
#define TOOLS_COMMON_MESSAGETEXT_HPP

#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"

namespace tools {

/// The parameters of a message. Pass a number as a text if it must not be formatted.
using Details = std::vector<std::string>;

/// The messages of a tool's catalogue in one language. If the catalogue is missing or unreadable,
/// the messages have the English texts that are built into the program.
///
/// Threads: one at a time for each object.
class MessageText {
public:
    /// @param catalogue  a base name from findCatalogue()
    MessageText(const std::string& catalogue, std::string locales);

    /// The formatted text, without a line end.
    std::string text(unsigned id, const Details& details = {});
    /// A `<Message>` element with the text, the name of the catalogue, the identifier and the
    /// details. Programs can show the message in another language.
    std::string element(QBLSeverity severity, unsigned id, const Details& details);

private:
    QBLMessageFile m_message;
    const std::string m_catalogue;  // without a directory
    const std::string m_locales;
};

}  // namespace tools

#endif

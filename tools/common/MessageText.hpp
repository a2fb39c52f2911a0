#ifndef TOOLS_COMMON_MESSAGETEXT_HPP
#define TOOLS_COMMON_MESSAGETEXT_HPP

#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"

namespace tools {

/// What a message is filled in with. Numbers come as texts where they are to stay as they are.
using Details = std::vector<std::string>;

/// The messages of a tool's catalogue, in a language. Where there is no catalogue, or none that can
/// be read, they have the English texts that are built into the program.
///
/// Threads: one at a time for each object.
class MessageText {
public:
    /// @param catalogue  a base name, as of findCatalogue()
    MessageText(const std::string& catalogue, std::string locales);

    /// The text for people, without a line end.
    std::string text(unsigned id, const Details& details = {});
    /// A `<Message>` element with the text, and with the name of the catalogue, the identifier and
    /// the details, from which it can be shown in another language.
    std::string element(QBLSeverity severity, unsigned id, const Details& details);

private:
    QBLMessageFile m_message;
    const std::string m_catalogue;  // without a directory
    const std::string m_locales;
};

}  // namespace tools

#endif

#ifndef TOOLS_QBLMSGC_COMMANDS_HPP
#define TOOLS_QBLMSGC_COMMANDS_HPP

#include "tools/qblmsgc/Options.hpp"
#include "tools/qblmsgc/Report.hpp"

namespace msgc {

/// Exit statuses.
enum Status { kClean = 0, kErrors = 1, kUsage = 2 };

Status compile(const Options& options);
Status dump(const Options& options);
Status show(const Options& options);
Status where(const Options& options);
Status showReport(const Options& options);

/// The exit status for an operand that cannot be read: kUsage if the file does not exist, as in
/// qblconv; else kErrors.
Status unreadable(const std::string& operand);

/// Prints a message of the tool to the standard error output.
/// @return the status given
Status complain(Status status, const QBLTypedMessage& message);
/// Makes the message from texts that are not shown() yet.
template <class Make, class... Texts>
Status complain(Status status, Make make, const Texts&... texts) {
    return complain(status, tools::withShown(make, texts...));
}

}  // namespace msgc

#endif

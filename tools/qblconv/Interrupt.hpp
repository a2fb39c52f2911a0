#ifndef TOOLS_QBLCONV_INTERRUPT_HPP
#define TOOLS_QBLCONV_INTERRUPT_HPP

namespace conv {

/// Has SIGINT, SIGTERM and SIGHUP end the work at the next block, so that what is unfinished is
/// removed.
void catchInterrupts();
/// Any thread may ask.
bool isInterrupted();
/// Ends the process by the signal that came, if one did.
void endIfInterrupted();

}  // namespace conv

#endif

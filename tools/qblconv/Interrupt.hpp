#ifndef TOOLS_QBLCONV_INTERRUPT_HPP
#define TOOLS_QBLCONV_INTERRUPT_HPP

namespace conv {

/// Has SIGINT, SIGQUIT, SIGTERM, SIGHUP and SIGPIPE end the work at the next block, so that what is
/// unfinished is removed; ignores SIGXFSZ.
void catchInterrupts();
/// Any thread may ask.
bool isInterrupted();
/// Waits until a descriptor has something to read, or its end, on whatever thread the signal
/// comes. @return false if the work is to end
bool waitToRead(int descriptor);
/// Sleeps for so many milliseconds, or until a signal comes on this thread.
void pauseFor(int milliseconds);
/// Ends the process by the signal that came, if one did.
void endIfInterrupted();

}  // namespace conv

#endif

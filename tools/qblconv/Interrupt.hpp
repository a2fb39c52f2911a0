#ifndef TOOLS_QBLCONV_INTERRUPT_HPP
#define TOOLS_QBLCONV_INTERRUPT_HPP

namespace conv {

/// Makes SIGINT, SIGQUIT, SIGTERM, SIGHUP and SIGPIPE end the work at the next block, so that the
/// tool removes unfinished files. Ignores SIGXFSZ.
void catchInterrupts();
/// Returns true after such a signal. Any thread may call it.
bool isInterrupted();
/// Waits until a descriptor has data or has reached its end. A signal on any thread ends the wait.
/// @return false after an interrupt
bool waitToRead(int descriptor);
/// Sleeps for this many milliseconds, or until a signal arrives on this thread.
void pauseFor(int milliseconds);
/// Ends the process by the signal that was caught, if there was one.
void endIfInterrupted();

}  // namespace conv

#endif

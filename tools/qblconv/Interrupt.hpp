#ifndef TOOLS_QBLCONV_INTERRUPT_HPP
#define TOOLS_QBLCONV_INTERRUPT_HPP

namespace conv {

/// Makes SIGINT, SIGQUIT, SIGTERM, SIGHUP and SIGPIPE end the work at the next block, so that the
/// tool removes unfinished files. Ignores SIGXFSZ.
void catchInterrupts();
/// Returns true if one of the caught signals has arrived. Any thread may call this function.
bool isInterrupted();
/// Waits until a descriptor has data or has reached its end. A signal on any thread ends the wait.
/// @return false after an interrupt
bool waitToRead(int descriptor);
/// Sleeps for this many milliseconds, or until a signal arrives on this thread.
void pauseFor(int milliseconds);
/// If a signal was caught, ends the process by this signal.
void endIfInterrupted();

}  // namespace conv

#endif

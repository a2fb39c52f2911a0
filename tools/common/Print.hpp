#ifndef TOOLS_COMMON_PRINT_HPP
#define TOOLS_COMMON_PRINT_HPP

#include <cstdio>
#include <string>

namespace tools {

// Prints to stdio streams. Remembers why the first write to the standard output failed, because the
// stream itself keeps only a flag. finishOutput() returns the reason.
//
// Threads: any thread may print.

/// Writes bytes unchanged.
void print(std::FILE* out, const std::string& bytes);
/// Writes a text converted by localText().
void printText(std::FILE* out, const std::string& utf8);
/// @return false if any output to the stream is lost
bool flush(std::FILE* out);
/// Flushes the standard output.
/// @return an errno; 0 if all output was written
int finishOutput();

}  // namespace tools

#endif

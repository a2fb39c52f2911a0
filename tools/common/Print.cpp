#include "tools/common/Print.hpp"

#include <atomic>
#include <cerrno>

#include "tools/common/LocaleText.hpp"

namespace tools {

namespace {

std::atomic<int> g_outputError{0};

bool note(std::FILE* out, bool isWritten) {
    const int error = errno;
    int none = 0;
    if (!isWritten && out == stdout) g_outputError.compare_exchange_strong(none, error);
    return isWritten;
}

}  // namespace

void print(std::FILE* out, const std::string& bytes) {
    note(out, std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size());
}

void printText(std::FILE* out, const std::string& utf8) { print(out, localText(utf8)); }

bool flush(std::FILE* out) { return note(out, std::fflush(out) == 0) && std::ferror(out) == 0; }

int finishOutput() {
    const bool isWritten = flush(stdout);
    const int error = g_outputError;
    return error == 0 && !isWritten ? EIO : error;
}

}  // namespace tools

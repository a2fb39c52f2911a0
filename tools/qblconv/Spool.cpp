#include "tools/qblconv/Spool.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

constexpr int kOwnerOnly = 0600;

}  // namespace

int openTemporary() {
    const char* const given = std::getenv("TMPDIR");
    std::string path = given != nullptr && *given != '\0' ? given : "/tmp";
    const int file = open64(path.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, kOwnerOnly);
    // File systems without nameless files, and kernels that do not know O_TMPFILE, fail with these
    // errors.
    if (file >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) return file;
    path += "/.qblconvXXXXXX";
    const int named = mkostemp64(path.data(), O_CLOEXEC);
    if (named >= 0) unlink(path.c_str());
    return named;
}

bool writeAll(int descriptor, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t done = ::write(descriptor, bytes, size);
        if (done < 0 && (errno != EINTR || isInterrupted())) return false;
        if (done <= 0) continue;
        bytes += done;
        size -= static_cast<std::size_t>(done);
        // If a signal cut the write short, stops before the next write, which may block.
        if (size > 0 && isInterrupted()) {
            errno = EINTR;
            return false;
        }
    }
    return true;
}

}  // namespace conv

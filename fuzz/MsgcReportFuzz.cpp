// Feeds texts that contain error reports to "qblmsgc -s". The output must not depend on how the
// text is split into reads, and text outside of reports must be passed on unchanged. The first byte
// of the input sets the length of the pieces.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "QBLCore/Frame/QBLCore.h"
#include "fuzz/support/Capture.hpp"
#include "tools/qblmsgc/Commands.hpp"

namespace {

constexpr std::size_t kMostPieces = 64;  // a socket buffers this many pieces without a reader

void require(bool holds) {
    if (!holds) std::abort();
}

/// Puts a text into the standard input, so that each read() returns one piece.
void feed(const std::string& text, std::size_t piece) {
    int ends[2];
    require(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0);
    for (std::size_t at = 0; at < text.size(); at += piece) {
        const std::size_t size = std::min(piece, text.size() - at);
        require(send(ends[1], text.data() + at, size, MSG_DONTWAIT) == static_cast<ssize_t>(size));
    }
    require(dup2(ends[0], STDIN_FILENO) == STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
}

std::string show(const std::string& text, std::size_t piece) {
    feed(text, piece);
    Capture out(stdout), error(stderr);
    const msgc::Status status = msgc::showReport({});
    const std::string said = error.text();
    require((status == msgc::kClean) == said.empty());
    return out.text() + said;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qblCoreInitialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string whole = show(text, text.size() + 1);
    require(whole == show(text, std::max<std::size_t>(1U + data[0] % 32, size / kMostPieces + 1)));
    const bool hasReports =
        text.find("<Exception ") != std::string::npos || text.find("<Message") != std::string::npos;
    require(hasReports || whole == text);
    return 0;
}

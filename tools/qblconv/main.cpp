// qblconv: converts text files between encodings.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_init.h"
#include "tools/common/BuiltInTexts.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Run.hpp"

namespace {

/// Sees to it that no file gets the descriptor of a standard stream that is closed: what is
/// written to that one, or read from it, still fails.
void occupyStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

int runCommandLine(int argc, char** argv) {
    const int status = conv::run(argc, argv);
    const int error = tools::finishOutput();
    if (error == 0) return status;
    // Whoever reads a pipe may well stop.
    if (!conv::isInterrupted()) tools::printText(stderr, "qblconv: " + tools::reason(error) + "\n");
    return conv::kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    conv::catchInterrupts();
    // The installation's bin directory, one of those that catalogues are sought in, is known then.
    qblCoreInitialize();
    tools::useBuiltInTexts();
    int status = conv::kFailed;
    try {
        I18NInitialize();  // reads what the policy "lookup" looks up
        status = runCommandLine(argc, argv);
    } catch (QBLThrowable& error) {
        const char* const text = error.getMessage();
        std::fprintf(stderr, "qblconv: %s\n", text != nullptr ? text : error.getThrowableName());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qblconv: %s\n", error.what());
    }
    I18NTerminate();
    qblCoreTerminate();
    conv::endIfInterrupted();
    return status;
}

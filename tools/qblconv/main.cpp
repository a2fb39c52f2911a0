// qblconv: converts text files between encodings.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_init.h"
#include "tools/common/BuiltInTexts.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Run.hpp"

namespace {

/// Opens /dev/null for each closed standard stream, so that no file gets its descriptor. Writes to
/// such a stream, and reads from it, still fail.
void occupyStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

}  // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    conv::catchInterrupts();
    // Sets the installation's bin directory, in which catalogues are searched.
    qblCoreInitialize();
    tools::useBuiltInTexts();
    int status = conv::kFailed;
    try {
        I18NInitialize();  // reads the tables of the policy "lookup"
        status = conv::run(argc, argv);
    } catch (QBLThrowable& error) {
        const char* const text = error.getMessage();
        std::fprintf(stderr, "qblconv: %s\n", text != nullptr ? text : error.getThrowableName());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "qblconv: %s\n", tools::reason(ENOMEM).c_str());
    } catch (const std::exception&) {
        std::fprintf(stderr, "qblconv: %s\n", qblWhat().c_str());
    }
    I18NTerminate();
    qblCoreTerminate();
    conv::endIfInterrupted();
    return status;
}

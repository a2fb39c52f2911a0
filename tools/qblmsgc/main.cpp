// qblmsgc: compiles message catalogues, and looks into them.
#include <cstdio>
#include <exception>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Report.hpp"

namespace {

msgc::Status run(const msgc::Options& options) {
    using Command = msgc::Options::Command;
    switch (options.command) {
        case Command::kDump:
            return msgc::dump(options);
        case Command::kShow:
            return msgc::show(options);
        case Command::kWhere:
            return msgc::where(options);
        case Command::kHelp:
            std::fputs(msgc::textOf(MSGC_USAGE).c_str(), stdout);
            return msgc::kClean;
        case Command::kVersion:
            std::printf("%s\n", msgc::textOf(MSGC_VERSION, {QBL_VERSION}).c_str());
            return msgc::kClean;
        default:
            return msgc::compile(options);
    }
}

int runCommandLine(int argc, char** argv) {
    msgc::Options options;
    std::string problem;
    if (msgc::parseOptions(argc, argv, options, problem)) {
        const msgc::Status status = run(options);
        if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
        std::perror("qblmsgc");
        return msgc::kErrors;
    }
    if (!problem.empty()) std::fprintf(stderr, "%s\n", problem.c_str());
    std::fputs(msgc::textOf(MSGC_USAGE).c_str(), stderr);
    return msgc::kUsage;
}

}  // namespace

int main(int argc, char** argv) {
    // The installation's bin directory, one of those that catalogues are sought in, is known then.
    qblCoreInitialize();
    int status = msgc::kErrors;
    try {
        status = runCommandLine(argc, argv);
    } catch (QBLThrowable& error) {
        std::fprintf(stderr, "%s\n", error.toString());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qblmsgc: %s\n", error.what());
    }
    qblCoreTerminate();
    return status;
}

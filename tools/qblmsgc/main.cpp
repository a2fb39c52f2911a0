// qblmsgc: compiles message catalogues and shows their contents.
#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "tools/common/BuiltInTexts.hpp"
#include "tools/common/Help.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Environment.hpp"
#include "tools/qblmsgc/Report.hpp"

namespace {

void printHelp() {
    tools::MessageText texts(msgc::ownCatalogue(), msgc::userLocale());
    tools::printText(stdout, texts.text(qblmsgcmsgs::msgcUsage()));
    tools::printText(stdout, tools::describeOptions(msgc::knownOptions(), texts));
    tools::printText(stdout, texts.text(qblmsgcmsgs::msgcUsageEnd()));
}

msgc::Status run(const msgc::Options& options) {
    using Command = msgc::Options::Command;
    switch (options.command) {
        case Command::kDump:
            return msgc::dump(options);
        case Command::kShow:
            return msgc::show(options);
        case Command::kWhere:
            return msgc::where(options);
        case Command::kReport:
            return msgc::showReport(options);
        case Command::kHelp:
            printHelp();
            return msgc::kClean;
        case Command::kCompletions: {
            tools::MessageText texts(msgc::ownCatalogue(), msgc::userLocale());
            tools::print(stdout, tools::completionScript("qblmsgc", options.shell,
                                                         msgc::knownOptions(), texts));
            return msgc::kClean;
        }
        case Command::kVersion:
            tools::printText(stdout,
                             msgc::formatMessage(qblmsgcmsgs::msgcVersion, QBL_VERSION) + "\n");
            return msgc::kClean;
        default:
            return msgc::compile(options);
    }
}

int runCommandLine(int argc, char** argv) {
    msgc::Options options;
    msgc::Problem problem;
    const bool isUsage = msgc::parseOptions(argc, argv, options, problem);
    msgc::setUserLocale(options.locales);
    tools::setReasonLanguage(msgc::ownCatalogue().base, msgc::userLocale());
    if (!isUsage) return msgc::complain(msgc::kUsage, *problem);
    const msgc::Status status = run(options);
    const int error = tools::finishOutput();
    if (error == 0) return status;
    return msgc::complain(msgc::kErrors, qblmsgcmsgs::msgcCannotWrite,
                          msgc::formatMessage(qblmsgcmsgs::msgcStandardOutput),
                          tools::reason(error));
}

}  // namespace

int main(int argc, char** argv) {
    // Sets the installation's bin directory, in which catalogues are searched.
    qblCoreInitialize();
    tools::useBuiltInTexts();
    int status = msgc::kErrors;
    try {
        status = runCommandLine(argc, argv);
    } catch (QBLThrowable& error) {
        const char* const text = error.getMessage();
        std::fprintf(stderr, "qblmsgc: %s\n", text != nullptr ? text : error.getThrowableName());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "qblmsgc: %s\n", tools::reason(ENOMEM).c_str());
    } catch (const std::exception&) {
        std::fprintf(stderr, "qblmsgc: %s\n", qblWhat().c_str());
    }
    qblCoreTerminate();
    return status;
}

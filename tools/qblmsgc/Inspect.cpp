#include <unistd.h>

#include <cstdio>

#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"
#include "tools/common/Files.hpp"
#include "tools/common/LocaleText.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Dump.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/Source.hpp"

namespace msgc {

Status unreadable(const std::string& operand) {
    return tools::isAbsent(operand) ? kUsage : kErrors;
}

Status complain(Status status, const QBLTypedMessage& message) {
    tools::flush(stdout);
    tools::printText(stderr, formatMessage(message) + "\n");
    return status;
}

Status dump(const Options& options) {
    const std::string& name = options.operands[0];
    std::string bytes, reason;
    if (!readFile(name, bytes, reason))
        return complain(unreadable(name), qblmsgcmsgs::msgcCannotRead, name, reason);
    std::vector<BmfText> texts;
    BmfProblem problem = {};
    if (!readBmf(bytes, texts, problem))
        return complain(kErrors, qblmsgcmsgs::msgcNoBmf, name, std::to_string(problem.offset),
                        formatMessage(problem.reason));
    // A source cannot express the shape; the option --typed computes it.
    if (const unsigned shape = shapeOfBmf(bytes); shape != 0) {
        char line[64];
        std::snprintf(line, sizeof line, "# Compiled with --typed; shape %06X.\n\n", shape);
        tools::print(stdout, line);
    }
    for (const BmfText& each : texts)
        tools::print(stdout, dumpSource(each.id, std::string(each.text)));
    // A message file may, for example, share texts or have unused bytes. This makes no difference
    // to programs that read the file, but a source cannot express it.
    return isCanonicalBmf(bytes, texts) ? kClean
                                        : complain(kErrors, qblmsgcmsgs::msgcNotTheSame, name);
}

Status where(const Options& options) {
    const std::string& base = options.operands[0];
    const char* locales = options.operands.size() > 1 ? options.operands[1].c_str()
                                                      : QBLResourceFactory::g_defaultLocaleID;
    const std::string used = QBLResourceFactory::find(base, locales);
    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
    bool isMarked = false;
    for (const std::string& candidate : QBLResourceFactory::getCandidates(base, locales)) {
        const bool isUsed = !isMarked && candidate == used;
        isMarked = isMarked || isUsed;
        tools::print(stdout,
                     (isUsed ? "* " : "  ") +
                         (isTerminal ? tools::localText(tools::shown(candidate)) : candidate) +
                         "\n");
    }
    if (used.empty()) return complain(kErrors, qblmsgcmsgs::msgcNotFound, base, locales);
    QBLResourceBMF resource(0);
    resource.setResourceFileName(used);
    return resource.open() ? kClean : complain(kErrors, qblmsgcmsgs::msgcDoesNotOpen, used);
}

}  // namespace msgc

// Shows the XML form of errors and messages as readable text.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <utility>

#include "QBLCore/Messages/QBLMessage.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tools/common/Files.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Reason.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Environment.hpp"
#include "tools/qblmsgc/Paths.hpp"
#include "tools/qblmsgc/XmlTree.hpp"

namespace msgc {

namespace {

/// The tags that can begin a report. The first tag in a text begins the report. Tags inside the
/// report belong to it.
const struct {
    std::string_view begin, end;
} kRoots[] = {
    {"<Exception ", "</Exception>"}, {"<Messages>", "</Messages>"}, {"<Message ", "</Message>"}};

constexpr std::size_t kMostBytes = 0x1000000;  // longest report
constexpr int kMostAttempts = 64;              // attempts to find the end of a report
constexpr std::size_t kLongestBegin = 11;

/// Parses a text that is entirely a number. In base 16, the number may have the prefix "0x", which
/// printf omits for 0.
template <class Number>
bool parse(const std::string& text, Number& value, int base = 10) {
    const std::size_t skipped = base == 16 && text.compare(0, 2, "0x") == 0 ? 2 : 0;
    const char* const end = text.data() + text.size();
    const auto [next, problem] = [&] {
        if constexpr (std::is_integral_v<Number>)
            return std::from_chars(text.data() + skipped, end, value, base);
        else
            return std::from_chars(text.data(), end, value);
    }();
    return problem == std::errc() && next == end;
}

QBLMessageParm parameterOf(const XmlNode& node) {
    const std::string &type = node.attribute("Type"), &value = node.attribute("Value");
    std::uint32_t whole = 0;
    std::int32_t integer = 0;
    double real = 0;
    if (type == "string") return QBLMessageParm(value.c_str());
    if (type == "ulong" && parse(value, whole))
        return QBLMessageParm(static_cast<unsigned long>(whole));
    if (type == "long" && parse(value, integer)) return QBLMessageParm(long{integer});
    if (type == "double" && parse(value, real)) return QBLMessageParm(real);
    if (type == "msgid" && parse(value, whole, 16))
        return QBLMessageParm(static_cast<unsigned long>(whole), 1);
    // Shows the value unchanged if it does not match its type.
    return value.empty() ? QBLMessageParm(QBLMsgParmUnknown) : QBLMessageParm(value.c_str());
}

class Printer {
public:
    explicit Printer(const char* locales) : m_pLocales(locales) {}

    void print(const XmlNode& report) {
        if (report.name == "Exception")
            printError(report);
        else if (report.name == "Message")
            printMessage(report, 0);
        else
            printMessages(report, 0);
    }

    void complain(const QBLTypedMessage& message) { tools::printText(stderr, say(message) + "\n"); }

private:
    void printError(const XmlNode& error) {
        printIndented(0, say(qblmsgcmsgs::msgcReportError(tools::shown(error.attribute("Name")),
                                                          tools::shown(error.attribute("Error")),
                                                          severityOf(error))));
        if (const XmlNode* const messages = error.child("Messages")) {
            if (const XmlNode* const text = messages->child("MessageText"))
                printIndented(1, text->text);
            printMessages(*messages, 1);
        }
        const XmlNode* const trace = error.child("TraceInfo");
        if (trace == nullptr) return;
        // The latest entry comes first.
        for (const XmlNode& entry : trace->children)
            printIndented(1, say(qblmsgcmsgs::msgcReportTrace(entry.attribute("Text"))));
    }

    void printMessages(const XmlNode& messages, unsigned level) {
        if (messages.text.find_first_not_of(" \t\r\n") != std::string::npos)
            printIndented(level, messages.text);
        for (const XmlNode& message : messages.children) {
            if (message.name == "Message")
                printMessage(message, level);
            else if (message.name != "MessageText")
                printMessages(message, level);
        }
    }

    void printMessage(const XmlNode& message, unsigned level) {
        unsigned nesting = 0;
        static_cast<void>(parse(message.attribute("Nesting"), nesting));
        const std::string severity = severityOf(message), text = textOfMessage(message);
        printIndented(level + std::min(nesting, 20U),
                      hasSeverity(text, severity)
                          ? text
                          : say(qblmsgcmsgs::msgcReportMessage(severity, text)));
    }

    /// Returns true if a text has its severity after its place, as in "a.msg:1:2: warning: ...".
    static bool hasSeverity(const std::string& text, const std::string& severity) {
        if (severity.empty()) return false;
        const bool isUpper = severity[0] >= 'A' && severity[0] <= 'Z';
        const std::string first(1, static_cast<char>(severity[0] | (isUpper ? 0x20 : 0)));
        for (const std::string& word : {severity, first + severity.substr(1)})
            for (const char* const end : {":", " :"})
                if (text.find(": " + word + end) != std::string::npos) return true;
        return false;
    }

    std::string textOfMessage(const XmlNode& message) {
        const XmlNode* const text = message.child("MessageText");
        const XmlNode* const components = message.child("MessageComponents");
        if (components == nullptr) return text != nullptr ? text->text : std::string();
        std::uint32_t id = 0;
        const std::string file = fileOf(message.attribute("File"));
        const std::string& number = components->attribute("ID");
        const bool isId = parse(number, id, 16);
        // Drops the directory, because the report may come from another machine. The library then
        // looks for the file where programs find their catalogues.
        if (isId && !file.empty() && file != "." && file != "..") {
            QBLMessage made(file.c_str(), id);
            if (const XmlNode* const parameters = components->child("MessageParms"))
                for (const XmlNode& each : parameters->children) made << parameterOf(each);
            I18NString shown, element;
            made.format(m_pLocales, nullptr, shown);
            made.toString(m_pLocales, nullptr, element, 0);
            if (shown != element) return shown.toUtf8();
        }
        if (text != nullptr) return text->text;
        const std::string& kind = message.attribute("Name");
        if (isId && kind == "QBLErrnoMessage") return m_reasons.text(static_cast<int>(id));
        return say(qblmsgcmsgs::msgcReportNoText(
            tools::shown(file.empty() ? kind : file),
            (isId ? std::to_string(id) : tools::shown(number)) + valuesOf(*components)));
    }

    static std::string valuesOf(const XmlNode& components) {
        std::string values;
        const XmlNode* const parameters = components.child("MessageParms");
        if (parameters == nullptr) return values;
        for (const XmlNode& each : parameters->children)
            values.append(values.empty() ? " (" : ", ").append(each.attribute("Value"));
        return values + ")";
    }

    std::string severityOf(const XmlNode& node) {
        static const struct {
            const char* name;
            QBLTypedMessage (*message)();
        } kSeverities[] = {{"Fatal", qblmsgcmsgs::msgcFatal},
                           {"Error", qblmsgcmsgs::msgcError},
                           {"Warning", qblmsgcmsgs::msgcWarning},
                           {"Information", qblmsgcmsgs::msgcInformation}};
        const std::string& severity = node.attribute("Severity");
        for (const auto& each : kSeverities)
            if (severity == each.name) return say(each.message());
        return tools::shown(severity);
    }

    /// The tool's own texts, in the language of the report.
    std::string say(const QBLTypedMessage& message) { return m_texts.text(message); }

    static void printIndented(unsigned level, const std::string& text) {
        const std::string indent(2 * level, ' ');
        std::string out = indent;
        for (const char c : tools::shownText(text)) {
            out += c;
            // Marks each line after the first, so that no text can imitate a separate message.
            if (c == '\n') out += indent + "  | ";
        }
        tools::printText(stdout, out + "\n");
    }

    const char* const m_pLocales;
    tools::MessageText m_texts{ownCatalogue(), m_pLocales};
    const tools::Reasons m_reasons{ownCatalogue().base, m_pLocales};
};

/// A stream of text that contains reports. Searches each byte at most a fixed number of times,
/// whatever the text contains.
class ReportStream {
public:
    explicit ReportStream(const char* locales) : m_printer(locales) {}

    void put(const char* bytes, std::size_t size) {
        m_text.erase(0, m_iBegin);
        m_iScanned -= m_iBegin;
        m_iSearched = std::max(m_iSearched, m_iBegin) - m_iBegin;
        m_iBegin = 0;
        m_text.append(bytes, size);
        while (work(false)) {
        }
    }
    /// @return true if all reports were well-formed
    bool finish() {
        while (work(true)) {
        }
        passOn(m_text.size());
        return m_bWhole;
    }

private:
    /// @return true if there may be more to do
    bool work(bool isEnd) {
        if (m_endTag.empty() && !findBegin(isEnd)) return false;
        for (; m_iAttempts < kMostAttempts; ++m_iAttempts) {
            const std::size_t found = m_text.find(m_endTag, m_iSearched);
            if (found == std::string::npos) {
                if (isEnd || m_text.size() - m_iBegin >= kMostBytes) break;
                // The end of the block may split the tag.
                const std::size_t last = m_text.size() - std::min(m_text.size(), m_endTag.size());
                m_iSearched = std::max(m_iSearched, last);
                return false;
            }
            m_iSearched = found + m_endTag.size();
            // The texts of a report may contain its end tag.
            if (!show(m_iSearched)) continue;
            m_endTag = {};
            m_iAttempts = 0;
            return true;
        }
        refuse();
        return true;
    }

    /// Searches for a report and passes on the text before it.
    bool findBegin(bool isEnd) {
        for (;; ++m_iScanned) {
            m_iScanned = std::min(m_text.find('<', m_iScanned), m_text.size());
            // The end of the block may split the start of a report.
            const bool isCut = !isEnd && m_text.size() - m_iScanned < kLongestBegin;
            if (isCut || m_iScanned == m_text.size()) {
                passOn(m_iScanned);
                return false;
            }
            for (const auto& root : kRoots)
                if (m_text.compare(m_iScanned, root.begin.size(), root.begin) == 0)
                    m_endTag = root.end;
            if (!m_endTag.empty()) break;
        }
        passOn(m_iScanned);
        m_iSearched = m_iBegin;
        return true;
    }

    bool show(std::size_t limit) {
        XmlNode report;
        std::size_t end = 0;
        const auto text = std::string_view(m_text).substr(m_iBegin, limit - m_iBegin);
        if (!readXml(text, report, end)) return false;
        m_printer.print(report);
        m_bAfterReport = true;
        m_iBegin += end;
        m_iScanned = m_iBegin;
        m_iDropped += end;
        return true;
    }

    /// Reports that a report is malformed, and passes it on up to the end of its line.
    void refuse() {
        tools::flush(stdout);
        m_printer.complain(qblmsgcmsgs::msgcReportBroken(std::to_string(m_iDropped)));
        m_bWhole = false;
        m_endTag = {};
        m_iAttempts = 0;
        m_iScanned = std::min(m_text.find('\n', m_iBegin), m_text.size());
        passOn(m_iScanned);
    }

    void passOn(std::size_t end) {
        if (end == m_iBegin) return;
        // The report was shown with a line end, so drops the line end that follows the report.
        if (std::exchange(m_bAfterReport, false) && m_text[m_iBegin] == '\n') {
            ++m_iBegin;
            ++m_iDropped;
        }
        tools::print(stdout, m_text.substr(m_iBegin, end - m_iBegin));
        m_iDropped += end - m_iBegin;
        m_iBegin = end;
    }

    Printer m_printer;
    std::string m_text;
    std::size_t m_iBegin = 0;      // start of the text that is neither shown nor passed on
    std::size_t m_iScanned = 0;    // end of the text searched for the start of a report
    std::size_t m_iSearched = 0;   // end of the text searched for the end of the report at m_iBegin
    std::uint64_t m_iDropped = 0;  // bytes shown or passed on
    std::string_view m_endTag = {};  // of the report at m_iBegin; empty if no report begins there
    int m_iAttempts = 0;
    bool m_bWhole = true;
    bool m_bAfterReport = false;
};

}  // namespace

Status showReport(const Options& options) {
    const bool isStandard = options.operands.empty() || options.operands[0] == "-";
    const std::string locales = options.operands.size() > 1 ? options.operands[1] : userLocale();
    const int file =
        isStandard ? STDIN_FILENO : open64(options.operands[0].c_str(), O_RDONLY | O_CLOEXEC);
    const auto cannotRead = [&] {
        const int error = errno;
        return complain(file < 0 && tools::isAbsent(options.operands[0]) ? kUsage : kErrors,
                        qblmsgcmsgs::msgcCannotRead, isStandard ? "-" : options.operands[0],
                        tools::reason(error));
    };
    if (file < 0) return cannotRead();
    ReportStream stream(locales.c_str());
    char block[65536];
    for (;;) {
        const ssize_t got = read(file, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return cannotRead();
        if (got == 0) break;
        stream.put(block, static_cast<std::size_t>(got));
        tools::flush(stdout);  // for users who follow a growing log
    }
    const bool isWhole = stream.finish();
    if (!isStandard) close(file);
    return isWhole ? kClean : kErrors;
}

}  // namespace msgc

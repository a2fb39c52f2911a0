#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "bench/cost/Work.hpp"
#include "fuzz/support/Capture.hpp"
#include "tests/support/TempTree.hpp"
#include "tools/qblconv/Run.hpp"
#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Dump.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/SourceParser.hpp"

// The rows of the tools, which process files from anywhere.

namespace {

using cost::Order;
using cost::repeated;
using cost::use;
using cost::Work;

/// Compiles a source, and reads the result.
void compile(Work& work, const std::string& text) {
    work.of(text.substr(0, 20), [&] {
        const msgc::Source source("source", text);
        msgc::Report report;
        const msgc::Entries entries = parseSource(source, report);
        checkPatterns(entries, source, report);
        compareWithReference({source, entries}, {source, entries}, report);
        use(headerText(entries, "a.h", "source", {}));
        if (!fitsBmf(entries)) return;
        const std::string bytes = writeBmf(entries);
        std::vector<msgc::BmfText> texts;
        msgc::BmfProblem problem = {};
        if (!readBmf(bytes, texts, problem)) return;
        use(isCanonicalBmf(bytes, texts));
        for (const msgc::BmfText& each : texts)
            use(msgc::dumpSource(each.id, std::string(each.text)));
    });
}

/// Runs qblconv, without its report.
void run(Work& work, std::vector<std::string> words) {
    words.insert(words.begin(), "qblconv");
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    const Capture out(stdout), error(stderr);
    work.of(words[1].substr(0, 20),
            [&] { use(conv::run(static_cast<int>(words.size()), argv.data())); });
}

/// Converts a file.
void convert(Work& work, const std::string& bytes, std::vector<std::string> words) {
    const TempTree tree;
    words.insert(words.end(), {"-o", tree("out"), tree.file("in", bytes)});
    run(work, std::move(words));
}

/// Shows a text that arrives in pieces of this size.
void show(Work& work, const std::string& text, std::size_t piece) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0)
        throw QBLSystemError(errno, "socketpair");
    std::thread writer([&] {
        for (std::size_t at = 0; at < text.size(); at += piece)
            use(send(ends[1], text.data() + at, std::min(piece, text.size() - at), 0));
        close(ends[1]);
    });
    const int saved = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    const Capture out(stdout), error(stderr);
    work.of(text.substr(0, 20), [&] { use(msgc::showReport({})); });
    dup2(saved, STDIN_FILENO);
    close(saved);
    writer.join();
}

const cost::Rows kRows{
    {"Compile", Order::kLinearLog, 1024,
     [](std::size_t n, Work& work) {
         std::string text;
         for (std::size_t i = 0; i < n; ++i)
             text += "# comment\n" + std::to_string(n - i) + " NAME_" + std::to_string(i) +
                     " \"text {0}\"\n";
         compile(work, text);
         compile(work, "1 A " + repeated("\"a\\n\" ", n) + "\n" + repeated("# x\n", n));
         compile(work, "1 A \"" + repeated("'{' {0} ''\\u00E9", n) + "\"\n");
         compile(work, "1 A \"" + repeated("{0,select,other{", n) + "\"\n");
         compile(work, repeated("1 A \"x\" ", n));
         compile(work, repeated("1 A \"{x\"\n", n));
         compile(work, repeated("\xFF\"\\x ", n));
         compile(work, repeated("1 A \"\xC3\" \"\\q\"\n", n));
     }},
    {"ShowReport", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         const std::string deep = "<Exception " + repeated("><Message", n);
         show(work, deep, n);
         show(work, deep, 1);
         show(work, "<Message a=\"" + repeated("&lt;", n), 1);
         show(work, "<Exception " + repeated("<a ><Message </Exception>", n), 7);
         show(work, repeated("<Message a=\"\">x</Message>", n), 7);
     }},
    {"Convert", Order::kLinear, 8192,
     [](std::size_t n, Work& work) {
         const std::string text = repeated("\u00BD\u0141\u03B1\uFB01\u4E2D\xFF", n);
         convert(work, repeated("\x83\x65\x83L\x83X\x83g\n", n), {"-f", "auto"});
         convert(work, repeated("a\xE9\x81 ", n), {"-f", "auto"});
         convert(work, repeated("\x1B$B0!", n), {"-f", "auto:UTF-8,UTF-16,HZ,ISO-2022-JP"});
         convert(work, text, {"-t", "US-ASCII//TRANSLIT//IGNORE"});
         convert(work, text, {"-t", "ISO-2022-JP", "-p", "substitute", "--eol=crlf"});
         convert(work, repeated("\u4E2D\r\n", n), {"-t", "GB18030", "--verify"});
         convert(work, repeated("\u3042a", n), {"-t", "ISO-2022-JP", "--verify"});
     }},
    {"ReportsAndOperands", Order::kLinearLog, 64,
     [](std::size_t n, Work& work) {
         convert(work, repeated("a\u00BD\xFF", n), {"-t", "US-ASCII", "-p", "skip", "-v"});
         convert(work, repeated("a\u00BD\xFF", n), {"-t", "US-ASCII", "-p", "skip", "-v", "-X"});
         const TempTree tree;
         run(work, {"-n", "-f", "US-ASCII", tree.file("in", repeated("\xFF", n))});
         for (const char* const text : {"\xE9 caf\xE9 ", "\x81\x40\x83\x65", "+AGE- "})
             run(work, {"-g", tree.file("in", repeated(text, 16 * n))});
         std::vector<std::string> words = {"-j", "1", "-d", tree.dir("out")};
         for (std::size_t i = 0; i < n; ++i) words.push_back(tree.file("f" + std::to_string(i)));
         run(work, words);
         run(work, {"-i", "-j", "1", tree(repeated("./", n) + "f0"), tree("f0"), tree("f0")});
         run(work, {"-t", repeated("latin-", 16 * n)});
         run(work, {"--" + repeated("in-place", 16 * n)});
     }},
};

}  // namespace

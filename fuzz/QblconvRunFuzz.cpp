// Runs command lines of qblconv on one file. The input selects the options, the name of the file
// and its bytes. The result must not depend on where the output goes, --check must agree with the
// conversion, a verified output must convert back, and reports must be well-formed.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "fuzz/support/Capture.hpp"
#include "fuzz/support/Input.hpp"
#include "fuzz/support/XmlCheck.hpp"
#include "i18n/cpp/i18n_encoding_names.h"
#include "tests/support/TempTree.hpp"
#include "tools/qblconv/Run.hpp"

namespace {

using Words = std::vector<std::string>;

const char* const kCommon[] = {"UTF-8",       "ISO-8859-1", "windows-1252", "Shift_JIS",
                               "ISO-2022-JP", "UTF-16",     "UTF-16LE",     "UTF-32BE",
                               "GB18030",     "Big5",       "EUC-KR",       "UTF-7",
                               "US-ASCII",    "IBM037",     "HZ",           "SCSU"};
const char* const kPolicies[] = {"stop", "escape",   "substitute",      "lookup",  "skip",
                                 "fit",  "translit", "escape,translit", "skip,fit"};
const char* const kLists[] = {"auto", "auto:UTF-8,Shift_JIS,windows-1252",
                              "auto:UTF-16,UTF-16LE,ISO-2022-JP,HZ,ISO-8859-1"};

std::string encodingFrom(Input& input) {
    const unsigned number = input.byte();
    if (number % 2 == 0) return kCommon[number / 2 % std::size(kCommon)];
    return I18NGetEncodingName(
        static_cast<int>(input.below(static_cast<std::size_t>(I18NCountEncodings()))), 0);
}

/// The choices of an input.
struct Choices {
    explicit Choices(Input& input) {
        const unsigned flags = input.byte(), more = input.byte();
        isNamed = flags % 4 != 0;
        from = isNamed ? encodingFrom(input) : kLists[flags / 4 % std::size(kLists)];
        if (flags >= 0xC0 && !isNamed) from.clear();
        to = encodingFrom(input);
        policy = kPolicies[input.below(std::size(kPolicies))];
        verifies = more % 4 == 0;
        keepsMark = more / 4 % 2 == 0;
        lineEnd = more / 8 % 8 == 0 ? "lf" : more / 8 % 8 == 1 ? "crlf" : "";
        report = more / 64 == 0 ? "-X" : more / 64 == 1 ? "--json" : "-v";
        isInPlace = flags / 4 % 16 == 0;
    }
    Words conversion(const std::string& usedPolicy) const {
        Words words = {"-t", to, "-p", usedPolicy};
        if (!from.empty()) words.insert(words.end(), {"-f", from});
        if (keepsMark) words.emplace_back("--bom=keep");
        return words;
    }

    std::string from, to, policy, lineEnd, report;
    bool isNamed, verifies, keepsMark, isInPlace;
};

struct Result {
    int status;
    std::string output, errors;
};

Result run(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    words.insert(words.begin(), "qblconv");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    const Capture out(stdout), error(stderr);
    const int status = conv::run(static_cast<int>(words.size()), argv.data());
    require(status >= 0 && status <= 2);
    return {status, out.text(), error.text()};
}

bool isThere(const std::string& path) { return QBLFmDir::exists(path.c_str(), S_IFREG); }

void checkReport(const Choices& choices, const Result& result) {
    std::string report = result.output;
    require(choices.report == "-v" || result.errors.empty());
    if (choices.report == "-X") {
        require(!report.empty() && report.back() == '\n');
        report.pop_back();
        require(XmlCheck::isWellFormed(report));
    } else if (choices.report == "--json") {
        for (std::size_t at = 0; at < report.size();) {
            const std::size_t end = report.find('\n', at);
            require(end != std::string::npos && report[at] == '{' && report[end - 1] == '}');
            require(report.find('\0', at) == std::string::npos);
            at = end + 1;
        }
    }
}

class Checks {
public:
    Checks(const TempTree& tree, const std::string& name, std::string bytes, const Choices& choices)
        : m_tree(tree),
          m_choices(choices),
          m_bytes(std::move(bytes)),
          m_in(tree.file("in/" + name, m_bytes)),
          m_joined(tree("joined")),
          m_made(tree("out/" + name)) {}

    void checkConversion() {
        Words words = m_choices.conversion(m_choices.policy);
        if (m_choices.verifies) words.emplace_back("--verify");
        if (!m_choices.lineEnd.empty()) words.push_back("--eol=" + m_choices.lineEnd);
        words.push_back(m_choices.report);
        const Result joined = run(words, {"-o", m_joined, "--", m_in});
        const Result made = run(words, {"-d", m_tree("out"), "--", m_in});
        require(joined.status == made.status && (made.status == 0) == isThere(m_made));
        checkReport(m_choices, joined);
        checkReport(m_choices, made);
        require(m_tree.text("in/" + m_in.substr(m_in.rfind('/') + 1)) == m_bytes);
        if (made.status == 0) require(contents(m_joined) == contents(m_made));
        if (made.status == 0 && m_choices.verifies && m_choices.keepsMark && m_choices.isNamed)
            checkBack();
        if (m_choices.isInPlace) {
            const std::string before = contents(m_made);
            const Result replaced = run(words, {"-i", "--", m_in});
            require(replaced.status == made.status);
            require(contents(m_in) == (made.status == 0 ? before : m_bytes));
        }
    }
    void checkReading() {
        Words words = m_choices.conversion("stop");
        const Result made = run(words, {"-d", m_tree("strict"), "--", m_in});
        Words reading = {"-t", m_choices.to};
        if (!m_choices.from.empty()) reading.insert(reading.end(), {"-f", m_choices.from});
        reading.push_back(m_choices.report);
        const Result checked = run(reading, {"-n", "--", m_in});
        require(made.status == checked.status);
        checkReport(m_choices, checked);
        Words guessing = {"-g", m_choices.report};
        if (!m_choices.from.empty() && !m_choices.isNamed)
            guessing.insert(guessing.end(), {"-f", m_choices.from});
        const Result guessed = run(guessing, {"--", m_in});
        if (m_choices.report != "-v") checkReport(m_choices, guessed);
    }
    void remove() {
        for (const std::string& path :
             {m_in, m_joined, m_made, m_tree("strict") + m_in.substr(m_in.rfind('/'))})
            QBLFmDir::removeFile(path.c_str());
    }

private:
    std::string contents(const std::string& path) const {
        return m_tree.text(path.substr(std::strlen(m_tree.root()) + 1));
    }
    void checkBack() {
        const Result back = run({"-f", m_choices.to, "-t", m_choices.from, "--bom=keep"},
                                {"-o", m_tree("back"), "--", m_made});
        require(back.status == 0 && contents(m_tree("back")) == m_bytes);
    }

    const TempTree& m_tree;
    const Choices& m_choices;
    const std::string m_bytes, m_in, m_joined, m_made;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempTree kTree;
    static const std::string kFolders[] = {kTree.dir("in"), kTree.dir("out"), kTree.dir("strict")};
    Input input(data, size);
    const Choices choices(input);
    std::string name = "x" + input.bytes(input.below(8));
    for (char& c : name)
        if (c == '/' || c == '\0') c = '&';
    Checks checks(kTree, name, input.rest(), choices);
    checks.checkReading();
    checks.checkConversion();
    checks.remove();
    return 0;
}

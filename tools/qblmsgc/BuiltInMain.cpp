// Generates, from a program's English catalogue, the source that contains the program's built-in
// texts. Only the build uses this generator:
//     qbl_builtin_texts FILE.msg FILE.cpp
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "QBLCore/Frame/QBLCore.h"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/SourceParser.hpp"

namespace {

/// Writes a C++ string literal. Bytes that are not printable ASCII become octal escapes, so that
/// the compiler's character set does not matter.
std::string literal(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '?') {
            out += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        out += '\\';
        for (int shift = 6; shift >= 0; shift -= 3)
            out += static_cast<char>('0' + (byte >> shift & 7));
    }
    return out + "\"";
}

int make(const char* sourceName, const char* outputName) {
    std::string bytes, problem;
    if (!msgc::readFile(sourceName, bytes, problem)) {
        std::fprintf(stderr, "%s: %s\n", sourceName, problem.c_str());
        return 1;
    }
    const msgc::Source source(sourceName, std::move(bytes));
    msgc::Report report;
    msgc::Entries entries = msgc::parseSource(source, report);
    msgc::checkPatterns(entries, source, report);
    report.print(stderr, msgc::Report::Form::kText, false);
    if (report.hasErrors() || entries.empty()) return 1;
    std::sort(entries.begin(), entries.end(),
              [](const msgc::Entry& a, const msgc::Entry& b) { return a.id < b.id; });
    std::ofstream out(outputName);
    out << "#include \"tools/common/BuiltInTexts.hpp\"\n\nnamespace {\n\n"
           "constexpr tools::BuiltInText kTexts[] = {\n";
    for (const msgc::Entry& entry : entries)
        out << "    {" << entry.id << "u, " << literal(entry.text) << "},\n";
    out << "};\n\n}  // namespace\n\nvoid tools::useBuiltInTexts() {\n"
           "    setBuiltInTexts(kTexts, sizeof kTexts / sizeof *kTexts);\n}\n";
    out.close();
    if (out) return 0;
    std::fprintf(stderr, "%s: cannot be written\n", outputName);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    qblCoreInitialize();
    const int status = argc == 3 ? make(argv[1], argv[2]) : 2;
    qblCoreTerminate();
    return status;
}

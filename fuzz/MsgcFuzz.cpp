// Sources and message files of any bytes. What compiles is read back as it was written, and its
// dump compiles to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Dump.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/SourceParser.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// Messages of a source. @return false if it has errors
bool compiles(const msgc::Source& source, msgc::Entries& entries) {
    msgc::Report report;
    entries = parseSource(source, report);
    checkPatterns(entries, source, report);
    compareWithReference({source, entries}, {source, entries}, report);
    return !report.hasErrors();
}

/// The dump of what was read compiles, to the same texts.
void checkDump(const msgc::Entries& entries) {
    msgc::Entries again;
    require(compiles(msgc::Source("dump", dumpSource(entries)), again));
    require(writeBmf(again) == writeBmf(entries));
}

void checkSource(const std::string& text) {
    msgc::Entries entries, back;
    if (!compiles(msgc::Source("source", text), entries)) return;
    headerText(entries, "a.h", "source");
    msgc::BmfProblem problem = {};
    require(readBmf(writeBmf(entries), back, problem) && back.size() == entries.size());
    require(writeBmf(back) == writeBmf(entries));
    checkDump(back);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    msgc::Entries entries;
    msgc::BmfProblem problem = {};
    if (readBmf(bytes, entries, problem))
        checkDump(entries);
    else
        checkSource(bytes);
    return 0;
}

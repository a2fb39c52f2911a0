// Reads arbitrary bytes as a source and as a message file. If the source compiles, the message file
// must have the same texts. The dump of a message file must compile to the same texts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Dump.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/SourceParser.hpp"
#include "tools/qblmsgc/TypeCheck.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// Parses the messages of a source.
/// @return false if the source has errors
bool compiles(const msgc::Source& source, msgc::Entries& entries) {
    msgc::Report report;
    entries = parseSource(source, report);
    checkPatterns(entries, source, report);
    compareWithReference({source, entries}, {source, entries}, report);
    return !report.hasErrors();
}

/// Requires that the dump of the texts compiles to the same texts.
void checkDump(const std::vector<msgc::BmfText>& texts) {
    std::string source;
    for (const msgc::BmfText& each : texts)
        source += msgc::dumpSource(each.id, std::string(each.text));
    msgc::Entries again;
    require(compiles(msgc::Source("dump", source), again) && again.size() == texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        require(again[i].id == texts[i].id && again[i].text == texts[i].text);
}

void checkSource(const std::string& text) {
    msgc::Entries entries;
    std::vector<msgc::BmfText> back;
    msgc::Report report;
    if (!compiles(msgc::Source("source", text), entries)) return;
    checkTypes(entries, msgc::Source("source", text), report);
    const unsigned shape = shapeOf(entries);
    headerText(entries, "a.h", "source", {"source", shape});
    msgc::BmfProblem problem = {};
    const std::string written = writeBmf(entries, shape);
    require(msgc::shapeOfBmf(written) == shape && shape != 0);
    require(readBmf(written, back, problem) && back.size() == entries.size());
    require(isCanonicalBmf(written, back));
    checkDump(back);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::vector<msgc::BmfText> texts;
    msgc::BmfProblem problem = {};
    // In a larger file, entries that share texts could make the dump too long.
    if (readBmf(bytes, texts, problem) && bytes.size() < 4096)
        checkDump(texts);
    else
        checkSource(bytes);
    return 0;
}

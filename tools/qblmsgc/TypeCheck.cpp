#include "tools/qblmsgc/TypeCheck.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>

#include "tools/qblmsgc/ArgumentType.hpp"
#include "tools/qblmsgc/FunctionNames.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"

namespace msgc {

void checkTypes(const Entries& entries, const Source& source, Report& report) {
    std::map<std::string, const Entry*> functions;
    for (const Entry& entry : entries) {
        const PatternCheck checked(entry.text, entry.asIs);
        for (const PatternCheck::Conflict& conflict : checked.conflicts)
            report.error(source, entry.offsetOf(conflict.offset), qblmsgcmsgs::msgcTwoTypes,
                         patternOf(conflict.number, conflict.type),
                         patternOf(conflict.number, checked.arguments.at(conflict.number)));
        if (entry.name.empty()) continue;
        const std::string function = functionOf(entry.name);
        const auto [known, isNew] = functions.emplace(function, &entry);
        if (!isNew && known->second->name != entry.name)
            report.error(source, entry.nameOffset, qblmsgcmsgs::msgcSameFunction,
                         known->second->name, entry.name, function);
    }
}

void compareTypes(const Parsed& translation, const Parsed& reference, Report& report) {
    std::map<unsigned, const Entry*> known;
    for (const Entry& entry : reference.entries) known.emplace(entry.id, &entry);
    for (const Entry& entry : translation.entries) {
        const auto found = known.find(entry.id);
        if (found == known.end() || !entry.isWhole || !found->second->isWhole) continue;
        const ArgumentTypes passed =
            PatternCheck(found->second->text, found->second->asIs).arguments;
        for (const auto& [number, type] : PatternCheck(entry.text, entry.asIs).arguments) {
            const auto there = passed.find(number);
            const bool isPassed = there != passed.end();
            if (isPassed && fitsType(there->second, type)) continue;
            report.error(translation.source, entry.offsetOf(0), qblmsgcmsgs::msgcOtherType,
                         patternOf(number, type),
                         isPassed ? patternOf(number, there->second) : std::string("-"),
                         reference.source.name());
        }
    }
}

unsigned shapeOf(const Entries& entries) {
    std::map<unsigned, std::string> shapes;
    for (const Entry& entry : entries) {
        std::string& shape = shapes[entry.id].append(entry.name).append(1, ':');
        for (const auto& [number, type] : PatternCheck(entry.text, entry.asIs).arguments)
            shape.append(std::to_string(number)).append(classOf(type));
    }
    std::uint32_t hash = 2166136261U;  // FNV-1a
    for (const auto& [id, shape] : shapes)
        for (const char c : std::to_string(id) + ":" + shape + "\n")
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return std::max(1U, (hash >> 24 ^ hash) & 0xFFFFFFU);
}

}  // namespace msgc

#include "tools/qblmsgc/ReferenceCheck.hpp"

#include <map>

#include "tools/qblmsgc/PatternCheck.hpp"

namespace msgc {

namespace {

using ById = std::map<unsigned, const Entry*>;

ById byId(const Entries& entries) {
    ById result;
    for (const Entry& entry : entries) result.emplace(entry.id, &entry);
    return result;
}

std::string title(const Entry& entry) {
    return std::to_string(entry.id) + (entry.name.empty() ? "" : " ") + entry.name;
}

std::string argumentsOf(const Entry& entry) {
    std::string list;
    for (const auto& argument : PatternCheck(entry.text, entry.asIs).arguments)
        list.append("{").append(std::to_string(argument.first)).append("}");
    return list.empty() ? "-" : list;
}

}  // namespace

void compareWithReference(const Parsed& translation, const Parsed& reference, Report& report) {
    const ById translated = byId(translation.entries), known = byId(reference.entries);
    for (const auto& [id, entry] : known)
        if (translated.count(id) == 0)
            report.warning(reference.source, entry->offset, qblmsgcmsgs::msgcMissing, title(*entry),
                           translation.source.name());
    for (const auto& [id, entry] : translated) {
        const auto found = known.find(id);
        if (found == known.end()) {
            report.warning(translation.source, entry->offset, qblmsgcmsgs::msgcAdded, title(*entry),
                           reference.source.name());
            continue;
        }
        const Entry& original = *found->second;
        if (!entry->name.empty() && !original.name.empty() && entry->name != original.name)
            report.warning(translation.source, entry->nameOffset, qblmsgcmsgs::msgcOtherName,
                           original.name, reference.source.name());
        if (!entry->isWhole || !original.isWhole) continue;
        const std::string arguments = argumentsOf(*entry), wanted = argumentsOf(original);
        if (arguments != wanted)
            report.warning(translation.source, entry->offsetOf(0), qblmsgcmsgs::msgcOtherArguments,
                           arguments, wanted, reference.source.name());
    }
}

}  // namespace msgc

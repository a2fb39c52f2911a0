#include "tools/qblconv/Detect.hpp"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstring>

#include "tools/qblconv/Difference.hpp"
#include "tools/qblconv/Encodings.hpp"
#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

const char kAuto[] = "auto", kAutoList[] = "auto:";
const char kUTF8[] = "UTF-8";

// A choice is clear if ICU's confidence in the encoding is at least kLeast, and exceeds ICU's
// confidence in any other encoding that fits by at least kLead.
constexpr int kLeast = 40, kLead = 20;
// If ICU's confidence in an encoding is at least kNearly, a malformed text counts as a damaged text
// in that encoding.
constexpr int kNearly = 25;

constexpr std::size_t kLongestMark = 4;

/// Byte-order marks, longer ones first: FF FE 00 00 may also be UTF-16LE with a NUL.
struct Mark {
    std::string bytes;
    const char* encoding;
};
const std::vector<Mark> kMarks = {{std::string("\0\0\xFE\xFF", 4), "UTF-32BE"},
                                  {std::string("\xFF\xFE\0\0", 4), "UTF-32LE"},
                                  {"\xEF\xBB\xBF", kUTF8},
                                  {"\xFE\xFF", "UTF-16BE"},
                                  {"\xFF\xFE", "UTF-16LE"}};

/// ICU's name for an encoding, from any of its names.
std::string canonical(const std::string& name) {
    UErrorCode error = U_ZERO_ERROR;
    const char* const known = ucnv_getAlias(name.c_str(), 0, &error);
    return U_SUCCESS(error) && known != nullptr ? known : name;
}

/// Returns true if a name does not specify the byte order, so that texts need a mark.
bool isOpenOrder(const std::string& canonicalName) {
    return canonicalName == "UTF-16" || canonicalName == "UTF-32";
}

/// Returns true if a name can mean the encoding of a text's byte-order mark.
bool isNameOf(const std::string& canonicalName, const std::string& encoding) {
    return canonicalName == encoding ||
           (isOpenOrder(canonicalName) &&
            encoding.compare(0, canonicalName.size(), canonicalName) == 0);
}

std::string inOneLine(const std::vector<Fit>& fits) {
    std::string line;
    for (const Fit& fit : fits) {
        line.append(line.empty() ? "" : ", ").append(fit.name);
        if (fit.confidence >= 0) line.append(" (").append(std::to_string(fit.confidence)) += ')';
    }
    return line;
}

/// Returns true if the best fit is clear enough to choose.
bool isClear(const std::vector<Fit>& fits, bool isGuessAllowed) {
    if (fits[0].isOdd) return false;
    if (fits.size() == 1) return fits[0].confidence < 0 || fits[0].confidence >= kLeast;
    return isGuessAllowed && fits[1].confidence >= 0 && fits[0].confidence >= kLeast &&
           fits[0].confidence - fits[1].confidence >= kLead;
}

}  // namespace

bool isAuto(const std::string& from) {
    return from == kAuto || from.compare(0, std::strlen(kAutoList), kAutoList) == 0;
}

std::vector<std::string> candidatesOf(const std::string& from) {
    std::vector<std::string> names;
    const std::size_t size = std::strlen(kAutoList);
    if (from.compare(0, size, kAutoList) != 0) return names;
    for (std::size_t at = size, comma = 0; comma != std::string::npos; at = comma + 1) {
        comma = from.find(',', at);
        names.push_back(from.substr(at, comma - at));
    }
    return names;
}

bool checkAuto(const std::string& from, Problem& problem) {
    if (from == kAutoList) {
        problem =
            tools::withShown(qblconvmsgs::convBadWord, "-f", "\"" + from + "\"", kAutoChoices);
        return false;
    }
    const std::vector<std::string> names = candidatesOf(from);
    return std::all_of(names.begin(), names.end(), [&problem](const std::string& name) {
        return openEncoding(name, problem) != nullptr;
    });
}

Detector::Detector(const std::string& from, std::vector<char>& block)
    : m_names(candidatesOf(from)), m_block(block) {}

const I18NConverter& Detector::strict(const std::string& name) {
    std::unique_ptr<I18NConverter>& converter = m_converters[name];
    if (converter == nullptr) {
        Problem problem;
        converter = openEncoding(name, problem);
        setPolicies(*converter, I18N_STOP, I18N_STOP);
    }
    return *converter;
}

const I18NConverter* Detector::choose(Input& input, const std::string& name, bool isGuessAllowed,
                                      FileReport& report) {
    std::vector<Fit> found;
    const auto find = [&](Passes& passes) { found = fits(passes, true); };
    if (!forPasses(input, name, m_block, report, find)) return nullptr;
    if (found.empty() || !m_nearly.empty()) {
        sayNone(name, report);
        return nullptr;
    }
    if (m_names.empty() && !isClear(found, isGuessAllowed)) {
        report.error(qblconvmsgs::convUnclear(name, inOneLine(found)));
        return nullptr;
    }
    return &strict(found[0].name);
}

void Detector::sayNone(const std::string& name, FileReport& report) const {
    if (!m_nearly.empty()) return report.error(qblconvmsgs::convNearly(name, m_nearly));
    if (m_names.empty()) return report.error(qblconvmsgs::convNoFit(name));
    std::string list;
    for (const std::string& each : m_names) list.append(list.empty() ? "" : ", ").append(each);
    report.error(qblconvmsgs::convNoneOf(name, shown(list)));
}

std::vector<Fit> Detector::fits(Passes& passes, bool isFirstEnough) {
    m_nearly.clear();
    if (!m_names.empty()) return fitsOfList(passes, isFirstEnough);
    const std::string marked = encodingOfMark(passes);
    if (!marked.empty()) return {{marked}};
    TextLook look(TextLook::Types::kNot);
    const bool isUTF8 = decode(passes, strict(kUTF8), [&look](std::u16string_view text) {
        look.add(text);
        return true;
    });
    if (isUTF8 && (!look.hasControls() || look.isBeyondASCII())) return {{kUTF8}};
    return fitsOf(passes, proposeEncodings(passes), isUTF8 ? &look : nullptr);
}

/// Returns the encodings in m_names that fit, in the order of m_names. If isFirstEnough is true,
/// returns only the first one.
std::vector<Fit> Detector::fitsOfList(Passes& passes, bool isFirstEnough) {
    std::vector<Fit> found;
    const std::string marked = encodingOfMark(passes);
    for (const std::string& name : m_names) {
        if (isFirstEnough && !found.empty()) break;
        const std::string known = canonical(name);
        if (!marked.empty() && isNameOf(known, marked))
            add(passes, {isOpenOrder(known) ? marked : name}, found);
        if (marked.empty() && !isOpenOrder(known) && isValid(passes, name))
            add(passes, {name}, found);
    }
    return found;
}

/// Returns the encodings that fit, out of UTF-8 and the proposed encodings.
/// @param utf8  statistics about the text in UTF-8; null if the text is malformed in UTF-8
std::vector<Fit> Detector::fitsOf(Passes& passes, const std::vector<Proposal>& proposals,
                                  const TextLook* utf8) {
    std::vector<Fit> plain, shifted;
    if (utf8 != nullptr && !utf8->isMostlyControls())
        add(passes, {kUTF8}, utf8->hasShifts() ? shifted : plain);
    for (const Proposal& proposal : proposals) {
        TextLook look(TextLook::Types::kChecked);
        if (proposal.name != kUTF8 && isText(passes, proposal.name, look))
            add(passes, {proposal.name, proposal.confidence, look.isOddLatin()},
                look.hasShifts() ? shifted : plain);
    }
    // If an encoding decodes the shift sequences, drops the encodings that leave them as control
    // characters.
    std::vector<Fit> found = std::move(plain.empty() ? shifted : plain);
    // Most encodings give the same text if all of it is ASCII.
    if (found.size() == 1 && found[0].name == kUTF8) found[0].alike.clear();
    if (utf8 == nullptr) findNearly(proposals, found);
    return found;
}

/// Remembers the text's probable encoding if the text is malformed in it. A text with a few damaged
/// bytes does not fit its own encoding, but may fit a wrong encoding.
void Detector::findNearly(const std::vector<Proposal>& proposals, const std::vector<Fit>& found) {
    const int best = found.empty() ? kNearly - 1 : found[0].confidence;
    for (const Proposal& each : proposals) {
        const bool isProbable = each.confidence >= kNearly && each.confidence > best;
        if (each.name == kUTF8 || (m_nearly.empty() && isProbable)) m_nearly = each.name;
    }
}

/// Adds a fit, or adds its name to a fit that gives the same text.
void Detector::add(Passes& passes, const Fit& fit, std::vector<Fit>& fits) {
    for (Fit& each : fits) {
        if (each.name == fit.name) return;
        const bool differs = findDifference(passes, strict(each.name), strict(fit.name)).isFound();
        if (passes.error() != 0) return;
        if (differs) continue;
        each.alike.push_back(fit.name);
        // With a list, the names keep the list's order.
        if (m_names.empty() && isMoreUsual(fit.name, each.name))
            std::swap(each.name, each.alike.back());
        return;
    }
    fits.push_back(fit);
}

bool Detector::isValid(Passes& passes, const std::string& encoding) {
    return decode(passes, strict(encoding), [](std::u16string_view) { return true; });
}

bool Detector::isText(Passes& passes, const std::string& encoding, TextLook& look) {
    const bool isRead = decode(passes, strict(encoding), [&look](std::u16string_view text) {
        look.add(text);
        return look.isAssigned();
    });
    return isRead && look.isAssigned() && !look.isMostlyControls();
}

/// The encoding of the byte-order mark at the start, if all bytes are valid in it; else empty.
std::string Detector::encodingOfMark(Passes& passes) {
    passes.begin();
    const std::string start(passes.next().substr(0, kLongestMark));
    for (const Mark& mark : kMarks) {
        const bool isAtStart = start.compare(0, mark.bytes.size(), mark.bytes) == 0;
        if (isAtStart && isValid(passes, mark.encoding)) return mark.encoding;
    }
    return {};
}

}  // namespace conv

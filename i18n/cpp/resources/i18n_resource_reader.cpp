#include "i18n/cpp/resources/i18n_resource_reader.hpp"

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "i18n/cpp/resources/i18n_xml_entities.hpp"

namespace {

const char kBlanks[] = " \t\r\n\f\v";

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return std::string_view();
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

struct Attribute {
    std::string_view name;
    std::string_view value;
};

/// Removes the next attribute, up to the closing quote of its value, from the rest of a line.
std::optional<Attribute> takeAttribute(std::string_view& rest) {
    const std::size_t open = rest.find('"');
    const std::size_t close = open < rest.size() ? rest.find('"', open + 1) : open;
    if (close == std::string_view::npos) return std::nullopt;
    std::string_view name = trimmed(rest.substr(0, open));
    if (!name.empty() && name.back() == '=') name = trimmed(name.substr(0, name.size() - 1));
    name.remove_prefix(name.find_last_of(kBlanks) + 1);  // npos + 1 is 0
    const Attribute attribute{name, rest.substr(open + 1, close - open - 1)};
    rest.remove_prefix(close + 1);
    return attribute;
}

std::string unescaped(std::string_view value) {
    std::string text(value);
    i18nReplaceXMLEntities(text);
    return text;
}

locale_t cLocale() {
    static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
    return kPlain;
}

/// Returns the last position of a text outside quotes; npos if it is not found.
std::size_t findLastUnquoted(std::string_view line, std::string_view text) {
    std::size_t last = std::string_view::npos;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') quoted = !quoted;
        if (!quoted && line.compare(i, text.size(), text) == 0) last = i;
    }
    return last;
}

}  // namespace

bool I18NResourceReader::next() {
    std::string line;
    while (m_file.readLine(line)) {
        const bool inComment = m_bInComment;
        const std::size_t comment = inComment ? line.rfind("<!--") : findLastUnquoted(line, "<!--");
        if (comment != std::string::npos)
            m_bInComment = line.find("-->", comment) == std::string::npos;
        else if (line.find("-->") != std::string::npos)
            m_bInComment = false;
        if (inComment) continue;
        const std::size_t begin = line.find('<');
        if (begin == std::string::npos || line.compare(begin, 2, "<!") == 0) continue;
        m_line = trimmed(std::string_view(line).substr(begin + 1));
        if (!getXMLElement().empty()) return true;
    }
    return false;
}

std::string_view I18NResourceReader::getXMLElement() const {
    const std::string_view line(m_line);
    return line.substr(0, std::min(line.find_first_of(" \t\r\n\f\v/>=\"", 1), line.size()));
}

std::optional<std::string> I18NResourceReader::getXMLElementAttribute(std::string_view name) const {
    std::string_view rest(m_line);
    while (const std::optional<Attribute> attribute = takeAttribute(rest))
        if (attribute->name == name) return unescaped(attribute->value);
    return std::nullopt;
}

std::optional<std::string> I18NResourceReader::getXMLElementValue() const {
    std::string_view rest(m_line);
    const std::optional<Attribute> attribute = takeAttribute(rest);
    if (!attribute) return std::nullopt;
    return unescaped(attribute->value);
}

std::vector<std::string> i18nSplitList(const std::string& list) {
    std::vector<std::string> items;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(';', begin), list.size());
        const std::string_view item = trimmed(std::string_view(list).substr(begin, end - begin));
        if (!item.empty()) items.emplace_back(item);
        begin = end + 1;
    }
    return items;
}

std::optional<unsigned long> i18nParseNumber(const std::string& text, unsigned long greatest) {
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(text.c_str(), &end, 0);
    const bool whole = end != text.c_str() && end == text.c_str() + text.size();
    if (!whole || errno != 0 || number < 0 || static_cast<unsigned long>(number) > greatest)
        return std::nullopt;
    return static_cast<unsigned long>(number);
}

double i18nParseReal(const std::string& text) { return strtod_l(text.c_str(), nullptr, cLocale()); }

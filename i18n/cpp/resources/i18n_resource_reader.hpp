#ifndef I18N_CPP_RESOURCES_I18N_RESOURCE_READER_HPP
#define I18N_CPP_RESOURCES_I18N_RESOURCE_READER_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/cpp/resources/i18n_text_file.hpp"

/// Reads resource files: UTF-8, of which each line holds one element at most. It is the first "<"
/// of a line that counts; comments, which may go over several lines, are skipped. Whatever a line
/// lacks, it is at worst a line without an element or without a value.
///
/// Threads: not synchronised.
///
///     I18NResourceReader reader(path);
///     while (reader.next())
///         if (reader.getXMLElement() == "timezone") add(reader.getXMLElementAttribute("name"));
class I18NResourceReader {
public:
    explicit I18NResourceReader(const char* path) : m_file(path) {}
    bool isOpen() const { return m_file.isOpen(); }
    bool isNotSeen() const { return m_file.isNotSeen(); }

    /// Goes on to the next line with an element.
    /// @return false at the end of the file.
    [[nodiscard]] bool next();
    /// The name of the line's element; that of an end tag has its "/" in front.
    std::string_view getXMLElement() const;
    /// The value of an attribute of the line's element, with entities replaced.
    std::optional<std::string> getXMLElementAttribute(std::string_view name) const;
    /// The first quoted text of the line, whatever attribute it belongs to, with entities replaced.
    std::optional<std::string> getXMLElementValue() const;

private:
    I18NTextFile m_file;
    std::string m_line;         // from the element's name on
    bool m_bInComment = false;  // one that began on an earlier line
};

/// The items of a list with ";" between them, without blanks around them and without empty ones.
std::vector<std::string> i18nSplitList(const std::string& list);

/// Reads a whole text as strtol(3) does, in base 16 after "0x" and 8 after "0".
/// @return nothing for text that is no number from 0 to the greatest one.
std::optional<unsigned long> i18nParseNumber(const std::string& text, unsigned long greatest);

/// The beginning of a text as a number, like strtod(3) in the C locale whatever the process's is.
/// @return 0 if it does not begin with one.
double i18nParseReal(const std::string& text);

#endif

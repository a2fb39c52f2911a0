#ifndef I18N_CPP_RESOURCES_I18N_RESOURCE_READER_HPP
#define I18N_CPP_RESOURCES_I18N_RESOURCE_READER_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/cpp/resources/i18n_text_file.hpp"

/// Reads resource files: UTF-8 with at most one element per line. The first "<" of a line begins
/// its element. Comments are skipped and may span lines. A malformed line at worst counts as a line
/// without an element or without a value.
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

    /// Advances to the next line with an element.
    /// @return false at the end of the file
    [[nodiscard]] bool next();
    /// Returns the name of the line's element; the name of an end tag begins with "/".
    std::string_view getXMLElement() const;
    /// Returns the value of an attribute of the line's element, with entities replaced.
    std::optional<std::string> getXMLElementAttribute(std::string_view name) const;
    /// Returns the first quoted text of the line, in any attribute, with entities replaced.
    std::optional<std::string> getXMLElementValue() const;

private:
    I18NTextFile m_file;
    std::string m_line;         // begins with the element's name
    bool m_bInComment = false;  // the comment began on an earlier line
};

/// Splits a list at ";". Removes blanks around the items, and empty items.
std::vector<std::string> i18nSplitList(const std::string& list);

/// Parses a whole text like strtol(3): in base 16 after "0x", and in base 8 after "0".
/// @return nothing for a text that is not a number from 0 to `greatest`
std::optional<unsigned long> i18nParseNumber(const std::string& text, unsigned long greatest);

/// Parses the beginning of a text like strtod(3) in the C locale, whatever locale the process has.
/// @return 0 if the text does not begin with a number
double i18nParseReal(const std::string& text);

#endif

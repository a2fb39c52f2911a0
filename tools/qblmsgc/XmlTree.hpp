#ifndef TOOLS_QBLMSGC_XMLTREE_HPP
#define TOOLS_QBLMSGC_XMLTREE_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace msgc {

/// An element of the XML form of errors and messages.
struct XmlNode {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  // all text outside of nested elements
    std::vector<XmlNode> children;

    /// @return an empty string for a missing attribute
    const std::string& attribute(std::string_view wanted) const;
    /// The first child with a name; null if no child has it.
    const XmlNode* child(std::string_view wanted) const;
};

/// Reads the element at the start of a text. Accepts only what the library writes: no comments, no
/// declarations, no entities except the five of XML and numbers. The attribute Value of a parameter
/// without a type may lack its closing quote, because the library omits it.
/// @param end  receives the end of the element, or the place of the error
/// @return false if the element is malformed, nested more than 100 levels, or has more than 100,000
///     elements
bool readXml(std::string_view text, XmlNode& node, std::size_t& end);

}  // namespace msgc

#endif

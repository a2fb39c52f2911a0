#ifndef TOOLS_QBLMSGC_XMLTREE_HPP
#define TOOLS_QBLMSGC_XMLTREE_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace msgc {

/// An element of the XML forms of errors and messages.
struct XmlNode {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  // all of it, without what is in the elements within
    std::vector<XmlNode> children;

    /// @return empty for an attribute that is not there
    const std::string& attribute(std::string_view wanted) const;
    /// The first child with a name; null if there is none.
    const XmlNode* child(std::string_view wanted) const;
};

/// Reads the element that a text begins with. It takes what the library writes and no more: no
/// comments, no declarations, no entities but the five of XML and numbers. The attribute Value of a
/// parameter without a type may lack its closing quote, as the library leaves it out.
/// @param end  receives where the element ends, or where it is wrong
/// @return false if it is not well-formed, nested more than 100 levels, or has more than 100,000
///     elements
bool readXml(std::string_view text, XmlNode& node, std::size_t& end);

}  // namespace msgc

#endif

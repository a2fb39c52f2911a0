#include "tools/qblmsgc/XmlTree.hpp"

#include <algorithm>
#include <charconv>

#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

constexpr std::size_t kMostLevels = 100, kMostElements = 100000;

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool isNamePart(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.' || c == ':';
}

class Reader {
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    bool readElement(XmlNode& node, std::size_t level) {
        if (level == kMostLevels || ++m_iElements > kMostElements || !take("<")) return false;
        if (!readName(node.name)) return false;
        bool isEmpty = false;
        if (!readAttributes(node, isEmpty)) return false;
        return isEmpty || readContent(node, level);
    }
    std::size_t position() const { return m_uAt; }

private:
    bool take(std::string_view token) {
        if (m_text.compare(m_uAt, token.size(), token) != 0) return false;
        m_uAt += token.size();
        return true;
    }
    void skipSpace() {
        while (m_uAt < m_text.size() && isSpace(m_text[m_uAt])) ++m_uAt;
    }
    bool readName(std::string& name) {
        const std::size_t begin = m_uAt;
        while (m_uAt < m_text.size() && isNamePart(m_text[m_uAt])) ++m_uAt;
        name = m_text.substr(begin, m_uAt - begin);
        return m_uAt > begin;
    }

    bool readAttributes(XmlNode& node, bool& isEmpty) {
        for (;;) {
            skipSpace();
            isEmpty = take("/>");
            if (isEmpty || take(">")) return true;
            std::string name, value;
            if (!readName(name) || !take("=\"")) return false;
            // The library writes a parameter without a type in this form.
            isEmpty = name == "Value" && take(" />");
            if (!isEmpty && (!readUpTo('"', value) || !take("\""))) return false;
            node.attributes.emplace_back(std::move(name), std::move(value));
            if (isEmpty) return true;
        }
    }

    bool readContent(XmlNode& node, std::size_t level) {
        while (readUpTo('<', node.text)) {
            if (m_text.compare(m_uAt, 2, "</") == 0) {
                std::string name;
                m_uAt += 2;
                if (!readName(name) || name != node.name) return false;
                skipSpace();
                return take(">");
            }
            if (!readElement(node.children.emplace_back(), level + 1)) return false;
        }
        return false;
    }

    /// Appends text with its entities resolved.
    /// @return false if the terminating character is missing
    bool readUpTo(char last, std::string& out) {
        while (m_uAt < m_text.size()) {
            const char c = m_text[m_uAt];
            if (c == last) return true;
            if (c == '<') return false;
            if (c == '&') {
                if (!readEntity(out)) return false;
            } else {
                out += c;
                ++m_uAt;
            }
        }
        return false;
    }

    bool readEntity(std::string& out) {
        static const struct {
            std::string_view name;
            char meaning;
        } kEntities[] = {
            {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
        for (const auto& entity : kEntities) {
            if (!take(entity.name)) continue;
            out += entity.meaning;
            return true;
        }
        if (!take("&#")) return false;
        const int base = take("x") ? 16 : 10;
        unsigned codePoint = 0;
        const char* const begin = m_text.data() + m_uAt;
        const auto [next, problem] =
            std::from_chars(begin, m_text.data() + m_text.size(), codePoint, base);
        m_uAt += static_cast<std::size_t>(next - begin);
        const bool isScalar =
            codePoint > 0 && codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
        if (problem != std::errc() || !isScalar || !take(";")) return false;
        tools::appendCodePoint(out, codePoint);
        return true;
    }

    std::string_view m_text;
    std::size_t m_uAt = 0;
    std::size_t m_iElements = 0;
};

}  // namespace

const std::string& XmlNode::attribute(std::string_view wanted) const {
    static const std::string kNone;
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const auto& each) { return each.first == wanted; });
    return found != attributes.end() ? found->second : kNone;
}

const XmlNode* XmlNode::child(std::string_view wanted) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const XmlNode& each) { return each.name == wanted; });
    return found != children.end() ? &*found : nullptr;
}

bool readXml(std::string_view text, XmlNode& node, std::size_t& end) {
    Reader reader(text);
    const bool isRead = reader.readElement(node, 0);
    end = reader.position();
    return isRead;
}

}  // namespace msgc

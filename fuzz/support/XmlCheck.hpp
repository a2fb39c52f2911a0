#ifndef FUZZ_SUPPORT_XMLCHECK_HPP
#define FUZZ_SUPPORT_XMLCHECK_HPP

#include <unicode/utf8.h>

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

/// Decides whether a text is one well-formed element of XML 1.0 in UTF-8, with any text inside.
/// Knows elements, attributes, text and references, but no declarations, comments and processing
/// instructions, because no form of ours has any.
class XmlCheck {
public:
    static bool isWellFormed(std::string_view text) {
        XmlCheck check(text);
        return check.hasOnlyCharacters() && check.element() && check.m_iAt == text.size();
    }

private:
    explicit XmlCheck(std::string_view text) : m_text(text) {}

    bool hasOnlyCharacters() const {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(m_text.data());
        const auto size = static_cast<std::int32_t>(m_text.size());
        for (std::int32_t i = 0; i < size;) {
            UChar32 c = 0;
            U8_NEXT(bytes, i, size, c);
            const bool isControl = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
            if (c < 0 || isControl || c == 0xFFFE || c == 0xFFFF) return false;
        }
        return true;
    }
    bool take(std::string_view text) {
        if (m_text.compare(m_iAt, text.size(), text) != 0) return false;
        m_iAt += text.size();
        return true;
    }
    bool name(std::string_view& name) {
        const std::size_t begin = m_iAt;
        while (m_iAt < m_text.size() &&
               std::isalnum(static_cast<unsigned char>(m_text[m_iAt])) != 0)
            ++m_iAt;
        name = m_text.substr(begin, m_iAt - begin);
        return !name.empty() && std::isalpha(static_cast<unsigned char>(name[0])) != 0;
    }
    void blanks() { m_iAt = std::min(m_text.find_first_not_of(" \t\r\n", m_iAt), m_text.size()); }
    bool reference() {
        for (const char* const known : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"})
            if (take(known)) return true;
        if (!take("&#x")) return false;
        const std::size_t begin = m_iAt;
        while (m_iAt < m_text.size() &&
               std::isxdigit(static_cast<unsigned char>(m_text[m_iAt])) != 0)
            ++m_iAt;
        return m_iAt > begin && m_iAt - begin <= 6 && take(";");
    }
    /// Reads text up to a character, which it does not consume.
    bool textUpTo(char stop) {
        while (m_iAt < m_text.size() && m_text[m_iAt] != stop) {
            if (m_text[m_iAt] == '<') return false;
            if (m_text[m_iAt] == '&' ? !reference() : (++m_iAt, false)) return false;
        }
        return m_iAt < m_text.size();
    }
    bool element() {
        std::vector<std::string_view> open;
        do {
            std::string_view tag;
            if (!open.empty() && !textUpTo('<')) return false;
            if (take("</")) {
                if (open.empty() || !name(tag) || tag != open.back() || !take(">")) return false;
                open.pop_back();
                continue;
            }
            if (!take("<") || !name(tag)) return false;
            for (;;) {
                blanks();
                if (take("/>")) break;
                if (take(">")) {
                    open.push_back(tag);
                    break;
                }
                std::string_view attribute;
                if (!name(attribute) || !take("=\"") || !textUpTo('"') || !take("\"")) return false;
            }
        } while (!open.empty());
        return true;
    }

    const std::string_view m_text;
    std::size_t m_iAt = 0;
};

#endif

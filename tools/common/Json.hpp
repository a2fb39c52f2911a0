#ifndef TOOLS_COMMON_JSON_HPP
#define TOOLS_COMMON_JSON_HPP

#include <cstdint>
#include <string>

namespace tools {

/// A text as JSON writes it, in quotes.
std::string jsonText(const std::string& text);

/// Writes a JSON object on one line (RFC 8259), member by member. Texts are UTF-8.
///
/// Threads: one at a time for each object.
class JsonObject {
public:
    JsonObject& add(const char* name, const std::string& text);
    JsonObject& add(const char* name, std::int64_t number);
    /// A value that is written already.
    JsonObject& addValue(const char* name, const std::string& value);
    /// A text, or null for an empty one; a number, or null for a negative one.
    JsonObject& addOrNull(const char* name, const std::string& text);
    JsonObject& addOrNull(const char* name, std::int64_t number);
    std::string text() const { return "{" + m_members + "}"; }

private:
    std::string m_members;
};

/// The same for an array of values that are written already.
class JsonArray {
public:
    void add(const std::string& value) {
        if (!m_values.empty()) m_values += ',';
        m_values += value;
    }
    std::string text() const { return "[" + m_values + "]"; }
    bool isEmpty() const { return m_values.empty(); }

private:
    std::string m_values;
};

}  // namespace tools

#endif

#ifndef TOOLS_COMMON_JSON_HPP
#define TOOLS_COMMON_JSON_HPP

#include <cstdint>
#include <string>

namespace tools {

/// Returns a text as a JSON string, with quotes.
std::string jsonText(const std::string& text);

/// Builds a JSON object on one line (RFC 8259), one member at a time. Texts are UTF-8.
///
/// Threads: one at a time for each object.
class JsonObject {
public:
    JsonObject& add(const char* name, const std::string& text);
    JsonObject& add(const char* name, std::int64_t number);
    /// Adds a value that is already JSON.
    JsonObject& addValue(const char* name, const std::string& value);
    /// Adds a text or number; writes null for an empty text or a negative number.
    JsonObject& addOrNull(const char* name, const std::string& text);
    JsonObject& addOrNull(const char* name, std::int64_t number);
    std::string text() const { return "{" + m_members + "}"; }

private:
    std::string m_members;
};

/// Builds a JSON array from values that are already JSON.
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

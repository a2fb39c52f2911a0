#include "tools/common/Json.hpp"

namespace tools {

std::string jsonText(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') out += '\\';
        if (byte >= 0x20)
            out += c;
        else
            out.append("\\u00")
                .append(1, byte < 0x10 ? '0' : '1')
                .append(1, "0123456789ABCDEF"[byte & 15]);
    }
    return out += '"';
}

JsonObject& JsonObject::addValue(const char* name, const std::string& value) {
    if (!m_members.empty()) m_members += ',';
    m_members.append(jsonText(name)).append(":").append(value);
    return *this;
}

JsonObject& JsonObject::add(const char* name, const std::string& text) {
    return addValue(name, jsonText(text));
}

JsonObject& JsonObject::add(const char* name, std::int64_t number) {
    return addValue(name, std::to_string(number));
}

JsonObject& JsonObject::addOrNull(const char* name, const std::string& text) {
    return addValue(name, text.empty() ? "null" : jsonText(text));
}

JsonObject& JsonObject::addOrNull(const char* name, std::int64_t number) {
    return addValue(name, number < 0 ? "null" : std::to_string(number));
}

}  // namespace tools

#include "i18n/cpp/converter/i18n_replacement_tables.hpp"

namespace {

template <class Tables, class Key>
auto find(const Tables& tables, std::string_view encoding, const Key& key)
    -> decltype(&tables.begin()->second.begin()->second) {
    const auto table = tables.find(encoding);
    if (table == tables.end()) return nullptr;
    const auto entry = table->second.find(key);
    return entry != table->second.end() ? &entry->second : nullptr;
}

}  // namespace

void I18NReplacementTables::addInput(const std::string& encoding, const std::string& bytes,
                                     char32_t replacement) {
    m_inputs[encoding][bytes] = replacement;
}

void I18NReplacementTables::addOutput(const std::string& encoding, char32_t codePoint,
                                      const std::string& replacement) {
    m_outputs[encoding][codePoint] = replacement;
}

const char32_t* I18NReplacementTables::findInput(std::string_view encoding,
                                                 std::string_view bytes) const {
    return find(m_inputs, encoding, bytes);
}

const std::string* I18NReplacementTables::findOutput(std::string_view encoding,
                                                     char32_t codePoint) const {
    return find(m_outputs, encoding, codePoint);
}

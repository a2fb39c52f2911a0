#ifndef I18N_CPP_CONVERTER_I18N_REPLACEMENT_TABLES_HPP
#define I18N_CPP_CONVERTER_I18N_REPLACEMENT_TABLES_HPP

#include <map>
#include <string>
#include <string_view>

/// The replacements that the resource file sets for unconvertible bytes and characters, by the
/// canonical name of the encoding (ucnv_getAlias(name, 0)). The tables are a part of I18NSettings,
/// and are constant once the settings are published.
class I18NReplacementTables {
public:
    /// @param bytes  a sequence that is not convertible
    /// @param replacement  the code point that replaces it
    void addInput(const std::string& encoding, const std::string& bytes, char32_t replacement);
    /// @param codePoint  a code point that the encoding lacks
    /// @param replacement  the bytes that replace the code point; if empty, the code point is
    ///     dropped
    void addOutput(const std::string& encoding, char32_t codePoint, const std::string& replacement);

    /// @return null if the table has no entry
    const char32_t* findInput(std::string_view encoding, std::string_view bytes) const;
    const std::string* findOutput(std::string_view encoding, char32_t codePoint) const;

    bool operator==(const I18NReplacementTables& other) const {
        return m_inputs == other.m_inputs && m_outputs == other.m_outputs;
    }

private:
    template <class Key, class Value>
    using Tables = std::map<std::string, std::map<Key, Value, std::less<>>, std::less<>>;

    Tables<std::string, char32_t> m_inputs;
    Tables<char32_t, std::string> m_outputs;
};

#endif

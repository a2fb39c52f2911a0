#include "i18n/cpp/resources/i18n_settings_file.hpp"

#include <strings.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/resources/i18n_resource_reader.hpp"

namespace {

constexpr float kMostBytesPerCodePoint = 4.0F;  // the maximum in UTF-8
constexpr std::size_t kMostEntries = 1000000;   // of all replacement tables together
constexpr std::size_t kLongestSequence = 32;    // the room in the converters' callbacks

bool isTrue(const std::string& word) { return strcasecmp(word.c_str(), "true") == 0; }

std::optional<char32_t> codePointOf(const std::string& text) {
    const auto number = i18nParseNumber(text, 0x10FFFF);
    if (!number || (*number >= 0xD800 && *number <= 0xDFFF)) return std::nullopt;
    return static_cast<char32_t>(*number);
}

/// Converts a list of byte values to bytes; returns nothing if an item is not a byte value, or if
/// there are too many items.
std::optional<std::string> bytesOf(const std::string& list) {
    std::string bytes;
    for (const std::string& item : i18nSplitList(list)) {
        const auto byte = i18nParseNumber(item, 0xFF);
        if (!byte || bytes.size() == kLongestSequence) return std::nullopt;
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

/// Reads the elements of a file, and keeps the context that enclosing elements set.
class Loader {
public:
    explicit Loader(I18NSettings& settings)
        : m_settings(settings), m_tables(settings.replacements) {}

    void load(I18NResourceReader& reader);

private:
    enum class Direction { kNone, kInput, kOutput };
    using Read = void (Loader::*)(const I18NResourceReader&);
    struct Element {
        std::string_view name;
        Read read;
    };
    static const Element kElements[];

    static std::string valueOf(const I18NResourceReader& reader) {
        return reader.getXMLElementValue().value_or("");
    }

    void endTable(const I18NResourceReader& reader) {
        endEncoding(reader);
        m_direction = Direction::kNone;
    }
    void beginInput(const I18NResourceReader& reader) {
        endTable(reader);
        m_direction = Direction::kInput;
    }
    void beginOutput(const I18NResourceReader& reader) {
        endTable(reader);
        m_direction = Direction::kOutput;
    }
    void beginEncoding(const I18NResourceReader& reader) {
        endEncoding(reader);
        for (const std::string& name : i18nSplitList(valueOf(reader)))
            if (const char* canonical = i18nCanonicalEncoding(name.c_str()))
                m_encodings.emplace(canonical);
    }
    void endEncoding(const I18NResourceReader& reader) {
        m_encodings.clear();
        endSequence(reader);
    }
    void beginSequence(const I18NResourceReader& reader) {
        const std::string value = valueOf(reader);
        m_sequenceBytes = bytesOf(value);
        m_sequenceCodePoint = codePointOf(value);
    }
    void endSequence(const I18NResourceReader&) {
        m_sequenceBytes.reset();
        m_sequenceCodePoint.reset();
    }

    void addReplacement(const I18NResourceReader& reader) {
        const std::optional<std::string> value = reader.getXMLElementValue();
        if (!value) return;
        if (m_direction == Direction::kInput) addInput(*value);
        if (m_direction == Direction::kOutput) addOutput(*value);
    }
    /// One line can add as many entries as ICU has encodings.
    bool hasRoom() {
        m_iEntries += m_encodings.size();
        return m_iEntries <= kMostEntries;
    }
    void addInput(const std::string& value) {
        const auto codePoint = codePointOf(value);
        if (!m_sequenceBytes || m_sequenceBytes->empty() || !codePoint) return;
        if (!hasRoom()) return;
        for (const std::string& encoding : m_encodings)
            m_tables.addInput(encoding, *m_sequenceBytes, *codePoint);
    }
    void addOutput(const std::string& value) {
        const auto bytes = bytesOf(value);
        if (!m_sequenceCodePoint || !bytes) return;
        if (!hasRoom()) return;
        for (const std::string& encoding : m_encodings)
            m_tables.addOutput(encoding, *m_sequenceCodePoint, *bytes);
    }

    void readJaSubstitution(const I18NResourceReader& reader) {
        const auto from = codePointOf(reader.getXMLElementAttribute("from").value_or(""));
        const auto to = codePointOf(reader.getXMLElementAttribute("to").value_or(""));
        if (from && to) m_settings.jaSubstitutions[*from] = *to;
    }
    void readNonNormalizable(const I18NResourceReader& reader) {
        std::vector<char32_t>& all = m_settings.nonNormalizable;
        for (const std::string& item : i18nSplitList(valueOf(reader)))
            if (const auto codePoint = codePointOf(item)) all.push_back(*codePoint);
    }
    void readScaledZero(const I18NResourceReader& reader) {
        // An element without a value leaves the setting to an allowReplace element.
        if (const auto value = reader.getXMLElementValue())
            m_settings.replaceScaledZero = isTrue(*value);
    }
    void readNegativeZero(const I18NResourceReader& reader) {
        m_settings.negativeZero = isTrue(valueOf(reader));
    }
    void readBytesPerCodePoint(const I18NResourceReader& reader) {
        const auto value = static_cast<float>(
            std::min<double>(i18nParseReal(valueOf(reader)), kMostBytesPerCodePoint));
        if (value > 0.0F) m_settings.utf8BytesPerCodePoint = value;
    }

    void beginLocale(const I18NResourceReader& reader) {
        const std::string name = valueOf(reader);
        m_pLocale = nullptr;
        if (name.empty()) return;
        m_pLocale = &m_settings.locales[I18NLocale(name.c_str()).getName()];
        m_pLocale->name = name;
    }
    void endLocale(const I18NResourceReader&) { m_pLocale = nullptr; }
    void readInUse(const I18NResourceReader& reader) {
        if (m_pLocale != nullptr) m_pLocale->inUse = isTrue(valueOf(reader));
    }
    void readLCID(const I18NResourceReader& reader) {
        const auto lcid = i18nParseNumber(valueOf(reader), 0xFFFF);
        if (m_pLocale != nullptr && lcid) m_pLocale->lcid = static_cast<unsigned short>(*lcid);
    }
    void readDefaultVariant(const I18NResourceReader& reader) {
        if (m_pLocale != nullptr) m_pLocale->defaultVariant = valueOf(reader);
    }
    void readCSVEncoding(const I18NResourceReader& reader) {
        const std::string name = valueOf(reader);
        if (m_pLocale != nullptr && i18nCanonicalEncoding(name.c_str()) != nullptr)
            m_pLocale->csvEncoding = name;
    }
    // Reads an element that files may contain, but that has no effect.
    void skip(const I18NResourceReader&) {}

    I18NSettings& m_settings;
    I18NReplacementTables& m_tables;
    Direction m_direction = Direction::kNone;
    std::set<std::string> m_encodings;  // canonical names
    std::size_t m_iEntries = 0;
    std::optional<std::string> m_sequenceBytes;
    std::optional<char32_t> m_sequenceCodePoint;
    I18NLocaleSettings* m_pLocale = nullptr;
};

const Loader::Element Loader::kElements[] = {
    {"input", &Loader::beginInput},
    {"/input", &Loader::endTable},
    {"output", &Loader::beginOutput},
    {"/output", &Loader::endTable},
    {"encoding", &Loader::beginEncoding},
    {"/encoding", &Loader::endEncoding},
    {"sequence", &Loader::beginSequence},
    {"/sequence", &Loader::endSequence},
    {"replacement", &Loader::addReplacement},
    {"ja_substitution", &Loader::readJaSubstitution},
    {"nonNormalizableCharacters", &Loader::readNonNormalizable},
    {"replaceScaledZeroNumbers", &Loader::readScaledZero},
    {"allowReplace", &Loader::readScaledZero},
    {"allowNegativeZero", &Loader::readNegativeZero},
    {"UTF8BytesPerCodePoint", &Loader::readBytesPerCodePoint},
    {"locale", &Loader::beginLocale},
    {"/locale", &Loader::endLocale},
    {"inUse", &Loader::readInUse},
    {"lcid", &Loader::readLCID},
    {"defaultVariant", &Loader::readDefaultVariant},
    {"csvEncoding", &Loader::readCSVEncoding},
    {"memoryManagement", &Loader::skip},
};

void Loader::load(I18NResourceReader& reader) {
    while (reader.next()) {
        const std::string_view name = reader.getXMLElement();
        for (const Element& element : kElements)
            if (element.name == name) (this->*element.read)(reader);
    }
    std::vector<char32_t>& exempt = m_settings.nonNormalizable;
    std::sort(exempt.begin(), exempt.end());
    exempt.erase(std::unique(exempt.begin(), exempt.end()), exempt.end());
}

}  // namespace

std::unique_ptr<I18NSettings> i18nLoadSettings(const std::string& path, bool& seen) {
    I18NResourceReader reader(path.c_str());
    seen = !reader.isNotSeen();
    if (!reader.isOpen()) return nullptr;
    auto settings = std::make_unique<I18NSettings>();
    Loader(*settings).load(reader);
    seen = !reader.isNotSeen();
    return seen ? std::move(settings) : nullptr;
}

#include "i18n/cpp/locale/i18n_settings.hpp"

#include <strings.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <set>
#include <tuple>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_locale_names.hpp"
#include "i18n/cpp/resources/i18n_resource_reader.hpp"

namespace {

constexpr float kMostBytesPerCodePoint = 4.0F;  // what UTF-8 needs at most
constexpr std::size_t kMostEntries = 1000000;   // of all replacement tables together
constexpr std::size_t kLongestSequence = 32;    // what the converters' callbacks have room for

bool isTrue(const std::string& word) { return strcasecmp(word.c_str(), "true") == 0; }

std::optional<char32_t> codePointOf(const std::string& text) {
    const auto number = i18nParseNumber(text, 0x10FFFF);
    if (!number || (*number >= 0xD800 && *number <= 0xDFFF)) return std::nullopt;
    return static_cast<char32_t>(*number);
}

/// A list of byte values as the bytes; nothing if an item is no byte or they are too many.
std::optional<std::string> bytesOf(const std::string& list) {
    std::string bytes;
    for (const std::string& item : i18nSplitList(list)) {
        const auto byte = i18nParseNumber(item, 0xFF);
        if (!byte || bytes.size() == kLongestSequence) return std::nullopt;
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

/// Goes through the elements of a file, with what the ones around the current one said.
class Loader {
public:
    explicit Loader(I18NSettings& settings)
        : m_settings(settings), m_tables(settings.replacements) {}

    void load(I18NResourceReader& reader);

private:
    enum class Direction { None, Input, Output };
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
        m_direction = Direction::None;
    }
    void beginInput(const I18NResourceReader& reader) {
        endTable(reader);
        m_direction = Direction::Input;
    }
    void beginOutput(const I18NResourceReader& reader) {
        endTable(reader);
        m_direction = Direction::Output;
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
        if (m_direction == Direction::Input) addInput(*value);
        if (m_direction == Direction::Output) addOutput(*value);
    }
    /// A line can stand for as many entries as ICU has encodings.
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
        // Without a value of its own it leaves the word to an allowReplace element.
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
    // Known, so that files may have it; there is only one way to manage memory.
    void skip(const I18NResourceReader&) {}

    I18NSettings& m_settings;
    I18NReplacementTables& m_tables;
    Direction m_direction = Direction::None;
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

/// All settings that were ever published.
struct Published {
    QBLThreadCriticalSection lock{0};
    std::vector<std::unique_ptr<const I18NSettings>> all QBL_GUARDED_BY(lock);

    int numberOf(const std::vector<char32_t>& list) const QBL_REQUIRES(lock) {
        int last = 0;
        if (list.empty()) return last;
        for (const auto& earlier : all) {
            if (earlier->nonNormalizable == list) return earlier->nonNormalizableID;
            last = std::max(last, earlier->nonNormalizableID);
        }
        return last < I18NSettings::kMostLists ? last + 1 : 0;
    }
};

std::atomic<const I18NSettings*> g_now{nullptr};  // null for the defaults

}  // namespace

const I18NLocaleSettings* I18NSettings::find(const I18NLocale& locale) const {
    auto found = locales.find(std::string_view(locale.getName()));
    if (found == locales.end()) found = locales.find(i18nPlainName(locale));
    return found != locales.end() && found->second.inUse ? &found->second : nullptr;
}

bool I18NLocaleSettings::operator==(const I18NLocaleSettings& other) const {
    const auto all = [](const I18NLocaleSettings& s) {
        return std::tie(s.name, s.inUse, s.lcid, s.defaultVariant, s.csvEncoding);
    };
    return all(*this) == all(other);
}

bool I18NSettings::operator==(const I18NSettings& other) const {
    const auto all = [](const I18NSettings& s) {
        return std::tie(s.utf8BytesPerCodePoint, s.replaceScaledZero, s.negativeZero,
                        s.nonNormalizable, s.jaSubstitutions, s.locales, s.replacements);
    };
    return all(*this) == all(other);
}

bool I18NSettings::isNonNormalizable(std::u16string_view text) const {
    const std::vector<char32_t>& all = nonNormalizable;
    if (all.empty()) return false;
    // Few texts have a unit that any of them could begin with.
    const bool pairs = all.back() > 0xFFFF;
    const char32_t first = pairs ? std::min<char32_t>(all.front(), 0xD800) : all.front();
    const char32_t last = pairs ? 0xFFFF : all.back();
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] < first || text[i] > last) {
            ++i;
            continue;
        }
        char32_t codePoint;
        U16_NEXT(text.data(), i, text.size(), codePoint);
        if (std::binary_search(all.begin(), all.end(), codePoint)) return true;
    }
    return false;
}

std::unique_ptr<I18NSettings> I18NSettings::load(const std::string& path, bool& seen) {
    I18NResourceReader reader(path.c_str());
    seen = !reader.isNotSeen();
    if (!reader.isOpen()) return nullptr;
    auto settings = std::make_unique<I18NSettings>();
    Loader(*settings).load(reader);
    seen = !reader.isNotSeen();
    return seen ? std::move(settings) : nullptr;
}

const I18NSettings& I18NSettings::now() {
    const I18NSettings* settings = g_now.load(std::memory_order_acquire);
    return settings != nullptr ? *settings : qblImmortal<I18NSettings>();
}

void I18NSettings::publish(std::unique_ptr<I18NSettings> settings) {
    const I18NSettings* chosen = nullptr;
    if (settings != nullptr) {
        Published& published = qblImmortal<Published>();
        QBLThreadGuard guard(published.lock);
        for (const auto& earlier : published.all)
            if (*earlier == *settings) chosen = earlier.get();
        if (chosen == nullptr) {
            settings->nonNormalizableID = published.numberOf(settings->nonNormalizable);
            published.all.push_back(std::move(settings));
            chosen = published.all.back().get();
        }
    }
    g_now.store(chosen, std::memory_order_release);
}

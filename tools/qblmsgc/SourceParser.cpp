#include "tools/qblmsgc/SourceParser.hpp"

#include <map>
#include <set>
#include <utility>

#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

const unsigned long long kMaxId = 0xFFFFFFFFULL;
const std::size_t kNone = std::string::npos;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }

/// The value of a digit in a base up to 16; 16 for other characters.
unsigned digitOf(char c) {
    if (isDigit(c)) return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    return 16;
}

class Parser {
public:
    Parser(const Source& source, Report& report)
        : m_source(source), m_bytes(source.bytes()), m_report(report) {}

    Entries parse() {
        for (std::size_t line = 0; line < m_source.lineCount(); ++line) parseLine(line);
        finishEntry();
        reportDuplicates();
        return std::move(m_entries);
    }

private:
    template <class Make, class... Texts>
    void error(std::size_t offset, Make make, Texts... texts) {
        m_report.error(m_source, offset, make, std::move(texts)...);
    }

    void parseLine(std::size_t line) {
        m_uAt = m_source.lineBegin(line);
        m_uEnd = m_source.lineBegin(line + 1);
        if (m_uEnd > m_uAt && m_bytes[m_uEnd - 1] == '\n') --m_uEnd;
        if (m_uEnd > m_uAt && m_bytes[m_uEnd - 1] == '\r') --m_uEnd;
        if (line == 0 && m_bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) m_uAt += 3;
        checkCharacters();
        skipBlanks();
        if (m_uAt == m_uEnd) {
            m_comment.clear();
        } else if (m_bytes[m_uAt] == '#') {
            takeComment();
        } else if (isDigit(m_bytes[m_uAt])) {
            finishEntry();
            parseEntry();
        } else if (m_bytes[m_uAt] == '"' && m_bInEntry) {
            parseTexts();
        } else {
            error(m_uAt, m_bytes[m_uAt] == '"' ? qblmsgcmsgs::msgcTextWithoutId
                                               : qblmsgcmsgs::msgcNoEntry);
            finishEntry();
        }
    }

    /// Reports only one error per line, because in a wrong encoding nearly every character is an
    /// error.
    void checkCharacters() {
        const std::size_t illFormed = tools::findIllFormed(m_bytes, m_uAt, m_uEnd);
        if (illFormed != kNone) return error(illFormed, qblmsgcmsgs::msgcNotUtf8);
        for (std::size_t i = m_uAt; i < m_uEnd; ++i) {
            const auto c = static_cast<unsigned char>(m_bytes[i]);
            if ((c < 0x20 && c != '\t') || c == 0x7F)
                return error(i, qblmsgcmsgs::msgcControlCharacter);
        }
    }

    void skipBlanks() {
        while (m_uAt < m_uEnd && (m_bytes[m_uAt] == ' ' || m_bytes[m_uAt] == '\t')) ++m_uAt;
    }
    bool isAt(char c) const { return m_uAt < m_uEnd && m_bytes[m_uAt] == c; }

    void takeComment() {
        ++m_uAt;
        if (isAt(' ')) ++m_uAt;
        m_comment.append(m_bytes, m_uAt, m_uEnd - m_uAt).append("\n");
    }

    void parseEntry() {
        m_entry = Entry();
        m_entry.offset = m_uAt;
        m_entry.comment = std::exchange(m_comment, std::string());
        m_bInEntry = true;
        m_bHasId = parseId();
        skipBlanks();
        if (m_uAt < m_uEnd && isNameStart(m_bytes[m_uAt])) {
            m_entry.nameOffset = m_uAt;
            while (m_uAt < m_uEnd && isNamePart(m_bytes[m_uAt])) m_entry.name += m_bytes[m_uAt++];
            if (isReserved(m_entry.name))
                error(m_entry.nameOffset, qblmsgcmsgs::msgcKeyword, m_entry.name);
            skipBlanks();
        }
        if (isAt('=')) {
            m_entry.asIs = true;
            ++m_uAt;
        }
        parseTexts();
    }

    bool parseId() {
        unsigned base = 10;
        if (m_bytes[m_uAt] == '0' && m_uAt + 1 < m_uEnd && (m_bytes[m_uAt + 1] | 0x20) == 'x') {
            base = 16;
            m_uAt += 2;
        }
        unsigned long long id = 0;
        const std::size_t begin = m_uAt;
        for (; m_uAt < m_uEnd && digitOf(m_bytes[m_uAt]) < base; ++m_uAt)
            if (id <= kMaxId) id = id * base + digitOf(m_bytes[m_uAt]);
        const bool ends = m_uAt == m_uEnd || (!isNamePart(m_bytes[m_uAt]) && m_uAt > begin);
        if (!ends || m_uAt == begin || id > kMaxId) {
            error(m_entry.offset, qblmsgcmsgs::msgcBadId);
            while (m_uAt < m_uEnd && isNamePart(m_bytes[m_uAt])) ++m_uAt;
            return false;
        }
        m_entry.id = static_cast<unsigned>(id);
        return true;
    }

    void parseTexts() {
        for (skipBlanks(); m_uAt < m_uEnd && !isAt('#'); skipBlanks()) {
            if (isAt('"') && parseText()) continue;
            if (m_uAt < m_uEnd) error(m_uAt, qblmsgcmsgs::msgcNoTextHere);
            m_entry.isWhole = false;
            return;
        }
    }

    /// @return false if the closing quote is missing; the whole line is then consumed
    bool parseText() {
        const std::size_t begin = m_uAt++;
        mark();
        while (m_uAt < m_uEnd && m_bytes[m_uAt] != '"') {
            if (m_bytes[m_uAt] == '\\') {
                parseEscape();
                mark();
            } else {
                m_entry.text += m_bytes[m_uAt++];
            }
        }
        if (m_uAt < m_uEnd) {
            ++m_uAt;
            return true;
        }
        error(begin, qblmsgcmsgs::msgcOpenText);
        return false;
    }

    void mark() { m_entry.marks.push_back({m_entry.text.size(), m_uAt}); }

    void parseEscape() {
        static const char kLetters[] = "\"\\nrt", kMeanings[] = "\"\\\n\r\t";
        const std::size_t begin = m_uAt++;
        const char c = m_uAt < m_uEnd ? m_bytes[m_uAt] : '\0';
        const std::size_t which = std::string(kLetters).find(c);
        if (which != kNone) {
            ++m_uAt;
            m_entry.text += kMeanings[which];
        } else if (c != 'u' || !parseCodePoint()) {
            error(begin, qblmsgcmsgs::msgcBadEscape);
            m_entry.isWhole = false;
        }
    }

    bool parseCodePoint() {
        ++m_uAt;
        unsigned codePoint = 0;
        for (int i = 0; i < 4; ++i, ++m_uAt) {
            if (m_uAt == m_uEnd || digitOf(m_bytes[m_uAt]) == 16) return false;
            codePoint = codePoint * 16 + digitOf(m_bytes[m_uAt]);
        }
        if (codePoint == 0 || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return false;
        tools::appendCodePoint(m_entry.text, codePoint);
        return true;
    }

    /// Keeps a message that has an identifier, even if its text is malformed.
    void finishEntry() {
        if (m_bInEntry && m_entry.isWhole && m_entry.marks.empty()) {
            error(m_entry.offset, qblmsgcmsgs::msgcNoText);
            m_entry.isWhole = false;
        }
        if (m_bInEntry && m_bHasId) m_entries.push_back(std::move(m_entry));
        m_bInEntry = false;
    }

    void reportDuplicates() {
        std::map<unsigned, const Entry*> ids;
        std::map<std::string, const Entry*> names;
        const auto lineOf = [this](std::size_t offset) {
            return std::to_string(m_source.placeOf(offset).line);
        };
        for (const Entry& entry : m_entries) {
            const auto id = ids.emplace(entry.id, &entry);
            if (!id.second)
                error(entry.offset, qblmsgcmsgs::msgcDuplicateId, std::to_string(entry.id),
                      lineOf(id.first->second->offset));
            if (entry.name.empty()) continue;
            const auto name = names.emplace(entry.name, &entry);
            if (!name.second)
                error(entry.nameOffset, qblmsgcmsgs::msgcDuplicateName, entry.name,
                      lineOf(name.first->second->offset));
        }
    }

    const Source& m_source;
    const std::string& m_bytes;
    Report& m_report;
    Entries m_entries;
    std::string m_comment;  // of the lines directly above
    Entry m_entry;          // the message that text lines continue
    bool m_bInEntry = false;
    bool m_bHasId = false;
    std::size_t m_uAt = 0;
    std::size_t m_uEnd = 0;  // end of the line
};

}  // namespace

bool isReserved(const std::string& name) {
    const bool isOfCompiler =
        name.size() > 1 && name[0] == '_' && (name[1] == '_' || (name[1] >= 'A' && name[1] <= 'Z'));
    if (isOfCompiler) return true;
    static const std::set<std::string> kWords = {"EOF",
                                                 "NULL",
                                                 "assert",
                                                 "errno",
                                                 "i386",
                                                 "linux",
                                                 "stderr",
                                                 "stdin",
                                                 "stdout",
                                                 "unix",
                                                 "alignas",
                                                 "alignof",
                                                 "and",
                                                 "and_eq",
                                                 "asm",
                                                 "auto",
                                                 "bitand",
                                                 "bitor",
                                                 "bool",
                                                 "break",
                                                 "case",
                                                 "catch",
                                                 "char",
                                                 "char16_t",
                                                 "char32_t",
                                                 "char8_t",
                                                 "class",
                                                 "co_await",
                                                 "co_return",
                                                 "co_yield",
                                                 "compl",
                                                 "concept",
                                                 "const",
                                                 "const_cast",
                                                 "consteval",
                                                 "constexpr",
                                                 "constinit",
                                                 "continue",
                                                 "decltype",
                                                 "default",
                                                 "delete",
                                                 "do",
                                                 "double",
                                                 "dynamic_cast",
                                                 "else",
                                                 "enum",
                                                 "explicit",
                                                 "export",
                                                 "extern",
                                                 "false",
                                                 "float",
                                                 "for",
                                                 "friend",
                                                 "goto",
                                                 "if",
                                                 "inline",
                                                 "int",
                                                 "long",
                                                 "mutable",
                                                 "namespace",
                                                 "new",
                                                 "noexcept",
                                                 "not",
                                                 "not_eq",
                                                 "nullptr",
                                                 "operator",
                                                 "or",
                                                 "or_eq",
                                                 "private",
                                                 "protected",
                                                 "public",
                                                 "register",
                                                 "reinterpret_cast",
                                                 "requires",
                                                 "restrict",
                                                 "return",
                                                 "short",
                                                 "signed",
                                                 "sizeof",
                                                 "static",
                                                 "static_assert",
                                                 "static_cast",
                                                 "struct",
                                                 "switch",
                                                 "template",
                                                 "this",
                                                 "thread_local",
                                                 "throw",
                                                 "true",
                                                 "try",
                                                 "typedef",
                                                 "typeid",
                                                 "typename",
                                                 "typeof",
                                                 "union",
                                                 "unsigned",
                                                 "using",
                                                 "virtual",
                                                 "void",
                                                 "volatile",
                                                 "wchar_t",
                                                 "while",
                                                 "xor",
                                                 "xor_eq"};
    return kWords.count(name) != 0;
}

Entries parseSource(const Source& source, Report& report) { return Parser(source, report).parse(); }

}  // namespace msgc

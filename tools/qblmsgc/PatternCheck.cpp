#include "tools/qblmsgc/PatternCheck.hpp"

#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "QBLCore/Messages/shared/QBLPatternCheck.hpp"
#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

const int kMaxArgument = 9;

/// The kinds for "{0,kind}", except those with their own syntax.
const char* const kKinds[] = {"number", "date", "time", "spellout", "ordinal", "duration"};

/// The plural categories of languages (CLDR).
const char* const kPlurals[] = {"zero", "one", "two", "few", "many", "other"};

class Checker {
public:
    Checker(const std::string& utf8, PatternCheck& result)
        : m_utf8(utf8), m_text(icu::UnicodeString::fromUTF8(utf8)), m_result(result) {}

    void check() {
        const QBLPatternCheck checked(m_text);
        const icu::MessagePattern& pattern = checked.pattern;
        if (checked.fault == QBLPatternCheck::kTooManyChoices)
            return error(checked.offset, qblmsgcmsgs::msgcTooManyChoices,
                         std::to_string(QBLPatternCheck::kMaxChoices));
        if (checked.fault == QBLPatternCheck::kSyntax)
            return refuse(checked.status, checked.offset);
        if (checked.fault == QBLPatternCheck::kExponent)
            error(checked.offset, qblmsgcmsgs::msgcExponent);
        for (int i = 0; i < pattern.countParts(); ++i) {
            checkPart(pattern, i);
            if (pattern.getPartType(i) == UMSGPAT_PART_TYPE_ARG_NUMBER) addArgument(pattern, i);
        }
        if (m_bHasKinds && !m_result.hasErrors()) checkStyles();
        findQuoted();
        if (m_begins.empty() && m_utf8.find("{0") == std::string::npos) {
            const std::size_t doubled = m_utf8.find("''");
            if (doubled != std::string::npos) warning(doubled, qblmsgcmsgs::msgcDoubledApostrophe);
        }
    }

private:
    void refuse(UErrorCode status, int unit) {
        if (status == U_UNMATCHED_BRACES)
            error(openBrace(unit), qblmsgcmsgs::msgcBraces);
        else if (status == U_DEFAULT_KEYWORD_MISSING)
            error(unit, qblmsgcmsgs::msgcNoOther);
        else
            error(unit, qblmsgcmsgs::msgcBadPattern, u_errorName(status));
    }

    void checkPart(const icu::MessagePattern& pattern, int i) {
        const icu::MessagePattern::Part& part = pattern.getPart(i);
        const std::string text = utf8Of(pattern.getSubstring(part));
        switch (part.getType()) {
            case UMSGPAT_PART_TYPE_ARG_START:
                m_begins.insert(part.getIndex());
                m_bHasKinds = m_bHasKinds || part.getArgType() != UMSGPAT_ARG_TYPE_NONE;
                m_open.push_back(part.getArgType());
                break;
            case UMSGPAT_PART_TYPE_MSG_START:
                // The text of a case begins with a brace. The text of the whole pattern does not.
                if (part.getLength() > 0) m_begins.insert(part.getIndex());
                break;
            case UMSGPAT_PART_TYPE_ARG_LIMIT:
                m_open.pop_back();
                break;
            case UMSGPAT_PART_TYPE_ARG_SELECTOR:
                if (UMSGPAT_ARG_TYPE_HAS_PLURAL_STYLE(m_open.back()) && text[0] != '=' &&
                    std::find(std::begin(kPlurals), std::end(kPlurals), text) == std::end(kPlurals))
                    warning(bytesBefore(part.getIndex()), qblmsgcmsgs::msgcPluralKeyword, text);
                break;
            case UMSGPAT_PART_TYPE_ARG_NAME:
                error(part.getIndex(), qblmsgcmsgs::msgcNamedArgument, text);
                break;
            case UMSGPAT_PART_TYPE_ARG_NUMBER:
                if (part.getValue() > kMaxArgument)
                    error(part.getIndex(), qblmsgcmsgs::msgcNamedArgument, text);
                break;
            case UMSGPAT_PART_TYPE_ARG_TYPE:
                if (std::find(std::begin(kKinds), std::end(kKinds), text) == std::end(kKinds))
                    error(part.getIndex(), qblmsgcmsgs::msgcUnknownKind, text);
                break;
            default:
                break;
        }
    }

    /// Adds a use of an argument. The parts for a simple kind and its style follow the number.
    void addArgument(const icu::MessagePattern& pattern, int i) {
        const icu::MessagePattern::Part& part = pattern.getPart(i);
        const auto textAt = [&](int at, UMessagePatternPartType type) {
            const bool isThere = at < pattern.countParts() && pattern.getPartType(at) == type;
            return isThere ? utf8Of(pattern.getSubstring(pattern.getPart(at))) : std::string();
        };
        const ArgumentType type = typeOf(m_open.back(), textAt(i + 1, UMSGPAT_PART_TYPE_ARG_TYPE),
                                         textAt(i + 2, UMSGPAT_PART_TYPE_ARG_STYLE));
        const auto [argument, isNew] = m_result.arguments.emplace(part.getValue(), type);
        if (!isNew && !joinType(argument->second, type))
            m_result.conflicts.push_back({bytesBefore(part.getIndex()), part.getValue(), type});
    }

    static ArgumentType typeOf(UMessagePatternArgType syntax, const std::string& kind,
                               const std::string& style) {
        if (syntax == UMSGPAT_ARG_TYPE_NONE) return ArgumentType::kPlain;
        if (syntax == UMSGPAT_ARG_TYPE_SELECT) return ArgumentType::kText;
        if (syntax == UMSGPAT_ARG_TYPE_CHOICE) return ArgumentType::kNumber;
        if (kind == "date" || kind == "time") return ArgumentType::kDate;
        const bool takesFraction = kind == "spellout" || (kind == "number" && style != "integer");
        return takesFraction ? ArgumentType::kNumber : ArgumentType::kInteger;
    }

    /// ICU parses the styles of numbers and dates only when it makes a format.
    void checkStyles() {
        UErrorCode status = U_ZERO_ERROR;
        const icu::MessageFormat format(m_text, icu::Locale::getEnglish(), status);
        if (U_FAILURE(status)) error(0, qblmsgcmsgs::msgcBadPattern, u_errorName(status));
    }

    /// Finds quoted braces that look like arguments. ICU does not replace them.
    void findQuoted() {
        for (int i = 0; i < m_text.length(); ++i) {
            if (m_text[i] != u'{' || m_begins.count(i) != 0) continue;
            const int begin = skipSpace(i + 1);
            int end = begin;
            while (end < m_text.length() && (u_isalnum(m_text[end]) != 0 || m_text[end] == u'_'))
                ++end;
            const int next = skipSpace(end);
            if (end == begin || next >= m_text.length()) continue;
            if (m_text[next] == u'}' || m_text[next] == u',')
                warning(bytesBefore(i), qblmsgcmsgs::msgcQuotedArgument,
                        utf8Of(m_text.tempSubStringBetween(begin, end)));
        }
    }

    int skipSpace(int at) const {
        while (at < m_text.length() && u_hasBinaryProperty(m_text[at], UCHAR_PATTERN_WHITE_SPACE))
            ++at;
        return at;
    }

    /// Finds the innermost brace that is not closed. ICU only reports that some brace is not
    /// closed.
    int openBrace(int otherwise) const {
        std::vector<int> open;
        bool quoted = false;
        for (int i = 0; i < m_text.length(); ++i) {
            const char16_t c = m_text[i];
            const char16_t next = i + 1 < m_text.length() ? m_text[i + 1] : u'\0';
            if (c == u'\'' && next == u'\'')
                ++i;
            else if (c == u'\'')
                quoted = !quoted && (next == u'{' || next == u'}');
            else if (c == u'{' && !quoted)
                open.push_back(i);
            else if (c == u'}' && !quoted && !open.empty())
                open.pop_back();
        }
        return open.empty() ? otherwise : open.back();
    }

    static std::string utf8Of(const icu::UnicodeString& text) {
        std::string out;
        return text.toUTF8String(out);
    }
    /// Continues from the place of the last call, because most places come in order.
    std::size_t bytesBefore(int unit) {
        if (unit < m_iLastUnit) m_iLastUnit = m_iLastBytes = 0;
        while (m_iLastUnit < unit) {
            const UChar32 c = m_text.char32At(m_iLastUnit);
            m_iLastUnit += U16_LENGTH(c);
            m_iLastBytes += U8_LENGTH(c);
        }
        return static_cast<std::size_t>(m_iLastBytes);
    }
    template <class Make, class... Texts>
    void error(int unit, Make make, Texts... texts) {
        m_result.findings.push_back({true, bytesBefore(unit), placed(make, std::move(texts)...)});
    }
    template <class Make, class... Texts>
    void warning(std::size_t offset, Make make, Texts... texts) {
        m_result.findings.push_back({false, offset, placedWarning(make, std::move(texts)...)});
    }

    const std::string& m_utf8;
    const icu::UnicodeString m_text;
    PatternCheck& m_result;
    std::set<int> m_begins;                      // braces that begin arguments and cases
    std::vector<UMessagePatternArgType> m_open;  // arguments not closed yet
    bool m_bHasKinds = false;
    int m_iLastUnit = 0, m_iLastBytes = 0;  // the place of the last bytesBefore()
};

}  // namespace

PatternCheck::PatternCheck(const std::string& text, bool asIs) {
    const std::size_t begin = text.find("{0");
    if (!asIs)
        Checker(text, *this).check();
    else if (begin != std::string::npos)
        findings.push_back({false, begin, placedWarning(qblmsgcmsgs::msgcAsIsParsed)});
    if (text.empty()) findings.push_back({false, 0, placedWarning(qblmsgcmsgs::msgcEmptyText)});
}

bool PatternCheck::hasErrors() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const PatternFinding& finding) { return finding.isError; });
}

void checkPatterns(const Entries& entries, const Source& source, Report& report) {
    for (const Entry& entry : entries) {
        // Malformed texts have been reported already, and have no offsets in UTF-16.
        if (!entry.isWhole || tools::findIllFormed(entry.text) != std::string::npos) continue;
        for (const PatternFinding& finding : PatternCheck(entry.text, entry.asIs).findings) {
            const std::size_t offset = entry.offsetOf(finding.offset);
            if (finding.isError)
                report.error(source, offset, finding.message);
            else
                report.warning(source, offset, finding.message);
        }
    }
}

}  // namespace msgc

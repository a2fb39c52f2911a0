#include "tools/qblmsgc/PatternCheck.hpp"

#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <iterator>

#include "QBLCore/Messages/internal/QBLPatternCheck.hpp"
#include "tools/common/Utf8.hpp"

namespace msgc {

namespace {

const int kMaxArgument = 9;

/// The kinds that "{0,kind}" can name, beside those with a syntax of their own.
const char* const kKinds[] = {"number", "date", "time", "spellout", "ordinal", "duration"};

class Checker {
public:
    Checker(const std::string& utf8, PatternCheck& result)
        : m_utf8(utf8), m_text(icu::UnicodeString::fromUTF8(utf8)), m_result(result) {}

    void check() {
        const QBLPatternCheck checked(m_text);
        const icu::MessagePattern& pattern = checked.pattern;
        if (checked.fault == QBLPatternCheck::kTooManyChoices)
            return error(checked.offset, MSGC_TOO_MANY_CHOICES,
                         std::to_string(QBLPatternCheck::kMaxChoices));
        if (checked.fault == QBLPatternCheck::kSyntax)
            return refuse(checked.status, checked.offset);
        if (checked.fault == QBLPatternCheck::kExponent) error(checked.offset, MSGC_EXPONENT, "");
        for (int i = 0; i < pattern.countParts(); ++i) checkPart(pattern, i);
        if (m_hasKinds && !m_result.hasErrors()) checkStyles();
        findQuoted();
        if (m_begins.empty() && m_utf8.find("{0") == std::string::npos) {
            const std::size_t doubled = m_utf8.find("''");
            if (doubled != std::string::npos) warning(doubled, MSGC_DOUBLED_APOSTROPHE, "");
        }
    }

private:
    void refuse(UErrorCode status, int unit) {
        if (status == U_UNMATCHED_BRACES)
            error(openBrace(unit), MSGC_BRACES, "");
        else if (status == U_DEFAULT_KEYWORD_MISSING)
            error(unit, MSGC_NO_OTHER, "");
        else
            error(unit, MSGC_BAD_PATTERN, u_errorName(status));
    }

    void checkPart(const icu::MessagePattern& pattern, int i) {
        const icu::MessagePattern::Part& part = pattern.getPart(i);
        const std::string text = utf8Of(pattern.getSubstring(part));
        switch (part.getType()) {
            case UMSGPAT_PART_TYPE_ARG_START:
                m_begins.insert(part.getIndex());
                m_hasKinds = m_hasKinds || part.getArgType() != UMSGPAT_ARG_TYPE_NONE;
                break;
            case UMSGPAT_PART_TYPE_ARG_NAME:
                error(part.getIndex(), MSGC_NAMED_ARGUMENT, text);
                break;
            case UMSGPAT_PART_TYPE_ARG_NUMBER:
                if (part.getValue() > kMaxArgument)
                    error(part.getIndex(), MSGC_NAMED_ARGUMENT, text);
                m_result.arguments.insert(part.getValue());
                break;
            case UMSGPAT_PART_TYPE_ARG_TYPE:
                if (std::find(std::begin(kKinds), std::end(kKinds), text) == std::end(kKinds))
                    error(part.getIndex(), MSGC_UNKNOWN_KIND, text);
                break;
            default:
                break;
        }
    }

    /// Styles of numbers and dates are read only when a format is made.
    void checkStyles() {
        UErrorCode status = U_ZERO_ERROR;
        const icu::MessageFormat format(m_text, icu::Locale::getEnglish(), status);
        if (U_FAILURE(status)) error(0, MSGC_BAD_PATTERN, u_errorName(status));
    }

    /// Braces in quotes that look like arguments: nothing is inserted for them.
    void findQuoted() {
        for (int i = 0; i + 2 < m_text.length(); ++i) {
            const char16_t digit = m_text[i + 1], next = m_text[i + 2];
            if (m_text[i] == u'{' && digit >= u'0' && digit <= u'9' &&
                (next == u'}' || next == u',') && m_begins.count(i) == 0)
                warning(bytesBefore(i), MSGC_QUOTED_ARGUMENT, std::string(1, char(digit)));
        }
    }

    /// The innermost brace that nothing closes; ICU only tells that there is one.
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
    std::size_t bytesBefore(int unit) const {
        return utf8Of(m_text.tempSubStringBetween(0, unit)).size();
    }
    void error(int unit, qblmsgcmsgs id, const std::string& detail) {
        m_result.findings.push_back({true, bytesBefore(unit), id, detail});
    }
    void warning(std::size_t offset, qblmsgcmsgs id, const std::string& detail) {
        m_result.findings.push_back({false, offset, id, detail});
    }

    const std::string& m_utf8;
    const icu::UnicodeString m_text;
    PatternCheck& m_result;
    std::set<int> m_begins;  // of arguments
    bool m_hasKinds = false;
};

}  // namespace

PatternCheck::PatternCheck(const std::string& text, bool asIs) {
    const std::size_t begin = text.find("{0");
    if (!asIs)
        Checker(text, *this).check();
    else if (begin != std::string::npos)
        findings.push_back({false, begin, MSGC_AS_IS_PARSED, ""});
    if (text.empty()) findings.push_back({false, 0, MSGC_EMPTY_TEXT, ""});
}

bool PatternCheck::hasErrors() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const PatternFinding& finding) { return finding.isError; });
}

void checkPatterns(const Entries& entries, const Source& source, Report& report) {
    for (const Entry& entry : entries) {
        // What is no UTF-8 has been reported, and has no places in UTF-16.
        if (!entry.isWhole || tools::findIllFormed(entry.text) != std::string::npos) continue;
        for (const PatternFinding& finding : PatternCheck(entry.text, entry.asIs).findings) {
            Details details;
            if (!finding.detail.empty()) details.push_back(finding.detail);
            const std::size_t offset = entry.offsetOf(finding.offset);
            if (finding.isError)
                report.error(source, offset, finding.id, details);
            else
                report.warning(source, offset, finding.id, details);
        }
    }
}

}  // namespace msgc

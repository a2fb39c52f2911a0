#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"

#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <cstring>

#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "QBLCore/Messages/shared/QBLPatternCheck.hpp"
#include "i18n/cpp/i18n_locale.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"

namespace {

/// Converts a text. ICU returns a bogus text if memory runs out.
icu::UnicodeString toUnicode(std::string_view utf8) {
    icu::UnicodeString text =
        icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<int>(utf8.size())));
    if (text.isBogus()) qblThrowNoMemory(QBL_HERE);
    return text;
}

icu::Formattable toFormattable(const QBLMessageArgument& argument) {
    switch (argument.kind) {
        case QBLMessageArgument::kInteger:
            return icu::Formattable(static_cast<int32_t>(argument.integer));
        case QBLMessageArgument::kDouble:
            return icu::Formattable(argument.number);
        case QBLMessageArgument::kDate:
            return icu::Formattable(argument.number, icu::Formattable::kIsDate);
        default:
            return icu::Formattable(toUnicode(argument.text));
    }
}

constexpr std::size_t kLongestName = 256;
// Limits of a pattern that the process keeps.
constexpr std::size_t kLongestText = 1024;
constexpr std::size_t kLargestOut = 4096;

/// Returns ICU's name for the first of the locales; empty if there is no locale.
std::string firstOf(const char* locales) {
    const char separators[] = " \t\r\n,;";
    locales += std::strspn(locales, separators);
    const std::string first(locales, std::strcspn(locales, separators));
    if (first.empty()) return std::string();
    const I18NLocale locale(first.c_str());
    std::string name = locale.getName();
    // The length is limited, because ICU caches data by locale name, and a program's clients may
    // choose the names.
    if (name.size() <= kLongestName) return name;
    name = locale.getLanguage();
    return name.substr(0, kLongestName);
}

void refuseExhaustion(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
}

}  // namespace

QBLMessagePattern::QBLMessagePattern(const char* text, const char* locales)
    : m_pSource(text),
      m_text(text),
      m_locale(firstOf(locales)),
      m_bHarmless(false),
      m_bPlain(false),
      m_pIntegers(nullptr) {
    parse();
}

QBLMessagePattern::~QBLMessagePattern() = default;

void QBLMessagePattern::dropICU() { m_pICU.reset(); }

// A pattern without a locale name is not keepable: if memory runs out, ICU may lose the name.
bool QBLMessagePattern::isKeepable() const {
    return !m_locale.empty() && m_text.size() <= kLongestText && m_out.capacity() <= kLargestOut;
}

void QBLMessagePattern::parse() {
    const icu::UnicodeString text = toUnicode(m_text);
    const QBLPatternCheck check(text);
    refuseExhaustion(check.status);
    if (check.fault != QBLPatternCheck::kNone) return;
    m_bHarmless = true;
    const icu::MessagePattern& pattern = check.pattern;
    int begin = 0;
    std::string piece;
    const auto take = [&](int end) { text.tempSubStringBetween(begin, end).toUTF8String(piece); };
    for (int i = 0; i < pattern.countParts(); ++i) {
        const icu::MessagePattern::Part& part = pattern.getPart(i);
        switch (part.getType()) {
            case UMSGPAT_PART_TYPE_MSG_START:
                begin = part.getLimit();
                break;
            case UMSGPAT_PART_TYPE_SKIP_SYNTAX:
            case UMSGPAT_PART_TYPE_MSG_LIMIT:
                take(part.getIndex());
                begin = part.getLimit();
                break;
            case UMSGPAT_PART_TYPE_ARG_START:
                if (part.getArgType() != UMSGPAT_ARG_TYPE_NONE) return;
                take(part.getIndex());
                break;
            case UMSGPAT_PART_TYPE_ARG_NUMBER:
                m_pieces.push_back({std::move(piece), part.getValue()});
                piece.clear();
                break;
            case UMSGPAT_PART_TYPE_ARG_LIMIT:
                begin = part.getLimit();
                break;
            default:
                return;
        }
    }
    m_pieces.push_back({std::move(piece), -1});
    m_bPlain = true;
}

const char* QBLMessagePattern::format(const QBLMessageArgument* arguments, int count) {
    const bool formatted =
        (m_bPlain && formatPlain(arguments, count)) || formatByIcu(arguments, count);
    return formatted ? m_out.c_str() : nullptr;
}

bool QBLMessagePattern::formatPlain(const QBLMessageArgument* arguments, int count) {
    m_out.clear();
    for (const Piece& piece : m_pieces) {
        m_out += piece.text;
        if (piece.argument < 0) continue;
        if (piece.argument >= count) {
            // A missing argument appears as its placeholder.
            m_out.append("{").append(std::to_string(piece.argument)).append("}");
            continue;
        }
        const QBLMessageArgument& argument = arguments[piece.argument];
        if (argument.kind == QBLMessageArgument::kText) {
            m_out += argument.text;
            continue;
        }
        if (argument.kind != QBLMessageArgument::kInteger) return false;
        if (m_pIntegers == nullptr) m_pIntegers = QBLIntegerStyle::get(m_locale);
        if (m_pIntegers == nullptr) return false;
        m_pIntegers->append(argument.integer, m_out);
    }
    return true;
}

bool QBLMessagePattern::formatByIcu(const QBLMessageArgument* arguments, int count) {
    if (!m_bHarmless) return false;
    i18nRequireSpareMemory();
    UErrorCode status = U_ZERO_ERROR;
    if (m_pICU == nullptr) {
        i18nPrepareICU();
        auto made = std::make_unique<icu::MessageFormat>(toUnicode(m_text),
                                                         icu::Locale(m_locale.c_str()), status);
        refuseExhaustion(status);
        if (U_FAILURE(status)) return false;
        m_pICU = std::move(made);
    }
    icu::Formattable values[kMaxArguments];
    for (int i = 0; i < count; ++i) values[i] = toFormattable(arguments[i]);
    icu::UnicodeString text;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    m_pICU->format(values, count, text, position, status);
    refuseExhaustion(status);
    if (U_FAILURE(status)) return false;
    if (text.isBogus()) qblThrowNoMemory(QBL_HERE);
    m_out.clear();
    text.toUTF8String(m_out);
    return true;
}

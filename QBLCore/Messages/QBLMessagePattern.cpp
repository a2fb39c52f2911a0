#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"

#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <cstring>

#include "QBLCore/Exceptions/internal/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_locale.hpp"
#include "i18n/cpp/internal/i18n_icu.hpp"

namespace {

icu::UnicodeString toUnicode(std::string_view utf8) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(utf8.data(), static_cast<int>(utf8.size())));
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

/// The name that ICU has for the first of some locales; empty for none.
std::string firstOf(const char* locales) {
    const char separators[] = " \t\r\n,;";
    locales += std::strspn(locales, separators);
    const std::string first(locales, std::strcspn(locales, separators));
    return first.empty() ? first : I18NLocale(first.c_str()).getName();
}

void refuseExhaustion(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
}

}  // namespace

QBLMessagePattern::QBLMessagePattern(const char* text, const char* locales)
    : m_pSource(text),
      m_text(text),
      m_locale(firstOf(locales)),
      m_harmless(isHarmless(m_text)),
      m_plain(false),
      m_pIntegers(nullptr) {
    if (m_harmless) parse();
}

QBLMessagePattern::~QBLMessagePattern() = default;

bool QBLMessagePattern::isHarmless(const std::string& text) {
    int choices = 0;
    for (const char* word : {"choice", "plural", "select"})
        for (const char* at = text.c_str(); (at = strcasestr(at, word)) != nullptr; ++at)
            if (++choices > kMaxChoices) return false;
    // A style like "::scale/1E9", up to the end of its argument.
    for (std::size_t at = text.find("::"); at != std::string::npos; at = text.find("::", at + 1)) {
        const std::size_t before = text.find_last_not_of(" \t\r\n", at - (at > 0 ? 1 : 0));
        if (before == std::string::npos || text[before] != ',') continue;
        const std::size_t end = std::min(text.find('}', at), text.size());
        for (std::size_t slash = text.find('/', at); slash < end;
             slash = text.find('/', slash + 1)) {
            const std::size_t behind = text.find_first_not_of("+-.0123456789", slash + 1);
            if (behind < end && behind > slash + 1 && (text[behind] | 0x20) == 'e') return false;
        }
    }
    return true;
}

void QBLMessagePattern::parse() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text = toUnicode(m_text);
    const icu::MessagePattern pattern(text, nullptr, status);
    refuseExhaustion(status);
    if (U_FAILURE(status)) return;
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
    m_plain = true;
}

const char* QBLMessagePattern::format(const QBLMessageArgument* arguments, int count) {
    const bool formatted =
        (m_plain && formatPlain(arguments, count)) || formatByIcu(arguments, count);
    return formatted ? m_out.c_str() : nullptr;
}

bool QBLMessagePattern::formatPlain(const QBLMessageArgument* arguments, int count) {
    m_out.clear();
    for (const Piece& piece : m_pieces) {
        m_out += piece.text;
        if (piece.argument < 0) continue;
        if (piece.argument >= count) {
            // An argument that is missing shows where it would stand.
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
    if (!m_harmless) return false;
    UErrorCode status = U_ZERO_ERROR;
    if (m_icu == nullptr) {
        i18nPrepareICU();
        auto made = std::make_unique<icu::MessageFormat>(toUnicode(m_text),
                                                         icu::Locale(m_locale.c_str()), status);
        refuseExhaustion(status);
        if (U_FAILURE(status)) return false;
        m_icu = std::move(made);
    }
    icu::Formattable values[kMaxArguments];
    for (int i = 0; i < count; ++i) values[i] = toFormattable(arguments[i]);
    icu::UnicodeString text;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    m_icu->format(values, count, text, position, status);
    refuseExhaustion(status);
    if (U_FAILURE(status) || text.isBogus()) return false;
    m_out.clear();
    text.toUTF8String(m_out);
    return true;
}

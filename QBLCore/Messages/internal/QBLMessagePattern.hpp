#ifndef QBLCORE_MESSAGES_INTERNAL_QBLMESSAGEPATTERN_HPP
#define QBLCORE_MESSAGES_INTERNAL_QBLMESSAGEPATTERN_HPP

#include <unicode/uversion.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "QBLCore/Messages/internal/QBLIntegerStyle.hpp"

U_NAMESPACE_BEGIN
class MessageFormat;
U_NAMESPACE_END

/// The value of an argument of a pattern.
struct QBLMessageArgument {
    enum Kind { kText, kInteger, kDouble, kDate };

    Kind kind;
    int integer;
    double number;          // the double; for a date, milliseconds since 1970-01-01 UTC
    std::string_view text;  // UTF-8
};

/// A parsed message pattern. This class itself formats patterns that consist of text and plain
/// arguments. ICU formats other patterns, and all doubles and dates.
///
/// A text that QBLPatternCheck refuses is not a pattern.
class QBLMessagePattern {
public:
    static constexpr int kMaxArguments = 10;

    /// @param text  UTF-8; must keep its address and its content until the last call of isFor()
    /// @param locales  only the first one is used
    QBLMessagePattern(const char* text, const char* locales);
    ~QBLMessagePattern();
    QBLMessagePattern(const QBLMessagePattern&) = delete;
    QBLMessagePattern& operator=(const QBLMessagePattern&) = delete;

    /// Returns true if the pattern was made from the text at this address.
    bool isFor(const char* text) const { return m_pSource == text; }
    /// Returns true if the pattern was made from a text with these bytes.
    bool hasText(std::string_view text) const { return m_text == text; }
    /// Frees ICU's format object. format() creates the object again when needed.
    void dropICU();
    /// Returns true if the process may keep the pattern: it is small, and has a locale.
    bool isKeepable() const;
    /// @return UTF-8, valid until the next call; null if the text is not a pattern
    const char* format(const QBLMessageArgument* arguments, int count);

private:
    struct Piece {
        std::string text;
        int argument;  // the argument after the text; -1 if no argument follows
    };

    void parse();
    bool formatPlain(const QBLMessageArgument* arguments, int count);
    bool formatByIcu(const QBLMessageArgument* arguments, int count);

    const char* m_pSource;  // not owned; only its address is compared
    std::string m_text;
    std::string m_locale;
    std::string m_out;  // the last result; each call reuses its memory
    std::vector<Piece> m_pieces;
    bool m_bHarmless;                            // ICU may parse the text
    bool m_bPlain;                               // m_pieces is the whole pattern
    std::unique_ptr<icu::MessageFormat> m_pICU;  // made when first needed
    const QBLIntegerStyle* m_pIntegers;          // found when first needed; not owned
};

#endif

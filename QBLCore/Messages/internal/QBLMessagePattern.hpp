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

/// What a pattern's argument stands for.
struct QBLMessageArgument {
    enum Kind { kText, kInteger, kDouble, kDate };

    Kind kind;
    int integer;
    double number;          // of a double; of a date, milliseconds since 1970-01-01 UTC
    std::string_view text;  // UTF-8
};

/// A parsed message pattern. One that consists of texts and plain arguments is filled in here; ICU
/// formats the others, and all doubles and dates.
///
/// A text that QBLPatternCheck refuses is none.
class QBLMessagePattern {
public:
    static constexpr int kMaxArguments = 10;

    /// @param text  UTF-8; must stay as it is as long as isFor() is asked
    /// @param locales  of which the first counts
    QBLMessagePattern(const char* text, const char* locales);
    ~QBLMessagePattern();
    QBLMessagePattern(const QBLMessagePattern&) = delete;
    QBLMessagePattern& operator=(const QBLMessagePattern&) = delete;

    /// Whether it was made from the very same text.
    bool isFor(const char* text) const { return m_pSource == text; }
    /// @return UTF-8, valid until the next call; null if the text is no pattern
    const char* format(const QBLMessageArgument* arguments, int count);

private:
    struct Piece {
        std::string text;
        int argument;  // behind the text; -1 for none
    };

    void parse();
    bool formatPlain(const QBLMessageArgument* arguments, int count);
    bool formatByIcu(const QBLMessageArgument* arguments, int count);

    const char* m_pSource;  // not owned, and only compared
    std::string m_text;
    std::string m_locale;
    std::string m_out;  // what was formatted last; keeps its memory for the next
    std::vector<Piece> m_pieces;
    bool m_bHarmless;                            // ICU may look at it
    bool m_bPlain;                               // the pieces are all there is
    std::unique_ptr<icu::MessageFormat> m_pICU;  // made when first needed
    const QBLIntegerStyle* m_pIntegers;          // the same; lives as long as the process
};

#endif

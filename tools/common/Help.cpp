#include "tools/common/Help.hpp"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <memory>

namespace tools {

namespace {

constexpr int kColumns = 79;
constexpr int kTextColumn = 26;  // column at which descriptions begin

/// The number of terminal columns that a character takes.
int columnsOf(UChar32 c) {
    const int category = u_charType(c);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR)
        return 0;
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_FULLWIDTH || width == U_EA_WIDE ? 2 : 1;
}

int columnsOf(const icu::UnicodeString& text) {
    int columns = 0;
    for (int i = 0; i < text.length(); i = text.moveIndex32(i, 1))
        columns += columnsOf(text.char32At(i));
    return columns;
}

/// The offsets at which a line may break. Without ICU's data, only the end of the text.
std::vector<int> breaksOf(const icu::UnicodeString& text) {
    std::vector<int> breaks;
    UErrorCode code = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> line(
        icu::BreakIterator::createLineInstance(icu::Locale::getEnglish(), code));
    if (U_SUCCESS(code)) {
        line->setText(text);
        for (int at = line->next(); at != icu::BreakIterator::DONE; at = line->next())
            breaks.push_back(at);
    }
    if (breaks.empty()) breaks.push_back(text.length());
    return breaks;
}

/// Appends a text, wrapped at kColumns, whose first line begins at kTextColumn. Ends the line.
void appendWrapped(std::string& out, const std::string& utf8) {
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
    int column = kTextColumn, begin = 0;
    bool isAfterSpace = false;
    for (const int end : breaksOf(text)) {
        icu::UnicodeString word(text, begin, end - begin);
        const int length = word.length();
        word.trim();
        const int columns = columnsOf(word) + (isAfterSpace ? 1 : 0);
        const bool isNewLine = begin > 0 && column + columns > kColumns;
        if (isNewLine)
            out.append("\n").append(kTextColumn, ' ');
        else if (isAfterSpace)
            out += ' ';
        word.toUTF8String(out);
        column = isNewLine ? kTextColumn + columnsOf(word) : column + columns;
        isAfterSpace = word.length() < length;
        begin = end;
    }
    out += '\n';
}

std::string shownLeft(const Option& option) {
    std::string left = "  ";
    if (option.letter <= 255)
        left.append({'-', static_cast<char>(option.letter), ',', ' '});
    else
        left += "    ";
    left.append("--").append(option.name);
    if (option.argument == Option::Argument::kAttached)
        left.append("[=").append(option.value).append("]");
    else if (option.argument == Option::Argument::kNeeded)
        left.append("=").append(option.value);
    return left;
}

}  // namespace

std::string describeOptions(const std::vector<Option>& options, MessageText& texts) {
    std::string out;
    for (const Option& option : options) {
        if (option.text == Option::kAlias) continue;
        std::string left = shownLeft(option);
        if (left.size() + 2 > kTextColumn)
            left.append("\n").append(kTextColumn, ' ');
        else
            left.resize(kTextColumn, ' ');
        appendWrapped(out += left, texts.text(option.text));
    }
    return out;
}

}  // namespace tools

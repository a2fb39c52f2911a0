#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>

#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Reason.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/Paths.hpp"
#include "tools/qblmsgc/Report.hpp"

namespace msgc {

namespace {

/// Parses a text that is entirely a number.
template <class Number>
bool parseNumber(const std::string& text, Number& value) {
    const char* const end = text.data() + text.size();
    const auto [rest, problem] = std::from_chars(text.data(), end, value);
    return problem == std::errc() && rest == end && !text.empty();
}

template <class Number>
bool addNumber(QBLMessage& message, const std::string& text) {
    Number value{};
    if (!parseNumber(text, value)) return false;
    message << QBLMessageParm(value);
    return true;
}

/// Adds the parameter that a text "TYPE:VALUE" describes. The types have the same names as in the
/// XML form.
bool addParameter(QBLMessage& message, const std::string& argument) {
    const std::size_t colon = argument.find(':');
    if (colon == std::string::npos) return false;
    const std::string type = argument.substr(0, colon), value = argument.substr(colon + 1);
    if (type == "ulong") return addNumber<unsigned long>(message, value);
    if (type == "long") return addNumber<long>(message, value);
    if (type == "double") return addNumber<double>(message, value);
    if (type == "string") {
        message << QBLMessageParm(value.c_str());
        return true;
    }
    long date = 0;
    unsigned long id = 0;
    if (type == "date" && parseNumber(value, date))
        message << QBLMessageParm(date, QBLMsgParmDate);
    else if (type == "msgid" && parseNumber(value, id))
        message << QBLMessageParm(id, 1);
    else if (type == "opaque" && parseNumber(value, date))
        message << QBLMessageParm(date, QBLMsgParmOpaque);
    else
        return false;
    return true;
}

bool parseId(const std::string& text, unsigned& id) {
    const bool isHex = text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
    const char* const begin = text.data() + (isHex ? 2 : 0);
    const char* const end = text.data() + text.size();
    const auto [rest, problem] = std::from_chars(begin, end, id, isHex ? 16 : 10);
    return problem == std::errc() && rest == end;
}

bool hasText(const std::string& file, unsigned id, bool& isOpen) {
    QBLResourceBMF resource(1);
    resource.setResourceFileName(file);
    isOpen = resource.open();
    char* text = nullptr;
    return isOpen && resource.getResource(id, &text) && *text != '\0';
}

}  // namespace

Status show(const Options& options) {
    const std::string& number = options.operands[0];
    std::string file = options.operands[1];
    unsigned id = 0;
    if (!parseId(number, id)) return complain(kUsage, qblmsgcmsgs::msgcNoIdHere, number);
    // If the name has a directory, the library looks for the file only there.
    if (file.find('/') == std::string::npos) file.insert(0, "./");
    if (!isMessageFileName(file)) return complain(kUsage, qblmsgcmsgs::msgcNoBmfName, file);
    QBLMessage message(file.c_str(), id);
    for (std::size_t i = 2; i < options.operands.size(); ++i)
        if (!addParameter(message, options.operands[i]))
            return complain(kUsage, qblmsgcmsgs::msgcNoParameter, options.operands[i]);
    if (unreadable(file) == kUsage)
        return complain(kUsage, qblmsgcmsgs::msgcCannotRead, file, tools::reason(errno));
    bool isOpen = false;
    if (!hasText(file, id, isOpen))
        return isOpen ? complain(kErrors, qblmsgcmsgs::msgcNoSuchText, file, number)
                      : complain(kErrors, qblmsgcmsgs::msgcDoesNotOpen, file);
    const std::string locale = localeOf(file);
    I18NString text, element;
    message.format(locale.c_str(), nullptr, text);
    message.toString(locale.c_str(), nullptr, element, 0);
    if (text == element) return complain(kErrors, qblmsgcmsgs::msgcCannotFormat, file, number);
    const std::string utf8 = text.toUtf8();
    tools::printText(stdout, (isatty(STDOUT_FILENO) != 0 ? tools::shownText(utf8) : utf8) + "\n");
    return kClean;
}

}  // namespace msgc

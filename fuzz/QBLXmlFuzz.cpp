// Puts arbitrary texts, escaped by qblXmlEscape(), into throwables and messages. Their XML forms
// must be well-formed, and the escaped text must decode to the same characters. The input has texts
// that end with null bytes.
#include <unicode/unistr.h>

#include <memory>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "fuzz/support/Input.hpp"
#include "fuzz/support/XmlCheck.hpp"

namespace {

class Failure : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(Failure)
};

std::string xmlOf(const QBLMessageBase& message, int flag) {
    I18NString out;
    message.toString("en", nullptr, out, flag);
    return out.toUtf8();
}

void checkMessage(const QBLMessageBase& message) {
    for (const int flag : {0, 1}) require(XmlCheck::isWellFormed(xmlOf(message, flag)));
}

/// Requires that the strings that a report is built from keep the XML well-formed.
void checkReport(const std::vector<I18NString>& escaped, unsigned kinds) {
    const auto text = [&](std::size_t n) -> const I18NString& {
        return escaped[n % escaped.size()];
    };
    QBLMessage message(text(0), kinds);
    message << text(1) << static_cast<int>(kinds) << text(2) << 0.5 << QBLMsgParmOpaque
            << QBLMessageParm(7UL, 1);
    checkMessage(message);
    const QBLMessageString literal(text(3));
    checkMessage(literal);
    Failure failure(text(4).c_str());
    failure << message << literal << QBLErrnoMessage(static_cast<int>(kinds % 140));
    for (std::size_t n = 0; n < kinds % 4; ++n)
        failure.addBackTrace(QBL_HERE, text(n + 5).c_str(), nullptr);
    require(XmlCheck::isWellFormed(qblXml(failure)));
    const std::unique_ptr<QBLThrowable> copy(failure.clone());
    require(qblXml(*copy) == qblXml(failure) &&
            qblXml(failure) == failure.QBLException::toString());
    const std::string line = qblWhat(failure);
    require(line.find('\n') == std::string::npos && line.find('\0') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned kinds = input.word();
    std::vector<I18NString> escaped;
    const std::string whole = input.rest();
    for (std::size_t at = 0; at <= whole.size() && escaped.size() < 8;) {
        const std::size_t end = std::min(whole.find('\0', at), whole.size());
        const std::string raw = whole.substr(at, end - at);
        const std::string safe = qblXmlEscape(std::string_view(raw));
        require(XmlCheck::isWellFormed(
            std::string("<a b=\"").append(safe).append("\">").append(safe).append("</a>")));
        escaped.push_back(qblXmlEscape(I18NString(raw)));
        require(XmlCheck::isWellFormed("<a b=\"" + escaped.back().toUtf8() + "\"/>"));
        at = end + 1;
    }
    require(XmlCheck::isWellFormed("<a>" + qblXmlEscape(std::string_view(whole)) + "</a>"));
    checkReport(escaped, kinds);
    return 0;
}

#include "QBLCore/PlugIns/QBLPluginException.hpp"

#include "QBLCore/Messages/QBLMessage.hpp"

namespace {

const char kCatalogue[] = "qblpluginmsgs";

}  // namespace

QBLPluginException::QBLPluginException(QBLPluginErrorCode code)
    : QBLPluginException(QBLSeverityError, code) {}

QBLPluginException::QBLPluginException(QBLSeverity theSeverity, QBLPluginErrorCode code)
    : QBLException(theSeverity, static_cast<int>(code)) {
    addLocalizationMessage(code);
}

QBLPluginException::QBLPluginException(const char* codeText) : QBLException(codeText) {}

QBLPluginException::QBLPluginException(QBLSeverity theSeverity, const char* codeText)
    : QBLException(theSeverity, codeText) {}

QBLPluginException::QBLPluginException(const QBLPluginException& other) = default;

QBLPluginException& QBLPluginException::operator=(const QBLPluginException& other) = default;

QBLPluginException::~QBLPluginException() = default;

QBLThrowable* QBLPluginException::clone() const { return new QBLPluginException(*this); }

void QBLPluginException::hurl(const QBLFileLocation& where, const char* detail, const char* tag) {
    addBackTrace(where, detail, tag);
    throw QBLPluginException(*this);
}

const char* QBLPluginException::getThrowableName() const { return "QBLPluginException"; }

void QBLPluginException::addLocalizationMessage(QBLPluginErrorCode code) {
    addMessage(QBLMessage(kCatalogue, static_cast<unsigned long>(code)));
}

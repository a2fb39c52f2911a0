// errors: how an error travels. A file cannot be opened; the one who wanted it says what it was
// for, those further up what they were at; whoever asks is told in a language of his own.
#include <cstdio>
#include <string>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "startmsgs.hpp"

namespace {

const char kCatalogue[] = "startmsgs";

class StartError : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(StartError)
};

QBLMessage message(unsigned long id) { return QBLMessage(kCatalogue, id); }

/// A file operation does not throw: it fails, and keeps the system's error.
void readSettings(const std::string& path) {
    QBLFmFile file;
    if (file.open(path.c_str(), QBLFmFile::existing, 1)) return;
    const int error = file.getLastErrorNumber();
    QBL_THROW(StartError(error) << (message(SETTINGS_UNREADABLE) << qblXmlEscape(path).c_str())
                                << QBLErrnoMessage(error));
}

void startService(const char* name, const std::string& settings) {
    try {
        readSettings(settings);
    } catch (QBLException& error) {
        error.addMessageFront(message(SERVICE_NOT_STARTED) << name << 1500);
        QBL_RETHROW(error);
    }
}

void startAll() {
    try {
        startService("mail", "/absent/<mail> & news");
    } catch (QBLThrowable& error) {
        QBL_RETHROW(error);
    }
}

/// In another language the same exception shows itself anew.
void report(QBLException& error) {
    for (const char* language : {"en", "de", "fr", "ja"}) {
        I18NString xml;
        error.toString(language, "en", xml, 1);
        std::printf("%s\n", xml.toUtf8().c_str());
    }
}

}  // namespace

int main() {
    try {
        startAll();
    } catch (QBLException& error) {
        report(error);
        return 0;
    }
    return 1;
}

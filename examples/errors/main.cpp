// errors: shows how an error travels. A file cannot be opened. Each caller adds its place in the
// code; one of them also adds a message. The report then shows the error in four languages.
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

/// File operations do not throw: they return false and store the system's error number.
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

/// Shows the same exception once in each language.
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

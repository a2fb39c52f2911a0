// Shows an error with two messages: its back-trace, and its text in two languages.
#include <cstdio>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "startmsgs.hpp"

namespace {

class StartError : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(StartError)
};

QBLMessage message(unsigned long id) { return QBLMessage("startmsgs", id); }

void startMail(const char* path) try {
    QBLFmFile file;
    if (!file.open(path, QBLFmFile::existing, 1))
        QBL_THROW(StartError(file.getLastErrorNumber()) << (message(SETTINGS_UNREADABLE) << path));
} catch (QBLException& error) {
    error.addMessageFront(message(SERVICE_NOT_STARTED) << "mail" << 1500);
    QBL_RETHROW(error);
}

}  // namespace

int main() {
    try {
        startMail("/absent/mail.conf");
    } catch (QBLException& error) {
        for (const char* language : {"en", "ja"}) {
            for (unsigned n = 0; n < error.getMessageCount(); ++n) {
                I18NString text;
                error.getMessageN(n)->format(language, "en", text);
                std::printf("%s: %s\n", language, text.c_str());
            }
        }
        for (const char* place : error.getBackTrace()) std::printf("    %s\n", place);
    }
}

// Shows messages from a catalogue in two languages, and how a missing message looks.
#include <iostream>

#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "diskmsgs.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

void show(const QBLMessageBase& message) {
    for (const char* language : {"en", "de_AT"}) {
        I18NString text;
        message.format(language, nullptr, text);
        std::cout << text << '\n';
    }
}

}  // namespace

int main() {
    QBLMessageFile message("diskmsgs", DISK_LOW);
    show(message << "/var" << 1234567);
    message.clearParms();
    show(message << "/var" << 3000000000U);
    message.setMessage(DISK_FILES);
    for (const int files : {0, 1}) {
        message.clearParms();
        show(message << "/var" << files);
    }
    message.setMessage(DISK_STOPPED);
    message.clearParms();
    show(message);
    show(QBLMessage("diskmsgs", 999) << 5);
}

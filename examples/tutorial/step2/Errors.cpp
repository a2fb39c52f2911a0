#include "Errors.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

std::string language() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return std::string(value, std::strcspn(value, ".@"));
    return "en";
}

}  // namespace

void fail(const QBLMessageComponents& message) {
    TallyError error(static_cast<int>(message.getMessageID()));
    error << message;
    QBL_THROW(error);
}

void report(const QBLException& error) {
    for (unsigned i = 0; i < error.getMessageCount(); ++i) {
        I18NString text;
        error.getMessageN(i)->format(language().c_str(), "en", text);
        std::fprintf(stderr, "tally: %s\n", text.c_str());
    }
}

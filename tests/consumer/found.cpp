// Prints what the installed library finds: its own directory (by LD_LIBRARY_PATH), its settings
// file, a resource file and a German catalogue.
#include <iostream>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"

int main() {
    qblCoreInitialize();
    I18NInitialize();
    I18NInternalResources& resources = I18NInternalResources::getInternalResForTesting();
    I18NString yen, text;
    resources.getCurrencyDescription("JPY", I18NLocale("de_CH"), yen);
    QBLMessage("qblpluginmsgs", 1).format("de", nullptr, text);
    std::cout << resources.getDataDirectoryPath() << '\n'
              << resources.isNonNormalizable(L"\xF929") << '\n'
              << yen << '\n'
              << text << '\n';
    I18NTerminate();
    return qblCoreTerminate();
}

#ifndef QBLCORE_PLUGINS_QBLPLUGINERRORCODE_HPP
#define QBLCORE_PLUGINS_QBLPLUGINERRORCODE_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// The plug-in operation that failed. The numbers are also the identifiers of the texts in the
/// catalogue "qblpluginmsgs".
enum QBLPluginErrorCode : int {
    QBLPluginLoadFailed = 1,
    QBLPluginUnloadFailed = 2,
    QBLPluginEntryMissing = 3
};

#endif

#ifndef QBLCORE_PLUGINS_QBLPLUGINERRORCODE_HPP
#define QBLCORE_PLUGINS_QBLPLUGINERRORCODE_HPP

/// What failed with a plug-in; also the identifiers of the texts in the catalogue "qblpluginmsgs".
enum QBLPluginErrorCode : int { QBLPluginLoadFailed = 1, QBLPluginUnloadFailed = 2 };

#endif

#ifndef QBLCORE_PLUGINS_QBLPLUGINEXCEPTION_HPP
#define QBLCORE_PLUGINS_QBLPLUGINEXCEPTION_HPP

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/PlugIns/QBLPluginErrorCode.hpp"

/// The error that a plug-in cannot be loaded or unloaded, or an error that a plug-in itself
/// reports.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLPluginException : public QBLException {
public:
    /// Makes an exception with the catalogue's message for the code. The severity is "Error" unless
    /// the caller passes another severity.
    explicit QBLPluginException(QBLPluginErrorCode code);
    QBLPluginException(QBLSeverity severity, QBLPluginErrorCode code);
    /// Makes an exception without a message.
    /// @param codeText  the error code as a text; null leaves the exception without a code
    explicit QBLPluginException(const char* codeText);
    QBLPluginException(QBLSeverity severity, const char* codeText);
    QBLPluginException(const QBLPluginException& other);
    QBLPluginException& operator=(const QBLPluginException& other);
    ~QBLPluginException() override;

    QBLThrowable* clone() const override;
    [[noreturn]] void hurl(const QBLFileLocation& where, const char* detail,
                           const char* tag) override;
    const char* getThrowableName() const override;

    /// Adds the message that the catalogue "qblpluginmsgs" has for a code.
    void addLocalizationMessage(QBLPluginErrorCode code);
};

#endif

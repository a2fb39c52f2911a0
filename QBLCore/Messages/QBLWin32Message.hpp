#ifndef QBLCORE_MESSAGES_QBLWIN32MESSAGE_HPP
#define QBLCORE_MESSAGES_QBLWIN32MESSAGE_HPP

#include "QBLCore/Messages/QBLMessageComponents.hpp"

/// A message whose identifier is the code of an error that another system reported.
/// It has no text; format() appends the XML form of its components.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLWin32Message : public QBLMessageComponents {
public:
    explicit QBLWin32Message(unsigned long code);
    /// Deleted: a severity is not an identifier.
    explicit QBLWin32Message(QBLSeverity) = delete;
    QBLWin32Message(QBLSeverity severity, unsigned long code);
    QBLWin32Message(const QBLWin32Message& other);
    QBLWin32Message& operator=(const QBLWin32Message& other);
    ~QBLWin32Message() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
};

#endif

#ifndef QBLCORE_MESSAGES_QBLERRNOMESSAGE_HPP
#define QBLCORE_MESSAGES_QBLERRNOMESSAGE_HPP

#include "QBLCore/Messages/QBLMessageComponents.hpp"

/// A message whose identifier is the number of a system error, as in errno(3).
/// It has no text; format() appends the XML form of its components.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLErrnoMessage : public QBLMessageComponents {
public:
    explicit QBLErrnoMessage(int error);
    /// Deleted: a severity is not an identifier.
    explicit QBLErrnoMessage(QBLSeverity) = delete;
    QBLErrnoMessage(QBLSeverity severity, int error);
    QBLErrnoMessage(const QBLErrnoMessage& other);
    QBLErrnoMessage& operator=(const QBLErrnoMessage& other);
    ~QBLErrnoMessage() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
};

#endif

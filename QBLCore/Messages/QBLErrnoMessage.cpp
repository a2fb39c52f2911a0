#include "QBLCore/Messages/QBLErrnoMessage.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"

QBLErrnoMessage::QBLErrnoMessage(int error)
    : QBLMessageComponents(static_cast<unsigned long>(error)) {}

QBLErrnoMessage::QBLErrnoMessage(QBLSeverity severity, int error)
    : QBLMessageComponents(severity, static_cast<unsigned long>(error)) {}

QBLErrnoMessage::QBLErrnoMessage(const QBLErrnoMessage& other) = default;

QBLErrnoMessage& QBLErrnoMessage::operator=(const QBLErrnoMessage& other) = default;

QBLErrnoMessage::~QBLErrnoMessage() = default;

QBLMessageBase* QBLErrnoMessage::clone() const {
    QBL_ALLOC_TRY
    return new QBLErrnoMessage(*this);
    QBL_ALLOC_CATCH
}

const char* QBLErrnoMessage::getClassName() const { return "QBLErrnoMessage"; }

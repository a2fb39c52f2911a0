#include "QBLCore/Messages/QBLWin32Message.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"

QBLWin32Message::QBLWin32Message(unsigned long code) : QBLMessageComponents(code) {}

QBLWin32Message::QBLWin32Message(QBLSeverity severity, unsigned long code)
    : QBLMessageComponents(severity, code) {}

QBLWin32Message::QBLWin32Message(const QBLWin32Message& other) = default;

QBLWin32Message& QBLWin32Message::operator=(const QBLWin32Message& other) = default;

QBLWin32Message::~QBLWin32Message() = default;

QBLMessageBase* QBLWin32Message::clone() const {
    QBL_ALLOC_TRY
    return new QBLWin32Message(*this);
    QBL_ALLOC_CATCH
}

const char* QBLWin32Message::getClassName() const { return "QBLWin32Message"; }

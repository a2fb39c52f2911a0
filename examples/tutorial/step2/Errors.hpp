#ifndef EXAMPLES_TUTORIAL_ERRORS_HPP
#define EXAMPLES_TUTORIAL_ERRORS_HPP

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "tallymsgs.hpp"

class TallyError : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(TallyError)
};

inline QBLMessage message(tallymsgs id) { return QBLMessage("tallymsgs", id); }

/// @throws TallyError always, with the message; its code is the message's identifier
[[noreturn]] void fail(const QBLMessageComponents& message);

/// Writes the error's messages to the standard error, a line each, in the user's language.
void report(const QBLException& error);

#endif

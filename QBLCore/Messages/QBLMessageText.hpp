#ifndef QBLCORE_MESSAGES_QBLMESSAGETEXT_HPP
#define QBLCORE_MESSAGES_QBLMESSAGETEXT_HPP

#include <ostream>
#include <string>
#include <type_traits>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// @file
/// Messages as UTF-8, for streams and formatters, in the language of format(nullptr, nullptr).
///
/// Errors: QBLOutOfMemoryError.
///
/// Threads: as for the messages.

/// True for messages and sets of messages. A QBLException counts as a throwable instead.
template <class Message>
constexpr bool kQBLIsMessage = std::is_base_of_v<QBLMessageBase, Message> ||
                               (std::is_base_of_v<QBLMessageSet, Message> &&
                                !std::is_base_of_v<QBLThrowable, Message>);

template <class Message, std::enable_if_t<kQBLIsMessage<Message>, int> = 0>
std::string qblText(const Message& message) {
    I18NString text;
    message.format(nullptr, nullptr, text);
    return text.toUtf8();
}

template <class Message, std::enable_if_t<kQBLIsMessage<Message>, int> = 0>
std::ostream& operator<<(std::ostream& out, const Message& message) {
    return out << qblText(message);
}

#endif

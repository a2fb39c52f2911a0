#include <memory>

#include "QBLCore/Base/QBLDynamicCast.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

void appendMessages(const QBLMessageSet& messages, const char* locales, const char* separator,
                    I18NString& out) {
    for (unsigned n = 0; n != messages.getMessageCount(); ++n) {
        I18NString text;
        messages.getMessageN(n)->format(locales, nullptr, text);
        if (text.empty()) continue;
        if (!out.empty() && separator != nullptr) out.append(separator);
        out.append(text);
    }
}

}  // namespace

// Formats a copy, because getMessage(), getErrorCodeString() and the index of a message set store
// data in their objects.
I18NString QBLThrowable::format(const char* locales, const char* separator) const {
    QBL_ALLOC_TRY
    const std::unique_ptr<QBLThrowable> copy(clone());
    I18NString text;
    if (const auto* messages = qblDynamicCast<const QBLMessageSet*>(copy.get()))
        appendMessages(*messages, locales, separator, text);
    else if (const char* message = copy->getMessage())
        text.append(message);
    if (!text.empty()) return text;
    if (const char* name = copy->getThrowableName()) text.append(name);
    const char* const code = copy->getErrorCodeString();
    if (code != nullptr && (code[0] != '0' || code[1] != '\0')) text.append(" ").append(code);
    return text;
    QBL_ALLOC_CATCH
}

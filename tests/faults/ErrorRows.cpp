#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLAssertError.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLIndexOutOfBoundsError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLStdBridge.hpp"
#include "QBLCore/Exceptions/QBLStdExceptionError.hpp"
#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "QBLCore/Exceptions/QBLUnsupportedOperationError.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Rows.hpp"

namespace {

using faults::calmly;
using faults::kBadAlloc;
using faults::kOutOfMemory;

const char kText[] = "a text that needs a block of its own";

std::string print(const QBLThrowable& error) {
    return qblXml(error) + std::to_string(error.getBackTrace().size());
}

std::string print(const QBLDeferredThrowable& held) {
    return held.get() != nullptr ? print(*held.get()) : "empty";
}

class DiskError : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(DiskError)
};

/// Makes, copies, assigns, shows and throws an error. Constructors of errors throw std::bad_alloc
/// where a throwable cannot be thrown instead.
template <class Error>
void addError(const char* name, Error (*make)()) {
    const std::string prefix(name);
    const auto add = [&](const char* operation, std::function<std::string()> run) {
        faults::rows().push_back({prefix + operation, kOutOfMemory | kBadAlloc, std::move(run)});
    };
    add(".make", [make] {
        Error error = make();
        return calmly([&] { return print(error); });
    });
    add(".copy", [make] {
        const Error error = calmly(make);
        const Error copy(error);
        return calmly([&] { return print(copy); });
    });
    add(".clone", [make] {
        const Error error = calmly(make);
        const std::unique_ptr<QBLThrowable> copy(error.clone());
        return calmly([&] { return print(*copy); });
    });
    add(".assign", [make] {
        const Error from = calmly(make);
        Error to = calmly(make);
        calmly([&] { to.addBackTrace(QBL_HERE, "detail", "TAG"); });
        to = from;  // clears the target first, so a failure may leave less than before
        return calmly([&] { return print(to); });
    });
    add(".texts", [make] {
        Error error = calmly(make);
        const char* const message = error.getMessage();
        const char* const code = error.getErrorCodeString();
        const char* const xml = error.toString();
        const I18NString formatted = error.format();
        return calmly([&] {
            return std::string(message != nullptr ? message : "") + (code != nullptr ? code : "") +
                   xml + formatted.toUtf8();
        });
    });
    // The memory of the exception itself comes from a reserve of the C++ library in the end.
    add(".hurl", [make] {
        Error error = calmly(make);
        try {
            error.hurl(QBL_HERE, "detail", "TAG");
        } catch (const Error& thrown) {
            return calmly([&] { return std::string(thrown.getThrowableName()); });
        }
    });
}

template <class Error>
void addError(const char* name) {
    addError<Error>(name, [] { return Error(7, kText); });
}

const bool kErrors = [] {
    addError<QBLError>("QBLError");
    addError<QBLRuntimeError>("QBLRuntimeError");
    addError<QBLIllegalArgumentError>("QBLIllegalArgumentError");
    addError<QBLIllegalStateError>("QBLIllegalStateError");
    addError<QBLIndexOutOfBoundsError>("QBLIndexOutOfBoundsError");
    addError<QBLAssertError>("QBLAssertError");
    addError<I18NRuntimeError>("I18NRuntimeError");
    addError<I18NUnexpectedError>("I18NUnexpectedError");
    addError<QBLUnexpectedError>("QBLUnexpectedError");
    addError<QBLUnknownError>("QBLUnknownError");
    addError<QBLStdExceptionError>("QBLStdExceptionError");
    addError<QBLSystemError>("QBLSystemError");
    addError<QBLOutOfMemoryError>("QBLOutOfMemoryError");
    addError<QBLThreadResourceError>("QBLThreadResourceError");
    addError<QBLUnsupportedOperationError>("QBLUnsupportedOperationError");
    addError<DiskError>("QBLException", [] {
        DiskError error("CODE");
        error << QBLMessageString(kText) << QBLMessageString("second");
        return error;
    });
    return true;
}();

QBLRuntimeError example() { return QBLRuntimeError(7, kText); }

const faults::Rows kRows{
    {"QBLDeferredThrowable.set", kOutOfMemory | kBadAlloc,
     [] {
         QBLDeferredThrowable held = calmly([] { return QBLDeferredThrowable(QBLError(1, "x")); });
         const QBLRuntimeError error = calmly(example);
         held = error;  // releases the old throwable first
         QBLDeferredThrowable other(held);
         other = held;
         return calmly([&] { return print(other); });
     }},
    {"QBLDeferredThrowable.check", kOutOfMemory | kBadAlloc,
     [] {
         QBLDeferredThrowable held = calmly([] { return QBLDeferredThrowable(example()); });
         try {
             held.check(QBL_HERE, nullptr, "TAG");
         } catch (const QBLRuntimeError& thrown) {
             return calmly([&] { return std::string(thrown.getThrowableName()); });
         }
         return std::string();
     }},
    {"QBLStdBridge", kOutOfMemory | kBadAlloc,
     [] {
         const QBLRuntimeError error = calmly(example);
         const QBLStdBridge bridge(error);
         QBLStdBridge copy(bridge);
         copy = bridge;
         return calmly([&] { return print(copy.getThrowable()); });
     }},
    {"qblWhat", kBadAlloc,
     [] {
         const QBLRuntimeError error = calmly([] { return QBLRuntimeError(7, "short"); });
         const std::exception_ptr other =
             calmly([] { return std::make_exception_ptr(std::runtime_error(kText)); });
         const std::string first = qblWhat(other);
         // Without memory, the name of the class takes the place of the text.
         const std::string second = qblWhat(error);
         return calmly([&] { return first + (second == "QBLRuntimeError" ? "short" : second); });
     }},
    {"qblXml", kOutOfMemory,
     [] {
         const QBLRuntimeError error = calmly(example);
         const std::string xml = qblXml(error);
         return calmly([&] { return std::string(xml); });
     }},
};

}  // namespace

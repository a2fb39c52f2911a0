#include <exception>
#include <memory>
#include <stdexcept>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

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
void addError(const std::string& name, Error (*make)(), unsigned calls = kNothing) {
    const auto with = [&name, calls](const char* operation, auto run) {
        add(name + operation, kOutOfMemory | kBadAlloc, calls, run);
    };
    const auto printed = [](const QBLThrowable& error) {
        return calmly([&] { return print(error); });
    };
    with(".make", [=] { return printed(make()); });
    with(".copy", [=] {
        const Error error = calmly(make);
        return printed(Error(error));
    });
    with(".clone", [=] {
        const Error error = calmly(make);
        return printed(*std::unique_ptr<QBLThrowable>(error.clone()));
    });
    with(".assign", [=] {
        const Error from = calmly(make);
        Error to = calmly(make);
        calmly([&] { to.addBackTrace(QBL_HERE, "detail", "TAG"); });
        to = from;  // clears the target first, so a failure may leave less than before
        return printed(to);
    });
    with(".texts", [=] {
        Error error = calmly(make);
        return together(error.getMessage(), error.getErrorCodeString(), error.toString(),
                        error.format());
    });
    // The memory of the exception itself comes from a reserve of the C++ library in the end.
    with(".hurl", [=]() -> std::string {
        Error error = calmly(make);
        try {
            error.hurl(QBL_HERE, "detail", "TAG");
        } catch (const Error& thrown) {
            return calmly([&] { return std::string(thrown.getThrowableName()); });
        }
    });
}

template <class... Errors>
void addErrors() {
    (addError<Errors>(Errors(0, nullptr).getThrowableName(), [] { return Errors(7, kText); }), ...);
}

const bool kErrors = [] {
    addErrors<QBLError, QBLRuntimeError, QBLIllegalArgumentError, QBLIllegalStateError,
              QBLIndexOutOfBoundsError, QBLAssertError, I18NRuntimeError, I18NUnexpectedError,
              QBLUnexpectedError, QBLUnknownError, QBLStdExceptionError, QBLSystemError,
              QBLOutOfMemoryError, QBLThreadResourceError, QBLUnsupportedOperationError>();
    addError<QBLPluginException>(
        "QBLPluginException", [] { return QBLPluginException(QBLPluginLoadFailed); }, kFallback);
    addError<DiskError>("QBLException", [] {
        DiskError error("CODE");
        error << QBLMessageString(kText) << QBLMessageString("second");
        return error;
    });
    return true;
}();

QBLRuntimeError example() { return QBLRuntimeError(7, kText); }

const bool kRows = [] {
    add("QBLDeferredThrowable.set", kOutOfMemory | kBadAlloc, [] {
        QBLDeferredThrowable held = calmly([] { return QBLDeferredThrowable(QBLError(1, "x")); });
        const QBLRuntimeError error = calmly(example);
        held = error;  // releases the old throwable first
        QBLDeferredThrowable other(held);
        other = held;
        return calmly([&] { return print(other); });
    });
    add("QBLDeferredThrowable.check", kOutOfMemory | kBadAlloc, [] {
        QBLDeferredThrowable held = calmly([] { return QBLDeferredThrowable(example()); });
        try {
            held.check(QBL_HERE, nullptr, "TAG");
        } catch (const QBLRuntimeError& thrown) {
            return calmly([&] { return std::string(thrown.getThrowableName()); });
        }
        return std::string();
    });
    add("QBLStdBridge", kOutOfMemory | kBadAlloc, [] {
        const QBLRuntimeError error = calmly(example);
        const QBLStdBridge bridge(error);
        QBLStdBridge copy(bridge);
        copy = bridge;
        return calmly([&] { return print(copy.getThrowable()); });
    });
    add("qblFromStd", kOutOfMemory | kBadAlloc, [] {
        try {
            try {
                try {
                    QBL_THROW(QBLRuntimeError(7, kText));
                } catch (...) {
                    qblToStd();
                }
            } catch (...) {
                qblFromStd();
            }
        } catch (const QBLRuntimeError& error) {
            return error.getErrorCode();  // the back-trace may lose entries
        }
        throw Broken{"another error"};
    });
    add("qblWhat", kBadAlloc, [] {
        const QBLRuntimeError error = calmly([] { return QBLRuntimeError(7, "short"); });
        const std::exception_ptr other =
            calmly([] { return std::make_exception_ptr(std::runtime_error(kText)); });
        const std::string first = qblWhat(other);
        // Without memory, the name of the class takes the place of the text.
        const std::string second = qblWhat(error);
        return calmly([&] { return first + (second == "QBLRuntimeError" ? "short" : second); });
    });
    add("QBLException.constructors", kOutOfMemory | kBadAlloc, [] {
        constexpr auto kError = QBLSeverityError;
        return together(
            DiskError(1).getErrorCode(), DiskError(kError, 2).getErrorCode(),
            DiskError(3L).getErrorCode(), DiskError(kError, 4L).getErrorCode(),
            DiskError(kError, kText).getErrorCode(), QBLError(kText, kText).getErrorCode(),
            QBLError(kError, 5, kText).getErrorCode(), QBLError(kError, 6L, kText).getErrorCode());
    });
    add("qblXml", kOutOfMemory, [] {
        const QBLRuntimeError error = calmly(example);
        return qblXml(error);
    });
    return true;
}();

}  // namespace
}  // namespace fault

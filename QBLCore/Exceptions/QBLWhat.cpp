#include "QBLCore/Exceptions/QBLWhat.hpp"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

const char kOfType[] = "exception of type ";

std::string onOneLine(std::string text) {
    const auto isControl = [](char c) {
        return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
    };
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

struct Free {
    void operator()(char* block) const { std::free(block); }
};

std::string currentType() {
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (type == nullptr) return kOfType;
    int status = 0;
    const std::unique_ptr<char, Free> name(
        abi::__cxa_demangle(type->name(), nullptr, nullptr, &status));
    return std::string(kOfType).append(name != nullptr ? name.get() : type->name());
}

/// Describes the exception that a function throws.
template <class Throw>
TAV_CATCHES_UNWINDING std::string describe(const Throw& rethrow) {
    try {
        rethrow();
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (const QBLThrowable& error) {
        return qblWhat(error);
    } catch (const std::exception& error) {
        const char* const text = error.what();
        return onOneLine(text != nullptr ? text : currentType());
    } catch (const std::string& text) {
        return onOneLine(text);
    } catch (const char* text) {
        return onOneLine(text != nullptr ? text : "");
    } catch (...) {
        return onOneLine(currentType());
    }
    return std::string();
}

}  // namespace

std::string qblWhat(std::exception_ptr error) {
    if (error == nullptr) return std::string();
    return describe([&error] { std::rethrow_exception(error); });
}

// Has no text for abi::__forced_unwind, because std::current_exception() is null then.
std::string qblWhat() {
    if (std::current_exception() == nullptr) return std::string();
    return describe([] { throw; });
}

TAV_CATCHES_UNWINDING std::string qblWhat(const QBLThrowable& error) {
    std::string text;
    if (!tavContain([&] { text = error.format().toUtf8(); })) {
        const char* const name = error.getThrowableName();
        text = name != nullptr ? name : "";
    }
    return onOneLine(std::move(text));
}

std::string qblXml(const QBLThrowable& error) {
    QBL_ALLOC_TRY
    return std::unique_ptr<QBLThrowable>(error.clone())->toString();
    QBL_ALLOC_CATCH
}

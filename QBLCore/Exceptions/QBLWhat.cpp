#include "QBLCore/Exceptions/QBLWhat.hpp"

#include <cxxabi.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

const char kOfType[] = "exception of type ";

/// Returns the number of bytes if the text begins with a control character or a line separator;
/// otherwise 0.
std::size_t breakLength(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0xffU;
    };
    if (byte(0) < 0x20 || byte(0) == 0x7f) return 1;
    if (byte(0) == 0xc2 && byte(1) >= 0x80 && byte(1) <= 0x9f) return 2;
    const std::string_view start = text.substr(0, 3);
    return start == "\xe2\x80\xa8" || start == "\xe2\x80\xa9" ? 3 : 0;
}

std::string onOneLine(std::string text) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++length) {
        const std::size_t skipped = breakLength(std::string_view(text).substr(i));
        text[length] = skipped != 0 ? ' ' : text[i];
        i += skipped != 0 ? skipped : 1;
    }
    text.resize(length);
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

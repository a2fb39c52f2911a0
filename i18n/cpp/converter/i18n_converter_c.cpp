#include "i18n/cpp/i18n_converter_c.h"

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

I18NErrorCodes codeOf(const QBLThrowable& error) {
    const long code = error.getErrorCode();
    return code < 0 && code >= I18N_TOO_SMALL ? static_cast<I18NErrorCodes>(code) : I18N_UNEXPECTED;
}

// Runs an operation and turns every exception into an error code, except the exception that ends a
// thread.
template <class Body>
TAV_CATCHES_UNWINDING auto contained(I18NErrorCodes* error, const Body& body) -> decltype(body()) {
    I18NErrorCodes ignored = I18N_OK;
    I18NErrorCodes& code = error != nullptr ? *error : ignored;
    code = I18N_OK;
    try {
        return body();
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (I18NRuntimeError& e) {
        code = codeOf(e);
    } catch (I18NUnexpectedError& e) {
        code = codeOf(e);
    } catch (...) {
        code = I18N_UNEXPECTED;
    }
    return decltype(body())();
}

I18NConverter& converterOf(I18NConverterHandle handle) {
    if (handle == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    return *reinterpret_cast<I18NConverter*>(handle);
}

I18NString& stringOf(I18NStringHandle handle) {
    if (handle == nullptr) QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    return *reinterpret_cast<I18NString*>(handle);
}

}  // namespace

I18NConverterHandle i18nConverterCreate(const char* encoding, I18NErrorCodes* error) {
    return contained(
        error, [&] { return reinterpret_cast<I18NConverterHandle>(new I18NConverter(encoding)); });
}

void i18nConverterFree(I18NConverterHandle converter, I18NErrorCodes* error) {
    contained(error, [&] { delete reinterpret_cast<I18NConverter*>(converter); });
}

void i18nConverterFromUnicode(I18NConverterHandle converter, char* destination, int size,
                              const void* source, I18NErrorCodes* error) {
    contained(error, [&] { converterOf(converter).fromUnicode(destination, size, source); });
}

void i18nConverterFromUnicodeWithAllocator(I18NConverterHandle converter, char** destination,
                                           int* size, const void* source,
                                           I18NStringAllocator allocator, void* context,
                                           I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).fromUnicode(destination, size, source, allocator, context);
    });
}

void i18nConverterToUnicode(I18NConverterHandle converter, void* destination, int size,
                            const char* source, int length, I18NErrorCodes* error) {
    contained(error, [&] { converterOf(converter).toUnicode(destination, size, source, length); });
}

void i18nConverterToUnicodeWithAllocator(I18NConverterHandle converter, void** destination,
                                         int* size, const char* source, int length,
                                         I18NStringAllocator allocator, void* context,
                                         I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).toUnicode(destination, size, source, length, allocator, context);
    });
}

void i18nConverterFromUnicodeString(I18NConverterHandle converter, char** destination, int* size,
                                    I18NStringHandle source, I18NStringAllocator allocator,
                                    void* context, I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).fromUnicode(destination, size, stringOf(source), allocator, context);
    });
}

void i18nConverterToUnicodeString(I18NConverterHandle converter, I18NStringHandle destination,
                                  const char* source, int length, I18NErrorCodes* error) {
    contained(error,
              [&] { converterOf(converter).toUnicode(stringOf(destination), source, length); });
}

const char* i18nConverterGetEncoding(I18NConverterHandle converter, I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).getEncoding(); });
}

int i18nConverterGetBuiltInUnconvertibleInputSequenceCallback(I18NConverterHandle converter,
                                                              I18NErrorCodes* error) {
    return contained(error, [&] {
        return converterOf(converter).getBuiltInUnconvertibleInputSequenceCallback();
    });
}

int i18nConverterGetBuiltInUnconvertibleOutputSequenceCallback(I18NConverterHandle converter,
                                                               I18NErrorCodes* error) {
    return contained(error, [&] {
        return converterOf(converter).getBuiltInUnconvertibleOutputSequenceCallback();
    });
}

I18NUserInputCallback i18nConverterGetUserDefinedUnconvertibleInputSequenceCallback(
    I18NConverterHandle converter, I18NErrorCodes* error) {
    return contained(error, [&] {
        return converterOf(converter).getUserDefinedUnconvertibleInputSequenceCallback();
    });
}

I18NUserOutputCallback i18nConverterGetUserDefinedInUnconvertibleOutputSequenceCallback(
    I18NConverterHandle converter, I18NErrorCodes* error) {
    return contained(error, [&] {
        return converterOf(converter).getUserDefinedUnconvertibleOutputSequenceCallback();
    });
}

void i18nConverterSetBuiltInUnconvertibleInputSequenceCallback(I18NConverterHandle converter,
                                                               int policy, I18NErrorCodes* error) {
    contained(error,
              [&] { converterOf(converter).setBuiltInUnconvertibleInputSequenceCallback(policy); });
}

void i18nConverterSetBuiltInUnconvertibleOutputSequenceCallback(I18NConverterHandle converter,
                                                                int policy, I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).setBuiltInUnconvertibleOutputSequenceCallback(policy);
    });
}

void i18nConverterSetUserDefinedUnconvertibleInputSequenceCallback(I18NConverterHandle converter,
                                                                   I18NUserInputCallback callback,
                                                                   I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).setUserDefinedUnconvertibleInputSequenceCallback(callback);
    });
}

void i18nConverterSetUserDefinedUnconvertibleOutputSequenceCallback(I18NConverterHandle converter,
                                                                    I18NUserOutputCallback callback,
                                                                    I18NErrorCodes* error) {
    contained(error, [&] {
        converterOf(converter).setUserDefinedUnconvertibleOutputSequenceCallback(callback);
    });
}

int i18nConverterNumLegacyBytes(I18NConverterHandle converter, int codeUnits,
                                I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).numLegacyBytes(codeUnits); });
}

int i18nConverterNumLegacyCodePoints(I18NConverterHandle converter, int bytes,
                                     I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).numLegacyCodePoints(bytes); });
}

int i18nConverterNumUnicodeBytes(I18NConverterHandle converter, int codeUnits,
                                 I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).numUnicodeBytes(codeUnits); });
}

int i18nConverterNumUnicodeCodePoints(I18NConverterHandle converter, int bytes,
                                      I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).numUnicodeCodePoints(bytes); });
}

int i18nConverterSizeofLegacyNull(I18NConverterHandle converter, I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).sizeofLegacyNull(); });
}

int i18nConverterSizeofUnicodeNull(I18NConverterHandle converter, I18NErrorCodes* error) {
    return contained(error, [&] { return converterOf(converter).sizeofUnicodeNull(); });
}

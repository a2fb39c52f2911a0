#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP

#include <cerrno>
#include <cstring>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"

/// A path in the platform's encoding, as the system takes it; it is the string's until that
/// changes.
/// @throws I18NRuntimeError -4 for a path with a zero in it, of which the system would take the
///     part before that for the whole
inline const char* qblPlatformPath(const I18NString& path) {
    int length = 0;
    const char* bytes = path.c_str(I18NGetPlatformDefaultEncoding(), &length);
    if (!path.empty() &&
        std::memchr(bytes, '\0', static_cast<std::size_t>(length)) != bytes + length - 1)
        QBL_THROW(I18NRuntimeError(I18N_CONVERSION, "A path has a zero in it"));
    return bytes;
}

/// Runs an operation on a path in the platform's encoding. One that cannot be expressed in it, or
/// that there is no memory for, makes errno EILSEQ or ENOMEM and the result what `failed` gives.
template <class Body, class Failed>
bool qblWithPath(const I18NString& path, Body&& body, Failed&& failed) {
    const char* bytes = nullptr;
    try {
        bytes = qblPlatformPath(path);
    } catch (QBLOutOfMemoryError&) {
        errno = ENOMEM;
        return failed();
    } catch (QBLThrowable&) {
        errno = EILSEQ;
        return failed();
    }
    return body(bytes);
}

#endif

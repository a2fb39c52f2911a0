#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP

#include <cerrno>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"

/// A path in the platform's encoding, as the system takes it; it is the string's until that
/// changes.
inline const char* qblPlatformPath(const I18NString& path) {
    return path.c_str(I18NGetPlatformDefaultEncoding());
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

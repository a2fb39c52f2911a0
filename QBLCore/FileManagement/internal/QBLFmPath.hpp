#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMPATH_HPP

#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

/// Converts a path to an encoding. Uses no substitution characters, because a path with such
/// characters could name another file.
/// @param length  receives the number of bytes, including the terminating NUL
/// @throws I18NRuntimeError -4 for a path with a character that the encoding does not have
inline const char* qblPathBytes(const I18NString& path, const char* encoding, int& length) {
    if (i18nIsUTF8(encoding)) {
        const I18NTextView text(path);
        const auto units = static_cast<std::size_t>(text.length());
        if (text.ascii() == nullptr && i18nWellFormedUTF16(text.units(), units) != units)
            QBL_THROW(I18NRuntimeError(I18N_CONVERSION, "A path has half a surrogate pair in it"));
        return path.c_str(encoding, &length);
    }
    I18NConverter converter(encoding);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
    return path.c_str(converter, &length);
}

/// Converts a path to the platform's encoding, for system calls. The string owns the result, which
/// is valid until the string changes.
/// @throws I18NRuntimeError -4 for a path that cannot be converted, and for a path that contains a
///     NUL, because the system would read only the part before it
inline const char* qblPlatformPath(const I18NString& path) {
    int length = 0;
    const char* bytes = qblPathBytes(path, I18NGetPlatformDefaultEncoding(), length);
    if (!path.empty() &&
        std::memchr(bytes, '\0', static_cast<std::size_t>(length)) != bytes + length - 1)
        QBL_THROW(I18NRuntimeError(I18N_CONVERSION, "A path has a zero in it"));
    return bytes;
}

#endif

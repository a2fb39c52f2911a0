#ifndef QBLCORE_EXCEPTIONS_QBLERRORCODE_HPP
#define QBLCORE_EXCEPTIONS_QBLERRORCODE_HPP

#include <cerrno>
#include <system_error>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"
#include "TavThread/TavResult.h"

/// The category of the thread layer's result codes, "qbl.thread". Codes compare equal to the
/// std::errc with the same meaning: a code of TAVTHREAD_TIMEOUT == std::errc::timed_out. The object
/// is never destroyed.
///
/// Threads: any thread may use the functions of this header and the category.
QBL_API const std::error_category& qblThreadCategory() noexcept;

/// Lets a TavThreadResult convert to a std::error_code.
template <>
struct std::is_error_code_enum<TavThreadResult> : std::true_type {};

// std::error_code looks for a function with this name.
// NOLINTNEXTLINE(readability-identifier-naming)
inline std::error_code make_error_code(TavThreadResult result) noexcept {
    return std::error_code(result, qblThreadCategory());
}

/// @param result  what a function of the thread layer returned
inline std::error_code qblThreadErrorCode(int result) noexcept {
    return std::error_code(result, qblThreadCategory());
}

/// Returns an error number of the system as a code of std::generic_category(), the category of
/// std::errc. The default is the failure of the calling thread's last operation, for classes that
/// set errno, such as QBLFmDir.
inline std::error_code qblErrnoCode(int error = errno) noexcept {
    return std::error_code(error, std::generic_category());
}

/// Returns the last failure of an object that keeps its error number, such as a QBLFmFile:
///     if (!file.open(...)) return qblErrorCode(file);
template <class File>
auto qblErrorCode(File& file) -> decltype(qblErrnoCode(file.getLastErrorNumber())) {
    return qblErrnoCode(file.getLastErrorNumber());
}

#endif

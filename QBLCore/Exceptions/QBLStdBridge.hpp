#ifndef QBLCORE_EXCEPTIONS_QBLSTDBRIDGE_HPP
#define QBLCORE_EXCEPTIONS_QBLSTDBRIDGE_HPP

#include <stdexcept>

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

class QBLThrowable;

/// Carries a throwable through code that handles only std::exception. Its what() is the text of
/// qblWhat(). qblToStd() throws it, and qblFromStd() throws the throwable again:
///
///     int compare(...) try { ... } catch (...) { qblToStd(); }      // called by other code
///     try { otherCode(compare); } catch (...) { qblFromStd(); }
///
/// Errors: the constructor throws std::bad_alloc or QBLOutOfMemoryError; copying throws nothing.
///
/// Threads: as for every std::exception, several threads may use copies of one bridge, and the
/// same bridge as long as none assigns to it.
class QBL_API QBLStdBridge : public std::runtime_error {
public:
    explicit QBLStdBridge(const QBLThrowable& error);
    QBLStdBridge(const QBLStdBridge& other) noexcept;
    QBLStdBridge& operator=(const QBLStdBridge& other) noexcept;
    ~QBLStdBridge() override;

    /// Returns a copy of the throwable. All copies of the bridge share it.
    const QBLThrowable& getThrowable() const noexcept;

private:
    struct Shared;

    void release() noexcept;

    Shared* m_pShared;  // all copies of the bridge hold it
};

/// For handlers: rethrows the current exception as a std::exception. A throwable becomes a
/// QBLStdBridge, with a trace entry for the place. A std::exception passes through unchanged, also
/// if its class is a throwable, too, and so does a thread's cancellation or exit. Any other type
/// becomes a QBLStdBridge with a QBLUnknownError. If there is no memory for the bridge, throws
/// std::bad_alloc.
/// @param where  the place for the back-trace; by default, the place of the call
///
/// Threads: any thread may call these functions.
[[noreturn]] QBL_API void qblToStd(
    const QBLFileLocation& where = QBLFileLocation(__builtin_FILE(), __builtin_LINE()));
/// For handlers: rethrows the current exception as a throwable. A QBLStdBridge becomes the
/// throwable that it carries, with its own class, its back-trace and an entry for the place. All
/// other exceptions are translated as qblRethrowTranslated() does it. qblRethrowTranslated() does
/// the same with a QBLStdBridge.
/// @param where  as for qblToStd()
[[noreturn]] QBL_API void qblFromStd(
    const QBLFileLocation& where = QBLFileLocation(__builtin_FILE(), __builtin_LINE()));

#endif

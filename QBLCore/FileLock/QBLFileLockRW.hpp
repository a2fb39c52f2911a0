#ifndef QBLCORE_FILELOCK_QBLFILELOCKRW_HPP
#define QBLCORE_FILELOCK_QBLFILELOCKRW_HPP

#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"

class QBLFmFile;

/// An advisory lock over a whole file, between processes, as a lock that the guards can hold. See
/// M_LockFile() for what such locks do not do: above all they do not exclude threads of one
/// process.
///
/// Every operation throws QBLAssertError on an object without a file; a file that is not open has
/// no lock to give, as when the system refuses one.
///
/// Threads: the lock is the process's; one thread at a time for each object.
///
///     QBLFileLockRW lock(file);
///     QBLThreadGuard guard(lock);  // alone with the file until the end of the scope
class QBL_API QBLFileLockRW : public QBLThreadRWLockableResource {
public:
    /// @param file  not owned; open for writing for exclusive locks
    explicit QBLFileLockRW(QBLFmFile& file);
    QBLFileLockRW();
    ~QBLFileLockRW() override;

    /// Waits until the lock is held exclusively.
    /// @throws QBLRuntimeError with the system's reason, as if the file may not be written
    void lock() override QBL_ACQUIRE();
    /// @throws QBLRuntimeError with the system's reason
    void unlock() override QBL_RELEASE();
    /// Waits until the lock is held together with other readers.
    /// @throws QBLRuntimeError with the system's reason
    void readLock() override QBL_ACQUIRE_SHARED();
    /// @return 1; 0 when another process is in the way or the system refuses the lock
    [[nodiscard]] virtual int tryLock() QBL_TRY_ACQUIRE(1);
    /// @return 1; 0 when another process is in the way or the system refuses the lock
    [[nodiscard]] virtual int tryReadLock();

    QBLFmFile* getFile() const;
    /// @param file  not owned; null leaves the object without one. The old file's lock stays.
    void setFile(QBLFmFile* file);

private:
    QBLFmFile* m_file;
};

#endif

#ifndef QBLCORE_THREADS_QBLTHREAD_HPP
#define QBLCORE_THREADS_QBLTHREAD_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

struct TavThread;

/// A thread that runs a runnable, or its own run() in a class derived from it.
///
/// The destructor waits for the thread. A derived class that overrides run() calls joinQuietly()
/// first thing in its own destructor: once that has ended, the thread would run on half an object.
/// Its run() may end with `delete this`.
///
/// Threads: start(), join() and the destructor belong to one owner; the other operations may
/// be called by any thread, isAlive() not while the owner starts the thread.
///
///     QBLThread thread(&job);
///     thread.start();
///     thread.join();
class QBL_API QBLThread : public QBLThreadRunnable {
public:
    /// @name Making a thread
    /// @{

    /// @param runnable  not owned; must live until the thread has ended. Null: run() runs.
    /// @param stackSize  in bytes; a value below the system's default, or 0, means the default
    explicit QBLThread(QBLThreadRunnable* runnable = nullptr, unsigned long stackSize = 0);
    QBLThread(const QBLThread&) = delete;
    QBLThread& operator=(const QBLThread&) = delete;
    /// Joins a thread that still runs; on that thread itself, lets it go instead. The caller is
    /// not cancelled meanwhile.
    ~QBLThread() override;
    /// @}

    /// @name Start and end
    /// @{

    /// Does nothing; for derived classes to override.
    void run() override;

    /// Requires: the library is initialised.
    /// @throws QBLIllegalStateError if it was started and not joined since;
    ///     QBLOutOfMemoryError; QBLThreadResourceError, without a text when the system has no
    ///     more threads to give
    void start();
    /// Waits until the thread has ended; returns at once if none was started. After it the
    /// thread may be started again.
    /// @throws QBLThreadResourceError if called on the thread itself or on a lost one
    void join();
    /// The same for destructors: throws nothing, puts a cancellation of the caller off, and returns
    /// at once on the thread itself.
    void joinQuietly() noexcept;
    /// @return false before start() and once the thread has ended.
    bool isAlive() const;
    /// @}

    /// @name The calling thread
    /// @{

    /// Lets other threads go first.
    static void yield();
    /// The calling thread's number in the process, counted from 1; 0 if the library is stopped.
    static unsigned long currentThreadId();
    static void sleep(unsigned long ms);

    /// Sets or clears what the calling thread calls when its run() is over, however it ended. If
    /// that was by pthread_exit or a cancellation, the routine must not end the thread a second
    /// time.
    /// @param set  non-zero stores the routine, 0 takes an earlier one away
    /// @return 0; -1 for a null routine to set, or on a thread that no QBLThread started
    static int atExit(void (*routine)(), int set);
    /// @}

    /// @name Start and stop of the library
    /// @{

    /// Opens the key that leads from a thread to its QBLThread; part of the library's start.
    /// @return 0, also when it is open; -2 out of memory; -1 for any other failure
    static int Initialize();
    /// Closes the key: atExit() has no effect from then on. @return 0
    static int Terminate();
    /// @}

private:
    static void* main(void* self);
    void execute();
    TavThread* record() const;

    TavThread* m_pThread;  // atomic; kept from start() to the next start or the destructor
    QBLThreadRunnable* m_pRunnable;
    unsigned long m_stackSize;
    void (*m_pAtExit)();  // used by the thread itself only
};

#endif

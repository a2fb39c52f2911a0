#ifndef QBLCORE_THREADS_QBLTHREAD_HPP
#define QBLCORE_THREADS_QBLTHREAD_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

struct TavThread;

/// A thread that runs a runnable, or the run() of a derived class.
///
/// The destructor waits for the thread. A derived class that overrides run() must call
/// joinQuietly() first in its own destructor; otherwise the thread would use a partly destroyed
/// object. The run() of a derived class may end with `delete this`.
///
/// Threads: one owner calls start(), join() and the destructor. Any thread may call the other
/// operations, but not isAlive() while the owner starts the thread.
///
///     QBLThread thread(&job);
///     thread.start();
///     thread.join();
class QBL_API QBLThread : public QBLThreadRunnable {
public:
    /// @name Making a thread
    /// @{

    /// @param runnable  not owned; must live until the thread has ended. If it is null, the thread
    ///     calls run().
    /// @param stackSize  in bytes; 0 or a value below the system's default means the default
    explicit QBLThread(QBLThreadRunnable* runnable = nullptr, unsigned long stackSize = 0);
    QBLThread(const QBLThread&) = delete;
    QBLThread& operator=(const QBLThread&) = delete;
    /// Joins the thread if it still runs. If called on the thread itself, detaches the thread
    /// instead. A cancellation of the caller takes effect only afterwards.
    ~QBLThread() override;
    /// @}

    /// @name Start and end
    /// @{

    /// Does nothing. Derived classes may override it.
    void run() override;

    /// Requires: the library is initialised.
    /// @throws QBLIllegalStateError if the thread was started and not joined since;
    ///     QBLOutOfMemoryError; QBLThreadResourceError, which has no text if the system cannot
    ///     create more threads
    void start();
    /// Waits until the thread has ended. Returns at once if no thread was started. Afterwards the
    /// thread may be started again.
    /// @throws QBLThreadResourceError if called on the thread itself, if the thread had no memory
    ///     to begin, or if the system cannot join it
    void join();
    /// Does the same, for destructors. Throws nothing, defers a cancellation of the caller, and
    /// returns at once if called on the thread itself.
    void joinQuietly() noexcept;
    /// @return false before start() and after the thread has ended.
    bool isAlive() const;
    /// @}

    /// @name The calling thread
    /// @{

    /// Lets other threads run first.
    static void yield();
    /// Returns the calling thread's number in the process, counted from 1; 0 if the library is
    /// stopped.
    static unsigned long currentThreadId();
    static void sleep(unsigned long ms);
    /// A time of more than 49.7 days never ends.
    static void sleep(QBLMilliseconds time) {
        do sleep(time.count());
        while (time.count() == QBLWaitForever);
    }

    /// Sets or removes the routine that the calling thread calls after its run() has ended, even if
    /// an exception, pthread_exit or a cancellation ended it. If run() ended by pthread_exit or a
    /// cancellation, the routine must not end the thread again.
    /// @param set  if not 0, sets the routine; if 0, removes the earlier routine
    /// @return 0; -1 if the routine to set is null, if no QBLThread started the calling thread, or
    ///     if the library is stopped
    static int atExit(void (*routine)(), int set);
    /// @}

    /// @name Start and stop of the library
    /// @{

    /// Opens the key that maps a thread to its QBLThread. The start of the library calls this
    /// function.
    /// @return 0, even if the key is already open; -2 if out of memory; -1 for any other failure
    static int Initialize();
    /// Closes the key. From then on atExit() returns -1.
    /// @return 0
    static int Terminate();
    /// @}

private:
    static void* main(void* self);
    void execute();
    TavThread* record() const;

    TavThread* m_pThread;  // atomic; kept until the next start() or the destructor
    QBLThreadRunnable* m_pRunnable;
    unsigned long m_stackSize;
    void (*m_pAtExit)();  // only the thread itself uses it
};

#endif

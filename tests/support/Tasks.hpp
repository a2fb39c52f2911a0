#ifndef TESTS_SUPPORT_TASKS_HPP
#define TESTS_SUPPORT_TASKS_HPP

#include <utility>

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"

/// A task that calls a body.
template <class Body>
struct Job : QBLThreadRunnable {
    explicit Job(Body body) : m_body(std::move(body)) {}
    void run() override { m_body(); }

private:
    Body m_body;
};

/// A pool that runs each task at once, refuses it, or throws.
struct DirectPool : QBLThreadExecuteRunnable {
    explicit DirectPool(bool refuses = false) : refusing(refuses) {}
    int execute(QBLThreadRunnable* task, unsigned long) override {
        if (stopped) QBL_THROW(QBLIllegalStateError(0, "stopped"));
        if (!refusing) task->run();
        return refusing ? 0 : 1;
    }
    bool refusing, stopped = false;
};

#endif

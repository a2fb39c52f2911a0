#ifndef BENCH_SUPPORT_POOLS_HPP
#define BENCH_SUPPORT_POOLS_HPP

#include <climits>
#include <thread>

#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

#ifdef BENCH_HAVE_BOOST
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#endif
#ifdef BENCH_HAVE_POCO
#include <Poco/Runnable.h>
#include <Poco/ThreadPool.h>
#endif

// Pools of two workers with a common interface: submit(task) waits until the pool accepts the task,
// and a worker then calls task.run(). Task is the task class that the pool requires.

/// A task for pools whose tasks must be derived from Base.
template <class Base, class Body>
class BodyTask : public Base {
public:
    explicit BodyTask(Body body) : m_body(body) {}
    void run() override { m_body(); }

private:
    Body m_body;
};

template <class Pool>
class OurPool {
public:
    template <class Body>
    using Task = BodyTask<QBLThreadRunnable, Body>;

    template <class Body>
    void submit(Task<Body>& task) {
        m_pool.execute(&task, ULONG_MAX);
    }

private:
    Pool m_pool;
};

struct TwoFixed : QBLThreadPoolFixed {
    TwoFixed() : QBLThreadPoolFixed(2) {}
};
struct TwoQueued : QBLThreadPoolQueued {
    TwoQueued() : QBLThreadPoolQueued(2, 0) {}
};
/// The pool has two permanent workers, and adds workers if there are more tasks than workers. The
/// added workers stay until the end of a measurement.
struct TwoVariable : QBLThreadPoolVariable {
    TwoVariable() : QBLThreadPoolVariable(2, ULONG_MAX, 60000) {}
};

#ifdef BENCH_HAVE_BOOST
class AsioPool {
public:
    template <class Body>
    class Task {
    public:
        explicit Task(Body body) : m_body(body) {}
        void run() { m_body(); }

    private:
        Body m_body;
    };

    ~AsioPool() { m_pool.join(); }
    template <class Body>
    void submit(Task<Body>& task) {
        boost::asio::post(m_pool, [&task] { task.run(); });
    }

private:
    boost::asio::thread_pool m_pool{2};
};
#endif

#ifdef BENCH_HAVE_POCO
class PocoPool {
public:
    template <class Body>
    using Task = BodyTask<Poco::Runnable, Body>;

    ~PocoPool() { m_pool.joinAll(); }
    /// start() throws if no thread is free. Calling available() first is cheaper, and sufficient
    /// with a single submitter.
    template <class Body>
    void submit(Task<Body>& task) {
        while (m_pool.available() == 0) std::this_thread::yield();
        m_pool.start(task);
    }

private:
    Poco::ThreadPool m_pool{2, 2};
};
#endif

#endif

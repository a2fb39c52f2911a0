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

// Pools of two workers behind one operation: submit(task) has task.run() called on a worker and
// waits until the pool accepts it. Task is the pool's own base of tasks.

/// A task of a pool that wants one derived from a class of its own.
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
/// Workers beyond the two permanent ones come when tasks outnumber the workers, and stay for the
/// length of a measurement.
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
    /// It refuses a task by an exception; asking first is cheaper, and enough with one submitter.
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

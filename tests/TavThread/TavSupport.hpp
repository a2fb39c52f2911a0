#ifndef TESTS_TAVTHREAD_TAVSUPPORT_HPP
#define TESTS_TAVTHREAD_TAVSUPPORT_HPP

#include <gtest/gtest.h>

#include <functional>

#include "TavThread/TavThread.h"
#include "tests/support/Workers.hpp"

/// Keeps the layer initialised while in scope.
struct Layer {
    Layer() { EXPECT_EQ(TAVTHREAD_OK, tavThreadProcessInitialize()); }
    ~Layer() { EXPECT_EQ(TAVTHREAD_OK, tavThreadProcessTerminate()); }
};

/// The routine of a layer thread; must outlive the thread.
using Body = std::function<void*()>;
inline void* runBody(void* body) { return (*static_cast<Body*>(body))(); }

/// A started thread. The destructor joins the thread if join() was not called, and destroys its
/// handle.
struct Started {
    template <class... Attributes>
    explicit Started(Body body, Attributes... attributes) : m_body(std::move(body)) {
        EXPECT_EQ(TAVTHREAD_OK,
                  tavXThreadCreate(&runBody, &m_body, &m_pThread, attributes..., TavThreadAttrEnd));
    }
    ~Started() {
        tavXThreadJoin(m_pThread, nullptr);
        tavXThreadDestroy(m_pThread);
    }
    Started(const Started&) = delete;
    Started& operator=(const Started&) = delete;
    operator TavThread*() const { return m_pThread; }
    int join(void** value = nullptr) { return tavXThreadJoin(m_pThread, value); }

private:
    Body m_body;
    TavThread* m_pThread = nullptr;
};

/// Measures the milliseconds since its construction.
struct Watch {
    double ms() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - m_start).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_start = Clock::now();
};

#endif

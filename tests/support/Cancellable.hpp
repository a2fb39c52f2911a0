#ifndef TESTS_SUPPORT_CANCELLABLE_HPP
#define TESTS_SUPPORT_CANCELLABLE_HPP

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

/// A thread that runs a body and can be cancelled. Call join() before the object is destroyed.
class Cancellable {
public:
    explicit Cancellable(std::function<void()> body) : m_body(std::move(body)) {
        EXPECT_EQ(0, pthread_create(&m_thread, nullptr, &run, this));
    }
    void cancel() const { pthread_cancel(m_thread); }
    /// Waits until the thread ends.
    /// @return true if the cancellation has ended it.
    bool join() const {
        void* result = nullptr;
        pthread_join(m_thread, &result);
        return result == PTHREAD_CANCELED;
    }

private:
    static void* run(void* self) { return static_cast<Cancellable*>(self)->m_body(), nullptr; }

    std::function<void()> m_body;
    pthread_t m_thread{};
};

#endif

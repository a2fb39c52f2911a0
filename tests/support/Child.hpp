#ifndef TESTS_SUPPORT_CHILD_HPP
#define TESTS_SUPPORT_CHILD_HPP

#include <functional>

/// A forked process that runs a body and exits with its result, without running destructors. Create
/// it while the test has no other threads.
class Child {
public:
    explicit Child(const std::function<int()>& body);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int pid() const { return m_iPid; }
    void kill(int signal) const;
    /// Waits until the process ends.
    /// @return its exit status, or the negated number of the signal that ended it.
    int wait();

private:
    int m_iPid;
};

/// Runs a body in a child process.
/// @return as Child::wait()
inline int inChild(const std::function<int()>& body) { return Child(body).wait(); }

#endif

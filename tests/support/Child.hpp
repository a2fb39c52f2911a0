#ifndef TESTS_SUPPORT_CHILD_HPP
#define TESTS_SUPPORT_CHILD_HPP

#include <functional>

/// A forked process that runs a body and exits with what it gives, without destructors. Fork it
/// while the test has no other threads.
class Child {
public:
    explicit Child(const std::function<int()>& body);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int pid() const { return m_iPid; }
    void kill(int signal) const;
    /// Waits for the end. @return the exit status, or minus the signal that ended it.
    int wait();

private:
    int m_iPid;
};

/// Runs a body in a process of its own. @return as Child::wait()
inline int inChild(const std::function<int()>& body) { return Child(body).wait(); }

#endif

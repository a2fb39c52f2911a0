#ifndef TESTS_SUPPORT_CHILD_HPP
#define TESTS_SUPPORT_CHILD_HPP

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

/// A forked process that runs a body and exits with its result, without running destructors. Create
/// it while the test has no other threads.
class Child {
public:
    template <class Body>
    explicit Child(const Body& body) : m_iPid(fork()) {
        if (m_iPid == 0) _exit(body());
    }
    ~Child() {
        if (m_iPid <= 0) return;
        kill(SIGKILL);
        wait();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int pid() const { return m_iPid; }
    void kill(int signal) const { ::kill(m_iPid, signal); }
    /// Waits until the process ends.
    /// @return its exit status, or the negated number of the signal that ended it.
    int wait() {
        int status = 0;
        while (waitpid(m_iPid, &status, 0) < 0 && errno == EINTR) {
        }
        m_iPid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    int m_iPid;
};

/// Runs a body in a child process.
/// @return as Child::wait()
template <class Body>
int inChild(const Body& body) {
    return Child(body).wait();
}

#endif

#include "tests/support/Child.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

Child::Child(const std::function<int()>& body) : m_iPid(fork()) {
    if (m_iPid == 0) _exit(body());
}

Child::~Child() {
    if (m_iPid <= 0) return;
    kill(SIGKILL);
    wait();
}

void Child::kill(int signal) const { ::kill(m_iPid, signal); }

int Child::wait() {
    int status = 0;
    while (waitpid(m_iPid, &status, 0) < 0 && errno == EINTR) {
    }
    m_iPid = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

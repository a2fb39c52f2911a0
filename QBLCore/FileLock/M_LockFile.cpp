#include "QBLCore/FileLock/M_LockFile.hpp"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>

namespace {

bool isPassing(int error) {
    return error == 0 || error == EACCES || error == EAGAIN || error == EINTR;
}

int setLock(int fd, int command, int type) {
    struct flock whole {};
    whole.l_type = static_cast<short>(type);
    whole.l_whence = SEEK_SET;
    return fcntl(fd, command, &whole) == 0 ? 1 : 0;
}

}  // namespace

int M_LockFile(int fd, int shared, int wait) {
    const int command = wait != 0 ? F_SETLKW : F_SETLK;
    const int type = shared != 0 ? F_RDLCK : F_WRLCK;
    for (;;) {
        const int locked = setLock(fd, command, type);
        if (locked != 0 || wait == 0 || !isPassing(errno)) return locked;
        errno = 0;
        sched_yield();
    }
}

int M_UnLockFile(int fd) { return setLock(fd, F_SETLK, F_UNLCK); }

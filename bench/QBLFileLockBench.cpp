#include <fcntl.h>

#include <stdexcept>
#include <tuple>

#include "QBLCore/FileLock/QBLFileLockRW.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "bench/support/Bench.hpp"
#include "bench/support/TempDir.hpp"

namespace {

class PeerLock {
public:
    explicit PeerLock(QBLFmFile& file) : m_iFd(file.getFileDescriptor()) {}
    void lock() { set(F_SETLKW, F_WRLCK); }
    void unlock() { set(F_SETLK, F_UNLCK); }

private:
    void set(int command, short type) {
        struct flock whole {};
        whole.l_type = type;
        whole.l_whence = SEEK_SET;
        if (fcntl(m_iFd, command, &whole) != 0) throw std::runtime_error("no lock");
    }

    int m_iFd;
};

class TempFile {
public:
    TempFile() { open(m_file); }
    QBLFmFile& file() { return m_file; }
    void open(QBLFmFile& file) const {
        if (!file.open(m_dir.path("file").c_str(), QBLFmFile::create, 0))
            throw std::runtime_error("no file");
    }

private:
    TempDir m_dir;
    QBLFmFile m_file;
};

template <class Lock>
void lockUnlock(benchmark::State& state) {
    TempFile temp;
    Lock lock(temp.file());
    for (auto _ : state) {
        lock.lock();
        lock.unlock();
    }
}

/// Returns type, start and length of the lock that conflicts with a read lock on the file.
/// F_OFD_GETLK asks for a separate open file description, so it also reports locks of this process.
std::tuple<int, long long, long long> obstacle(const QBLFmFile& other) {
    struct flock64 wanted {};
    wanted.l_type = F_RDLCK;
    wanted.l_whence = SEEK_SET;
    fcntl64(other.getFileDescriptor(), F_OFD_GETLK, &wanted);
    return {wanted.l_type, wanted.l_start, wanted.l_len};
}

template <class Lock>
bool locksWholeFile() {
    TempFile temp;
    QBLFmFile other;
    temp.open(other);
    Lock lock(temp.file());
    lock.lock();
    const auto locked = obstacle(other);
    lock.unlock();
    return locked == std::make_tuple(F_WRLCK, 0, 0) && std::get<0>(obstacle(other)) == F_UNLCK;
}

const OutputCheck check("QBLFileLockRW", [] {
    return locksWholeFile<QBLFileLockRW>() && locksWholeFile<PeerLock>();
});

BENCHMARK_TEMPLATE(lockUnlock, QBLFileLockRW)->Name("BM_QBLFileLockRW_lockUnlock");
BENCHMARK_TEMPLATE(lockUnlock, PeerLock)->Name("BM_Fcntl_lockUnlock");

}  // namespace

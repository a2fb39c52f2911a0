#include "QBLCore/FileManagement/QBLFmFile.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/support/Bench.hpp"
#include "bench/support/TempDir.hpp"

namespace {

constexpr long kBlockFile = 1 << 20;
constexpr long kAppended = 64 << 20;
constexpr std::size_t kLargest = 65536;

alignas(4096) char g_block[kLargest];

/// The plain system calls, with the interface of QBLFmFile.
class BareFile {
public:
    BareFile() = default;
    ~BareFile() { ::close(m_iFd); }
    BareFile(const BareFile&) = delete;
    BareFile& operator=(const BareFile&) = delete;

    bool open(const char* name, int flags, int) {
        m_iFd = ::open(name, flags | O_RDWR, 0666);
        return m_iFd >= 0;
    }
    long read(void* buffer, unsigned long size) { return ::read(m_iFd, buffer, size); }
    long write(const void* buffer, unsigned long size) { return ::write(m_iFd, buffer, size); }
    bool append(BareFile& other) {
        const std::unique_ptr<char[]> buffer(new char[kLargest]);
        if (lseek(m_iFd, 0, SEEK_END) < 0) return false;
        ssize_t got;
        while ((got = ::read(other.m_iFd, buffer.get(), kLargest)) > 0)
            if (::write(m_iFd, buffer.get(), static_cast<std::size_t>(got)) != got) return false;
        return got == 0;
    }
    int getFileDescriptor() const { return m_iFd; }

private:
    int m_iFd = -1;
};

template <class File>
void open(File& file, const std::string& path) {
    if (!file.open(path.c_str(), QBLFmFile::create, 0)) throw std::runtime_error(path);
}

template <class File>
void rewind(File& file) {
    lseek(file.getFileDescriptor(), 0, SEEK_SET);
}

/// Both sides use the same files, so the page cache serves both equally.
class Files {
public:
    static const Files& instance() {
        static const Files files;
        return files;
    }
    const std::string& blocks() const { return m_blocks; }
    const std::string& source() const { return m_source; }
    const std::string& target() const { return m_target; }

private:
    Files() {
        fill(m_blocks, kBlockFile);
        fill(m_source, kAppended);
    }
    static void fill(const std::string& path, long size) {
        BareFile file;
        open(file, path);
        for (; size > 0; size -= static_cast<long>(kLargest)) file.write(g_block, kLargest);
    }

    const TempDir m_dir;
    const std::string m_blocks = m_dir.path("blocks");
    const std::string m_source = m_dir.path("source");
    const std::string m_target = m_dir.path("target");
};

struct Reading {
    template <class File>
    static long transfer(File& file, unsigned long size) {
        return file.read(g_block, size);
    }
};

struct Writing {
    template <class File>
    static long transfer(File& file, unsigned long size) {
        return file.write(g_block, size);
    }
};

/// Transfers the whole file from start to end, repeatedly. Times are per block.
template <class Direction, class File>
void transferBlocks(benchmark::State& state) {
    const auto size = static_cast<long>(state.range(0));
    const benchmark::IterationCount blocks = kBlockFile / size;
    File file;
    open(file, Files::instance().blocks());
    while (state.KeepRunningBatch(blocks)) {
        rewind(file);
        for (auto i = blocks; i != 0; --i)
            if (Direction::transfer(file, static_cast<unsigned long>(size)) != size)
                return state.SkipWithError("not a whole block");
    }
}

template <class File>
void append(benchmark::State& state) {
    File source, target;
    open(source, Files::instance().source());
    open(target, Files::instance().target());
    for (auto _ : state) {
        state.PauseTiming();
        if (ftruncate(target.getFileDescriptor(), 0) != 0)
            return state.SkipWithError("not emptied");
        rewind(source);
        state.ResumeTiming();
        if (!target.append(source)) return state.SkipWithError("not appended");
    }
}

/// Writes a text to a file, appends the file to a second file, and returns the contents of the
/// second file.
template <class File>
std::string carry(const std::string& text) {
    const TempDir dir;
    File source, target;
    open(source, dir.path("source"));
    open(target, dir.path("target"));
    source.write(text.data(), text.size());
    rewind(source);
    if (!target.append(source)) return std::string();
    rewind(target);
    std::string result;
    char buffer[4096];
    for (long got; (got = target.read(buffer, sizeof buffer)) > 0;)
        result.append(buffer, static_cast<std::size_t>(got));
    return result;
}

const OutputCheck check("QBLFmFile", [] {
    std::string text(3 * kLargest + 1, '\0');
    std::generate(text.begin(), text.end(),
                  [i = 0u]() mutable { return static_cast<char>((i++ * 2654435761u) >> 24); });
    return carry<QBLFmFile>(text) == text && carry<BareFile>(text) == text;
});

#define BLOCK_BENCHMARK(Direction, File, name) \
    BENCHMARK_TEMPLATE(transferBlocks, Direction, File)->Name("BM_" name)->Arg(4096)->Arg(kLargest)

BLOCK_BENCHMARK(Reading, QBLFmFile, "QBLFmFile_read");
BLOCK_BENCHMARK(Reading, BareFile, "Bare_read");
BLOCK_BENCHMARK(Writing, QBLFmFile, "QBLFmFile_write");
BLOCK_BENCHMARK(Writing, BareFile, "Bare_write");
BENCHMARK_TEMPLATE(append, QBLFmFile)->Name("BM_QBLFmFile_append");
BENCHMARK_TEMPLATE(append, BareFile)->Name("BM_Bare_append");

}  // namespace

#include "FileFigures.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"

namespace {

constexpr std::size_t kBlock = 65536;

/// A file opened for reading.
class Input {
public:
    explicit Input(const std::string& path)
        : m_path(path), m_iFd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_LARGEFILE)) {
        if (m_iFd < 0) QBL_THROW_NAMED(failure("open"), "Input::Input");
    }
    ~Input() { ::close(m_iFd); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// @return the number of bytes read, 0 at the end.
    std::size_t read(char* block) {
        for (;;) {
            const ssize_t got = ::read(m_iFd, block, kBlock);
            if (got >= 0) return static_cast<std::size_t>(got);
            if (errno != EINTR) QBL_THROW_NAMED(failure("read"), "Input::read");
        }
    }

private:
    QBLSystemError failure(const char* what) const {
        const int error = errno;
        return QBLSystemError(
            error,
            ("Cannot " + std::string(what) + " " + m_path + ": " + std::strerror(error)).c_str());
    }

    const std::string& m_path;
    int m_iFd;
};

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Counts a text that arrives in blocks.
class Counter {
public:
    void add(const char* block, std::size_t size) {
        m_figures.bytes += size;
        for (const char* p = block; p != block + size; ++p) {
            const bool space = isSpace(*p);
            if (!space && !m_bInWord) ++m_figures.words;
            m_bInWord = !space;
            if (*p == '\n') {
                ++m_figures.lines;
                endLine();
            } else {
                ++m_uLength;
            }
        }
    }
    FileFigures finish() {
        if (m_uLength != 0) endLine();
        return m_figures;
    }

private:
    void endLine() {
        m_figures.longest = std::max(m_figures.longest, m_uLength);
        const auto* bucket = std::lower_bound(std::begin(FileFigures::kBucketEnds),
                                              std::end(FileFigures::kBucketEnds), m_uLength);
        ++m_figures.byLength[bucket - std::begin(FileFigures::kBucketEnds)];
        m_uLength = 0;
    }

    FileFigures m_figures;
    std::uint64_t m_uLength = 0;
    bool m_bInWord = false;
};

}  // namespace

FileFigures& FileFigures::operator+=(const FileFigures& other) {
    lines += other.lines;
    words += other.words;
    bytes += other.bytes;
    longest = std::max(longest, other.longest);
    for (int i = 0; i < kBuckets; ++i) byLength[i] += other.byLength[i];
    return *this;
}

FileFigures surveyFile(const std::string& path) {
    Input input(path);
    const auto block = std::make_unique<char[]>(kBlock);
    Counter counter;
    while (const std::size_t got = input.read(block.get())) counter.add(block.get(), got);
    return counter.finish();
}

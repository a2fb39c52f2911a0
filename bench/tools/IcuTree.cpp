// icu_tree FROM TO INPUT OUTPUT: converts every file below INPUT into a file of the same name below
// OUTPUT, on two threads, using only system calls and ICU. It is the yardstick for qblconv.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/ucnv.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "icu_tree: %s: %s\n", what.c_str(), std::strerror(errno));
    std::exit(1);
}

/// Paths of files below both roots, each with a leading slash.
using Names = std::vector<std::string>;

/// Adds the files below a directory, and creates the directories of the output.
void walk(const std::string& input, const std::string& output, const std::string& below,
          Names& files) {
    if (::mkdir((output + below).c_str(), 0777) != 0 && errno != EEXIST) die(output + below);
    DIR* const dir = ::opendir((input + below).c_str());
    if (dir == nullptr) die(input + below);
    while (const dirent* const entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        std::string path = below;
        path.append("/").append(name);
        if (entry->d_type == DT_DIR)
            walk(input, output, path, files);
        else
            files.push_back(path);
    }
    ::closedir(dir);
}

std::vector<char> readAll(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (fd < 0 || ::fstat(fd, &status) != 0) die(path);
    std::vector<char> bytes(static_cast<std::size_t>(status.st_size));
    for (std::size_t have = 0; have < bytes.size();) {
        const ssize_t count = ::read(fd, bytes.data() + have, bytes.size() - have);
        if (count <= 0) die(path);
        have += static_cast<std::size_t>(count);
    }
    ::close(fd);
    return bytes;
}

void writeAll(const std::string& path, const char* bytes, std::size_t size) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) die(path);
    while (size > 0) {
        const ssize_t count = ::write(fd, bytes, size);
        if (count <= 0) die(path);
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    ::close(fd);
}

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// Opens a converter that stops at unconvertible characters, as qblconv does.
Converter open(const char* encoding) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(encoding, &error));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &error);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &error);
    if (U_FAILURE(error)) die(encoding);
    return converter;
}

/// The converters and buffers of a thread, reused for each file.
class Worker {
public:
    Worker(const char* from, const char* to) : m_from(open(from)), m_to(open(to)) {}

    void convert(const std::string& input, const std::string& output) {
        const std::vector<char> bytes = readAll(input);
        // The benchmark's encodings need at most four output bytes per input byte.
        if (m_text.size() < bytes.size() * 4) m_text.resize(bytes.size() * 4);
        const char* source = bytes.data();
        char* target = m_text.data();
        UChar* pivot = m_pivot;
        UChar* pivotEnd = m_pivot;
        UErrorCode error = U_ZERO_ERROR;
        ucnv_convertEx(m_to.get(), m_from.get(), &target, target + m_text.size(), &source,
                       source + bytes.size(), m_pivot, &pivot, &pivotEnd, m_pivot + kPivot,
                       static_cast<UBool>(true), static_cast<UBool>(true), &error);
        if (U_FAILURE(error)) die(input + ": " + u_errorName(error));
        writeAll(output, m_text.data(), static_cast<std::size_t>(target - m_text.data()));
    }

private:
    static constexpr int kPivot = 8192;
    Converter m_from, m_to;
    std::vector<char> m_text;
    UChar m_pivot[kPivot] = {};
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: icu_tree FROM TO INPUT OUTPUT\n", stderr);
        return 2;
    }
    const std::string input = argv[3];
    const std::string output = argv[4];
    Names files;
    walk(input, output, "", files);
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        Worker worker(argv[1], argv[2]);
        for (std::size_t i = next++; i < files.size(); i = next++)
            worker.convert(input + files[i], output + files[i]);
    };
    std::thread second(work);
    work();
    second.join();
    return 0;
}

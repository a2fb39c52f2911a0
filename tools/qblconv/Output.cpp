#include "tools/qblconv/Output.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

constexpr std::size_t kMostAtOnce = 0x40000000;
const char kTemporary[] = ".qblconv";
constexpr int kAttempts = 100;
std::atomic<unsigned> g_counter{0};

/// @return an errno; 0 if all was written
int writeAll(QBLFmFile64& file, const char* bytes, std::size_t size) {
    while (size > 0) {
        const int put = file.write(bytes, static_cast<unsigned>(std::min(size, kMostAtOnce)));
        if (put < 0 && file.getLastErrorNumber() == EINTR && !isInterrupted()) continue;
        if (put < 0) return file.getLastErrorNumber();
        bytes += put;
        size -= static_cast<std::size_t>(put);
    }
    return 0;
}

}  // namespace

Output::~Output() = default;

bool DirectOutput::open() {
    if (m_file.open(QBLFmFile64::standardoutput)) return true;
    m_error = m_file.getLastErrorNumber();
    return false;
}

bool DirectOutput::open(const std::string& path) {
    if (m_file.open(path.c_str(), QBLFmFile64::existing, 0)) return true;
    m_error = m_file.getLastErrorNumber();
    return false;
}

bool DirectOutput::write(const char* bytes, std::size_t size) {
    m_error = writeAll(m_file, bytes, size);
    return m_error == 0;
}

bool DirectOutput::commit() {
    if (m_file.close()) return true;
    m_error = m_file.getLastErrorNumber();
    return false;
}

int DirectOutput::descriptor() const { return m_file.getFileDescriptor(); }

bool ReplacingOutput::open(const std::string& path) { return m_file.open(path.c_str()); }

bool ReplacingOutput::write(const char* bytes, std::size_t size) {
    return m_file.write(bytes, static_cast<unsigned long>(size));
}

bool ReplacingOutput::commit() { return m_file.commit() || m_file.isCommitted(); }

NewOutput::~NewOutput() { discard(); }

bool NewOutput::failed(int error) {
    m_error = error;
    return false;
}

void NewOutput::begin(const std::string& directory, const std::string& name,
                      const std::string& input, unsigned mode) {
    discard();
    m_path = directory + "/" + name;
    m_iBase = directory.size();
    m_input = input;
    m_iMode = mode;
}

/// Of so much of the path.
bool NewOutput::createDirectories(std::size_t length) {
    if (!QBLFmDir::createRecursiveDir(m_path.substr(0, m_iBase + 1).c_str())) return failed(errno);
    for (std::size_t end = m_iBase; (end = m_path.find('/', end + 1)) < length;) {
        // Behind it both paths are the same.
        const std::string from = m_input.substr(0, m_input.size() - (m_path.size() - end));
        struct stat64 status = {};
        const unsigned mode =
            stat64(from.c_str(), &status) == 0 ? (status.st_mode & 0777U) | S_IRWXU : 0777U;
        if (mkdir(m_path.substr(0, end).c_str(), mode) != 0 && errno != EEXIST)
            return failed(errno);
    }
    return true;
}

/// Nobody whom the mode shuts out has it open for a moment.
bool NewOutput::createTemporary(const std::string& name) {
    const int file =
        open64(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, m_iMode | S_IRUSR | S_IWUSR);
    if (file < 0) return failed(errno);
    m_temporary = name;
    ::close(file);
    return m_file.open(name.c_str(), static_cast<QBLFmFile64::createmode>(O_CLOEXEC), 0) ||
           failed(m_file.getLastErrorNumber());
}

bool NewOutput::create() {
    const std::string directory = m_path.substr(0, m_path.rfind('/') + 1);
    if (directory != m_directory) {
        if (!createDirectories(directory.size())) return false;
        m_directory = directory;
    }
    static const std::string process = kTemporary + std::to_string(getpid()) + ".";
    for (int i = 0; i < kAttempts; ++i) {
        std::string name = directory;
        name.append(process).append(std::to_string(++g_counter));
        if (createTemporary(name)) return true;
        if (!m_temporary.empty() || m_error != EEXIST) break;
    }
    return false;
}

bool NewOutput::write(const char* bytes, std::size_t size) {
    if (m_temporary.empty() && !create()) return false;
    const int error = writeAll(m_file, bytes, size);
    return error == 0 || failed(error);
}

bool NewOutput::commit() {
    if (m_temporary.empty() && !create()) return false;
    constexpr unsigned kNeeded = S_IRUSR | S_IWUSR;  // for the writing itself
    struct stat64 status = {};
    const bool isLess = (m_iMode & kNeeded) != kNeeded;
    if (isLess && (fstat64(m_file.getFileDescriptor(), &status) != 0 ||
                   fchmod(m_file.getFileDescriptor(), status.st_mode & m_iMode) != 0))
        return failed(errno);
    if (!m_file.close()) return failed(m_file.getLastErrorNumber());
    if (!QBLFmDir::renameFile(m_temporary.c_str(), m_path.c_str())) return failed(errno);
    m_temporary.clear();
    return true;
}

void NewOutput::discard() {
    m_file.close();
    if (!m_temporary.empty()) QBLFmDir::removeFile(m_temporary.c_str());
    m_temporary.clear();
}

}  // namespace conv

#include "tools/qblconv/Output.hpp"

#include <fcntl.h>
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

void NewOutput::begin(const std::string& path) {
    discard();
    m_path = path;
}

bool NewOutput::create() {
    const std::string directory = m_path.substr(0, m_path.rfind('/') + 1);
    if (directory != m_directory) {
        if (!directory.empty() && !QBLFmDir::createRecursiveDir(directory.c_str()))
            return failed(errno);
        m_directory = directory;
    }
    static const std::string process = kTemporary + std::to_string(getpid()) + ".";
    for (int i = 0; i < kAttempts; ++i) {
        std::string name = directory;
        name.append(process).append(std::to_string(++g_counter));
        const auto flags = static_cast<QBLFmFile64::createmode>(O_CREAT | O_EXCL | O_CLOEXEC);
        if (m_file.open(name.c_str(), flags, 0)) {
            m_temporary = name;
            return true;
        }
        if (m_file.getLastErrorNumber() != EEXIST) break;
    }
    return failed(m_file.getLastErrorNumber());
}

bool NewOutput::write(const char* bytes, std::size_t size) {
    if (m_temporary.empty() && !create()) return false;
    const int error = writeAll(m_file, bytes, size);
    return error == 0 || failed(error);
}

bool NewOutput::commit() {
    if (m_temporary.empty() && !create()) return false;
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

#include "tools/qblconv/Output.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Spool.hpp"

namespace conv {

namespace {

const char kTemporary[] = ".qblconv";
constexpr int kAttempts = 100;
std::atomic<unsigned> g_counter{0};

}  // namespace

Output::~Output() = default;

DirectOutput::~DirectOutput() {
    if (m_bOurs) ::close(m_iFile);
}

bool DirectOutput::rememberError(int error) {
    m_iError = error;
    return false;
}

bool DirectOutput::open() {
    m_iFile = STDOUT_FILENO;
    return true;
}

bool DirectOutput::open(const std::string& path) {
    constexpr int kPause = 20;  // milliseconds between two checks for a reader
    while (true) {
        m_iFile = open64(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        const bool isWithoutReader = m_iFile < 0 && errno == ENXIO;
        if (isInterrupted() || (m_iFile < 0 && !isWithoutReader)) break;
        if (!isWithoutReader) break;
        pauseFor(kPause);
    }
    if (m_iFile < 0) return rememberError(isInterrupted() ? EINTR : errno);
    m_bOurs = true;
    const int flags = fcntl(m_iFile, F_GETFL);
    return fcntl(m_iFile, F_SETFL, flags & ~O_NONBLOCK) == 0 || rememberError(errno);
}

bool DirectOutput::write(const char* bytes, std::size_t size) {
    return writeAll(m_iFile, bytes, size) || rememberError(errno);
}

bool DirectOutput::commit() {
    return !std::exchange(m_bOurs, false) || ::close(m_iFile) == 0 || rememberError(errno);
}

bool ReplacingOutput::open(const std::string& path) { return m_file.open(path.c_str()); }

bool ReplacingOutput::open(const QBLFmDirectory& directory, const std::string& name) {
    return m_file.open(directory, name.c_str());
}

bool ReplacingOutput::write(const char* bytes, std::size_t size) {
    return m_file.write(bytes, static_cast<unsigned long>(size));
}

bool ReplacingOutput::commit() { return m_file.commit() || m_file.isCommitted(); }

const QBLFmDirectory* OutputRoot::get() {
    QBLThreadGuard guard(m_lock);
    const bool isOpen =
        m_directory.isOpen() ||
        (QBLFmDir::createRecursiveDir((m_path + "/").c_str()) && m_directory.open(m_path.c_str()));
    if (isOpen) return &m_directory;
    if (errno == EEXIST) errno = ENOTDIR;  // a file has the name of a directory
    return nullptr;
}

NewOutput::~NewOutput() { discard(); }

bool NewOutput::rememberError(int error) {
    m_iError = error;
    return false;
}

void NewOutput::begin(const Item& item, unsigned mode) {
    discard();
    m_pPlace = item.place;
    m_name = item.name.substr(item.name.rfind('/') + 1);
    m_iMode = mode;
}

/// Creates or opens the output directory for an input directory.
bool NewOutput::enter(const Place* place, QBLFmDirectory& directory) {
    const QBLFmDirectory* const root = m_pRoot->get();
    if (root == nullptr) return rememberError(errno);
    std::vector<const Place*> way;
    for (; place != nullptr; place = place->above.get())
        if (!place->name.empty()) way.push_back(place);
    const QBLFmDirectory* above = root;
    for (auto next = way.rbegin(); next != way.rend(); ++next) {
        QBLFmDirectory opened;
        const char* const name = (*next)->name.c_str();
        // Another worker, or an earlier run, has created most directories.
        if (!opened.open(*above, name) &&
            !opened.create(*above, name, ((*next)->mode & 0777U) | S_IRWXU))
            return rememberError(errno);
        directory = std::move(opened);
        above = &directory;
    }
    return true;
}

bool NewOutput::create() {
    if (!m_bOpened || m_pOpened != m_pPlace) {
        m_directory.close();
        m_bOpened = enter(m_pPlace.get(), m_directory);
        if (!m_bOpened) return false;
        m_pOpened = m_pPlace;
    }
    m_pTarget = m_directory.isOpen() ? &m_directory : m_pRoot->get();
    if (m_pTarget == nullptr) return rememberError(errno);
    static const std::string kProcess = kTemporary + std::to_string(getpid()) + ".";
    for (int i = 0; i < kAttempts && m_iFile < 0; ++i) {
        m_temporary = kProcess + std::to_string(++g_counter);
        // Creates the file with its final mode, so that no user without permission can open it even
        // for a moment.
        m_iFile = m_pTarget->openFile(m_temporary.c_str(), O_CREAT | O_EXCL | O_WRONLY,
                                      m_iMode | S_IRUSR | S_IWUSR);
        if (m_iFile >= 0) return true;
        m_temporary.clear();
        if (errno != EEXIST) break;
    }
    return rememberError(errno);
}

bool NewOutput::write(const char* bytes, std::size_t size) {
    if (m_temporary.empty() && !create()) return false;
    return writeAll(m_iFile, bytes, size) || rememberError(errno);
}

bool NewOutput::close() {
    const int file = std::exchange(m_iFile, -1);
    return file < 0 || ::close(file) == 0 || rememberError(errno);
}

bool NewOutput::commit() {
    if (m_temporary.empty() && !create()) return false;
    constexpr unsigned kNeeded = S_IRUSR | S_IWUSR;  // needed for writing
    FileStatus status;
    const bool isLess = (m_iMode & kNeeded) != kNeeded;
    if (isLess && (!status.get(m_iFile) || fchmod(m_iFile, status.mode() & m_iMode) != 0))
        return rememberError(errno);
    if (!close()) return false;
    if (!m_pTarget->rename(m_temporary.c_str(), m_name.c_str())) return rememberError(errno);
    m_temporary.clear();
    return true;
}

void NewOutput::discard() {
    if (m_iFile >= 0) ::close(std::exchange(m_iFile, -1));
    if (!m_temporary.empty()) m_pTarget->remove(m_temporary.c_str());
    m_temporary.clear();
}

}  // namespace conv

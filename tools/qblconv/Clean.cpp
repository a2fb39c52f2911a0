#include "tools/qblconv/Clean.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <string_view>
#include <system_error>

#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Status.hpp"

namespace conv {

namespace {

/// The prefixes of temporary files: of QBLFmReplaceFile and of NewOutput.
constexpr std::string_view kBeginnings[] = {".QBLFm", ".qblconv"};

/// Takes a positive number from the front of a text. Accepts only the form in which the tools write
/// numbers into names.
template <class Number>
bool takeNumber(std::string_view& text, Number& value) {
    const char* const end = text.data() + text.size();
    const auto [next, problem] = std::from_chars(text.data(), end, value);
    if (problem != std::errc() || text[0] == '0' || text[0] == '-') return false;
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
    return true;
}

/// @return the ID of the process that created a temporary file; 0 for any other name
pid_t makerOf(const std::string& name) {
    for (const std::string_view beginning : kBeginnings) {
        if (name.compare(0, beginning.size(), beginning) != 0) continue;
        std::string_view rest = std::string_view(name).substr(beginning.size());
        pid_t process = 0;
        unsigned count = 0;
        if (!takeNumber(rest, process) || rest.empty() || rest[0] != '.') return 0;
        rest.remove_prefix(1);
        return takeNumber(rest, count) && rest.empty() ? process : 0;
    }
    return 0;
}

bool isAlive(pid_t process) { return kill(process, 0) == 0 || errno != ESRCH; }

bool isOurs(const FileStatus& status) { return geteuid() == 0 || status.user() == geteuid(); }

/// A write lease. The system grants it only if no other descriptor of the file is open anywhere.
/// While the lease is held, other processes that open the file wait until the lease is returned.
class Lease {
public:
    explicit Lease(int file) : m_iFile(file) {
        // The system signals the holder when another process opens the file. The default signal,
        // SIGIO, would end the process; SIGURG is ignored.
        m_bHeld = fcntl(file, F_SETSIG, SIGURG) == 0 && fcntl(file, F_SETLEASE, F_WRLCK) == 0;
        m_iError = m_bHeld ? 0 : errno;
    }
    ~Lease() {
        if (m_bHeld) fcntl(m_iFile, F_SETLEASE, F_UNLCK);
    }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    /// An errno; 0 if the lease was granted.
    int error() const { return m_iError; }

private:
    const int m_iFile;
    bool m_bHeld;
    int m_iError;
};

struct Descriptor {
    explicit Descriptor(int opened) : fd(opened) {}
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int fd;
};

}  // namespace

bool Clean::check(const Options& options, Problem& problem) {
    for (const std::string& operand : options.operands) {
        FileStatus status;
        const bool isThere = status.get(operand.c_str());
        const int error = isThere ? ENOTDIR : errno;
        if (isThere ? status.isDirectory() : error != ENOENT && error != ENOTDIR) continue;
        problem = tools::withShown(qblconvmsgs::convCannotRead, operand, tools::reason(error));
        return false;
    }
    return true;
}

void Clean::work(const std::string& operand) {
    QBLFmDirectory directory;
    if (!directory.open(operand.c_str()))
        return m_report.error(qblconvmsgs::convCannotRead(shown(operand), tools::reason(errno)));
    enter(operand, std::move(directory));
    while (!m_levels.empty() && !isInterrupted()) descend();
    m_levels.clear();
}

void Clean::enter(const std::string& path, QBLFmDirectory directory) {
    Level level = {path.back() == '/' ? path : path + "/", std::move(directory), {}};
    std::list<std::string> files;
    if (!level.directory.readDir(&files, "", m_options.recurse ? &level.directories : nullptr,
                                 nullptr))
        return m_report.error(qblconvmsgs::convCannotRead(shown(path), tools::reason(errno)));
    for (const std::string& file : files) {
        if (isInterrupted()) return;
        removeUnused(level, file);
    }
    m_levels.push_back(std::move(level));
}

/// Enters the next subdirectory of the innermost level, or leaves that level if it has no more.
void Clean::descend() {
    Level& level = m_levels.back();
    if (level.directories.empty()) return m_levels.pop_back();
    const std::string name = std::move(level.directories.front());
    level.directories.pop_front();
    if (name[0] == '.') return;
    const std::string path = level.path + name;
    QBLFmDirectory directory;
    if (directory.open(level.directory, name.c_str()))
        enter(path, std::move(directory));
    else if (errno != ENOTDIR && errno != ELOOP && errno != ENOENT)
        m_report.error(qblconvmsgs::convCannotRead(shown(path), tools::reason(errno)));
}

void Clean::removeUnused(const Level& level, const std::string& leaf) {
    const pid_t maker = makerOf(leaf);
    if (maker == 0) return;
    const std::string name = shown(level.path + leaf);
    const int directory = level.directory.getDescriptor();
    FileStatus status, opened;
    // Does not open links and devices.
    if (!status.get(directory, leaf.c_str(), AT_SYMLINK_NOFOLLOW)) return;
    if (!status.isRegular()) return tell(qblconvmsgs::convNotRegular(name));
    if (!isOurs(status)) return tell(qblconvmsgs::convNotOurs(name));
    if (isAlive(maker)) return tell(qblconvmsgs::convStillRunning(name, std::to_string(maker)));
    const Descriptor file(level.directory.openFile(leaf.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY));
    if (file.fd < 0 && errno == ENOENT) return;
    if (file.fd < 0 && errno == EAGAIN) return tell(qblconvmsgs::convStillOpen(name));
    if (file.fd < 0 || !opened.get(file.fd))
        return m_report.error(qblconvmsgs::convCannotRemove(name, tools::reason(errno)));
    if (!opened.isSameFile(status)) return;
    const Lease lease(file.fd);
    if (lease.error() == EAGAIN || lease.error() == EBUSY)
        return tell(qblconvmsgs::convStillOpen(name));
    if (lease.error() != 0) {
        if (!m_options.quiet)
            m_report.warning(qblconvmsgs::convUnknownIfOpen(name, tools::reason(lease.error())));
        return;
    }
    const bool isStill = status.get(directory, leaf.c_str(), AT_SYMLINK_NOFOLLOW);
    if (!isStill || !opened.isSameFile(status)) return;
    if (unlinkat(directory, leaf.c_str(), 0) == 0) return tell(qblconvmsgs::convRemoved(name));
    if (errno != ENOENT) m_report.error(qblconvmsgs::convCannotRemove(name, tools::reason(errno)));
}

void Clean::tell(const QBLTypedMessage& message) {
    if (m_options.verbose) m_report.information(message);
}

}  // namespace conv

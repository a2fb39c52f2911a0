#include "QBLCore/FileManagement/QBLFmEntries.hpp"

#include <list>
#include <memory>
#include <system_error>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "QBLCore/FileManagement/internal/QBLFmPath.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

const char kCannotList[] = "QBLFmEntries: cannot list ";
constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void throwUnlisted(const std::string& path, int error) {
    const std::string text = kCannotList + path + ": " + std::generic_category().message(error);
    QBL_THROW(QBLSystemError(error, text.c_str()));
}

/// @param type  as in dirent64
QBLFmEntry::Type typeOf(unsigned type) {
    switch (type) {
        case DT_REG:
            return QBLFmEntry::kFile;
        case DT_DIR:
            return QBLFmEntry::kDirectory;
        case DT_LNK:
            return QBLFmEntry::kLink;
        case DT_FIFO:
            return QBLFmEntry::kFifo;
        case DT_SOCK:
            return QBLFmEntry::kSocket;
        case DT_BLK:
            return QBLFmEntry::kBlockDevice;
        case DT_CHR:
            return QBLFmEntry::kCharacterDevice;
        default:
            return QBLFmEntry::kUnknown;
    }
}

}  // namespace

/// The open directories, from the start to the current one.
struct QBLFmEntries::Walk {
    struct Level {
        QBLFmOpenDir dir;
        std::size_t prefix = 0;  // length of the directory's path with its "/"
    };

    Mode mode;
    std::list<Level> levels;
    std::list<Level> inside;  // the directory at the current position, if it is to be listed
    bool isAtEntry = false;

    explicit Walk(Mode theMode) : mode(theMode) {}

    bool has(Mode bit) const { return (static_cast<unsigned>(mode) & bit) != 0; }

    /// Reads the status of an entry.
    /// @return false if the entry no longer exists
    bool look(const dirent64& found, QBLFmEntry& entry) const {
        entry.m_type = typeOf(found.d_type);
        entry.m_uSize = 0;
        entry.m_iSeconds = 0;
        entry.m_uNanoseconds = entry.m_uPermissions = 0;
        entry.m_iError = 0;
        if (has(kTypesOnly) && entry.m_type != QBLFmEntry::kUnknown) return true;
        QBLFileStatus status;
        if (!status.get(levels.back().dir.descriptor(), found.d_name, AT_SYMLINK_NOFOLLOW)) {
            entry.m_iError = errno;
            return entry.m_iError != ENOENT;
        }
        entry.m_type = typeOf(IFTODT(status.mode()));
        if (has(kTypesOnly)) return true;
        entry.m_uSize = status.size();
        entry.m_uPermissions = status.mode() & 07777;
        entry.m_iSeconds = status.modifiedSeconds();
        entry.m_uNanoseconds = status.modifiedNanoseconds();
        return true;
    }

    /// Opens the directory at the current position, so that its entry can tell if this fails.
    void prepare(QBLFmEntry& entry) {
        if (!entry.isDirectory() || !has(kRecursive)) return;
        inside.emplace_back();
        const int at = levels.back().dir.descriptor();
        const char* const name = entry.m_path.c_str() + entry.m_uName;
        if (inside.back().dir.open(openat64(at, name, kOpenFlags | O_NOFOLLOW))) return;
        entry.m_iError = errno;
        inside.clear();
    }

    /// Makes the prepared directory the current one.
    void enter(QBLFmEntry& entry) {
        if (inside.empty()) return;
        entry.m_path += '/';
        inside.back().prefix = entry.m_path.size();
        levels.splice(levels.end(), inside);
    }
};

QBLFmEntries::QBLFmEntries(const char* path, Mode mode) : m_pWalk(nullptr) {
    if (path == nullptr) throwUnlisted("(null)", EFAULT);
    start(open64(path, kOpenFlags), path, mode);
}

QBLFmEntries::QBLFmEntries(const std::string& path, Mode mode) : m_pWalk(nullptr) {
    if (path.find('\0') != std::string::npos)
        throwUnlisted(path.substr(0, path.find('\0')), EILSEQ);
    start(open64(path.c_str(), kOpenFlags), path.c_str(), mode);
}

QBLFmEntries::QBLFmEntries(const I18NString& path, Mode mode)
    : QBLFmEntries(qblPlatformPath(path), mode) {}

QBLFmEntries::QBLFmEntries(const QBLFmDirectory& directory, Mode mode) : m_pWalk(nullptr) {
    start(openat64(directory.getDescriptor(), ".", kOpenFlags), "", mode);
}

QBLFmEntries::~QBLFmEntries() { delete m_pWalk; }

/// @param directory  the descriptor of the directory, which this function closes; -1 to throw the
///     current errno
void QBLFmEntries::start(int directory, const char* path, Mode mode) {
    QBL_ALLOC_TRY
    QBLFmOpenDir opened;
    if (!opened.open(directory)) throwUnlisted(path, errno);
    auto walk = std::make_unique<Walk>(mode);
    walk->levels.emplace_back();
    m_entry.m_path = path;
    if (*path != '\0' && m_entry.m_path.back() != '/') m_entry.m_path += '/';
    walk->levels.back().prefix = m_entry.m_path.size();
    walk->levels.back().dir.swap(opened);
    m_pWalk = walk.release();
    QBL_ALLOC_CATCH
}

QBLFmEntries::iterator QBLFmEntries::begin() {
    return m_pWalk->isAtEntry || advance() ? iterator(this) : end();
}

bool QBLFmEntries::advance() {
    QBL_ALLOC_TRY
    Walk& walk = *m_pWalk;
    walk.isAtEntry = false;
    walk.enter(m_entry);
    while (!walk.levels.empty()) {
        Walk::Level& level = walk.levels.back();
        m_entry.m_path.resize(level.prefix);
        const dirent64* const found = level.dir.next();
        if (found == nullptr) {
            const int error = errno;
            walk.levels.pop_back();
            if (error != 0) throwUnlisted(m_entry.m_path, error);
        } else if (walk.look(*found, m_entry)) {
            m_entry.m_uName = level.prefix;
            m_entry.m_uDepth = static_cast<unsigned>(walk.levels.size() - 1);
            m_entry.m_path += found->d_name;
            walk.prepare(m_entry);
            return walk.isAtEntry = true;
        }
    }
    QBL_ALLOC_CATCH
    return false;
}

void QBLFmEntries::skipContent() { m_pWalk->inside.clear(); }

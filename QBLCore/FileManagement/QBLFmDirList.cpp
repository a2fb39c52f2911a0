#include <algorithm>
#include <cstring>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmReadDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

/// Returns the number of bytes of the UTF-8 character at the beginning of a text; 1 if there is no
/// valid character.
std::size_t characterWidth(const char* text) {
    const auto at = [text](int i) { return static_cast<unsigned char>(text[i]); };
    const int trails = at(0) < 0xC2 ? 0 : std::min(i18nTrailsAnnounced(at(0)), 3);
    for (int i = 1; i <= trails; ++i)
        if (!i18nIsTrail(at(i))) return 1;
    return static_cast<std::size_t>(trails) + 1;
}

/// Returns true if the name matches the pattern. After a mismatch, only the last "*" takes one more
/// character; an earlier "*" need not change. The time is therefore at most proportional to the
/// product of both lengths.
bool matches(const char* name, const char* pattern) {
    const char* afterStar = nullptr;
    const char* taken = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            afterStar = ++pattern;
            taken = name;
        } else if (*pattern == '?') {
            ++pattern;
            name += characterWidth(name);
        } else if (*pattern == *name) {
            ++pattern;
            ++name;
        } else if (afterStar != nullptr) {
            pattern = afterStar;
            name = taken += characterWidth(taken);
        } else {
            return false;
        }
    }
    while (*pattern == '*') ++pattern;
    return *pattern == '\0';
}

/// Collects the names of files or of directories.
class Collector {
public:
    Collector(std::list<std::string>* target, const char* pattern)
        : m_pTarget(target), m_pPattern(pattern) {}

    bool wanted() const { return m_pTarget != nullptr; }
    void add(const char* name) {
        if (m_pPattern == nullptr || *m_pPattern == '\0' || matches(name, m_pPattern))
            m_names.emplace_back(name);
    }
    void sort() {
        std::sort(m_names.begin(), m_names.end());
        m_sorted.assign(std::make_move_iterator(m_names.begin()),
                        std::make_move_iterator(m_names.end()));
    }
    void finish() {
        if (m_pTarget != nullptr) m_pTarget->swap(m_sorted);
    }

private:
    std::list<std::string>* m_pTarget;
    const char* m_pPattern;
    std::vector<std::string> m_names;
    std::list<std::string> m_sorted;
};

bool isDirectory(int fd, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
    QBLFileStatus status;
    return status.get(fd, entry.d_name, 0) && status.isDirectory();
}

}  // namespace

bool QBLFmDir::readDir(const char* path, std::list<std::string>* files, const char* filePattern,
                       std::list<std::string>* dirs, const char* dirPattern) {
    if (path == nullptr) return qblSetErrno(EFAULT);
    return qblReadDir(open64(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC), files, filePattern, dirs,
                      dirPattern);
}

bool qblReadDir(int fd, std::list<std::string>* files, const char* filePattern,
                std::list<std::string>* dirs, const char* dirPattern) {
    QBLFmOpenDir dir(fd);
    if (!dir.isOpen()) return false;
    return qblSettle([&] {
        Collector fileNames(files, filePattern), dirNames(dirs, dirPattern);
        while (const dirent64* entry = dir.next()) {
            Collector& names = isDirectory(dir.descriptor(), *entry) ? dirNames : fileNames;
            if (names.wanted()) names.add(entry->d_name);
        }
        if (errno != 0) return false;
        fileNames.sort();
        dirNames.sort();
        fileNames.finish();
        dirNames.finish();
        return true;
    });
}

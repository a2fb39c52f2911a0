#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "QBLCore/Base/QBLFileLook.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmReadDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

/// Returns the number of bytes of the UTF-8 character at the beginning of a text; 1 if there is no
/// valid character.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // of ICU's macro
#pragma GCC diagnostic ignored "-Wsign-conversion"
std::size_t characterWidth(const char* text) {
    int width = 0;
    UChar32 character = 0;
    U8_NEXT(text, width, -1, character);
    return character < 0 ? 1 : static_cast<std::size_t>(width);
}
#pragma GCC diagnostic pop

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

/// A name, and the first bytes after the prefix that all names share, as a big-endian number. Most
/// comparisons compare only the numbers and do not read the names.
struct SortKey {
    std::uint64_t start;
    std::list<std::string>::iterator name;

    SortKey(std::list<std::string>::iterator at, std::size_t prefix) : start(0), name(at) {
        constexpr std::size_t kBytes = sizeof start;
        const std::size_t count = std::min(at->size() - prefix, kBytes);
        for (std::size_t i = 0; i < kBytes; ++i)
            start = start << 8 | (i < count ? static_cast<unsigned char>((*at)[prefix + i]) : 0U);
    }
    bool operator<(const SortKey& other) const {
        return start != other.start ? start < other.start : *name < *other.name;
    }
};

/// Returns the length in bytes of the longest prefix that all names share.
std::size_t commonPrefix(const std::list<std::string>& names) {
    std::size_t length = names.empty() ? 0 : names.front().size();
    for (const std::string& name : names) {
        const auto end = name.begin() + static_cast<std::ptrdiff_t>(std::min(length, name.size()));
        const auto differs = std::mismatch(name.begin(), end, names.front().begin()).first;
        length = static_cast<std::size_t>(differs - name.begin());
    }
    return length;
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
    /// Sorts the names by their bytes.
    void sort() {
        const std::size_t prefix = commonPrefix(m_names);
        std::vector<SortKey> keys;
        keys.reserve(m_names.size());
        for (auto at = m_names.begin(); at != m_names.end(); ++at) keys.emplace_back(at, prefix);
        std::sort(keys.begin(), keys.end());
        for (const SortKey& key : keys) m_names.splice(m_names.end(), m_names, key.name);
    }
    void finish() {
        if (m_pTarget != nullptr) m_pTarget->swap(m_names);
    }

private:
    std::list<std::string>* m_pTarget;
    const char* m_pPattern;
    std::list<std::string> m_names;
};

/// @return false with errno set if the system cannot tell; a dangling link is not a directory
bool findType(int fd, const dirent64& entry, bool& isDirectory) {
    isDirectory = entry.d_type == DT_DIR;
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return true;
    QBLFileStatus status;
    if (!status.get(fd, entry.d_name, 0)) return qblIsAbsence(errno);
    isDirectory = status.isDirectory();
    return true;
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
            bool isDirectory;
            if (!findType(dir.descriptor(), *entry, isDirectory)) return false;
            Collector& names = isDirectory ? dirNames : fileNames;
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

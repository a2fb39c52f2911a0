#include <cstring>
#include <new>
#include <optional>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmCharacters.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"
#include "QBLCore/FileManagement/shared/QBLFmSetting.hpp"
#include "QBLCore/FileManagement/skipRootPath.hpp"

namespace {

struct WorkingDir : QBLFmSetting {};

bool endsInSeparator(const std::string& path) {
    if (path.empty() || !qblIsSeparator(path.back())) return false;
    bool last = false;
    for (QBLFmCharacters at(path.data(), path.size()); !at.atEnd(); at.stepAnyhow())
        last = at.onSeparator();
    return last;
}

bool isFile(const std::string& path) {
    QBLFileStatus status;
    if (status.get(path.c_str())) return !status.isDirectory();
    if (errno == ENOMEM) throw std::bad_alloc();
    return false;
}

}  // namespace

void QBLFmDir::joinPath(std::string& base, const char* relative) {
    if (relative == nullptr || *relative == '\0') return;
    QBL_ALLOC_TRY
    std::string tail(relative);  // `relative` may point into the base
    if (base.empty() || skipRootPath(tail.c_str()) > 0) {
        base.swap(tail);
        return;
    }
    const bool separated = endsInSeparator(base);
    base.reserve(base.size() + tail.size() + 1);  // so that no append fails
    if (!separated) base += '/';
    base += tail;
    QBL_ALLOC_CATCH
}

bool QBLFmDir::splitPath(const char* path, std::string* directory, std::string* file) {
    if (path == nullptr || (directory == nullptr && file == nullptr)) return false;
    return qblSettle([=] {
        const std::string whole(path);  // `path` may point into a result
        const long measured = skipRootPath(whole.c_str());
        const std::size_t root = measured > 0 ? static_cast<std::size_t>(measured) : 0;
        std::size_t end = root, begin = root;  // end of the directory, begin of the file
        QBLFmCharacters at(whole.data() + root, whole.size() - root);
        for (; !at.atEnd(); at.stepAnyhow()) {
            if (!at.onSeparator()) continue;
            end = root + at.position();
            begin = end + 1;
        }
        if (directory != nullptr) directory->assign(whole, 0, end);
        if (file != nullptr) *file = whole.substr(begin);
        return true;
    });
}

void QBLFmDir::setEffectiveWorkingDir(const char* path) {
    QBL_ALLOC_TRY
    qblImmortal<WorkingDir>().set(path);
    QBL_ALLOC_CATCH
}

void QBLFmDir::resolveEffectivePath(std::string& path) {
    QBL_ALLOC_TRY
    std::optional<std::string> dir = qblImmortal<WorkingDir>().get();
    if (!dir || skipRootPath(path.c_str()) > 0) return;
    if (path.compare(0, dir->size(), *dir) == 0) return;
    joinPath(*dir, path.c_str());
    path.swap(*dir);
    QBL_ALLOC_CATCH
}

std::string QBLFmDir::getFileFullPath(const char* fileName, const char* basePath,
                                      const std::list<std::string>& searchDirs) {
    QBL_ASSERT(fileName);
    QBL_ASSERT(basePath);
    if (*fileName == '\0') return std::string();
    QBL_ALLOC_TRY
    std::string path(basePath);
    joinPath(path, fileName);  // a name with a root replaces the base
    if (isFile(path)) return path;
    if (skipRootPath(fileName) > 0) return std::string();
    for (const std::string& dir : searchDirs) {
        path = basePath;
        joinPath(path, dir.c_str());
        joinPath(path, fileName);
        if (isFile(path)) return path;
    }
    return std::string();
    QBL_ALLOC_CATCH
}

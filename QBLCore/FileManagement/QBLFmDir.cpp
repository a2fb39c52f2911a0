#include "QBLCore/FileManagement/QBLFmDir.hpp"

#include <cstdio>

#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

bool QBLFmDir::exists(const char* path, unsigned short mode) {
    if (path == nullptr) return qblSetErrno(EFAULT);
    QBLFileStatus status;
    if (!status.get(path)) return false;
    const unsigned type = mode & static_cast<unsigned>(S_IFMT), permissions = mode & ~type;
    if ((status.mode() & S_IFMT) != type)
        return qblSetErrno(type == S_IFDIR ? ENOTDIR : status.isDirectory() ? EISDIR : EINVAL);
    return (status.mode() & permissions) == permissions || qblSetErrno(EACCES);
}

bool QBLFmDir::createDir(const char* path) {
    if (exists(path, S_IFDIR)) return true;
    if (path == nullptr) return false;
    if (mkdir(path, 0777) == 0) return true;
    const int error = errno;
    return exists(path, S_IFDIR) || qblSetErrno(error);  // another process may have created it
}

bool QBLFmDir::createRecursiveDir(const char* path) {
    if (path == nullptr) return qblSetErrno(EFAULT);
    if (createDir(path)) return true;
    if (errno != ENOENT) return false;
    return qblSettle([path] {
        std::string part(path);
        // Only "/" is a separator here: for the system, a backslash is part of a name.
        for (std::size_t i = part.find('/', 1); i != std::string::npos; i = part.find('/', i + 1)) {
            part[i] = '\0';
            if (!createDir(part.c_str())) return false;
            part[i] = '/';
        }
        return createDir(path);
    });
}

bool QBLFmDir::removeFile(const char* path) {
    if (path == nullptr) return qblSetErrno(EFAULT);
    return std::remove(path) == 0;
}

bool QBLFmDir::renameFile(const char* from, const char* to) {
    if (from == nullptr || to == nullptr) return qblSetErrno(EFAULT);
    return std::rename(from, to) == 0;
}

#include "QBLCore/FileManagement/QBLFmDir.hpp"

#include <cstdio>

#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

bool QBLFmDir::exists(const char* path, unsigned short mode) {
    if (path == nullptr) return qblFail(EFAULT);
    struct stat64 status;
    if (stat64(path, &status) != 0) return false;
    const unsigned permissions = mode & ~static_cast<unsigned>(S_IFMT);
    return (status.st_mode & S_IFMT) == (mode & S_IFMT) &&
           (status.st_mode & permissions) == permissions;
}

bool QBLFmDir::createDir(const char* path) {
    if (exists(path, S_IFDIR)) return true;
    if (path == nullptr) return false;
    if (mkdir(path, 0777) == 0) return true;
    const int error = errno;
    return exists(path, S_IFDIR) || qblFail(error);  // another may have made it meanwhile
}

bool QBLFmDir::createRecursiveDir(const char* path) {
    if (path == nullptr) return qblFail(EFAULT);
    if (createDir(path)) return true;
    if (errno != ENOENT) return false;
    std::string part(path);
    // Only "/" separates here: to the system a backslash is part of a name.
    for (std::size_t i = part.find('/', 1); i != std::string::npos; i = part.find('/', i + 1)) {
        part[i] = '\0';
        if (!createDir(part.c_str())) return false;
        part[i] = '/';
    }
    return createDir(path);
}

bool QBLFmDir::removeFile(const char* path) {
    if (path == nullptr) return qblFail(EFAULT);
    return std::remove(path) == 0;
}

bool QBLFmDir::renameFile(const char* from, const char* to) {
    if (from == nullptr || to == nullptr) return qblFail(EFAULT);
    return std::rename(from, to) == 0;
}

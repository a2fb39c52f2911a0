#include "tools/common/Files.hpp"

#include <cerrno>

#include "QBLCore/Base/QBLFileStatus.hpp"

namespace tools {

namespace {

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

bool isSameFile(const std::string& a, const std::string& b) {
    QBLFileStatus first, second;
    const bool isFirst = first.get(a.c_str()), isSecond = second.get(b.c_str());
    if (isFirst || isSecond) return isFirst && isSecond && first.isSameFile(second);
    return nameOf(a) == nameOf(b) && first.get(directoryOf(a).c_str()) &&
           second.get(directoryOf(b).c_str()) && first.isSameFile(second);
}

bool isAbsent(const std::string& path) {
    QBLFileStatus status;
    return !status.get(path.c_str()) && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace tools

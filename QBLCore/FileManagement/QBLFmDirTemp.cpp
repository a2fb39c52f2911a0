#include <sys/random.h>

#include <cstdlib>
#include <ctime>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"
#include "QBLCore/FileManagement/shared/QBLFmSetting.hpp"

namespace {

constexpr int kAttempts = 500;
const char kPrefix[] = "QBLFm";
const char* const kVariables[] = {"TMP", "tmp", "TEMP", "temp"};

struct TempDir : QBLFmSetting {};

/// Returns the value of the first variable that is set, even if it is unusable. Returns null in a
/// program that runs with more rights than its caller, because the caller sets the variables.
const char* tempVariable() {
    for (const char* name : kVariables)
        if (const char* value = secure_getenv(name)) return value;
    return nullptr;
}

/// How to create a directory or a file, and the number that makes its name differ from earlier
/// names.
struct Kind {
    bool (*make)(const char* path);
    unsigned long long (*number)(int attempt);
};

/// Tries names until `kind.make` succeeds. Only this call can show that a name is unused.
bool createTemp(const char* basePath, const char* prefix, std::string& result, const char* suffix,
                const Kind& kind) {
    std::string path;
    if (basePath == nullptr) {
        if (!QBLFmDir::getTempPath(path)) return false;
    } else if (QBLFmDir::exists(basePath, kQblWritableDir)) {
        path = basePath;
    } else {
        return false;
    }
    QBLFmDir::joinPath(path, prefix != nullptr && *prefix != '\0' ? prefix : kPrefix);
    path += std::to_string(static_cast<long long>(std::time(nullptr)));
    const std::size_t stem = path.size();
    bool made = false;
    for (int counter = 0; counter < kAttempts && !made; ++counter) {
        path.resize(stem);
        path += std::to_string(kind.number(counter));
        if (suffix != nullptr) path += suffix;
        made = kind.make(path.c_str());
    }
    result.swap(path);
    return made;
}

template <mode_t kMode>
bool makeDir(const char* path) {
    return mkdir(path, kMode) == 0;
}

template <mode_t kMode>
bool makeFile(const char* path) {
    const int fd = open64(path, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kMode);
    // A failed close cannot lose anything of an empty file. Another attempt would leave this file.
    if (fd >= 0) qblCloseQuietly(fd);
    return fd >= 0;
}

unsigned long long counted(int attempt) { return static_cast<unsigned long long>(attempt); }

unsigned long long random(int attempt) {
    unsigned long long number = 0;
    const ssize_t got = getrandom(&number, sizeof number, GRND_NONBLOCK);
    return got == static_cast<ssize_t>(sizeof number) ? number : counted(attempt);
}

const Kind kDir = {&makeDir<0777>, &counted}, kFile = {&makeFile<0666>, &counted};
const Kind kPrivateDir = {&makeDir<0700>, &random}, kPrivateFile = {&makeFile<0600>, &random};

}  // namespace

void QBLFmDir::setTempPath(const char* path) {
    QBL_ALLOC_TRY
    qblImmortal<TempDir>().set(path);
    QBL_ALLOC_CATCH
}

bool QBLFmDir::getTempPath(std::string& result) {
    return qblSettle([&result] {
        std::optional<std::string> set = qblImmortal<TempDir>().get();
        result.clear();
        if (set) {
            result.swap(*set);
            return true;
        }
        for (const char* dir : {tempVariable(), "/tmp", "."}) {
            if (dir == nullptr || !exists(dir, kQblWritableDir)) continue;
            result = dir;
            return true;
        }
        return false;
    });
}

bool QBLFmDir::createTempDir(const char* basePath, const char* prefix, std::string& result,
                             const char* suffix) {
    return qblSettle([&] { return createTemp(basePath, prefix, result, suffix, kDir); });
}

bool QBLFmDir::createTempDir(const char* basePath, const char* prefix, std::string& result) {
    return createTempDir(basePath, prefix, result, nullptr);
}

bool QBLFmDir::createTempFile(const char* basePath, const char* prefix, std::string& result,
                              const char* suffix) {
    return qblSettle([&] { return createTemp(basePath, prefix, result, suffix, kFile); });
}

bool QBLFmDir::createTempFile(const char* basePath, const char* prefix, std::string& result) {
    return createTempFile(basePath, prefix, result, nullptr);
}

bool QBLFmDir::createPrivateTempDir(const char* basePath, const char* prefix, std::string& result,
                                    const char* suffix) {
    return qblSettle([&] { return createTemp(basePath, prefix, result, suffix, kPrivateDir); });
}

bool QBLFmDir::createPrivateTempFile(const char* basePath, const char* prefix, std::string& result,
                                     const char* suffix) {
    return qblSettle([&] { return createTemp(basePath, prefix, result, suffix, kPrivateFile); });
}

#include "i18n/cpp/resources/i18n_bin_dir.hpp"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/shared/QBLFmSetting.hpp"
#include "i18n/cpp/resources/i18n_text_file.hpp"

namespace {

struct BinDir : QBLFmSetting {};

constexpr unsigned short kReadableFile = S_IFREG | S_IRUSR;
constexpr unsigned short kDirectory = S_IFDIR | S_IXUSR;
constexpr std::size_t kLongestLink = 4096;

/// @throws std::bad_alloc if the system had no memory to examine the path
bool exists(const std::string& path, unsigned short mode) {
    const bool found = QBLFmDir::exists(path.c_str(), mode);
    if (!found && errno == ENOMEM) throw std::bad_alloc();
    return found;
}

std::string joined(std::string base, const char* relative) {
    QBLFmDir::joinPath(base, relative);
    return base;
}

/// Returns the value of an environment variable. Ignores the environment if the program has more
/// rights than the user who started it.
std::string environment(const char* name) {
    const char* value = secure_getenv(name);
    return value != nullptr ? value : "";
}

std::string binBelow(const std::string& root) {
    return root.empty() ? root : joined(root, "./bin");
}

std::string named() { return environment("TAV_EXEC_PATH"); }

std::string belowRoot() { return binBelow(environment("TAV_ROOT")); }

std::string besideLibrary() {
    const std::string path = environment("LD_LIBRARY_PATH");
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find(':', begin), path.size());
        std::string entry = path.substr(begin, end - begin);
        begin = end + 1;
        if (!entry.empty() && exists(joined(entry, "libQBLCore.so"), kReadableFile)) return entry;
    }
    return "";
}

std::string besideConfiguration() {
    return exists("../configuration/tavstartup.xml", kReadableFile) ? "../bin" : "";
}

std::string linked() {
    std::string line;
    if (!I18NTextFile("./tavroot.link").readBeginning(line, kLongestLink)) return "";
    line.erase(line.find_last_not_of(" \t\r") + 1);
    return binBelow(line);
}

struct Free {
    void operator()(char* text) const { std::free(text); }
};

/// Returns the directory that the library was loaded from; empty if it is not known.
std::string libraryDirectory() {
    Dl_info library;
    if (dladdr(reinterpret_cast<const void*>(&libraryDirectory), &library) == 0 ||
        library.dli_fname == nullptr)
        return std::string();
    const std::string path(library.dli_fname);
    const std::size_t separator = path.rfind('/');
    const std::string directory =
        separator == std::string::npos ? "" : path.substr(0, std::max<std::size_t>(separator, 1));
    const std::unique_ptr<char, Free> real(realpath(directory.c_str(), nullptr));
    if (real == nullptr && errno == ENOMEM) throw std::bad_alloc();
    return real != nullptr ? real.get() : directory;
}

}  // namespace

void determineBinDir() {
    QBL_ALLOC_TRY
    BinDir& binDir = qblImmortal<BinDir>();
    if (binDir.get()) return;
    for (const auto find : {named, belowRoot, besideLibrary, besideConfiguration, linked}) {
        const std::string found = find();
        if (found.empty()) continue;
        binDir.set(found.c_str());
        return;
    }
    QBL_ALLOC_CATCH
}

std::string i18nBinDir() { return qblImmortal<BinDir>().get().value_or(""); }

std::string i18nResolveBinDir(const std::string& path) {
    return path.compare(0, 2, "$@") == 0 ? joined(i18nBinDir(), path.c_str() + 2) : path;
}

std::string i18nShareDirectory() {
    const std::string library = libraryDirectory();
    if (library.empty()) return std::string();
    std::string beside = joined(library, "../share/qblcore");
    if (exists(beside, kDirectory)) return beside;
    std::string above = joined(library, "../../share/qblcore");
    return exists(above, kDirectory) ? above : beside;
}

// Rows for the system calls that no other row makes.
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <list>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"
#include "QBLCore/Threads/QBLSignalWaiter.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadRWGuard.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "tests/faults/Rows.hpp"
#include "tests/support/TempTree.hpp"

namespace {

using faults::calmly;
using faults::kAbsence;
using faults::kBadAlloc;
using faults::Kind;
using faults::kOther;
using faults::kOutOfMemory;
using faults::kRefuses;
using faults::kThreadResource;
using faults::need;
using faults::System;

const TempTree& tree() {
    static const TempTree kTree;
    return kTree;
}

/// @param documented  another error number that the header names
void needErrno(bool done, int error, int documented = 0) {
    if (!done && error != faults::injectedError() && error != documented)
        throw faults::Broken{"errno is " + std::to_string(error)};
    need(done);
}
/// For an operation that returns false and sets errno.
template <class Operation>
void needErrnoOf(Operation operation) {
    const bool done = operation();
    needErrno(done, errno);
}

/// Replaces a file that has an attribute and, where possible, another owner. The old file must be
/// unchanged if it is not replaced.
std::string replaced(bool keep, const char* path = nullptr) {
    const std::string file = calmly([] {
        std::string name = tree().file("file", "old");
        QBLFmDir::removeFile(tree()("kept").c_str());
        setxattr(name.c_str(), "user.attribute", "value", 5, 0);
        if (chown(name.c_str(), 1, 1) != 0) return name;  // only root may do this
        return name;
    });
    const auto state = [&] {
        char value[8] = {};
        const ssize_t size = getxattr(file.c_str(), "user.attribute", value, sizeof value);
        return tree().text("file") + (size == 5 ? value : "lost");
    };
    QBLFmReplaceFile version;
    const auto check = [&](bool done, int documented = 0) {
        if (!done && !version.isCommitted() && calmly(state) != "oldvalue")
            throw faults::Broken{"was replaced"};
        needErrno(done, version.getLastErrorNumber(), documented);
    };
    QBLFmFile old;
    need(calmly([&] { return old.open(file.c_str(), QBLFmFile::existing, 0); }));
    check(version.open(path != nullptr ? path : file.c_str()),
          EINVAL);  // the link may be gone when its status is read
    check(version.write("new", 3));
    check(keep ? version.commitOver(old.getFileDescriptor()) : version.commit());
    if (keep) check(version.keepReplaced("kept"), ENOENT);
    return calmly(state);
}

std::string throughLink() {
    static const std::string kLink = calmly([] {
        std::string link = tree()("link");
        if (symlink("file", link.c_str()) != 0) throw faults::Broken{"no link"};
        return link;
    });
    return replaced(false, kLink.c_str());
}

std::string listedLinks() {
    static const std::string kRoot = calmly([] {
        tree().dir("links/folder/inner");
        tree().file("links/folder/inner/file");
        if (symlink("folder", tree()("links/toFolder").c_str()) != 0 ||
            symlink("absent", tree()("links/dangling").c_str()) != 0)
            throw faults::Broken{"no link"};
        return tree()("links");
    });
    std::list<std::string> files, folders;
    needErrnoOf(
        [&] { return QBLFmDir::readDir(kRoot.c_str(), &files, nullptr, &folders, nullptr); });
    return calmly([&] {
        std::string all;
        for (const std::string& name : files) all += "file " + name + "\n";
        for (const std::string& name : folders) all += "folder " + name + "\n";
        return all;
    });
}

/// Writes and reads at the end of a file of 5 GiB without data.
std::string large() {
    constexpr long long kSize = 5LL << 30;
    static const std::string kPath = tree()("large");
    QBLFmFile64 file;
    needErrnoOf([&] { return file.open(kPath.c_str(), QBLFmFile64::create, 0); });
    const auto refuse = [&](bool done) { needErrno(done, file.getLastErrorNumber()); };
    refuse(file.truncate(kSize));
    refuse(file.seek(-1, QBLFmFile64::end) == kSize - 1);
    need(file.write("xyz", 3) == 3);
    refuse(file.seek(kSize, QBLFmFile64::begin) == kSize);
    char bytes[4] = {};
    need(file.read(bytes, 3) == 2 && file.getLength() == kSize + 2);
    refuse(file.close());
    return calmly([&] {
        QBLFmFile small;
        const bool opened = small.open(kPath.c_str(), QBLFmFile::existing, 1);
        const bool fits = sizeof(long) > 4;
        if (opened != fits || (!fits && small.getLastErrorNumber() != EOVERFLOW))
            throw faults::Broken{"opened with short offsets"};
        return std::string(bytes);
    });
}

const faults::Rows kRows{
    {"QBLFmReplaceFile.throughLink", kRefuses, throughLink, kAbsence},
    {"QBLFmReplaceFile.noExchange", kRefuses,
     [] {
         const System system(Kind::kNoExchange);
         return replaced(true);
     },
     kAbsence},
    {"QBLFmReplaceFile.closedFolder", kRefuses,
     [] {
         const System system(Kind::kClosedFolders);
         return replaced(false);
     },
     kAbsence},
    {"QBLFmDir.readDirLinks", kRefuses, listedLinks, kAbsence},
    {"QBLFmDir.readDirUnknownTypes", kRefuses,
     [] {
         const System system(Kind::kUnknownTypes);
         return listedLinks();
     },
     kAbsence},
    {"QBLFmDir.removeDirUnknownTypes", kRefuses,
     [] {
         const std::string path = calmly([] {
             tree().dir("remove/folder/inner");
             tree().file("remove/folder/file");
             return tree()("remove");
         });
         const System system(Kind::kUnknownTypes);
         needErrnoOf([&] { return QBLFmDir::removeDir(path.c_str()); });
         need(!QBLFmDir::exists(path.c_str(), S_IFDIR) && errno == ENOENT);
         return std::string();
     }},
    {"QBLFmFile64.large", kRefuses, large},
    {"QBLPluginLibraryLoader", kOutOfMemory | kBadAlloc | kOther,
     [] {
         static const std::string kPath = PLUGIN_FILE;
         QBLPluginLibraryLoader::unload(QBLPluginLibraryLoader::load(kPath));
         return std::string();
     }},
    {"QBLSignalWaiter", kThreadResource,
     [] {
         QBLSignalWaiter waiter({SIGWINCH});
         need(waiter.timedWait(1) == 0);
         calmly([] { return raise(SIGWINCH); });
         need(waiter.wait() == SIGWINCH);
         return std::string();
     }},
    {"QBLThread.sleep", faults::kNothing,
     [] {
         QBLThread::sleep(1);
         return std::string();
     }},
    {"QBLThreadRWLock.boundedLock", kThreadResource | kOutOfMemory,
     [] {
         QBLThreadRWLock lock;
         const QBLThreadRWGuard guard(lock, 0);
         need(!lock.boundedLock(1));
         return std::string();
     }},
    {"QBLThreadSemaphore.boundedWait", kThreadResource | kRefuses | kOutOfMemory,
     [] {
         QBLThreadSemaphore semaphore(0);
         need(!semaphore.boundedWait(1) && !semaphore.timedWait(1));
         semaphore.post();
         need(semaphore.tryWait());
         return std::string();
     }},
};

}  // namespace

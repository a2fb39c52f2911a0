// Rows for the system calls that no other row makes.
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

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
        const std::string now = done ? "" : calmly(state);
        if (!done && (version.isCommitted() ? now.compare(0, 3, "new") != 0 : now != "oldvalue"))
            throw Broken{"has " + now};
        needErrno(done, version.getLastErrorNumber(), documented);
    };
    QBLFmFile old;
    need(calmly([&] { return old.open(file.c_str(), QBLFmFile::existing, 0); }));
    check(version.open(path != nullptr ? path : file.c_str()),
          EINVAL);  // the link may be gone when its status is read
    check(version.write("new", 3));
    check(keep ? version.commitOver(old.getFileDescriptor()) : version.commit());
    if (keep) check(version.keepReplaced("kept"), ENOENT);
    std::string now = calmly(state);
    if (now.compare(0, 3, "new") != 0) throw Broken{"has " + now};
    return now;
}

/// Returns a link in the tree.
std::string linked(const char* target, const char* name) {
    std::string link = tree()(name);
    if (symlink(target, link.c_str()) != 0) throw Broken{"no link"};
    return link;
}

std::string listedLinks() {
    static const std::string kRoot = calmly([] {
        tree().dir("links/folder/inner");
        tree().file("links/folder/inner/file");
        linked("folder", "links/toFolder");
        linked("absent", "links/dangling");
        return tree()("links");
    });
    std::list<std::string> files, folders;
    needErrno(QBLFmDir::readDir(kRoot.c_str(), &files, nullptr, &folders, nullptr));
    return calmly([&] { return shown(files) + "folders\n" + shown(folders); });
}

/// Writes and reads at the end of a file of 5 GiB without data.
std::string large() {
    constexpr long long kSize = 5LL << 30;
    static const std::string kPath = tree()("large");
    QBLFmFile64 file;
    needErrno(file.open(kPath.c_str(), QBLFmFile64::create, 0));
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
            throw Broken{"opened with short offsets"};
        return std::string(bytes);
    });
}

/// Adds a row for a system that differs from this one.
template <class Operation>
void on(Kind kind, const char* name, Operation operation) {
    const auto run = [kind, operation] {
        const System system(kind);
        return operation();
    };
    add(name, kRefuses, kAbsence, run);
}

const bool kRows = [] {
    add("QBLFmReplaceFile.throughLink", kRefuses, kAbsence, [] {
        static const std::string kLink = calmly([] { return linked("file", "link"); });
        return replaced(false, kLink.c_str());
    });
    on(Kind::kUsual, "QBLFmReplaceFile.commit", [] { return replaced(false); });
    on(Kind::kUsual, "QBLFmReplaceFile.commitOver", [] { return replaced(true); });
    on(Kind::kNoExchange, "QBLFmReplaceFile.noExchange", [] { return replaced(true); });
    on(Kind::kClosedFolders, "QBLFmReplaceFile.closedFolder", [] { return replaced(false); });
    on(Kind::kUsual, "QBLFmDir.readDirLinks", listedLinks);
    on(Kind::kUnknownTypes, "QBLFmDir.readDirUnknownTypes", listedLinks);
    add("QBLFmDir.removeDirUnknownTypes", kRefuses, [] {
        const std::string path = calmly([] {
            tree().dir("remove/folder/inner");
            tree().file("remove/folder/file");
            return tree()("remove");
        });
        const System system(Kind::kUnknownTypes);
        needErrno(QBLFmDir::removeDir(path.c_str()));
        need(!QBLFmDir::exists(path.c_str(), S_IFDIR) && errno == ENOENT);
    });
    add("QBLFmFile64.large", kRefuses, large);
    add("QBLPluginLibraryLoader", kOutOfMemory | kBadAlloc | kOther, [] {
        static const std::string kPath = PLUGIN_FILE;
        QBLPluginLibraryLoader::unload(QBLPluginLibraryLoader::load(kPath));
        const QBLPlugin plugin(kPath);
    });
    add("QBLSignalWaiter", kThreadResource, [] {
        QBLSignalWaiter waiter({SIGWINCH});
        need(waiter.timedWait(1) == 0);
        calmly([] { return raise(SIGWINCH); });
        need(waiter.wait() == SIGWINCH);
    });
    add("QBLThread.sleep", kNothing, [] { QBLThread::sleep(1); });
    add("QBLThreadRWLock.boundedLock", kThreadResource | kOutOfMemory, [] {
        QBLThreadRWLock lock;
        const QBLThreadRWGuard guard(lock, 0);
        need(!lock.boundedLock(1));
    });
    add("QBLThreadSemaphore.boundedWait", kThreadResource | kRefuses | kOutOfMemory, [] {
        QBLThreadSemaphore semaphore(0);
        need(!semaphore.boundedWait(1) && !semaphore.timedWait(1));
        semaphore.post();
        need(semaphore.tryWait());
    });
    return true;
}();

}  // namespace
}  // namespace fault

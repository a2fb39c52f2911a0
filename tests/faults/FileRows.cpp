#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

/// A folder with files and folders, whose names are not ASCII.
const std::string kRoot = [] {
    tree().dir("in/a folder with a long name/another folder with a long name");
    tree().file("in/a folder with a long name/c", "three\n");
    return tree()("in");
}();
const std::string kFile =
    tree().file("in/b\u00E9", "one\n" + std::string(70000, 'x') + "\ntwo \u65E5\n");
const std::string kOut = tree().dir("out");
const I18NString kRootText(kRoot), kOutText(kOut);
const char* pathOf(const std::string& path) { return path.c_str(); }
const I18NString& pathOf(const I18NString& path) { return path; }

template <class Cleanup>
void needErrnoOr(bool done, Cleanup cleanup) {
    const int error = errno;
    if (!done) calmly(cleanup);
    needErrno(done, error);
}

/// Opens, writes, reads and closes a file.
template <class File>
std::string roundTrip() {
    File file, other;
    const std::string path = calmly([] { return kOut + "/file"; });
    needErrno(file.open(path.c_str(), File::create, 0));
    need(file.write("text", 4) == 4 && file.flush() && file.truncate(3));
    file.seek(0, File::begin);
    char bytes[8] = {};
    need(file.read(bytes, 8) == 3 && file.getLength() == 3);
    const I18NString name = calmly([&] { return I18NString(path); });
    needErrno(other.open(name, File::existing, 1));
    need(other.getFileDescriptor() != file.getFileDescriptor() && file.append(other));
    static_cast<void>(file.getLastErrorMessage());
    need(other.close() && file.close());
    return calmly([&] { return std::string(bytes); });
}

/// Makes and removes folders and files below a path.
template <class Text>
void makeAndRemove(const Text& base) {
    const Text deep = calmly([&] { return base + "/y/z"; });
    const auto clean = [&] { QBLFmDir::removeDir(pathOf(base)); };
    needErrnoOr(QBLFmDir::createRecursiveDir(pathOf(deep)), clean);
    needErrnoOr(QBLFmDir::removeDir(pathOf(base)), clean);
    needErrnoOr(QBLFmDir::createDir(pathOf(base)) && QBLFmDir::exists(pathOf(base), S_IFDIR) &&
                    QBLFmDir::renameFile(pathOf(base), pathOf(base)) &&
                    QBLFmDir::removeFile(pathOf(base)),
                clean);
}

template <class Text, class Path>
void makeTemporaries(Path* base, Path* prefix, Path* suffix) {
    bool (*const all[])(Path*, Path*, Text&, Path*) = {
        QBLFmDir::createTempFile, QBLFmDir::createPrivateTempFile, QBLFmDir::createTempDir,
        QBLFmDir::createPrivateTempDir};
    for (const auto create : all) {
        Text made;
        needErrno(create(base, prefix, made, suffix));
        const Calm calm;
        QBLFmDir::removeFile(pathOf(made));
    }
}

template <class Text, class Pattern = const char*>
std::string namesIn(const Text& folder, Pattern ofFiles, Pattern ofFolders) {
    std::list<Text> files, folders;
    needErrno(QBLFmDir::readDir(pathOf(folder), &files, ofFiles, &folders, ofFolders));
    return calmly([&] { return shown(files) + shown(folders); });
}

template <class Text>
Text joinPaths(const Text& base, const Text& relative) {
    Text path = calmly([&] { return base; }), directory, file, temp;
    QBLFmDir::joinPath(path, pathOf(relative));
    needErrno(QBLFmDir::splitPath(pathOf(path), &directory, &file));
    needErrno(QBLFmDir::getTempPath(temp));
    QBLFmDir::resolveEffectivePath(file);
    return calmly([&] { return directory + file + temp; });
}

template <class Text>
std::string changeSettings(const Text& base) {
    QBLFmDir::setTempPath(pathOf(base));
    QBLFmDir::setEffectiveWorkingDir(pathOf(base));
    std::string file = calmly([] { return std::string("a/relative/path/of/some/length"); }), path;
    QBLFmDir::resolveEffectivePath(file);
    calmly([&] {
        QBLFmDir::getTempPath(path);
        QBLFmDir::setTempPath(nullptr);
        QBLFmDir::setEffectiveWorkingDir(nullptr);
        file += path;
    });
    return file;
}

std::string listed(QBLFmEntries&& entries) {
    std::string all;
    for (const QBLFmEntry& entry : entries) {
        const Calm calm;
        if (entry.getErrorNumber() != 0) throw Refused();
        all.append(entry.getName()).append(" ").append(std::to_string(entry.getSize()));
    }
    return all;
}

/// Reads all lines. No line may follow a failure.
std::string linesOf(QBLFmLines&& lines) {
    std::string all;
    try {
        for (const std::string_view line : lines) calmly([&] { all += line; });
    } catch (const QBLThrowable&) {
        const Calm calm;
        if (lines.begin() != lines.end()) throw Broken{"a line after a failure"};
        throw;
    }
    return all;
}

const bool kRows = [] {
    add("QBLFmFile", kRefuses, roundTrip<QBLFmFile>);
    add("QBLFmFile64", kRefuses, roundTrip<QBLFmFile64>);
    add("QBLFmReplaceFile.openIn", kRefuses, [] {
        QBLFmDirectory folder;
        needErrno(folder.open(kOut.c_str()));
        QBLFmReplaceFile file;
        needErrno(file.open(folder, "replaced"));
        need(file.write("new", 3));
        needErrno(file.flush());
        needErrno(file.commit());
        return calmly([] { return tree().text("out/replaced"); });
    });
    add("QBLFmDirectory", kRefuses | kOutOfMemory | kBadAlloc | kOther, [] {
        QBLFmDirectory parent, folder;
        std::string name;
        needErrno(parent.openParent(kRoot.c_str(), name));
        needErrno(folder.open(parent, name.c_str()));
        needErrno(folder.create(parent, "made", 0700));
        needErrno(parent.rename("made", "made"));
        QBLFmEntries(parent, QBLFmEntries::kRecursive).begin();
        need(calmly([] { return QBLFmDir::removeDir(tree()("made").c_str()); }));
        std::list<std::string> files, dirs;
        needErrno(parent.readDir(&files, nullptr, &dirs, nullptr));
        return calmly([&] { return name + shown(files) + shown(dirs); });
    });
    add("QBLFmDir.readDir", kRefuses, [] { return namesIn<std::string>(kRoot, "*", "a*"); });
    add("QBLFmDir.readDirStrings", kRefuses, [] {
        const I18NString pattern("*");
        return namesIn<I18NString, const I18NString*>(kRootText, &pattern, nullptr);
    });
    add("QBLFmDir.makeAndRemove", kRefuses,
        [] { makeAndRemove(calmly([] { return kOut + "/x"; })); });
    add("QBLFmDir.makeAndRemoveStrings", kRefuses,
        [] { makeAndRemove(calmly([] { return kOutText + "/\u00E9"; })); });
    add("QBLFmDir.temporaries", kRefuses, [] {
        makeTemporaries<std::string, const char>(
            kOut.c_str(), "a prefix that is too long for the inside of a string", ".suffix");
    });
    add("QBLFmDir.temporaryStrings", kRefuses, [] {
        static const I18NString kPrefix("a prefix of some length, with \u00E9"), kSuffix(".x");
        makeTemporaries<I18NString, const I18NString>(&kOutText, &kPrefix, &kSuffix);
    });
    add("QBLFmDir.paths", kRefuses | kOutOfMemory | kBadAlloc, kFallback, [] {
        static const std::string kRelative("a/longer/relative/path/to/join");
        return joinPaths(kOut, kRelative);
    });
    add("QBLFmDir.pathStrings", kRefuses | kOutOfMemory, kFallback, [] {
        static const I18NString kRelative("b\u00E9/c");
        return joinPaths(kOutText, kRelative);
    });
    add("QBLFmDir.settings", kOutOfMemory, [] { return changeSettings(kOut); });
    add("QBLFmDir.settingStrings", kOutOfMemory, [] { return changeSettings(kOutText); });
    add("QBLFmDir.getFileFullPath", kOutOfMemory | kBadAlloc, kFallback, [] {
        return QBLFmDir::getFileFullPath("c", kRoot.c_str(), {"a folder with a long name"});
    });
    add("QBLFmDir.getFileFullPathStrings", kOutOfMemory | kBadAlloc, kFallback, [] {
        static const std::list<I18NString> kFolders{I18NString("a folder with a long name")};
        static const I18NString kName("c");
        return QBLFmDir::getFileFullPath(kName, kRootText, kFolders);
    });
    add("QBLFmEntries", kOutOfMemory | kBadAlloc | kOther | kRefuses, kAbsence,
        [] { return listed(QBLFmEntries(kRoot, QBLFmEntries::kRecursive)); });
    add("QBLFmEntries.string", kOutOfMemory | kBadAlloc | kOther | kRefuses, kAbsence,
        [] { return listed(QBLFmEntries(kRootText, QBLFmEntries::kRecursive)); });
    add("QBLFmLines", kOutOfMemory | kBadAlloc, kOther,
        [] { return linesOf(QBLFmLines(kFile.c_str(), "UTF-8")); });
    add("QBLFmLines.converter", kOutOfMemory | kBadAlloc, kOther, [] {
        static const I18NConverter kLatin("windows-1252");
        return linesOf(QBLFmLines(kFile.c_str(), kLatin, nullptr));
    });
    add("QBLFileLockRW", kOutOfMemory, kOther | kRefuses, [] {
        QBLFmFile file;
        need(calmly([&] { return file.open((kOut + "/lock").c_str(), QBLFmFile::create, 0); }));
        QBLFileLockRW lock(file);
        lock.lock();
        lock.readLock();
        need(lock.tryLock() == 1 && lock.tryReadLock() == 1 && lock.boundedLock(1) &&
             lock.boundedReadLock(1));
        lock.unlock();
    });
    return true;
}();

}  // namespace
}  // namespace fault

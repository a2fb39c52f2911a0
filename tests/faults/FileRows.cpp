#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <list>
#include <memory>
#include <string>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/FileLock/M_LockFile.hpp"
#include "QBLCore/FileLock/QBLFileLockRW.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "QBLCore/FileManagement/QBLFmLines.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "QBLCore/FileManagement/skipRootPath.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Rows.hpp"
#include "tests/support/TempTree.hpp"

namespace {

using faults::calmly;
using faults::kBadAlloc;
using faults::kFallback;
using faults::kOther;
using faults::kOutOfMemory;
using faults::kRefuses;
using faults::need;

typedef std::list<std::string> Names;
typedef std::list<I18NString> Strings;

/// A tree with files and folders, whose names are not ASCII.
const TempTree& tree() {
    static const TempTree kTree;
    static const bool kMade = [] {
        kTree.dir("in/a folder with a long name");
        kTree.file("in/b\u00E9", "one\ntwo \u65E5\n");
        kTree.file("in/a folder with a long name/c", "three\n");
        kTree.dir("out");
        return true;
    }();
    static_cast<void>(kMade);
    return kTree;
}
const std::string& root() {
    static const std::string kRoot = tree()("in");
    return kRoot;
}
const I18NString& rootText() {
    static const I18NString kRoot(root());
    return kRoot;
}
const std::string& out() {
    static const std::string kOut = tree()("out");
    return kOut;
}
const I18NString& outText() {
    static const I18NString kOut(out());
    return kOut;
}
const char* pathOf(const std::string& path) { return path.c_str(); }
const I18NString& pathOf(const I18NString& path) { return path; }

/// A failure by the result must set the errno of what failed.
void needErrno(bool done) {
    if (!done && errno != faults::injectedError())
        throw faults::Broken{"errno is " + std::to_string(errno)};
    need(done);
}

template <class Cleanup>
void needErrnoOr(bool done, Cleanup cleanup) {
    const int error = errno;
    if (!done) calmly(cleanup);
    errno = error;
    needErrno(done);
}

std::string join(const Names& names) {
    std::string all;
    for (const std::string& name : names) all += name + "\n";
    return all;
}
std::string join(const Strings& names) {
    std::string all;
    for (const I18NString& name : names) all += name.toUtf8() + "\n";
    return all;
}

/// Opens, writes, reads and closes a file.
template <class File>
std::string roundTrip() {
    File file, other;
    const std::string path = calmly([] { return out() + "/file"; });
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

std::string replaced(QBLFmReplaceFile& file) {
    need(file.write("new", 3));
    needErrno(file.commit());
    return calmly([] { return tree().text("out/replaced"); });
}

template <class Text, class Path>
std::string temporaries(Path* base, Path* prefix, Path* suffix,
                        bool (*const (&create)[2])(Path*, Path*, Text&, Path*)) {
    for (const auto& one : create) {
        Text made;
        needErrno(one(base, prefix, made, suffix));
        const faults::Calm calm;
        QBLFmDir::removeFile(pathOf(made));
    }
    return "made";
}

std::string listed(QBLFmEntries&& entries) {
    std::string all;
    for (const QBLFmEntry& entry : entries) {
        const faults::Calm calm;
        if (entry.getErrorNumber() != 0) throw faults::Refused();
        all.append(entry.getName()).append(" ").append(std::to_string(entry.getSize()));
    }
    return all;
}

std::string linesOf(QBLFmLines&& lines) {
    std::string all;
    for (const std::string_view line : lines) calmly([&] { all += line; });
    return all;
}

const faults::Rows kRows{
    {"QBLFmFile", kRefuses, roundTrip<QBLFmFile>},
    {"QBLFmFile64", kRefuses, roundTrip<QBLFmFile64>},
    {"QBLFmReplaceFile.open", kRefuses,
     [] {
         const std::string path = calmly([] { return out() + "/replaced"; });
         QBLFmReplaceFile file;
         needErrno(file.open(path.c_str()));
         return replaced(file);
     }},
    {"QBLFmReplaceFile.openIn", kRefuses,
     [] {
         QBLFmDirectory folder;
         needErrno(folder.open(out().c_str()));
         QBLFmReplaceFile file;
         needErrno(file.open(folder, "replaced"));
         return replaced(file);
     }},
    {"QBLFmReplaceFile.commitOver", kRefuses,
     [] {
         const std::string path = calmly([] { return tree().file("out/replaced", "old"); });
         QBLFmFile old;
         need(calmly([&] { return old.open(path.c_str(), QBLFmFile::existing, 0); }));
         QBLFmReplaceFile file;
         needErrno(file.open(path.c_str()));
         need(file.write("new", 3));
         needErrno(file.flush());
         needErrno(file.commitOver(old.getFileDescriptor()));
         needErrno(file.keepReplaced("kept"));
         return calmly([] {
             QBLFmDir::removeFile((out() + "/kept").c_str());
             return tree().text("out/replaced");
         });
     }},
    {"QBLFmDirectory", kRefuses,
     [] {
         QBLFmDirectory parent, folder;
         std::string name;
         needErrno(parent.openParent(root().c_str(), name));
         needErrno(folder.open(parent, name.c_str()));
         needErrno(folder.create(parent, "made", 0700));
         needErrno(parent.rename("made", "made"));
         need(calmly([] { return QBLFmDir::removeDir(tree()("made").c_str()); }));
         Names files, dirs;
         needErrno(parent.readDir(&files, nullptr, &dirs, nullptr));
         return calmly([&] { return name + join(files) + join(dirs); });
     }},
    {"QBLFmDir.readDir", kRefuses,
     [] {
         Names files, dirs;
         needErrno(QBLFmDir::readDir(root().c_str(), &files, "*", &dirs, "a*"));
         return calmly([&] { return join(files) + join(dirs); });
     }},
    {"QBLFmDir.readDirStrings", kRefuses,
     [] {
         Strings files, dirs;
         const I18NString pattern("*");
         needErrno(QBLFmDir::readDir(rootText(), &files, &pattern, &dirs, nullptr));
         return calmly([&] { return join(files) + join(dirs); });
     }},
    {"QBLFmDir.makeAndRemove", kRefuses,
     [] {
         const std::string base = calmly([] { return out() + "/x"; });
         const std::string deep = calmly([&] { return base + "/y/z"; });
         const auto clean = [&] { QBLFmDir::removeDir(base.c_str()); };
         needErrnoOr(QBLFmDir::createRecursiveDir(deep.c_str()), clean);
         needErrnoOr(QBLFmDir::removeDir(base.c_str()), clean);
         need(QBLFmDir::createDir(base.c_str()) && QBLFmDir::exists(base.c_str(), S_IFDIR));
         need(QBLFmDir::renameFile(base.c_str(), base.c_str()));
         need(QBLFmDir::removeFile(base.c_str()));
         return std::string();
     }},
    {"QBLFmDir.makeAndRemoveStrings", kRefuses,
     [] {
         const I18NString base = calmly([] { return outText() + "/\u00E9"; });
         const I18NString deep = calmly([&] { return base + "/y/z"; });
         const auto clean = [&] { QBLFmDir::removeDir(base); };
         needErrnoOr(QBLFmDir::createRecursiveDir(deep), clean);
         needErrnoOr(QBLFmDir::removeDir(base), clean);
         needErrnoOr(QBLFmDir::createDir(base) && QBLFmDir::exists(base, S_IFDIR) &&
                         QBLFmDir::renameFile(base, base) && QBLFmDir::removeFile(base),
                     clean);
         return std::string();
     }},
    {"QBLFmDir.temporaries", kRefuses,
     [] {
         return temporaries<std::string, const char>(
             out().c_str(), "prefix", ".suffix",
             {QBLFmDir::createTempFile, QBLFmDir::createPrivateTempFile});
     }},
    {"QBLFmDir.temporaryFolders", kRefuses,
     [] {
         return temporaries<std::string, const char>(
             out().c_str(), "prefix", ".suffix",
             {QBLFmDir::createTempDir, QBLFmDir::createPrivateTempDir});
     }},
    {"QBLFmDir.temporaryStrings", kRefuses,
     [] {
         static const I18NString kPrefix("p\u00E9"), kSuffix(".x");
         temporaries<I18NString, const I18NString>(
             &outText(), &kPrefix, &kSuffix,
             {QBLFmDir::createTempFile, QBLFmDir::createPrivateTempFile});
         return temporaries<I18NString, const I18NString>(
             &outText(), &kPrefix, &kSuffix,
             {QBLFmDir::createTempDir, QBLFmDir::createPrivateTempDir});
     }},
    {"QBLFmDir.paths", kRefuses | kOutOfMemory | kBadAlloc,
     [] {
         std::string path = calmly([] { return out(); }), directory, file, temp;
         QBLFmDir::joinPath(path, "a/longer/relative/path/to/join");
         need(QBLFmDir::splitPath(path.c_str(), &directory, &file));
         needErrno(QBLFmDir::getTempPath(temp));
         QBLFmDir::resolveEffectivePath(file);
         return calmly([&] { return directory + file + temp; });
     },
     kFallback},
    {"QBLFmDir.pathStrings", kRefuses | kOutOfMemory,
     [] {
         I18NString path = calmly([] { return I18NString(outText()); }), directory, file, temp;
         static const I18NString kRelative("b\u00E9/c");
         QBLFmDir::joinPath(path, kRelative);
         needErrno(QBLFmDir::splitPath(path, &directory, &file));
         needErrno(QBLFmDir::getTempPath(temp));
         QBLFmDir::resolveEffectivePath(file);
         return calmly([&] { return (directory + file + temp).toUtf8(); });
     },
     kFallback},
    {"QBLFmDir.settings", kOutOfMemory,
     [] {
         QBLFmDir::setTempPath(out().c_str());
         QBLFmDir::setEffectiveWorkingDir(out().c_str());
         std::string file = calmly([] { return std::string("a/relative/path/of/some/length"); });
         QBLFmDir::resolveEffectivePath(file);
         return calmly([&] {
             QBLFmDir::setTempPath(nullptr);
             QBLFmDir::setEffectiveWorkingDir(nullptr);
             return file;
         });
     }},
    {"QBLFmDir.settingStrings", kOutOfMemory,
     [] {
         QBLFmDir::setTempPath(outText());
         QBLFmDir::setEffectiveWorkingDir(outText());
         return calmly([] {
             std::string path;
             QBLFmDir::getTempPath(path);
             QBLFmDir::setTempPath(nullptr);
             QBLFmDir::setEffectiveWorkingDir(nullptr);
             return path;
         });
     }},
    {"QBLFmDir.getFileFullPath", kOutOfMemory | kBadAlloc,
     [] {
         const std::string path =
             QBLFmDir::getFileFullPath("c", root().c_str(), {"a folder with a long name"});
         return calmly([&] { return std::string(path); });
     },
     kFallback},
    {"QBLFmDir.getFileFullPathStrings", kOutOfMemory | kBadAlloc,
     [] {
         static const Strings kFolders{I18NString("a folder with a long name")};
         static const I18NString kName("c");
         const I18NString path = QBLFmDir::getFileFullPath(kName, rootText(), kFolders);
         return calmly([&] { return path.toUtf8(); });
     },
     kFallback},
    {"QBLFmEntries", kOutOfMemory | kBadAlloc | kOther | kRefuses,
     [] { return listed(QBLFmEntries(root(), QBLFmEntries::kRecursive)); }, faults::kAbsence},
    {"QBLFmEntries.string", kOutOfMemory | kBadAlloc | kOther | kRefuses,
     [] { return listed(QBLFmEntries(rootText(), QBLFmEntries::kRecursive)); }, faults::kAbsence},
    {"QBLFmLines", kOutOfMemory | kBadAlloc,
     [] {
         static const std::string kPath = root() + "/b\u00E9";
         return linesOf(QBLFmLines(kPath, "UTF-8"));
     },
     kOther},
    {"QBLFmLines.converter", kOutOfMemory | kBadAlloc,
     [] {
         static const std::string kPath = root() + "/b\u00E9";
         static const I18NConverter kLatin("windows-1252");
         return linesOf(QBLFmLines(kPath.c_str(), kLatin, nullptr));
     },
     kOther},
    {"QBLFileLockRW", kOutOfMemory,
     [] {
         QBLFmFile file;
         need(calmly([&] { return file.open((out() + "/lock").c_str(), QBLFmFile::create, 0); }));
         QBLFileLockRW lock(file);
         lock.lock();
         lock.readLock();
         need(lock.tryLock() == 1 && lock.tryReadLock() == 1 && lock.boundedLock(1) &&
              lock.boundedReadLock(1));
         lock.unlock();
         return std::string();
     },
     kOther | kRefuses},
};

}  // namespace

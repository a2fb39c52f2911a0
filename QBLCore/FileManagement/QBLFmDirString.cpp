// The operations with I18NString paths call the operations with byte paths.

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmPath.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"

namespace {

const char* orNull(const I18NString* text) {
    return text != nullptr ? qblPlatformPath(*text) : nullptr;
}

/// Sets a path without normalisation: another form of a name could name another file.
void setPath(I18NString& out, const std::string& path) {
    const char* encoding = I18NGetPlatformDefaultEncoding();
    out.useNormalization(false);
    if (i18nIsUTF8(encoding))
        out = path.c_str();
    else
        out = I18NString(path.c_str(), encoding);
}

I18NString fromPlatform(const std::string& path) {
    I18NString made;
    setPath(made, path);
    return made;
}

/// Does the same, but fails if the string would not name the same file.
/// @throws I18NRuntimeError if no string can express the path
void setWholePath(I18NString& out, const std::string& path) {
    setPath(out, path);
    if (path != qblPlatformPath(out)) {
        out.remove();
        QBL_THROW(I18NRuntimeError(I18N_CONVERSION, "A path is not of the platform's encoding"));
    }
}

std::list<I18NString> toStrings(const std::list<std::string>& names) {
    std::list<I18NString> made;
    for (const std::string& name : names) made.push_back(fromPlatform(name));
    return made;
}

typedef bool (*CreateTemp)(const char*, const char*, std::string&, const char*);

bool createTemp(CreateTemp create, const I18NString* basePath, const I18NString* prefix,
                I18NString& result, const I18NString* suffix) {
    return qblSettle([&] {
        std::string path;
        const bool made = create(orNull(basePath), orNull(prefix), path, orNull(suffix));
        const QBLKeepErrno keepErrno;
        try {
            setWholePath(result, path);
        } catch (const QBLThrowable&) {
            if (made) {
                QBLFmDir::removeFile(path.c_str());  // the caller does not know the name
                throw;
            }
        }
        return made;
    });
}

}  // namespace

bool QBLFmDir::exists(const I18NString& path, unsigned short mode) {
    return qblSettle([&] { return exists(qblPlatformPath(path), mode); });
}

bool QBLFmDir::createDir(const I18NString& path) {
    return qblSettle([&] { return createDir(qblPlatformPath(path)); });
}

bool QBLFmDir::createRecursiveDir(const I18NString& path) {
    return qblSettle([&] { return createRecursiveDir(qblPlatformPath(path)); });
}

bool QBLFmDir::removeDir(const I18NString& path) {
    return qblSettle([&] { return removeDir(qblPlatformPath(path)); });
}

bool QBLFmDir::readDir(const I18NString& path, std::list<I18NString>* files,
                       const I18NString* filePattern, std::list<I18NString>* dirs,
                       const I18NString* dirPattern) {
    return qblSettle([&] {
        std::list<std::string> fileNames, dirNames;
        if (!readDir(qblPlatformPath(path), files != nullptr ? &fileNames : nullptr,
                     orNull(filePattern), dirs != nullptr ? &dirNames : nullptr,
                     orNull(dirPattern)))
            return false;
        std::list<I18NString> madeFiles = toStrings(fileNames), madeDirs = toStrings(dirNames);
        if (files != nullptr) files->swap(madeFiles);
        if (dirs != nullptr) dirs->swap(madeDirs);
        return true;
    });
}

bool QBLFmDir::removeFile(const I18NString& path) {
    return qblSettle([&] { return removeFile(qblPlatformPath(path)); });
}

bool QBLFmDir::renameFile(const I18NString& from, const I18NString& to) {
    return qblSettle([&] { return renameFile(qblPlatformPath(from), qblPlatformPath(to)); });
}

void QBLFmDir::joinPath(I18NString& base, const I18NString& relative) {
    QBL_ALLOC_TRY
    std::string path(qblPlatformPath(base));
    joinPath(path, qblPlatformPath(relative));
    setPath(base, path);
    QBL_ALLOC_CATCH
}

bool QBLFmDir::splitPath(const I18NString& path, I18NString* directory, I18NString* file) {
    return qblSettle([&] {
        std::string before, after;
        if (!splitPath(qblPlatformPath(path), directory != nullptr ? &before : nullptr,
                       file != nullptr ? &after : nullptr))
            return false;
        if (directory != nullptr) setPath(*directory, before);
        if (file != nullptr) setPath(*file, after);
        return true;
    });
}

void QBLFmDir::setEffectiveWorkingDir(const I18NString& path) {
    setEffectiveWorkingDir(qblPlatformPath(path));
}

void QBLFmDir::resolveEffectivePath(I18NString& path) {
    QBL_ALLOC_TRY
    std::string resolved(qblPlatformPath(path));
    resolveEffectivePath(resolved);
    setPath(path, resolved);
    QBL_ALLOC_CATCH
}

I18NString QBLFmDir::getFileFullPath(const I18NString& fileName, const I18NString& basePath,
                                     const std::list<I18NString>& searchDirs) {
    QBL_ALLOC_TRY
    std::list<std::string> dirs;
    for (const I18NString& dir : searchDirs) dirs.emplace_back(qblPlatformPath(dir));
    return fromPlatform(
        getFileFullPath(qblPlatformPath(fileName), qblPlatformPath(basePath), dirs));
    QBL_ALLOC_CATCH
}

void QBLFmDir::setTempPath(const I18NString& path) { setTempPath(qblPlatformPath(path)); }

bool QBLFmDir::getTempPath(I18NString& result) {
    return qblSettle([&result] {
        std::string path;
        const bool found = getTempPath(path);
        setWholePath(result, path);
        return found;
    });
}

bool QBLFmDir::createTempDir(const I18NString* basePath, const I18NString* prefix,
                             I18NString& result, const I18NString* suffix) {
    return createTemp(&QBLFmDir::createTempDir, basePath, prefix, result, suffix);
}

bool QBLFmDir::createTempFile(const I18NString* basePath, const I18NString* prefix,
                              I18NString& result, const I18NString* suffix) {
    return createTemp(&QBLFmDir::createTempFile, basePath, prefix, result, suffix);
}

bool QBLFmDir::createPrivateTempDir(const I18NString* basePath, const I18NString* prefix,
                                    I18NString& result, const I18NString* suffix) {
    return createTemp(&QBLFmDir::createPrivateTempDir, basePath, prefix, result, suffix);
}

bool QBLFmDir::createPrivateTempFile(const I18NString* basePath, const I18NString* prefix,
                                     I18NString& result, const I18NString* suffix) {
    return createTemp(&QBLFmDir::createPrivateTempFile, basePath, prefix, result, suffix);
}

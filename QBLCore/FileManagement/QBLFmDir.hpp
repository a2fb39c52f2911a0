#ifndef QBLCORE_FILEMANAGEMENT_QBLFMDIR_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMDIR_HPP

#include <cerrno>
#include <list>
#include <string>

#include "QBLCore/FileManagement/QBLFmPathText.hpp"
#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// Operations on paths, directories and file names. A `char` path contains the bytes that the
/// system receives; they need not be valid in any encoding.
///
/// A failed operation returns false and sets errno; a null path is a failure. Only operations that
/// cannot return false throw: QBLOutOfMemoryError, and the exceptions that their comments name.
///
/// A path in an I18NString is converted to the platform's encoding. A path that contains a NUL or
/// cannot be converted fails with EILSEQ, or with I18NRuntimeError -4 if the operation cannot
/// return false. Normalisation is turned off for an I18NString that receives a path, because
/// another form of the path could name another file.
///
/// Threads: any thread may call any operation; each of the two process-wide settings has a lock.
class QBL_API QBLFmDir {
public:
    QBLFmDir() = delete;

    /// @name Directories
    /// @{

    /// Returns true if the file has the type and at least the permissions in `mode`, such as
    /// S_IFDIR | S_IRUSR. Checks the file's mode, not the rights of the caller. Follows links.
    static bool exists(const char* path, unsigned short mode);
    static bool exists(const I18NString& path, unsigned short mode);
    /// Creates a directory with all permissions minus the umask.
    /// @return true if the directory now exists, even if it existed before
    static bool createDir(const char* path);
    static bool createDir(const I18NString& path);
    /// Creates a directory and all missing directories above it.
    static bool createRecursiveDir(const char* path);
    static bool createRecursiveDir(const I18NString& path);
    /// Removes a directory and everything in it. Never follows a symbolic link: removes the link
    /// and leaves its target. Refuses a path that is itself a link, a root, and the names "." and
    /// "..". After a failure, continues and removes all other files that it can.
    /// @return true if nothing is left; otherwise false with the errno of the first failure
    static bool removeDir(const char* path);
    static bool removeDir(const I18NString& path);
    /// Lists the names in a directory, sorted by their bytes, without "." and "..".
    /// A link counts as its target; a dangling link, a FIFO, a socket and a device count as files.
    /// QBLFmEntries tells these types apart.
    /// @param files  receives the names of everything except directories, which replace its old
    ///     content; may be null
    /// @param filePattern  selects names: "*" matches any text, "?" matches one UTF-8 character,
    ///     and letters are case-sensitive. Null or empty selects all names.
    /// @param dirs, dirPattern  the same for directories
    /// @return false if the directory cannot be read; the lists are then unchanged
    static bool readDir(const char* path, std::list<std::string>* files, const char* filePattern,
                        std::list<std::string>* dirs, const char* dirPattern);
    /// If a name is invalid in the platform's encoding, I18NString converts it with substitutions,
    /// and the result does not name the file.
    static bool readDir(const I18NString& path, std::list<I18NString>* files,
                        const I18NString* filePattern, std::list<I18NString>* dirs,
                        const I18NString* dirPattern);
    /// @}

    /// @name Files
    /// @{

    /// Removes a file, or an empty directory.
    static bool removeFile(const char* path);
    static bool removeFile(const I18NString& path);
    /// Renames a file; replaces a file that has the new name.
    static bool renameFile(const char* from, const char* to);
    static bool renameFile(const I18NString& from, const I18NString& to);
    /// @}

    /// @name Paths
    /// @{

    /// Appends a relative path to a base, with a "/" between them unless the base is empty or ends
    /// with "/" or "\". If `relative` has a root, it replaces the base. A null or empty `relative`
    /// has no effect.
    static void joinPath(std::string& base, const char* relative);
    static void joinPath(I18NString& base, const I18NString& relative);
    /// Splits a path at the last separator after the root. Neither part contains the separator.
    /// @param directory, file  may be null
    /// @return false, without effect, if the path is null or both parts are null
    static bool splitPath(const char* path, std::string* directory, std::string* file);
    static bool splitPath(const I18NString& path, I18NString* directory, I18NString* file);
    /// Sets the effective working directory, for resolveEffectivePath(); null or empty removes the
    /// setting. Does not change the process's working directory.
    static void setEffectiveWorkingDir(const char* path);
    static void setEffectiveWorkingDir(const I18NString& path);
    /// Prepends the effective working directory to a path without a root. Has no effect if no
    /// effective working directory is set, or if the path already begins with this directory's
    /// text.
    static void resolveEffectivePath(std::string& path);
    static void resolveEffectivePath(I18NString& path);
    /// Searches for a file. A name with a root is looked up unchanged. Any other name is looked up
    /// first in the base path, then in each search directory. A relative search directory is
    /// relative to the base path.
    /// @return the first path that exists and is not a directory; empty if no path does
    /// @throws QBLAssertError for a null name or base path
    static std::string getFileFullPath(const char* fileName, const char* basePath,
                                       const std::list<std::string>& searchDirs);
    static I18NString getFileFullPath(const I18NString& fileName, const I18NString& basePath,
                                      const std::list<I18NString>& searchDirs);
    /// @}

    /// @name Temporary files and directories
    /// @{

    /// Sets the result of getTempPath(); null or empty removes the setting.
    static void setTempPath(const char* path);
    static void setTempPath(const I18NString& path);
    /// Returns the directory for temporary files. If setTempPath() has set a directory, returns it
    /// without a check. Otherwise tries three paths in this order: the value of the first of the
    /// environment variables TMP, tmp, TEMP and temp that is set; "/tmp"; and ".". Returns the
    /// first path that is a directory and that its owner may read and write. A program that runs
    /// with more rights than its caller, such as a set-id program, ignores the environment.
    /// @return false, with an empty result, if no directory qualifies
    static bool getTempPath(std::string& result);
    static bool getTempPath(I18NString& result);
    /// Creates a directory with an unused name: the prefix, the time in seconds, a counter and the
    /// suffix. Two calls never get the same directory, not even in different processes. A name can
    /// occur again after its directory has been removed. The umask decides which other users may
    /// use the directory.
    /// @param basePath  the directory in which to create it; null means getTempPath()
    /// @param prefix  null or empty means "QBLFm"
    /// @param result  receives the path, or the last path tried if all 500 attempts fail
    static bool createTempDir(const char* basePath, const char* prefix, std::string& result,
                              const char* suffix);
    static bool createTempDir(const char* basePath, const char* prefix, std::string& result);
    static bool createTempDir(const I18NString* basePath, const I18NString* prefix,
                              I18NString& result, const I18NString* suffix = nullptr);
    /// Creates an empty file in the same way.
    static bool createTempFile(const char* basePath, const char* prefix, std::string& result,
                               const char* suffix);
    static bool createTempFile(const char* basePath, const char* prefix, std::string& result);
    static bool createTempFile(const I18NString* basePath, const I18NString* prefix,
                               I18NString& result, const I18NString* suffix = nullptr);
    /// Creates a directory or an empty file that only its owner may use (mode 0700 or 0600). The
    /// name has a random number instead of the counter, so that another user cannot predict the
    /// name and take it first. Use this form for texts that other users must not read.
    static bool createPrivateTempDir(const char* basePath, const char* prefix, std::string& result,
                                     const char* suffix = nullptr);
    static bool createPrivateTempDir(const I18NString* basePath, const I18NString* prefix,
                                     I18NString& result, const I18NString* suffix = nullptr);
    static bool createPrivateTempFile(const char* basePath, const char* prefix, std::string& result,
                                      const char* suffix = nullptr);
    static bool createPrivateTempFile(const I18NString* basePath, const I18NString* prefix,
                                      I18NString& result, const I18NString* suffix = nullptr);
    /// @}

    /// @name The same for std::filesystem::path
    /// A path with a NUL fails with EFAULT.
    /// @{

    template <class Path>
    static auto exists(const Path& path, unsigned short mode)
        -> decltype(qblPathText(path), bool()) {
        return exists(qblPathText(path), mode);
    }
    template <class Path>
    static auto createDir(const Path& path) -> decltype(qblPathText(path), bool()) {
        return createDir(qblPathText(path));
    }
    template <class Path>
    static auto createRecursiveDir(const Path& path) -> decltype(qblPathText(path), bool()) {
        return createRecursiveDir(qblPathText(path));
    }
    template <class Path>
    static auto removeDir(const Path& path) -> decltype(qblPathText(path), bool()) {
        return removeDir(qblPathText(path));
    }
    template <class Path>
    static auto removeFile(const Path& path) -> decltype(qblPathText(path), bool()) {
        return removeFile(qblPathText(path));
    }
    template <class Path>
    static auto renameFile(const Path& from, const Path& to)
        -> decltype(qblPathText(from), bool()) {
        return renameFile(qblPathText(from), qblPathText(to));
    }
    template <class Path>
    static auto readDir(const Path& path, std::list<std::string>* files, const char* filePattern,
                        std::list<std::string>* dirs, const char* dirPattern)
        -> decltype(qblPathText(path), bool()) {
        return readDir(qblPathText(path), files, filePattern, dirs, dirPattern);
    }
    template <class Path>
    static auto createTempDir(const Path& basePath, const char* prefix, Path& result,
                              const char* suffix = nullptr)
        -> decltype(qblPathText(basePath), bool()) {
        bool (*const create)(const char*, const char*, std::string&, const char*) = createTempDir;
        return createIn(qblPathText(basePath), prefix, result, suffix, create);
    }
    template <class Path>
    static auto createTempFile(const Path& basePath, const char* prefix, Path& result,
                               const char* suffix = nullptr)
        -> decltype(qblPathText(basePath), bool()) {
        bool (*const create)(const char*, const char*, std::string&, const char*) = createTempFile;
        return createIn(qblPathText(basePath), prefix, result, suffix, create);
    }
    template <class Path>
    static auto createPrivateTempDir(const Path& basePath, const char* prefix, Path& result,
                                     const char* suffix = nullptr)
        -> decltype(qblPathText(basePath), bool()) {
        bool (*const create)(const char*, const char*, std::string&, const char*) =
            createPrivateTempDir;
        return createIn(qblPathText(basePath), prefix, result, suffix, create);
    }
    template <class Path>
    static auto createPrivateTempFile(const Path& basePath, const char* prefix, Path& result,
                                      const char* suffix = nullptr)
        -> decltype(qblPathText(basePath), bool()) {
        bool (*const create)(const char*, const char*, std::string&, const char*) =
            createPrivateTempFile;
        return createIn(qblPathText(basePath), prefix, result, suffix, create);
    }
    /// @}

private:
    template <class Path, class Create>
    static bool createIn(const char* basePath, const char* prefix, Path& result, const char* suffix,
                         Create create) {
        if (basePath == nullptr) {  // contains a NUL
            errno = EFAULT;
            return false;
        }
        std::string created;
        const bool done = create(basePath, prefix, created, suffix);
        result = created;
        return done;
    }
};

#endif

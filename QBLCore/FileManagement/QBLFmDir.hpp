#ifndef QBLCORE_FILEMANAGEMENT_QBLFMDIR_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMDIR_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// Operations on paths, directories and the names of files. Paths are bytes as the system takes
/// them; names that are not valid in any encoding are as good as others.
///
/// A failure is a false result, and errno tells why; a null path fails. Nothing throws but
/// operations without such a result: QBLOutOfMemoryError, and what is said with them.
///
/// A path in a string is taken in the platform's encoding; one with a zero in it, or that cannot be
/// expressed, fails with EILSEQ, or I18NRuntimeError -4 where there is no result for that. Strings
/// that receive a path are not normalised any more: it names the file in no other form.
///
/// Threads: any thread may call any operation; the two process-wide settings have a lock each.
class QBL_API QBLFmDir {
public:
    QBLFmDir() = delete;

    /// @name Directories
    /// @{

    /// Whether a file has the type in mode and at least the permissions in mode (S_IFDIR | S_IRUSR
    /// and so on). It looks at the file's mode, not at what the caller may do; links are followed.
    static bool exists(const char* path, unsigned short mode);
    static bool exists(const I18NString& path, unsigned short mode);
    /// Makes a directory, with all permissions that the umask leaves.
    /// @return whether there is a directory now, also one that was there before.
    static bool createDir(const char* path);
    static bool createDir(const I18NString& path);
    /// Makes every missing directory along a path.
    static bool createRecursiveDir(const char* path);
    static bool createRecursiveDir(const I18NString& path);
    /// Removes a directory with all that is in it. It never follows a symbolic link: links are
    /// removed, what they lead to stays, and a path that is itself a link is refused, as are a
    /// root and the names "." and "..". What can be removed is removed even if something cannot.
    /// @return true when nothing is left; else errno tells the first failure.
    static bool removeDir(const char* path);
    static bool removeDir(const I18NString& path);
    /// Lists the names in a directory, sorted by their bytes, without "." and "..".
    /// A link counts as what it leads to; one that leads nowhere, as a file.
    /// @param files  receives the names of all that are no directories, instead of what was in it;
    ///     null if not wanted
    /// @param filePattern  lists only matching names: "*" stands for any text, "?" for one
    ///     character of UTF-8, case counts; null or empty lists all
    /// @param dirs, dirPattern  the same for the directories, in a list of their own
    /// @return false when the directory cannot be read; the lists are then as they were.
    static bool readDir(const char* path, std::list<std::string>* files, const char* filePattern,
                        std::list<std::string>* dirs, const char* dirPattern);
    /// Names that are not valid in the platform's encoding come as the string makes them, and lead
    /// to no file.
    static bool readDir(const I18NString& path, std::list<I18NString>* files,
                        const I18NString* filePattern, std::list<I18NString>* dirs,
                        const I18NString* dirPattern);
    /// @}

    /// @name Files
    /// @{

    /// Removes a file, or an empty directory.
    static bool removeFile(const char* path);
    static bool removeFile(const I18NString& path);
    /// Gives a file a new name, taking the place of a file that has it.
    static bool renameFile(const char* from, const char* to);
    static bool renameFile(const I18NString& from, const I18NString& to);
    /// @}

    /// @name Paths
    /// @{

    /// Appends a relative path to a base, with a "/" between unless the base ends in "/" or "\".
    /// A relative with a root replaces the base; null or empty changes nothing.
    static void joinPath(std::string& base, const char* relative);
    static void joinPath(I18NString& base, const I18NString& relative);
    /// Splits at the last separator behind the root, which belongs to neither part.
    /// @param directory, file  null if not wanted
    /// @return false, with nothing done, for a null path or when neither part is wanted.
    static bool splitPath(const char* path, std::string* directory, std::string* file);
    static bool splitPath(const I18NString& path, I18NString* directory, I18NString* file);
    /// Sets what relative paths are resolved against; null or empty takes the setting away. The
    /// process's own working directory stays.
    static void setEffectiveWorkingDir(const char* path);
    static void setEffectiveWorkingDir(const I18NString& path);
    /// Puts the effective working directory, if one is set, before a path that has no root and
    /// does not begin with the same text.
    static void resolveEffectivePath(std::string& path);
    static void resolveEffectivePath(I18NString& path);
    /// Looks for a file: under its own name if that has a root; else in the base path, then in each
    /// search directory, of which relative ones are taken from the base path.
    /// @return the first path at which there is something that is no directory; else empty
    /// @throws QBLAssertError for a null name or base path
    static std::string getFileFullPath(const char* fileName, const char* basePath,
                                       const std::list<std::string>& searchDirs);
    static I18NString getFileFullPath(const I18NString& fileName, const I18NString& basePath,
                                      const std::list<I18NString>& searchDirs);
    /// @}

    /// @name Temporary files and directories
    /// @{

    /// Sets what getTempPath() gives; null or empty takes the setting away.
    static void setTempPath(const char* path);
    static void setTempPath(const I18NString& path);
    /// The directory for temporary files: the one set, else what the first of TMP, tmp, TEMP and
    /// temp that is set in the environment names, else "/tmp", else "."; but for the first, only
    /// a directory that its owner may read and write. A program that runs with more rights than its
    /// caller, as with a set-id bit, does not look at the environment.
    /// @return false, with an empty result, when there is none.
    static bool getTempPath(std::string& result);
    static bool getTempPath(I18NString& result);
    /// Makes a directory with a name that no other has: the prefix, the time in seconds, a counter
    /// and the suffix. Two calls, in whatever processes, never get the same directory; a name can
    /// come again once its directory has been removed. Others may look into it as the umask lets
    /// them.
    /// @param basePath  where; null means getTempPath()
    /// @param prefix  null or empty means "QBLFm"
    /// @param result  receives the path, or the last one tried when 500 were taken
    static bool createTempDir(const char* basePath, const char* prefix, std::string& result,
                              const char* suffix);
    static bool createTempDir(const char* basePath, const char* prefix, std::string& result);
    static bool createTempDir(const I18NString* basePath, const I18NString* prefix,
                              I18NString& result, const I18NString* suffix = nullptr);
    /// The same for an empty file.
    static bool createTempFile(const char* basePath, const char* prefix, std::string& result,
                               const char* suffix);
    static bool createTempFile(const char* basePath, const char* prefix, std::string& result);
    static bool createTempFile(const I18NString* basePath, const I18NString* prefix,
                               I18NString& result, const I18NString* suffix = nullptr);
    /// The same for a directory or an empty file that only its owner may use (mode 0700 or 0600).
    /// The name has a random number in place of the counter, so that nobody can foresee it and
    /// take it beforehand. For texts that others must not read this is the form to use.
    static bool createPrivateTempDir(const char* basePath, const char* prefix, std::string& result,
                                     const char* suffix = nullptr);
    static bool createPrivateTempDir(const I18NString* basePath, const I18NString* prefix,
                                     I18NString& result, const I18NString* suffix = nullptr);
    static bool createPrivateTempFile(const char* basePath, const char* prefix, std::string& result,
                                      const char* suffix = nullptr);
    static bool createPrivateTempFile(const I18NString* basePath, const I18NString* prefix,
                                      I18NString& result, const I18NString* suffix = nullptr);
    /// @}
};

#endif

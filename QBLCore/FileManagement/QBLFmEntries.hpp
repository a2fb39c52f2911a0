#ifndef QBLCORE_FILEMANAGEMENT_QBLFMENTRIES_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMENTRIES_HPP

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include "QBLCore/FileManagement/QBLFmEntry.hpp"
#include "QBLCore/Frame/QBLExport.h"

class I18NString;
class QBLFmDirectory;

/// Lists a directory, or a whole tree, in one pass: path, type, size and time of each entry. It is
/// a range with input iterators. The entries come in the order of the file system, a directory
/// before its content, without "." and "..". Entries that other programs add or remove during the
/// pass may be listed or not.
///
/// A tree is walked without following symbolic links, and each directory is opened in the one above
/// it. Other users therefore cannot redirect the listing. A directory below the start that cannot
/// be opened does not stop the listing: getErrorNumber() of its entry tells why its content is
/// missing. Each level that is open needs a descriptor.
///
/// Threads: one thread at a time for each object.
///
///     for (const QBLFmEntry& entry : QBLFmEntries("/srv/drop", QBLFmEntries::kRecursive))
///         if (entry.isFile()) total += entry.getSize();
class QBL_API QBLFmEntries {
public:
    /// Combine them with |.
    enum Mode : unsigned {
        kFlat = 0,
        kRecursive = 1,  ///< lists the directories below, too
        kTypesOnly = 2   ///< saves a system call for each entry; size, time and permissions are 0
    };
    friend constexpr Mode operator|(Mode a, Mode b) {
        return static_cast<Mode>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
    }

    /// A position in the pass. All iterators of one range share the position.
    ///
    /// Threads: as for the range.
    class Iterator {
    public:
        typedef std::input_iterator_tag iterator_category;
        typedef QBLFmEntry value_type;
        typedef std::ptrdiff_t difference_type;
        typedef const QBLFmEntry* pointer;
        typedef const QBLFmEntry& reference;

        Iterator() = default;
        /// The entry is valid until the next step; copy it to keep it.
        reference operator*() const { return m_pRange->m_entry; }
        pointer operator->() const { return &m_pRange->m_entry; }
        /// Goes to the next entry.
        /// @throws QBLSystemError with the errno if the directory cannot be read further;
        ///     QBLOutOfMemoryError. The next step continues after the lost part.
        Iterator& operator++() {
            if (!m_pRange->advance()) m_pRange = nullptr;
            return *this;
        }
        /// Returns the entry before the step, for `*i++`.
        auto operator++(int) {
            struct Before {
                QBLFmEntry entry;
                reference operator*() const { return entry; }
            } before{**this};
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) {
            return a.m_pRange == b.m_pRange;
        }
        friend bool operator!=(const Iterator& a, const Iterator& b) { return !(a == b); }

    private:
        friend class QBLFmEntries;
        explicit Iterator(QBLFmEntries* range) : m_pRange(range) {}

        QBLFmEntries* m_pRange = nullptr;  // null at the end
    };
    typedef Iterator iterator;
    typedef Iterator const_iterator;
    typedef QBLFmEntry value_type;

    /// Opens a directory; follows links.
    /// @throws QBLSystemError with the errno if the directory cannot be opened; I18NRuntimeError
    ///     for a path that the platform's encoding cannot represent; QBLOutOfMemoryError
    explicit QBLFmEntries(const char* path, Mode mode = kFlat);
    explicit QBLFmEntries(const std::string& path, Mode mode = kFlat);
    explicit QBLFmEntries(const I18NString& path, Mode mode = kFlat);
    /// Lists an open directory. The paths begin with the names in it.
    explicit QBLFmEntries(const QBLFmDirectory& directory, Mode mode = kFlat);
    /// For std::filesystem::path.
    template <class Path,
              class = std::enable_if_t<std::is_same_v<
                  std::decay_t<decltype(std::declval<const Path&>().native())>, std::string>>>
    explicit QBLFmEntries(const Path& path, Mode mode = kFlat)
        : QBLFmEntries(path.native(), mode) {}
    ~QBLFmEntries();
    QBLFmEntries(const QBLFmEntries&) = delete;
    QBLFmEntries& operator=(const QBLFmEntries&) = delete;

    /// Returns the current position: the first entry if the pass has not begun.
    /// @throws the errors of a step
    iterator begin();
    iterator end() { return iterator(); }
    /// Does not list the content of the directory at the current position.
    void skipContent();

private:
    struct Walk;

    void start(int directory, const char* path, Mode mode);
    bool advance();

    Walk* m_pWalk;
    QBLFmEntry m_entry;
};

#endif

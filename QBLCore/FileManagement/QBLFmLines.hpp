#ifndef QBLCORE_FILEMANAGEMENT_QBLFMLINES_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMLINES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class I18NConverter;
class I18NTextStreamListener;

/// Reads a file in any encoding line by line, in one pass. The lines are in UTF-8 and without their
/// ends. A line ends with LF, CR or CR LF, as I18NTextStream counts lines; the last line need not
/// have an end. A byte-order mark at the start of the file is removed.
///
/// Malformed text stops the reading unless the converter has another policy. All lines before the
/// malformed text arrive first. Then an I18NRuntimeError tells the file, byte, line and column. The
/// reading ends with any error.
///
/// Memory: blocks of 64 KiB, and the longest line that continues into another block.
///
/// Threads: one thread at a time for each object.
///
///     QBLFmLines lines(path, "Shift_JIS");
///     for (const std::string_view line : lines) count(line, lines.getLineNumber());
class QBL_API QBLFmLines {
public:
    /// A position in the file. All iterators of one object share the position.
    ///
    /// Threads: as for the object.
    class Iterator {
    public:
        typedef std::input_iterator_tag iterator_category;
        typedef std::string_view value_type;
        typedef std::ptrdiff_t difference_type;
        typedef const std::string_view* pointer;
        typedef const std::string_view& reference;

        Iterator() = default;
        /// The line is valid until the next step.
        reference operator*() const { return *m_pLines->m_pLine; }
        pointer operator->() const { return m_pLines->m_pLine; }
        /// @throws the errors of getLine()
        Iterator& operator++() {
            if (!m_pLines->advance()) m_pLines = nullptr;
            return *this;
        }
        /// Returns a copy of the line before the step, for `*i++`.
        auto operator++(int) {
            struct Before {
                std::string line;
                std::string_view operator*() const { return line; }
            } before{std::string(**this)};
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) {
            return a.m_pLines == b.m_pLines;
        }
        friend bool operator!=(const Iterator& a, const Iterator& b) { return !(a == b); }

    private:
        friend class QBLFmLines;
        explicit Iterator(QBLFmLines* lines) : m_pLines(lines) {}

        QBLFmLines* m_pLines = nullptr;  // null at the end
    };
    typedef Iterator iterator;
    typedef Iterator const_iterator;
    typedef std::string_view value_type;

    /// Opens a file.
    /// @param encoding  null: a byte-order mark decides; without a mark, UTF-8
    /// @throws QBLSystemError with the errno if the file cannot be opened; I18NRuntimeError -3 for
    ///     an unknown encoding; QBLOutOfMemoryError
    explicit QBLFmLines(const char* path, const char* encoding = nullptr);
    explicit QBLFmLines(const std::string& path, const char* encoding = nullptr);
    /// @param converter  copied; its policy decides what replaces malformed text
    /// @param listener  is told about malformed text, with line and column, when its block is read;
    ///     this may be before earlier lines arrive. May be null; must outlive the object
    QBLFmLines(const char* path, const I18NConverter& converter,
               I18NTextStreamListener* listener = nullptr);
    QBLFmLines(const std::string& path, const I18NConverter& converter,
               I18NTextStreamListener* listener = nullptr);
    /// For std::filesystem::path.
    template <class Path, class... Arguments,
              class = std::enable_if_t<std::is_same_v<
                  std::decay_t<decltype(std::declval<const Path&>().native())>, std::string>>>
    explicit QBLFmLines(const Path& path, Arguments&&... arguments)
        : QBLFmLines(path.native(), std::forward<Arguments>(arguments)...) {}
    ~QBLFmLines();
    QBLFmLines(const QBLFmLines&) = delete;
    QBLFmLines& operator=(const QBLFmLines&) = delete;

    /// Reads the next line.
    /// @return false at the end; `line` is then unchanged
    /// @throws I18NRuntimeError -4 for malformed text; QBLSystemError with the errno if the file
    ///     cannot be read; QBLOutOfMemoryError; the exceptions of the listener
    [[nodiscard]] bool getLine(std::string& line) {
        if (!advance()) return false;
        line.assign(m_pLine->data(), m_pLine->size());
        return true;
    }
    /// Returns the number of the line that was read last. The first line has the number 1.
    std::int64_t getLineNumber() const { return m_iNumber; }

    /// Reads a line, and returns its position. So a second loop continues after the last line that
    /// the first loop read.
    /// @throws the errors of getLine()
    iterator begin() { return advance() ? iterator(this) : end(); }
    iterator end() { return iterator(); }

private:
    struct Reader;

    bool advance() {
        if (m_pNext == m_pEnd && !refill()) return false;
        m_pLine = m_pNext++;
        ++m_iNumber;
        return true;
    }
    bool refill();

    Reader* m_pReader;
    const std::string_view* m_pLine = nullptr;  // the current line
    const std::string_view* m_pNext = nullptr;  // the lines that are already cut
    const std::string_view* m_pEnd = nullptr;
    std::int64_t m_iNumber = 0;
};

#endif

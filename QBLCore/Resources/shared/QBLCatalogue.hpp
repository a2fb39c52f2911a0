#ifndef QBLCORE_RESOURCES_SHARED_QBLCATALOGUE_HPP
#define QBLCORE_RESOURCES_SHARED_QBLCATALOGUE_HPP

#include <cstddef>
#include <memory>
#include <string>

#include "QBLCore/Base/QBLFileStatus.hpp"

/// The content of a message file in memory, with the version of the file.
///
/// Threads: any thread may call any operation.
class QBLCatalogue {
public:
    static constexpr std::size_t kMaxSize = 4 << 20;  // bytes

    /// Reads a regular file of at most kMaxSize bytes that has not changed for a while.
    /// @return null for any other file, after a failure, or if memory runs short
    /// @throws std::bad_alloc
    static std::shared_ptr<const QBLCatalogue> read(const std::string& fileName);

    explicit QBLCatalogue(const std::string& fileName);

    /// Returns true if the name still leads to the file that was read, and the file is unchanged.
    bool isCurrent() const;
    /// Returns false if the file has errors, or a layout that qblmsgc does not write. In this case,
    /// QBLResourceBMF must read the file; this object only stores the version.
    bool isSound() const { return m_pWords != nullptr; }
    /// Requires: isSound().
    /// @return null if the file has no text for the identifier
    const char* getText(unsigned long id) const;
    /// Works as QBLResourceBMF::getShape(). Requires: isSound().
    unsigned getShape() const;
    const std::string& getFileName() const { return m_fileName; }
    /// Returns the size in memory in bytes.
    std::size_t getSize() const {
        return isSound() ? static_cast<std::size_t>(m_version.size()) : 0;
    }

private:
    struct Entry {
        unsigned id;
        unsigned offset;
        unsigned length;
    };

    bool readWords(std::size_t size);
    bool checkWords(std::size_t size);
    Entry entry(unsigned n) const;

    std::string m_fileName;
    QBLFileStatus m_version;
    std::unique_ptr<unsigned[]> m_pWords;  // the bytes of the file, in words of 32 bits
    unsigned m_uEntries;
    const char* m_pTexts;  // in m_pWords, after the entries
};

#endif

#ifndef QBLCORE_RESOURCES_QBLRESOURCEBMF_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEBMF_HPP

#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Resources/QBLResource.hpp"

/// A binary message file. All its numbers are unsigned 32-bit integers in network byte order. The
/// columns are the offset in bytes, the size in bytes, and the content:
///
///     0           8       "BMF1", a null byte, and in three bytes the shape, or 0
///     8           4       the number of entries, N
///     12          4       the size of all texts in bytes, D
///     16          12 * N  the entries, sorted by identifier: each has the identifier, the offset
///                         of its text from the first text, and the length of the text
///     16 + 12*N   D       the texts in UTF-8, each with a null byte, which its length includes
///
/// If the file is shorter than N and D declare, only the entries and texts inside the file are
/// read. An entry has no text if the entry points outside these texts.
///
/// Errors: QBLOutOfMemoryError. For a bad file, an operation returns false.
///
/// Threads: any number of threads may read from a preloaded resource; otherwise, one thread at a
/// time for each object.
class QBL_API QBLResourceBMF : public QBLResource {
public:
    /// @param preload  if not 0, open() reads all texts, which stay valid until the next open() or
    ///     the destructor. If 0, each getResource() reads the requested text, which is valid until
    ///     the next call.
    explicit QBLResourceBMF(int preload);
    ~QBLResourceBMF() override;

    [[nodiscard]] bool open() override;
    void close() override;
    bool isOpen() override;
    [[nodiscard]] bool getResource(unsigned long id, char** text) override;

    /// Returns the number of entries in the index.
    unsigned getEntryCount() const { return m_header.entries; }
    /// Returns the identifier of entry n; the identifiers ascend. Requires: n < getEntryCount().
    unsigned getEntryID(unsigned n) const;
    /// Returns the checksum of the catalogue's shape that `qblmsgc --typed` has written, as in
    /// QBLTypedCatalogue; 0 if the file has no checksum.
    unsigned getShape() const;

private:
    struct Header {
        char magic[8];
        unsigned entries;  // in host byte order after the check of the magic, like textSize
        unsigned textSize;
    };
    struct Entry {  // in network byte order
        unsigned id;
        unsigned offset;
        unsigned length;
    };

    void drop() noexcept;
    bool readIndex();
    bool readTexts();
    bool fetch(const Entry& entry, char** text);
    unsigned readUpTo(void* buffer, unsigned size, bool* failed = nullptr);

    QBLFmFile m_file;
    Header m_header;
    Entry* m_pIndex;  // owned
    char* m_pText;    // owned: all texts, or the last requested text; a null byte follows
    unsigned m_textCapacity;
    int m_preload;
};

#endif

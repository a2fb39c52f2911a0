#ifndef QBLCORE_RESOURCES_QBLRESOURCEBMF_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEBMF_HPP

#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Resources/QBLResource.hpp"

/// A binary message file. All its numbers are unsigned, of 32 bits, in network byte order:
///
///     0           8       "BMF1" and a zero byte; the rest does not matter
///     8           4       entries, N
///     12          4       bytes of the texts, D
///     16          12 * N  an entry each: identifier, offset of the text from the first one, its
///                         length; sorted by identifier
///     16 + 12*N   D       texts in UTF-8, each with a zero byte that its length includes
///
/// A file that lies about sizes is read as far as it goes: what N and D promise beyond its end is
/// not there, and an entry whose text lies outside has none.
///
/// Errors: a bad file is only a false result. QBLOutOfMemoryError.
///
/// Threads: a resource that was read as a whole can be asked by any number of threads; else it
/// belongs to one thread at a time.
class QBL_API QBLResourceBMF : public QBLResource {
public:
    /// @param preload  not 0 to read the texts while opening, so that they stay valid as long as
    ///     the resource is there. Else each is read when asked for, and valid until the next one.
    explicit QBLResourceBMF(int preload);
    ~QBLResourceBMF() override;

    [[nodiscard]] bool open() override;
    void close() override;
    bool isOpen() override;
    [[nodiscard]] bool getResource(unsigned long id, char** text) override;

    /// Entries that the index has.
    unsigned getEntryCount() const { return m_header.entries; }
    /// The identifier of an entry; they ascend. Requires: n < getEntryCount().
    unsigned getEntryID(unsigned n) const;

private:
    struct Header {
        char magic[8];
        unsigned entries;  // in the byte order of the machine once the magic is known to be right
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
    char* m_pText;    // owned: all texts, or the one asked for last; with a zero byte behind
    unsigned m_textCapacity;
    int m_preload;
};

#endif

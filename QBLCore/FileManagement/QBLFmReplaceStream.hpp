#ifndef QBLCORE_FILEMANAGEMENT_QBLFMREPLACESTREAM_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMREPLACESTREAM_HPP

#include <ostream>
#include <streambuf>

#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

/// A stream buffer that writes to the new version of a file.
///
/// Threads: one thread at a time for each object.
class QBLFmReplaceBuffer : public std::streambuf {
public:
    /// @param file  must be open, and must outlive the buffer
    explicit QBLFmReplaceBuffer(QBLFmReplaceFile& file) : m_file(file) { restart(); }

protected:
    int sync() override {
        const auto size = static_cast<unsigned long>(pptr() - pbase());
        restart();
        return size == 0 || m_file.write(m_buffer, size) ? 0 : -1;
    }
    int_type overflow(int_type c) override {
        if (sync() != 0) return traits_type::eof();
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        return sputc(traits_type::to_char_type(c));
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        if (size < epptr() - pptr()) return std::streambuf::xsputn(text, size);
        if (sync() != 0 || !m_file.write(text, static_cast<unsigned long>(size))) return 0;
        return size;
    }

private:
    void restart() { setp(m_buffer, m_buffer + sizeof m_buffer); }

    QBLFmReplaceFile& m_file;
    char m_buffer[8192];
};

/// A stream that writes a new version of a file and replaces the old version in one step. Without a
/// successful commit() the old version stays.
///
/// Threads: one thread at a time for each object.
///
///     QBLFmReplaceStream out(path);
///     out << "total " << total << '\n';
///     if (!out.commit()) report(out.getFile().getLastErrorMessage());
class QBLFmReplaceStream : public std::ostream {
public:
    /// Begins a new version. Sets failbit if this fails.
    /// @param path  also a std::filesystem::path or an open directory and a name, as in
    ///     QBLFmReplaceFile::open()
    template <class... Path>
    explicit QBLFmReplaceStream(const Path&... path) : std::ostream(nullptr), m_buffer(m_file) {
        rdbuf(&m_buffer);
        if (!m_file.open(path...)) setstate(failbit);
    }

    /// Writes what is buffered, and replaces the file. Afterwards the stream cannot be used.
    /// @return false, with badbit, if an earlier operation or the replacement failed; see
    ///     QBLFmReplaceFile::commit()
    [[nodiscard]] bool commit() {
        flush();
        const bool done = good() && m_file.commit();
        if (!done) m_file.discard();
        setstate(done ? eofbit : badbit);
        return done;
    }
    /// Returns the file, for its state and its last error.
    QBLFmReplaceFile& getFile() { return m_file; }

private:
    QBLFmReplaceFile m_file;
    QBLFmReplaceBuffer m_buffer;
};

#endif

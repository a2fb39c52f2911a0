#include "QBLCore/FileManagement/QBLFmLines.hpp"

#include <emmintrin.h>

#include <cstring>
#include <memory>
#include <optional>
#include <system_error>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace {

const char kCannotRead[] = "QBLFmLines: cannot read ";
const char kMalformed[] = "QBLFmLines: ";
const char kStreamPrefix[] = "I18NTextStream: ";
constexpr std::size_t kBlock = 65536;
constexpr std::size_t kBatch = 256;  // lines that are cut at a time

[[noreturn]] void throwUnread(const std::string& path, int error) {
    const std::string text = kCannotRead + path + ": " + std::generic_category().message(error);
    QBL_THROW(QBLSystemError(error, text.c_str()));
}

/// @throws QBLSystemError for a null path
std::string pathOf(const char* path) {
    QBL_ALLOC_TRY
    if (path == nullptr) throwUnread("(null)", EFAULT);
    return path;
    QBL_ALLOC_CATCH
}

/// Returns a converter that stops at malformed text.
/// @param encoding  null means UTF-8
I18NConverter strict(const char* encoding) {
    I18NConverter converter(encoding != nullptr ? encoding : "UTF-8");
    converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
    return converter;
}

constexpr std::ptrdiff_t kScanned = 32;

/// Returns a bit for each of 32 bytes that has this value.
unsigned findByte(const char* bytes, char wanted) {
    __m128i halves[2];
    std::memcpy(halves, bytes, sizeof halves);
    const __m128i all = _mm_set1_epi8(wanted);
    const auto low = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(halves[0], all)));
    const auto high = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(halves[1], all)));
    return low | high << 16;
}

/// Returns a bit for each LF and CR in 32 bytes, except an LF after a CR.
unsigned findEnds(const char* bytes) {
    const unsigned crs = findByte(bytes, '\r');
    return crs | (findByte(bytes, '\n') & ~(crs << 1));
}

/// An open file. The destructor closes it.
class InputFile {
public:
    explicit InputFile(std::string path) : m_path(std::move(path)) {
        const bool isText = m_path.find('\0') == std::string::npos;
        m_iFd = isText ? open64(m_path.c_str(), O_RDONLY | O_CLOEXEC) : -1;
        if (m_iFd < 0) throwUnread(m_path.substr(0, m_path.find('\0')), isText ? errno : EILSEQ);
    }
    ~InputFile() { qblCloseQuietly(m_iFd); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::string& path() const { return m_path; }
    /// @return the number of bytes; 0 at the end
    std::size_t read(char* block, std::size_t size) const {
        for (;;) {
            const ssize_t got = ::read(m_iFd, block, size);
            if (got >= 0) return static_cast<std::size_t>(got);
            if (errno != EINTR) throwUnread(m_path, errno);
        }
    }

private:
    std::string m_path;
    int m_iFd;
};

}  // namespace

/// Cuts the output of a text stream into lines, many at a time. A line inside one output is not
/// copied. A line that continues into the next output is collected in `carry`, and moves to
/// `carried` when it is complete.
struct QBLFmLines::Reader {
    InputFile file;
    I18NTextStream stream;
    const std::unique_ptr<char[]> block{new char[kBlock]};
    const char* at = nullptr;  // the output that is not cut yet
    const char* end = nullptr;
    std::string carry, carried;
    bool skipLf = false;  // the last output ended with CR
    bool isEnded = false;
    bool hasFailed = false;                 // `carry` is not a whole line
    std::optional<I18NRuntimeError> error;  // thrown after all lines before it have been read
    std::size_t count = 0;
    std::string_view lines[kBatch];

    Reader(std::string path, const I18NConverter& from, const I18NConverter& to,
           I18NByteOrderMark mark, I18NTextStreamListener* listener)
        : file(std::move(path)), stream(&from, &to, mark, listener) {}

    /// Converts the next block. An exception ends the reading.
    void fill() {
        isEnded = hasFailed = true;
        const std::size_t size = file.read(block.get(), kBlock);
        try {
            if (size == 0)
                stream.finish();
            else
                stream.put(block.get(), size);
        } catch (I18NRuntimeError& refused) {
            if (refused.getErrorCode() != I18N_CONVERSION) throw;
            std::string text = refused.getMessage();
            if (text.compare(0, sizeof kStreamPrefix - 1, kStreamPrefix) == 0)
                text.erase(0, sizeof kStreamPrefix - 1);
            text = kMalformed + file.path() + ": " + text;
            error.emplace(I18N_CONVERSION, text.c_str());
        }
        hasFailed = error.has_value();
        isEnded = size == 0 || hasFailed;
        at = stream.getBytes();
        end = at + stream.getByteCount();
        if (!skipLf || at == end) return;
        skipLf = false;
        if (*at == '\n') ++at;
    }

    void stop() {
        isEnded = hasFailed = true;
        at = end;
        error.reset();
    }

    /// Takes the line before an end. Goes to the line after it.
    /// @return false if there is no room for another line
    bool take(const char* lineEnd) {
        const std::string_view text(at, static_cast<std::size_t>(lineEnd - at));
        at = lineEnd + 1;
        if (*lineEnd == '\r') {
            skipLf = at == end;
            if (!skipLf && *at == '\n') ++at;
        }
        lines[count++] = carry.empty() ? text : takeCarry(text);
        return count < kBatch;
    }

    std::string_view takeCarry(std::string_view text) {
        carry += text;
        carried.swap(carry);
        carry.clear();
        return carried;
    }

    /// Cuts the output until its end, or until there is no more room.
    void cut() {
        const char* from = at;
        for (; end - from >= kScanned; from += kScanned)
            for (unsigned found = findEnds(from); found != 0; found &= found - 1) {
                const char* const lineEnd = from + __builtin_ctz(found);
                // The LF of a CR LF that two blocks share is before `at`.
                if (lineEnd >= at && !take(lineEnd)) return;
            }
        for (; from < end; ++from)
            if (from >= at && (*from == '\n' || *from == '\r') && !take(from)) return;
        carry.append(at, end);
        at = end;
    }

    /// Cuts the next lines. @return false at the end
    bool next() {
        for (count = 0; count == 0;) {
            if (at != end) {
                cut();
            } else if (error) {
                I18NRuntimeError thrown = *error;
                error.reset();
                QBL_THROW(thrown);
            } else if (!isEnded) {
                fill();
            } else {
                if (hasFailed || carry.empty()) return false;
                lines[count++] = takeCarry(std::string_view());
            }
        }
        return true;
    }
};

QBLFmLines::QBLFmLines(const std::string& path, const char* encoding) : m_pReader(nullptr) {
    QBL_ALLOC_TRY
    m_pReader =
        new Reader(path, strict(encoding), strict(nullptr),
                   encoding == nullptr ? I18N_MARK_CHOOSE_AND_STRIP : I18N_MARK_STRIP, nullptr);
    QBL_ALLOC_CATCH
}

QBLFmLines::QBLFmLines(const std::string& path, const I18NConverter& converter,
                       I18NTextStreamListener* listener)
    : m_pReader(nullptr) {
    QBL_ALLOC_TRY
    m_pReader = new Reader(path, converter, I18NConverter("UTF-8"), I18N_MARK_STRIP, listener);
    QBL_ALLOC_CATCH
}

QBLFmLines::QBLFmLines(const char* path, const char* encoding)
    : QBLFmLines(pathOf(path), encoding) {}

QBLFmLines::QBLFmLines(const char* path, const I18NConverter& converter,
                       I18NTextStreamListener* listener)
    : QBLFmLines(pathOf(path), converter, listener) {}

QBLFmLines::~QBLFmLines() { delete m_pReader; }

/// Passes exceptions of the listener on unchanged.
bool QBLFmLines::refill() {
    m_pNext = m_pEnd = m_pReader->lines;
    try {
        if (!m_pReader->next()) return false;
    } catch (const std::bad_alloc&) {
        m_pReader->stop();
        qblRethrowTranslated(QBL_HERE);
    }
    m_pEnd += m_pReader->count;
    return true;
}

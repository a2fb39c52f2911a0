#include "QBLCore/Resources/shared/QBLCatalogue.hpp"

#include <arpa/inet.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <new>

#include "QBLCore/Base/QBLSurplus.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"

// The times of a file identify its version. The system sets these times from a clock that advances
// in steps, so two changes within one step look like one change. Therefore read() accepts a file
// only if its last change is older than a step: any later change then gives the file another time.
// The status of the open file after the last byte must equal the status before open(). All bytes
// then belong to this version.

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const char kMagic[] = "BMF1";  // the terminating NUL is part of the magic
const unsigned kHeaderWords = 4;
const unsigned kEntryWords = 3;
const unsigned kWordSize = 4;

// The fine step is longer than a tick of the kernel. Times of whole seconds come from file systems
// with coarse clocks; the coarsest clock has steps of two seconds.
const milliseconds kFineStep(100);
const milliseconds kCoarseStep(3000);

/// Returns true if a file's time is older than `now` by at least `limit`.
bool isOlder(std::int64_t wholeSeconds, unsigned nanoseconds, milliseconds now,
             milliseconds limit) {
    const std::int64_t present = now.count() / 1000;
    if (wholeSeconds > present) return false;
    if (wholeSeconds < present - 2 * kCoarseStep.count() / 1000) return true;
    return now - seconds(wholeSeconds) - milliseconds(nanoseconds / 1000000) >= limit;
}

bool isOldEnough(const QBLFileStatus& file, milliseconds now) {
    const bool fine = file.modifiedNanoseconds() != 0 && file.changedNanoseconds() != 0;
    const milliseconds limit = fine ? kFineStep : kCoarseStep;
    return isOlder(file.modifiedSeconds(), file.modifiedNanoseconds(), now, limit) &&
           isOlder(file.changedSeconds(), file.changedNanoseconds(), now, limit);
}

}  // namespace

QBLCatalogue::QBLCatalogue(const std::string& fileName)
    : m_fileName(fileName), m_version(), m_uEntries(0), m_pTexts(nullptr) {}

std::shared_ptr<const QBLCatalogue> QBLCatalogue::read(const std::string& fileName) {
    const auto now = std::chrono::duration_cast<milliseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    QBLFileStatus status;
    if (!status.get(fileName.c_str()) || !status.isRegular() || status.size() > kMaxSize ||
        !isOldEnough(status, now))
        return nullptr;
    // The program can do without a kept catalogue, so its new-handler must not be called for this
    // memory.
    const auto size = static_cast<std::size_t>(status.size());
    if (!qblMayTakeSurplus(sizeof(QBLCatalogue) + fileName.size() + size)) return nullptr;
    auto catalogue = std::make_shared<QBLCatalogue>(fileName);
    catalogue->m_version = status;
    if (!catalogue->readWords(size)) return nullptr;
    if (!catalogue->checkWords(size)) catalogue->m_pWords.reset();
    return catalogue;
}

bool QBLCatalogue::readWords(std::size_t size) {
    m_pWords.reset(new (std::nothrow) unsigned[size / kWordSize + 1]);
    QBLFmFile file;
    if (m_pWords == nullptr || !file.open(m_fileName.c_str(), QBLFmFile::existing, 1)) return false;
    char* next = reinterpret_cast<char*>(m_pWords.get());
    for (std::size_t left = size; left > 0;) {
        const long n = file.read(next, static_cast<unsigned long>(left));
        if (n <= 0) return false;
        next += n;
        left -= static_cast<std::size_t>(n);
    }
    QBLFileStatus after;
    return after.get(file.getFileDescriptor()) && after.isSameVersion(m_version);
}

/// Checks the conditions that getText() relies on: the sizes are right, the identifiers ascend, and
/// each text ends within its length.
bool QBLCatalogue::checkWords(std::size_t size) {
    const std::size_t header = kHeaderWords * kWordSize;
    if (size < header || std::memcmp(m_pWords.get(), kMagic, sizeof kMagic) != 0) return false;
    m_uEntries = ntohl(m_pWords[2]);
    const unsigned textSize = ntohl(m_pWords[3]);
    if (m_uEntries > (size - header) / (kEntryWords * kWordSize)) return false;
    const unsigned* texts = &m_pWords[kHeaderWords + std::size_t(m_uEntries) * kEntryWords];
    m_pTexts = reinterpret_cast<const char*>(texts);
    if (textSize > size - header - std::size_t(m_uEntries) * kEntryWords * kWordSize) return false;
    for (unsigned n = 0; n < m_uEntries; ++n) {
        const Entry one = entry(n);
        if (n > 0 && one.id <= entry(n - 1).id) return false;
        if (one.offset > textSize || one.length == 0 || one.length > textSize - one.offset)
            return false;
        if (m_pTexts[one.offset + one.length - 1] != '\0') return false;
    }
    return true;
}

bool QBLCatalogue::isCurrent() const {
    QBLFileStatus status;
    // Network file systems ask the server, as they do for open(2).
    return status.get(AT_FDCWD, m_fileName.c_str(), AT_STATX_FORCE_SYNC) &&
           status.isSameVersion(m_version);
}

QBLCatalogue::Entry QBLCatalogue::entry(unsigned n) const {
    const unsigned* words = &m_pWords[kHeaderWords + std::size_t(n) * kEntryWords];
    return {ntohl(words[0]), ntohl(words[1]), ntohl(words[2])};
}

unsigned QBLCatalogue::getShape() const { return ntohl(m_pWords[1]) & 0xFFFFFF; }

const char* QBLCatalogue::getText(unsigned long id) const {
    unsigned begin = 0, end = m_uEntries;
    while (begin < end) {
        const unsigned middle = begin + (end - begin) / 2;
        const Entry one = entry(middle);
        if (one.id == id) return m_pTexts + one.offset;
        if (one.id < id)
            begin = middle + 1;
        else
            end = middle;
    }
    return nullptr;
}

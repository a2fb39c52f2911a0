#include "tools/qblconv/InPlace.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/common/Reason.hpp"

namespace conv {

namespace {

constexpr int kAttempts = 1000;

}  // namespace

InPlace::InPlace(const Item& item, Input& input, const std::string& suffix, FileReport& report)
    : m_item(item),
      m_name(shown(item.path)),
      m_input(input),
      m_report(report),
      m_second(suffix.empty() ? suffix : item.leaf + suffix) {}

bool InPlace::reportFailure(qblconvmsgs id, Details details) {
    details.insert(details.begin(), m_name);
    m_report.error(id, details);
    return false;
}

bool InPlace::begin() {
    return m_output.open(m_item.place->directory, m_item.leaf) ||
           reportFailure(CONV_CANNOT_WRITE, {tools::reason(m_output.error())});
}

bool InPlace::finish() {
    return bringToDisk() && isUnchanged() && keepOriginal() && replace() && isUnchangedStill();
}

/// Before the look at the file, since it takes long.
bool InPlace::bringToDisk() {
    return m_output.file().flush() ||
           reportFailure(CONV_CANNOT_WRITE, {tools::reason(m_output.error())});
}

bool InPlace::isUnchanged() { return !m_input.isAnother() || reportFailure(CONV_CHANGED); }

/// Whether a sticky directory keeps the file from being replaced; a second name that it got there
/// could not be taken away again either.
bool InPlace::isStuck() const {
    FileStatus directory;
    const uid_t user = geteuid();
    return directory.get(m_item.place->directory.getDescriptor()) &&
           (directory.mode() & S_ISVTX) != 0 && user != 0 && user != m_input.status().user() &&
           user != directory.user();
}

/// @return false with errno set
bool InPlace::linkOriginal() {
    const int directory = m_item.place->directory.getDescriptor();
    m_bHasSecond = linkat(directory, m_item.leaf.c_str(), directory, m_second.c_str(), 0) == 0;
    const int error = errno;
    FileStatus second;
    const bool isOriginal = second.get(directory, m_second.c_str(), AT_SYMLINK_NOFOLLOW) &&
                            second.isSameVersion(m_input.status());
    if (isOriginal && (m_bHasSecond || error == EEXIST)) return true;
    if (m_bHasSecond) unlinkat(directory, m_second.c_str(), 0);
    errno = m_bHasSecond ? ESTALE : error;
    m_bHasSecond = false;
    return false;
}

/// By a second name, so that the file has its first one all the time. What has that name already
/// may be the only original there is, or the name that a run that was broken off has made.
bool InPlace::keepOriginal() {
    if (m_second.empty()) return true;
    if (isStuck()) return reportFailure(CONV_CANNOT_WRITE, {tools::reason(EPERM)});
    if (linkOriginal()) return true;
    if (errno == ESTALE) return reportFailure(CONV_CHANGED);
    const int error = errno;
    const std::string path = m_item.path.substr(0, m_item.path.rfind('/') + 1) + m_second;
    return reportFailure(CONV_CANNOT_KEEP, {shown(path), tools::reason(error)});
}

bool InPlace::replace() {
    if (m_output.file().commitOver(m_input.descriptor()) || m_output.file().isCommitted())
        return true;
    const int error = m_output.error();
    // Two names of one file would be changed together.
    if (m_bHasSecond) m_item.place->directory.remove(m_second.c_str());
    if (error == ESTALE || error == ENOENT) return reportFailure(CONV_CHANGED);
    return reportFailure(CONV_CANNOT_WRITE, {tools::reason(error)});
}

/// Somebody may have written to the old version after the last look; our descriptor still knows it.
bool InPlace::isUnchangedStill() {
    if (!m_input.hasChanged()) return true;
    const std::string directory = m_item.path.substr(0, m_item.path.rfind('/') + 1);
    if (!m_second.empty()) return reportFailure(CONV_CHANGED_LATE, {shown(directory + m_second)});
    for (int i = 1; i <= kAttempts; ++i) {
        const std::string kept = m_item.leaf + ".changed" + std::to_string(i);
        if (m_output.file().keepReplaced(kept.c_str()))
            return reportFailure(CONV_CHANGED_LATE, {shown(directory + kept)});
        if (m_output.error() != EEXIST) break;
    }
    return reportFailure(CONV_CHANGED_LOST);
}

}  // namespace conv

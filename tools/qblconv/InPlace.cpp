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

bool InPlace::reportFailure(const QBLTypedMessage& message) {
    m_report.error(message);
    return false;
}

bool InPlace::begin() {
    return m_output.open(m_item.place->directory, m_item.leaf) ||
           reportFailure(qblconvmsgs::convCannotWrite(m_name, tools::reason(m_output.error())));
}

bool InPlace::finish() {
    return bringToDisk() && isUnchanged() && keepOriginal() && replace() && isUnchangedStill();
}

/// Flushes before the file is checked for changes, because flushing takes long.
bool InPlace::bringToDisk() {
    return m_output.file().flush() ||
           reportFailure(qblconvmsgs::convCannotWrite(m_name, tools::reason(m_output.error())));
}

bool InPlace::isUnchanged() {
    return !m_input.isAnother() || reportFailure(qblconvmsgs::convChanged(m_name));
}

/// Returns true if a sticky directory prevents replacing the file. In such a directory, a second
/// name could not be removed either.
bool InPlace::isStuck() const {
    FileStatus directory;
    const uid_t user = geteuid();
    return directory.get(m_item.place->directory.getDescriptor()) &&
           (directory.mode() & S_ISVTX) != 0 && user != 0 && user != m_input.status().user() &&
           user != directory.user();
}

/// Gives the original its second name. If the name exists, checks that it is the same version.
/// @return false, with errno set; ESTALE if the file has changed
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

/// Creates a second name for the original. A rename would leave the first name without a file for a
/// moment. Never overwrites an existing file with the second name: that file may be the only
/// original, or an interrupted run may have created it.
bool InPlace::keepOriginal() {
    if (m_second.empty()) return true;
    if (isStuck()) return reportFailure(qblconvmsgs::convCannotWrite(m_name, tools::reason(EPERM)));
    if (linkOriginal()) return true;
    if (errno == ESTALE) return reportFailure(qblconvmsgs::convChanged(m_name));
    const int error = errno;
    const std::string path = m_item.path.substr(0, m_item.path.rfind('/') + 1) + m_second;
    return reportFailure(qblconvmsgs::convCannotKeep(m_name, shown(path), tools::reason(error)));
}

bool InPlace::replace() {
    if (m_output.file().commitOver(m_input.descriptor()) || m_output.file().isCommitted())
        return true;
    const int error = m_output.error();
    // A write through one name would change the file under both names.
    if (m_bHasSecond) m_item.place->directory.remove(m_second.c_str());
    if (error == ESTALE || error == ENOENT) return reportFailure(qblconvmsgs::convChanged(m_name));
    return reportFailure(qblconvmsgs::convCannotWrite(m_name, tools::reason(error)));
}

/// Another program may have written to the old version after the last check. The open descriptor
/// still refers to the old version.
bool InPlace::isUnchangedStill() {
    if (!m_input.hasChanged()) return true;
    const std::string directory = m_item.path.substr(0, m_item.path.rfind('/') + 1);
    if (!m_second.empty())
        return reportFailure(qblconvmsgs::convChangedLate(m_name, shown(directory + m_second)));
    for (int i = 1; i <= kAttempts; ++i) {
        const std::string kept = m_item.leaf + ".changed" + std::to_string(i);
        if (m_output.file().keepReplaced(kept.c_str()))
            return reportFailure(qblconvmsgs::convChangedLate(m_name, shown(directory + kept)));
        if (m_output.error() != EEXIST) break;
    }
    return reportFailure(qblconvmsgs::convChangedLost(m_name));
}

}  // namespace conv

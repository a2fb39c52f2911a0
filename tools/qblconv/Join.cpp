#include "tools/qblconv/Join.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/common/Reason.hpp"

namespace conv {

namespace {

constexpr int kAttempts = 1000;

}  // namespace

JoinedOutput::~JoinedOutput() {
    if (m_iOld >= 0) ::close(m_iOld);
}

bool JoinedOutput::isAnInput(const std::vector<std::string>& inputs) const {
    return std::any_of(inputs.begin(), inputs.end(), [this](const std::string& each) {
        FileStatus input;
        const bool isThere = each == "-" ? input.get(STDIN_FILENO) : input.get(each.c_str());
        return isThere && input.isSameFile(m_old);
    });
}

/// Opens the old version of the output, to compare it with the inputs. A file that cannot be read
/// is not an input.
bool JoinedOutput::openOld() {
    m_iOld = open64(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    return m_iOld >= 0 && m_old.get(m_iOld);
}

bool JoinedOutput::open(const std::vector<std::string>& inputs) {
    FileStatus status;
    const bool isThere = !m_path.empty() && status.get(m_path.c_str());
    m_bDirect = m_path.empty() || (isThere && !status.isRegular());
    m_pOutput = m_bDirect ? static_cast<Output*>(&m_direct) : &m_replacing;
    if (m_bDirect) return m_bOpen = m_path.empty() ? m_direct.open() : m_direct.open(m_path);
    if (isThere && openOld() && !isAnInput(inputs)) {
        ::close(m_iOld);
        m_iOld = -1;
    }
    return m_bOpen = m_replacing.open(m_path);
}

bool JoinedOutput::isUnchanged() const {
    FileStatus now;
    return now.get(m_path.c_str()) && now.isSameVersion(m_old);
}

bool JoinedOutput::replace() {
    if (m_iOld < 0) return m_pOutput->commit();
    return m_replacing.file().commitOver(m_iOld) || m_replacing.file().isCommitted();
}

/// Another program may have written to the old version after the last check.
bool JoinedOutput::isUnchangedStill(FileReport& report) {
    FileStatus now;
    if (m_iOld < 0 || (now.get(m_iOld) && now.isSameVersion(m_old))) return true;
    const std::string leaf = m_path.substr(m_path.rfind('/') + 1);
    const std::string directory = m_path.substr(0, m_path.size() - leaf.size());
    for (int i = 1; i <= kAttempts; ++i) {
        const std::string kept = leaf + ".changed" + std::to_string(i);
        if (m_replacing.file().keepReplaced(kept.c_str())) {
            report.error(qblconvmsgs::convChangedLate(m_name, shown(directory + kept)));
            return false;
        }
        if (m_replacing.error() != EEXIST) break;
    }
    report.error(qblconvmsgs::convChangedLost(m_name));
    return false;
}

void JoinedOutput::finish(bool hasFailed, FileReport& report) {
    const auto cannotWrite = [&] {
        report.error(qblconvmsgs::convCannotWrite(m_name, tools::reason(m_pOutput->error())));
    };
    if (!m_bOpen) return cannotWrite();
    if (m_bDirect) {
        // If the write of an input's text failed, that input has failed and was reported already. A
        // failed write of the byte-order mark was not.
        if (m_pOutput->error() == 0 ? !m_pOutput->commit() : !hasFailed) cannotWrite();
        return;
    }
    if (hasFailed && m_pOutput->error() != 0) return;
    if (hasFailed) return report.error(qblconvmsgs::convNotWritten(m_name));
    if (m_iOld >= 0 && !m_replacing.file().flush()) return cannotWrite();
    if (m_iOld >= 0 && !isUnchanged()) return report.error(qblconvmsgs::convChanged(m_name));
    if (replace()) {
        static_cast<void>(isUnchangedStill(report));
    } else if (m_iOld >= 0 && m_pOutput->error() == ESTALE) {
        report.error(qblconvmsgs::convChanged(m_name));
    } else {
        cannotWrite();
    }
}

}  // namespace conv

#include "QBLCore/FileManagement/internal/QBLFmAttributes.hpp"

#include <endian.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

const char kList[] = "system.posix_acl_access";
constexpr std::size_t kListHeader = 4, kListEntry = 8;
constexpr unsigned kOwnGroup = 0x04, kMask = 0x10, kOthers = 0x20;  // tags of entries

/// Attributes that sign a file's content, or that give a program more rights than its caller has.
const std::string_view kOfTheContent[] = {"security.ima", "security.evm", "security.capability"};

bool isMissing(int error) { return error == ENODATA || error == EOPNOTSUPP || error == ENOSYS; }

/// Returns true if the call could succeed at another time.
bool isTransient(int error) {
    return error == ENOSPC || error == EDQUOT || error == EIO || error == ENOMEM;
}

/// Reads a value. `call` with a null buffer returns the size. @return false with errno set
template <class Call>
bool readSized(std::string& out, Call&& call) {
    for (;;) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0) return false;
        out.resize(static_cast<std::size_t>(size));
        const ssize_t got = size != 0 ? call(&out[0], out.size()) : 0;
        if (got < 0 && errno == ERANGE) continue;  // the value has grown meanwhile
        if (got >= 0) out.resize(static_cast<std::size_t>(got));
        return got >= 0;
    }
}

/// The attributes of the old file, read through a path in /proc that leads to the open file,
/// because attributes cannot be read through an O_PATH descriptor.
class Attributes {
public:
    explicit Attributes(int fd) : m_path("/proc/self/fd/" + std::to_string(fd)) {
        QBLFileStatus byPath, open;
        const bool seen = byPath.get(m_path.c_str()) && open.get(fd);
        if (seen && open.isSameFile(byPath)) return;
        if (!seen && isTransient(errno)) m_iError = errno;
        m_path.clear();
    }
    bool isKnown() const { return !m_path.empty() || qblSetErrno(m_iError); }
    bool read(const char* name, std::string& value) const {
        return isKnown() && readSized(value, [=](char* to, std::size_t n) {
                   return getxattr(m_path.c_str(), name, to, n);
               });
    }
    bool list(std::string& names) const {
        return isKnown() && readSized(names, [this](char* to, std::size_t n) {
                   return listxattr(m_path.c_str(), to, n);
               });
    }

private:
    std::string m_path;     // empty without /proc
    int m_iError = ENOSYS;  // why the path is empty
};

/// The entries of an access control list in the kernel's format: a version, then for each entry a
/// 16-bit tag, 16-bit permissions and a 32-bit identity.
class AccessList {
public:
    explicit AccessList(std::string& bytes) : m_bytes(bytes) {}

    /// @return the permissions of the first entry with this tag, or `otherwise` if no entry has it
    unsigned get(unsigned tag, unsigned otherwise) const {
        const std::size_t at = find(tag);
        return at != 0 ? number(at + 2) : otherwise;
    }
    void set(unsigned tag, unsigned permissions) {
        const std::uint16_t value = htole16(static_cast<std::uint16_t>(permissions));
        if (const std::size_t at = find(tag)) std::memcpy(&m_bytes[at + 2], &value, sizeof value);
    }

private:
    unsigned number(std::size_t at) const {
        std::uint16_t value;
        std::memcpy(&value, &m_bytes[at], sizeof value);
        return le16toh(value);
    }
    std::size_t find(unsigned tag) const {
        for (std::size_t at = kListHeader; at + kListEntry <= m_bytes.size(); at += kListEntry)
            if (number(at) == tag) return at;
        return 0;
    }

    std::string& m_bytes;
};

/// Removes the access control list that a new file has inherited from its directory.
bool removeList(int fd) { return fremovexattr(fd, kList) == 0 || isMissing(errno); }

bool copyList(const Attributes& from, int to, unsigned& mode, bool strangeGroup) {
    std::string bytes;
    if (!from.read(kList, bytes)) {
        const bool refused =
            errno == EACCES || errno == EPERM || (!from.isKnown() && errno == ENOSYS);
        if (!refused && !isMissing(errno)) return false;
        if (strangeGroup || refused) mode &= ~070U | mode << 3;
        return removeList(to);
    }
    AccessList list(bytes);
    const unsigned own = list.get(kOwnGroup, 0) & (strangeGroup ? list.get(kOthers, 0) : 7U);
    list.set(kOwnGroup, own);
    if (fsetxattr(to, kList, bytes.data(), bytes.size(), 0) == 0) return true;
    if (isTransient(errno)) return false;
    mode = (mode & ~070U) | (own & list.get(kMask, 7)) << 3;
    return removeList(to);
}

bool copyOthers(const Attributes& from, int to) {
    std::string names, value;
    if (!from.list(names)) return errno == EACCES || errno == EPERM || isMissing(errno);
    for (std::size_t at = 0; at < names.size();) {
        const char* const name = &names[at];
        at += std::strlen(name) + 1;
        bool copied = std::strcmp(name, kList) == 0;  // or it must not be copied
        for (const std::string_view left : kOfTheContent) copied = copied || left == name;
        if (copied) continue;
        const bool done =
            from.read(name, value) && fsetxattr(to, name, value.data(), value.size(), 0) == 0;
        if (!done && isTransient(errno)) return false;
    }
    return true;
}

}  // namespace

bool qblCopyAttributes(int from, int to, unsigned& mode, bool strangeGroup) {
    const Attributes attributes(from);
    return copyList(attributes, to, mode, strangeGroup) && copyOthers(attributes, to);
}

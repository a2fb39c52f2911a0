#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "QBLCore/Base/QBLFileLook.hpp"
#include "QBLCore/Base/QBLOpenRegular.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"

namespace {

constexpr long kInterval = 3600;

struct Settings {
    long interval = kInterval;
    bool dumpToFile = false;
};

/// Parses a number. Values beyond 32 bits become the nearest 32-bit value, on every machine.
/// @return true if the whole text is a number
bool parse(const char* text, long& value) {
    char* end = nullptr;
    value = static_cast<long>(
        std::clamp<long long>(std::strtoll(text, &end, 10), INT32_MIN, INT32_MAX));
    return end != text && *end == '\0';
}

constexpr std::size_t kMostBytes = 16384;
constexpr std::size_t kMostOfWord = 63;

/// Removes the next word from a text and returns it, truncated if it is too long.
std::string_view takeWord(std::string_view& text) {
    constexpr char kBlanks[] = " \t\r\n\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word.substr(0, kMostOfWord);
}

/// Returns true if only the user or the administrator can have written a file. The file may be
/// writable for the process's own group.
bool isTrusted(const QBLFileStatus& file) {
    const bool byGroup = (file.mode() & S_IWGRP) != 0 && file.group() != getegid();
    return (file.user() == geteuid() || file.user() == 0) && !byGroup &&
           (file.mode() & S_IWOTH) == 0;
}

/// Reads the beginning of the settings file. Ignores pipes and devices, because they could block
/// the custodian. Ignores a file that another user may have written, because it could make the
/// program write its texts to the disk.
/// @param length  receives the number of bytes; 0 if there is no such file
/// @return false if the file may exist but could not be opened or read
bool readFile(char (&bytes)[kMostBytes], std::size_t& length) {
    length = 0;
    QBLFileStatus status;
    const int fd = qblOpenRegular("I18NPooledString.conf", O_RDONLY, status);
    if (fd < 0) return qblIsAbsence(errno);
    ssize_t got = isTrusted(status) ? 1 : 0;
    while (got > 0 && length < kMostBytes) {
        got = ::read(fd, bytes + length, kMostBytes - length);
        if (got > 0) length += static_cast<std::size_t>(got);
        if (got < 0 && errno == EINTR) got = 1;
    }
    qblCloseQuietly(fd);
    return got >= 0;
}

/// Reads the settings from the file. A value that is not a number is ignored. An interval below 0
/// means the default.
/// @return false if the file could not be read
bool readSettings(Settings& settings) {
    char bytes[kMostBytes];
    std::size_t length = 0;
    if (!readFile(bytes, length)) return false;
    std::string_view rest(bytes, length);
    while (!rest.empty()) {
        const std::string_view key = takeWord(rest), number = takeWord(rest);
        // The last word of a longer file may be truncated.
        if (number.empty() || (rest.empty() && length == kMostBytes)) break;
        char text[kMostOfWord + 1] = "";
        number.copy(text, kMostOfWord);
        long value = 0;
        if (!parse(text, value)) continue;
        if (key == "interval") settings.interval = value < 0 ? kInterval : value;
        if (key == "dumpToFile") settings.dumpToFile = value != 0;
    }
    return true;
}

}  // namespace

std::atomic<long> I18NPooledString::s_interval{kInterval};
std::atomic<bool> I18NPooledString::s_dumpToFile{false};
std::atomic<bool> I18NPooledString::s_init{false};

I18NPooledStringCustodian::I18NPooledStringCustodian(std::time_t (*clock)(std::time_t*))
    : m_clock(clock), m_last(clock(nullptr)), m_dropped(false) {}

int I18NPooledStringCustodian::doIt(int terminating) {
    if (terminating != 0) m_dropped = true;
    Settings settings;
    // The defaults apply until the file can be read.
    if (!I18NPooledString::s_init && readSettings(settings)) {
        I18NPooledString::s_interval = settings.interval;
        I18NPooledString::s_dumpToFile = settings.dumpToFile;
        I18NPooledString::s_init = true;
        m_last = m_clock(nullptr);
        return 0;
    }
    if (terminating != 0) return 0;
    const std::time_t now = m_clock(nullptr);
    if (now < m_last) m_last = now;  // the clock was set back
    if (now - m_last <= I18NPooledString::s_interval) return 0;
    m_last = now;
    I18NPooledString::purge();
    return 0;
}

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "QBLCore/FileManagement/internal/QBLFmRegular.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"

namespace {

constexpr long kInterval = 3600;

struct Settings {
    long interval = kInterval;
    bool dumpToFile = false;
};

/// Values beyond 32 bits become the nearest, on every machine.
/// @return whether the number is the whole of a text
bool parse(const char* text, long& value) {
    char* end = nullptr;
    value = static_cast<long>(
        std::clamp<long long>(std::strtoll(text, &end, 10), INT32_MIN, INT32_MAX));
    return end != text && *end == '\0';
}

/// The rest of a word that is longer than any of ours is left out.
bool readWord(std::FILE* file, char (&word)[64]) {
    if (std::fscanf(file, "%63s", word) != 1) return false;
    static_cast<void>(std::fscanf(file, "%*[^ \t\r\n\v\f]"));
    return true;
}

/// Whether only the user or the administrator can have decided what is in a file; the user may
/// have let the own group do so.
bool isTrusted(const QBLFmStatus& file) {
    const bool byGroup = (file.mode() & S_IWGRP) != 0 && file.group() != getegid();
    return (file.user() == geteuid() || file.user() == 0) && !byGroup &&
           (file.mode() & S_IWOTH) == 0;
}

/// Null if there is no such file. A pipe or a device, which could keep the custodian waiting, is
/// none, and neither is what somebody else has put there: it would have the texts of the program
/// written to the disk.
std::FILE* openSettings() {
    QBLFmStatus status;
    const int fd = qblOpenRegular("I18NPooledString.conf", O_RDONLY, status);
    if (fd < 0) return nullptr;
    std::FILE* const file = isTrusted(status) ? fdopen(fd, "r") : nullptr;
    if (file == nullptr) qblCloseQuietly(fd);
    return file;
}

/// What is not a number, or an interval below 0, leaves what holds without it.
Settings readSettings() {
    Settings settings;
    std::FILE* const file = openSettings();
    if (file == nullptr) return settings;
    char key[64], text[64];
    while (readWord(file, key) && readWord(file, text)) {
        long value = 0;
        if (!parse(text, value)) continue;
        if (std::strcmp(key, "interval") == 0) settings.interval = value < 0 ? kInterval : value;
        if (std::strcmp(key, "dumpToFile") == 0) settings.dumpToFile = value != 0;
    }
    std::fclose(file);
    return settings;
}

}  // namespace

std::atomic<long> I18NPooledString::s_interval{kInterval};
std::atomic<bool> I18NPooledString::s_dumpToFile{false};
std::atomic<bool> I18NPooledString::s_init{false};

I18NPooledStringCustodian::I18NPooledStringCustodian(std::time_t (*clock)(std::time_t*))
    : m_clock(clock), m_last(clock(nullptr)), m_dropped(false) {}

int I18NPooledStringCustodian::doIt(int terminating) {
    if (terminating != 0) m_dropped = true;
    if (!I18NPooledString::s_init) {
        const Settings settings = readSettings();
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

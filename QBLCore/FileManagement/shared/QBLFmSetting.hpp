#ifndef QBLCORE_FILEMANAGEMENT_SHARED_QBLFMSETTING_HPP
#define QBLCORE_FILEMANAGEMENT_SHARED_QBLFMSETTING_HPP

#include <optional>
#include <string>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

/// An optional path that applies to the whole process.
class QBLFmSetting {
public:
    /// Null or empty removes the setting.
    void set(const char* path) {
        std::optional<std::string> value;
        if (path != nullptr && *path != '\0') value.emplace(path);
        QBLThreadGuard guard(m_lock);
        m_value.swap(value);
    }
    std::optional<std::string> get() {
        QBLThreadGuard guard(m_lock);
        return m_value;
    }

private:
    QBLThreadCriticalSection m_lock{0};
    std::optional<std::string> m_value QBL_GUARDED_BY(m_lock);
};

#endif

#ifndef BENCH_SUPPORT_TEMPDIR_HPP
#define BENCH_SUPPORT_TEMPDIR_HPP

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include "QBLCore/FileManagement/QBLFmDir.hpp"

/// A directory for temporary files. The destructor removes the directory and its contents. The
/// directory is in memory if there is room, because after the removal of many files, a disk may
/// take seconds to create new files.
class TempDir {
public:
    TempDir() {
        if (!QBLFmDir::createTempDir(base(), "qblbench", m_path))
            throw std::runtime_error("no directory for temporary files");
    }
    ~TempDir() { QBLFmDir::removeDir(m_path.c_str()); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    std::string path(const char* name) const { return m_path + '/' + name; }

private:
    static const char* base() {
        const char* const memory = "/dev/shm";
        std::error_code none;
        const std::filesystem::space_info space = std::filesystem::space(memory, none);
        return !none && space.available >= kRoom ? memory : nullptr;
    }

    static constexpr std::uintmax_t kRoom = 256 << 20;
    std::string m_path;
};

#endif

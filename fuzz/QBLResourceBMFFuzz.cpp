// Reads arbitrary bytes as a message file, in two ways: loads the whole file, or reads it piece by
// piece. Both ways must give the same texts.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "QBLCore/Resources/QBLResourceBMF.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// A file in memory, which can be opened by its name.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : m_iDescriptor(memfd_create("bmf", 0)) {
        require(m_iDescriptor >= 0 &&
                write(m_iDescriptor, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(m_iDescriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string name() const { return "/proc/self/fd/" + std::to_string(m_iDescriptor); }

private:
    int m_iDescriptor;
};

bool isOpened(QBLResourceBMF& resource, const MemoryFile& file) {
    resource.setResourceFileName(file.name());
    return resource.open();
}

/// Requires that both ways find the same text, or that both ways find no text.
void compare(QBLResourceBMF& whole, QBLResourceBMF& pieces, unsigned long id) {
    char *first = nullptr, *second = nullptr;
    require(whole.getResource(id, &first) == pieces.getResource(id, &second));
    if (first == nullptr || second == nullptr) return;
    // A text that is not null-terminated ends at its length if read piece by piece, and at the end
    // of the block if the whole file is loaded.
    const std::size_t length = std::strlen(second);
    require(std::strncmp(first, second, length) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    QBLResourceBMF whole(1), pieces(0);
    const bool opened = isOpened(whole, file);
    require(opened == isOpened(pieces, file));
    if (!opened) return 0;
    require(whole.getEntryCount() == pieces.getEntryCount());
    for (unsigned n = 0; n < whole.getEntryCount(); ++n) {
        const unsigned id = whole.getEntryID(n);
        require(id == pieces.getEntryID(n));
        for (unsigned near = id - 1; near != id + 2; ++near) compare(whole, pieces, near);
    }
    for (const unsigned long id : {0UL, 0x7FFFFFFFUL, 0x80000000UL, ~0UL})
        compare(whole, pieces, id);
    return 0;
}

#include "QBLCore/FileManagement/skipRootPath.hpp"

#include <cstring>

#include "QBLCore/FileManagement/internal/QBLFmCharacters.hpp"

namespace {

/// Returns the end of a network name. The path is after its first two separators.
long networkRoot(QBLFmCharacters path) {
    for (int separators = 0; separators < 2 && !path.atEnd();) {
        if (path.onSeparator()) ++separators;
        if (!path.step()) return -1;
    }
    return static_cast<long>(path.position());
}

}  // namespace

long skipRootPath(const char* path, unsigned long length) {
    if (path == nullptr) return 0;
    QBLFmCharacters at(path, length != 0 ? length : std::strlen(path));
    if (at.atEnd()) return 0;
    const bool separator = at.onSeparator();
    if (!at.step()) return -1;
    if (at.atEnd()) return separator ? 1 : 0;
    if (separator) {
        if (!at.onSeparator()) return 1;
        at.step();
        return networkRoot(at);
    }
    if (at.on(':')) {
        at.step();
        return static_cast<long>(at.position()) + (at.onSeparator() ? 1 : 0);
    }
    return at.width() != 0 ? 0 : -1;
}

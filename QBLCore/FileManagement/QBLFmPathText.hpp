#ifndef QBLCORE_FILEMANAGEMENT_QBLFMPATHTEXT_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMPATHTEXT_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// Returns the text of a std::filesystem::path; null if it contains a NUL, because the system would
/// read only the part before it. Operations with templates use it, so that their headers need not
/// include `<filesystem>`.
///
/// Threads: any thread may call it.
template <class Path>
auto qblPathText(const Path& path) -> decltype(path.native().c_str()) {
    const auto& text = path.native();
    return __builtin_strlen(text.c_str()) == text.size() ? text.c_str() : nullptr;
}

#endif

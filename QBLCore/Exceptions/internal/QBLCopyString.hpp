#ifndef QBLCORE_EXCEPTIONS_INTERNAL_QBLCOPYSTRING_HPP
#define QBLCORE_EXCEPTIONS_INTERNAL_QBLCOPYSTRING_HPP

#include <string_view>

/// Returns a null-terminated copy, to be freed with delete[].
inline char* qblCopyString(std::string_view text) {
    char* copy = new char[text.size() + 1];
    copy[text.copy(copy, text.size())] = '\0';
    return copy;
}

/// Does the same, but returns null for null.
inline char* qblCopyString(const char* text) {
    return text != nullptr ? qblCopyString(std::string_view(text)) : nullptr;
}

#endif

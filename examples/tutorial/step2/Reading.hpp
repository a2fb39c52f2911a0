#ifndef EXAMPLES_TUTORIAL_READING_HPP
#define EXAMPLES_TUTORIAL_READING_HPP

#include <string>

#include "i18n/cpp/i18n_string.hpp"

/// Reads and decodes a file.
/// @throws TallyError if the file is unreadable, the encoding unknown or the text malformed
I18NString readText(const std::string& path, const std::string& encoding);

#endif

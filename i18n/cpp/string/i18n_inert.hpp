#ifndef I18N_CPP_STRING_I18N_INERT_HPP
#define I18N_CPP_STRING_I18N_INERT_HPP

#include <cstddef>

/// Whether every character of a text is one of those that form C neither changes nor reorders nor
/// combines with one before: then the text is in that form. False says nothing.
///
/// Threads: any thread.
bool i18nIsInert(const char16_t* units, std::size_t length);

#endif

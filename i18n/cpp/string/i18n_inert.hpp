#ifndef I18N_CPP_STRING_I18N_INERT_HPP
#define I18N_CPP_STRING_I18N_INERT_HPP

#include <cstddef>

/// Returns true if every character of a text is inert: normalisation form C does not change it,
/// reorder it, or combine it with an earlier character. Such a text is in form C. If this function
/// returns false, the text may still be in form C.
///
/// Threads: any thread.
bool i18nIsInert(const char16_t* units, std::size_t length);

#endif

// The operations of I18NString that take a holder of the pool. They are here because the files of
// strings must not include headers of the pool.

#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"

I18NString& I18NString::append(const I18NPooledString& text) { return append(text.getString()); }

I18NString& I18NString::operator=(const I18NPooledString& text) { return *this = text.getString(); }

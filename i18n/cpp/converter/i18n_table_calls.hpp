#ifndef I18N_CPP_CONVERTER_I18N_TABLE_CALLS_HPP
#define I18N_CPP_CONVERTER_I18N_TABLE_CALLS_HPP

#include <unicode/ucnv.h>

/// Have the same results as i18nFromUnicode() and i18nToUnicode(). They convert most of a long text
/// by the tables of its encoding, if there are any. Require: ICU holds no output of an earlier
/// call.
UErrorCode i18nFromUnicodeByTable(UConverter* converter, char*& at, char* limit,
                                  const char*& source, const char* end, bool flush);
UErrorCode i18nToUnicodeByTable(UConverter* converter, char*& at, char* limit, const char*& source,
                                const char* end, bool flush);

#endif

#ifndef I18N_CPP_CONVERTER_I18N_TABLE_CALLS_HPP
#define I18N_CPP_CONVERTER_I18N_TABLE_CALLS_HPP

#include <unicode/ucnv.h>

/// i18nFromUnicode() and i18nToUnicode() with the same results. They convert most of a long text by
/// the encoding's tables, if it has any. Require: ICU holds no output of an earlier call.
UErrorCode i18nFromUnicodeByTable(UConverter* converter, char*& at, char* limit,
                                  const char*& source, const char* end, bool flush);
UErrorCode i18nToUnicodeByTable(UConverter* converter, char*& at, char* limit, const char*& source,
                                const char* end, bool flush);

#endif

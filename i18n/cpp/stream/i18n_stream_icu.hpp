#ifndef I18N_CPP_STREAM_I18N_STREAM_ICU_HPP
#define I18N_CPP_STREAM_I18N_STREAM_ICU_HPP

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>

#include "i18n/cpp/stream/i18n_stream_sides.hpp"

/// What the input and the output of a text stream need to know about ICU's converters.

/// Room for one replacement and for everything that ICU writes around it, in bytes or units.
constexpr std::size_t kI18NStreamSlack = 64;

/// @param refused  true if the policy has refused text
/// @throws QBLOutOfMemoryError, I18NRuntimeError
I18NProgress i18nProgressOf(UErrorCode status, bool refused);
bool i18nIsUTF16(UConverterType type);
/// Returns true for the UTF-16 converters that read and write byte-order marks.
bool i18nIsMarkedUTF16(const UConverter* icu);
bool i18nIsLMBCS(UConverterType type);
I18NStreamForm i18nFormOf(const UConverter* icu);

/// Returns the ASCII characters that have their own bytes in UTF-8, or in the encoding of a table;
/// null for UTF-16, and for other encodings without a table.
template <class Table>
const I18NPlainASCII* i18nPlainOf(I18NStreamForm form, const Table* table) {
    static const I18NPlainASCII kAll;
    if (form == I18NStreamForm::kUTF8) return &kAll;
    return table != nullptr ? &table->plain() : nullptr;
}

inline bool i18nIsAboutText(UConverterCallbackReason reason) { return reason <= UCNV_IRREGULAR; }

/// Returns ICU's position in the stream. If the text that ICU has kept turns out not to fit the
/// text that follows, ICU reads the kept text again from its own buffer. The end of that buffer
/// corresponds to the start of this call's source. Only the limit shows which buffer ICU reads. The
/// contents do not, because the same bytes or units may occur in both.
template <class Args, class Unit>
std::int64_t i18nWhereICUIs(const Args* args, const Unit* begin, const Unit* end,
                            std::int64_t before) {
    if (args->sourceLimit != end) return before - (args->sourceLimit - args->source);
    return before + (args->source - begin);
}

#endif

#ifndef I18N_CPP_STREAM_I18N_STREAM_ICU_HPP
#define I18N_CPP_STREAM_I18N_STREAM_ICU_HPP

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>

#include "i18n/cpp/stream/i18n_stream_sides.hpp"

/// What both sides of a text stream know about ICU and its converters.

/// The maximum that one replacement needs, and what ICU writes around it.
constexpr std::size_t kI18NStreamSlack = 64;
/// The maximum number of bytes (input) or UTF-16 units (output) that ICU gets where the faster
/// functions for UTF-8 and UTF-16 stop. They continue after these.
constexpr std::ptrdiff_t kI18NStreamPiece = 8;

/// @param refused  by the policy
/// @throws QBLOutOfMemoryError, I18NRuntimeError
I18NProgress i18nProgressOf(UErrorCode status, bool refused);
bool i18nIsUTF16(UConverterType type);
/// Returns true for the UTF-16 converters that read and write byte-order marks.
bool i18nIsMarkedUTF16(const UConverter* icu);
bool i18nIsLMBCS(UConverterType type);
I18NStreamForm i18nFormOf(const UConverter* icu);

inline bool i18nIsAboutText(UConverterCallbackReason reason) { return reason <= UCNV_IRREGULAR; }

/// Returns ICU's position in the stream. If the text that ICU has kept turns out not to fit the
/// text that follows, ICU reads the kept text again from its own buffer. The end of that buffer
/// corresponds to the start of this call's source. The contents do not show which one ICU reads,
/// because the same bytes or units may occur more than once.
template <class Args, class Unit>
std::int64_t i18nWhereICUIs(const Args* args, const Unit* begin, const Unit* end,
                            std::int64_t before) {
    if (args->sourceLimit != end) return before - (args->sourceLimit - args->source);
    return before + (args->source - begin);
}

#endif

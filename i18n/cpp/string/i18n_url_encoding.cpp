#include "i18n/cpp/string/i18n_url_encoding.hpp"

#include <array>

const char kI18NURLRules[] =
    R"(' ' <> '%20'; \" <> '%34'; '<' <> '%3C'; '>' <> '%3E'; '#' <> '%23'; '%' <> '%25';)"
    R"( '{' <> '%7B'; '}' <> '%7D'; '|' <> '%7C'; \' <> '%5C'; '^' <> '%5E'; '~' <> '%7E';)"
    R"( '[' <> '%5B'; ']' <> '%5D'; '`' <> '%60';)";

namespace {

/// The escape of each ASCII character; null if the character stays.
using Escapes = std::array<const char16_t*, 128>;

constexpr Escapes makeEscapes() {
    Escapes escapes{};
    escapes[' '] = u"%20";
    escapes['"'] = u"%34";
    escapes['<'] = u"%3C";
    escapes['>'] = u"%3E";
    escapes['#'] = u"%23";
    escapes['%'] = u"%25";
    escapes['{'] = u"%7B";
    escapes['}'] = u"%7D";
    escapes['|'] = u"%7C";
    escapes['\''] = u"%5C";
    escapes['^'] = u"%5E";
    escapes['~'] = u"%7E";
    escapes['['] = u"%5B";
    escapes[']'] = u"%5D";
    escapes['`'] = u"%60";
    return escapes;
}

constexpr Escapes kEscapes = makeEscapes();

}  // namespace

void i18nURLEncode(std::u16string_view text, std::u16string& out) {
    for (const char16_t unit : text) {
        const char16_t* escape = unit < kEscapes.size() ? kEscapes[unit] : nullptr;
        if (escape != nullptr)
            out += escape;
        else
            out += unit;
    }
}

#ifndef FUZZ_SUPPORT_STRINGCHECKS_HPP
#define FUZZ_SUPPORT_STRINGCHECKS_HPP

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "fuzz/support/Input.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// Edits a string and a model of it, which is a std::u16string that ICU normalises as a whole after
/// each edit. The pieces come from the input: as UTF-16, as UTF-8 that may be ill-formed, or as a
/// selection of characters that combine.
namespace stringchecks {

constexpr std::size_t kLongest = 400;

const char16_t* const kPieces[] = {u"a",      u"e",      u"\u0301", u"\u0323",       u"\u00E9",
                                   u"\u1100", u"\u1161", u"\u11A8", u"\u0344",       u"\uFA10",
                                   u"\xD83D", u"\xDE00", u"\u0F73", u"\U00011099",   u"\U000110BA",
                                   u"\u3099", u"\u304B", u"\u212B", u"\U0002F800",   u"\u0CC6",
                                   u"\u0CD5", u"\u0CC2", u"\u2ADC", u"\U0001D15E",   u"\uFB1D",
                                   u"\u0345", u"\u1D2C", u"\u09C7", u"\u09BE\u09D7", u" "};

inline icu::UnicodeString icuOf(const std::u16string& text) {
    return icu::UnicodeString(false, text.data(), static_cast<int>(text.size()));
}

/// The expected content of a string.
class Model {
public:
    Model(bool normalizes, const std::u32string& exempt)
        : m_bNormalizes(normalizes), m_exempt(exempt) {}

    void replace(std::size_t at, std::size_t count, const std::u16string& piece) {
        at = std::min(at, units.size());
        units.replace(at, count, piece);
        isAscii =
            isAscii && std::all_of(piece.begin(), piece.end(), [](char16_t c) { return c < 0x80; });
        if (!m_bNormalizes || isExempt()) return;
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString result =
            icu::Normalizer2::getNFCInstance(status)->normalize(icuOf(units), status);
        units.assign(result.getBuffer(), static_cast<std::size_t>(result.length()));
    }

    bool normalizes() const { return m_bNormalizes; }
    /// Returns true if a character of the text keeps the whole text from being normalised.
    bool isExempt() const {
        const icu::UnicodeString text = icuOf(units);
        return std::any_of(m_exempt.begin(), m_exempt.end(),
                           [&](char32_t c) { return text.indexOf(static_cast<UChar32>(c)) >= 0; });
    }

    std::u16string units;
    bool isAscii = true;

private:
    const bool m_bNormalizes;
    const std::u32string& m_exempt;
};

/// Compares all visible properties of a string with the model, and its conversions twice.
inline bool isAsModel(const Model& model, const I18NString& text) {
    std::string utf8;
    icuOf(model.units).toUTF8String(utf8);
    const auto size = static_cast<int>(model.units.size());
    const bool isWideNull = size == 0 && !model.isAscii;
    int length = 0, wideLength = 0;
    const char* const bytes = text.c_str(nullptr, &length);
    const char* const wide = text.c_str("UTF-16", &wideLength);
    I18NString copy(text);
    return text.toUtf16() == model.units && text.nUnits() == size &&
           text.length() == icuOf(model.units).countChar32() &&
           text.isUsingAsciiBuffer() == model.isAscii &&
           (text.isNormalized() || model.isExempt()) && text.toUtf8() == utf8 &&
           length == (isWideNull ? 4 : static_cast<int>(utf8.size()) + 1) &&
           std::memcmp(bytes, utf8.c_str(), utf8.size() + 1) == 0 &&
           wideLength == (isWideNull ? 4 : size * 2 + 2) &&
           std::memcmp(wide, model.units.c_str(), model.units.size() * 2 + 2) == 0 &&
           bytes == text.c_str() && wide == text.c_str("UTF-16") && copy == text &&
           std::hash<I18NString>()(copy) == std::hash<I18NString>()(text) &&
           copy.getUnicodeString() == icuOf(model.units) && copy.getExternalBuffer()[size] == 0;
}

/// Decodes UTF-8 as the library does, one whole text at a time and without normalisation.
inline std::u16string decoded(const std::string& utf8) {
    I18NString text;
    text.useNormalization(false);
    text = utf8;
    return text.toUtf16();
}

inline std::u16string pieceFrom(Input& input, bool isAsciiOnly) {
    std::u16string piece;
    switch (isAsciiOnly ? 2 : input.below(4)) {
        case 0:
            return decoded(input.bytes(input.below(24)));
        case 1:
            for (unsigned left = input.below(6); left > 0; --left) {
                const unsigned high = input.byte();
                piece += static_cast<char16_t>(high << 8 | input.byte());
            }
            return piece;
        case 2:
            return std::u16string(input.below(48), static_cast<char16_t>('a' + input.below(26)));
        default:
            for (unsigned left = input.below(6); left > 0; --left)
                piece += kPieces[input.below(std::size(kPieces))];
            return piece;
    }
}

/// Returns i, or i - 1 if i is within a surrogate pair.
inline std::size_t atCodePoint(const std::u16string& text, std::size_t i) {
    const bool isWithin = i > 0 && i < text.size() && (text[i] & 0xFC00) == 0xDC00 &&
                          (text[i - 1] & 0xFC00) == 0xD800;
    return i - (isWithin ? 1 : 0);
}

inline I18NString rawOf(const std::u16string& piece) {
    I18NString text;
    text.useNormalization(false);
    text = piece;
    return text;
}

inline void edit(Input& input, bool isAsciiOnly, Model& model, I18NString& text) {
    const unsigned command = input.below(12);
    const std::size_t size = model.units.size();
    const std::size_t at = atCodePoint(model.units, input.below(size + 1));
    const std::size_t end =
        atCodePoint(model.units, std::min<std::size_t>(at + input.below(8), size));
    const std::size_t count = end > at ? end - at : 0;
    const std::u16string piece = size < kLongest ? pieceFrom(input, isAsciiOnly) : u"";
    const I18NString raw = rawOf(piece);
    const auto offset = static_cast<int>(at), length = static_cast<int>(count);
    switch (command) {
        case 0:
            text.insert(offset, raw);
            return model.replace(at, 0, piece);
        case 1:
            text.erase(offset, length);
            return model.replace(at, count, u"");
        case 2:
            text.replace(offset, length, raw);
            return model.replace(at, count, piece);
        case 3:
            text += raw;
            return model.replace(size, 0, piece);
        case 4: {  // as UTF-8, in which a lone surrogate is ill-formed
            const std::string utf8 = raw.toUtf8();
            text.append(utf8);
            return model.replace(size, 0, decoded(utf8));
        }
        case 5: {
            const std::wstring wide = raw.toWide();
            text.replace(offset, length, wide.c_str());
            return model.replace(at, count, piece.substr(0, piece.find(u'\0')));
        }
        case 6:
            if (size > kLongest / 2) return;
            text.insert(offset, text);
            return model.replace(at, 0, std::u16string(model.units));
        case 7: {
            const int units = static_cast<int>(at) + (count == 0 ? 20 : 0);
            if (static_cast<std::size_t>(units) <= size) {
                text.resize(units);
                return model.replace(static_cast<std::size_t>(units), size, u"");
            }
            const char16_t fill = at % 2 == 0 ? u'\u0301' : u'x';
            text.resize(units, fill);
            return model.replace(size, 0,
                                 std::u16string(static_cast<std::size_t>(units) - size, fill));
        }
        case 8: {
            I18NString copy(text);
            text = std::move(copy);
            return;
        }
        case 9: {
            text.trim();
            const std::size_t first = model.units.find_first_not_of(u' ');
            if (first == std::u16string::npos) return model.replace(0, size, u"");
            model.replace(model.units.find_last_not_of(u' ') + 1, size, u"");
            return model.replace(0, first, u"");
        }
        case 10:
            if (size == 0 || model.isExempt()) return;
            text.normalize(I18N_NFC);
            if (model.normalizes()) model.isAscii = false;
            return;
        default:
            text.remove();
            return model.replace(0, size, u"");
    }
}

/// Applies the edits of the input.
/// @param exempt  the characters that the resources exclude from normalisation
/// @return false if the string differs from the model after an edit
inline bool followsModel(Input& input, bool isAsciiOnly, const std::u32string& exempt) {
    Model model(input.below(4) != 0, exempt);
    I18NString text;
    text.useNormalization(model.normalizes());
    for (int steps = 0; steps < 100 && !input.atEnd(); ++steps) {
        edit(input, isAsciiOnly, model, text);
        if (!isAsModel(model, text)) return false;
    }
    return true;
}

}  // namespace stringchecks

#endif

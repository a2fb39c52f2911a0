#ifndef I18N_CPP_UTF_I18N_UTF_NIBBLES_HPP
#define I18N_CPP_UTF_I18N_UTF_NIBBLES_HPP

#include <cstddef>
#include <cstdint>

/// Finds by shuffles whether a pair of bytes is in a set, which up to eight rules define. A rule
/// has four sets of half bytes: one for each half byte of a pair. A rule holds for a pair if each
/// half byte is in its set. For each half byte of a pair, there is a table of 16 bytes. In a table
/// entry, the bit of a rule is set if the half byte is in the rule's set. The AND of the four
/// entries for a pair has the bits of the rules that hold. Source: J. Keiser and D. Lemire,
/// "Validating UTF-8 in less than one instruction per byte" (2021).

/// A set of half bytes, as bits.
constexpr std::uint16_t i18nNibbles(int from, int to) {
    return static_cast<std::uint16_t>((2U << to) - (1U << from));
}
constexpr std::uint16_t i18nNibbles(int only) { return i18nNibbles(only, only); }
constexpr std::uint16_t kI18NAnyNibble = 0xFFFF;

struct I18NNibbleRule {
    std::uint16_t firstHigh = kI18NAnyNibble, firstLow = kI18NAnyNibble;
    std::uint16_t secondHigh = kI18NAnyNibble, secondLow = kI18NAnyNibble;
};

struct alignas(64) I18NNibbleTables {
    std::uint8_t firstHigh[16], firstLow[16], secondHigh[16], secondLow[16];
};

template <std::size_t kCount>
constexpr I18NNibbleTables i18nTables(const I18NNibbleRule (&rules)[kCount]) {
    static_assert(kCount <= 8, "a rule has a bit of a byte");
    I18NNibbleTables made{};
    for (std::size_t rule = 0; rule < kCount; ++rule) {
        const auto bit = [rule](unsigned set, unsigned nibble) {
            return static_cast<std::uint8_t>((set >> nibble & 1U) << rule);
        };
        for (unsigned i = 0; i < 16; ++i) {
            made.firstHigh[i] |= bit(rules[rule].firstHigh, i);
            made.firstLow[i] |= bit(rules[rule].firstLow, i);
            made.secondHigh[i] |= bit(rules[rule].secondHigh, i);
            made.secondLow[i] |= bit(rules[rule].secondLow, i);
        }
    }
    return made;
}

/// Pairs of neighbouring bytes that do not occur in UTF-8. The last rule is different: whether two
/// trail bytes may follow each other depends on the bytes before them.
constexpr std::uint16_t kI18NTrails = i18nNibbles(0x8, 0xB);
constexpr I18NNibbleRule kI18NIllFormed[] = {
    {i18nNibbles(0xC, 0xF), kI18NAnyNibble, i18nNibbles(0x0, 0x7) | i18nNibbles(0xC, 0xF)},
    {i18nNibbles(0x0, 0x7), kI18NAnyNibble, kI18NTrails},
    {i18nNibbles(0xC), i18nNibbles(0x0, 0x1), kI18NTrails},       // overlong
    {i18nNibbles(0xE), i18nNibbles(0x0), i18nNibbles(0x8, 0x9)},  // overlong
    {i18nNibbles(0xE), i18nNibbles(0xD), i18nNibbles(0xA, 0xB)},  // a surrogate
    {i18nNibbles(0xF), i18nNibbles(0x0) | i18nNibbles(0x5, 0xF), i18nNibbles(0x8)},
    {i18nNibbles(0xF), i18nNibbles(0x4, 0xF), i18nNibbles(0x9, 0xB)},  // beyond U+10FFFF
    {kI18NTrails, kI18NAnyNibble, kI18NTrails}};
constexpr I18NNibbleTables kI18NIllFormedTables = i18nTables(kI18NIllFormed);

/// Units that are inert in normalisation form C (see i18n_inert.hpp), the upper byte first. Eight
/// rules cannot cover all such units; these rules cover the frequent ones. I18NUtfBlocksTest
/// compares them with ICU.
constexpr I18NNibbleRule kI18NInert[] = {
    {i18nNibbles(0x0), i18nNibbles(0x0, 0x2)},                          // Latin
    {i18nNibbles(0x0), i18nNibbles(0x4), i18nNibbles(0x0, 0x7)},        // Cyrillic
    {i18nNibbles(0x4, 0x9) | i18nNibbles(0xB, 0xC)},                    // Han, Hangul
    {i18nNibbles(0x1, 0x2), i18nNibbles(0x4, 0x6) | i18nNibbles(0xE)},  // Vietnamese
    {i18nNibbles(0x2), i18nNibbles(0x0), i18nNibbles(0x0, 0xC), i18nNibbles(0x2, 0xF)},
    // U+3000 to U+30FF except the marks at U+302A and at U+3099
    {i18nNibbles(0x3), i18nNibbles(0x0),
     i18nNibbles(0x0, 0x1) | i18nNibbles(0x3, 0x8) | i18nNibbles(0xA, 0xF)},
    {i18nNibbles(0x3), i18nNibbles(0x0), i18nNibbles(0x9),
     i18nNibbles(0x0, 0x8) | i18nNibbles(0xB, 0xF)},
    {i18nNibbles(0xF), i18nNibbles(0xF)}};  // full width
constexpr I18NNibbleTables kI18NInertTables = i18nTables(kI18NInert);

/// The same for text with surrogate pairs. Only the high surrogates of U+1F000 to U+1FBFF are
/// covered.
constexpr I18NNibbleRule kI18NInertWithPairs[] = {
    {i18nNibbles(0xD), i18nNibbles(0x8), i18nNibbles(0x3), i18nNibbles(0xC, 0xE)},
    {i18nNibbles(0xD), i18nNibbles(0xC, 0xF)},
    {i18nNibbles(0xF), i18nNibbles(0xE, 0xF), i18nNibbles(0x0)},   // U+FE0F, full width
    {i18nNibbles(0x2), i18nNibbles(0x4, 0x9) | i18nNibbles(0xB)},  // symbols
    kI18NInert[0],
    kI18NInert[2],
    kI18NInert[4],
    kI18NInert[5]};
constexpr I18NNibbleTables kI18NInertWithPairsTables = i18nTables(kI18NInertWithPairs);

#endif

#ifndef BENCH_SUPPORT_TEXTS_HPP
#define BENCH_SUPPORT_TEXTS_HPP

#include <cstddef>
#include <string>

/// Made-up prose in a script, the same in every run.
enum class Script { ASCII, Latin, Cyrillic, CJK, Emoji };

/// Words of the script's languages in any order, with the punctuation and the line ends of prose,
/// normalised to form C. The emoji stand between English words, alone or a few together.
/// @return UTF-8 of this many bytes, or up to three less, so that no character is cut
std::string proseOf(Script script, std::size_t bytes);

std::u16string toUtf16(const std::string& utf8);

#endif

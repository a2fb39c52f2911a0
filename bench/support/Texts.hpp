#ifndef BENCH_SUPPORT_TEXTS_HPP
#define BENCH_SUPPORT_TEXTS_HPP

#include <cstddef>
#include <string>

/// The scripts of the generated prose, which is the same in every run.
enum class Script { ASCII, Latin, Cyrillic, CJK, Emoji, HTML };

/// Generates words of the script's languages in random order, with punctuation and line ends, in
/// normalisation form C. Emoji appear between English words, single or in groups. HTML has tags
/// between words of several scripts.
/// @return UTF-8 text of this many bytes, or up to three fewer if a character would be cut
std::string proseOf(Script script, std::size_t bytes);

std::u16string toUtf16(const std::string& utf8);

#endif

#include "bench/support/Texts.hpp"

#include <unicode/unistr.h>

#include <cstdint>
#include <vector>

namespace {

struct Prose {
    std::vector<const char*> words;
    const char* space;
    const char* comma;
    const char* stop;
};

const Prose& prose(Script script) {
    static const Prose kASCII = {
        {"the",      "quick", "server",  "returns", "a",      "value", "when", "every",
         "request",  "has",   "been",    "read",    "and",    "no",    "of",   "order",
         "customer", "is",    "waiting", "in",      "twenty", "for",   "that", "delivery"},
        " ",
        ", ",
        ". "};
    static const Prose kLatin = {
        {"die",    "größte",    "Straße", "für",     "alle", "über",    "schöne",   "und",
         "où",     "était",     "élève",  "même",    "ça",   "dans",    "français", "la",
         "señor",  "mañana",    "está",   "corazón", "el",   "niño",    "años",     "que",
         "příliš", "žluťoučký", "kůň",    "na",      "łódź", "się",     "nie",      "być",
         "Ändern", "können",    "der",    "ist",     "les",  "garçons", "con",      "per"},
        " ",
        ", ",
        ". "};
    static const Prose kCyrillic = {
        {"и",      "в",       "не",      "который",  "быть",  "время",   "человек", "сказать",
         "первый", "год",     "большой", "работа",   "слово", "город",   "жизнь",   "день",
         "после",  "страна",  "ещё",     "вопрос",   "дело",  "сторона", "другой",  "очень",
         "через",  "история", "система", "развитие", "можно", "россия",  "также",   "его"},
        " ",
        ", ",
        ". "};
    static const Prose kCJK = {
        {"我们", "的",     "在",   "中国", "人民",     "经济",         "发展",   "了",
         "一个", "世界",   "问题", "可以", "没有",     "日本語",       "は",     "東京",
         "です", "これは", "時間", "仕事", "という",   "ことができる", "学校",   "新しい",
         "研究", "社会",   "技术", "工作", "カタカナ", "コンピュータ", "重要な", "情報"},
        "",
        "，",
        "。"};
    static const Prose kEmoji = {
        {"😀",    "😂😂",  "great", "❤️",      "👍",   "👍🏽", "🎉🎉🎉", "happy", "🚀",    "🔥🔥",
         "😍",    "see", "🤔",  "🙏🙏",          "you", "🐱",        "🌍",   "🍕🍺",    "soon", "💯",
         "🥳", "😎",   "🎂",     "👩‍💻", "☕",   "🏆",        "👏👏👏", "😭",     "✨",    "🤷"},
        " ",
        " ",
        "! "};
    static const Prose kHTML = {{"<p>",
                                 "</p>\n",
                                 "<li class=\"entry\">",
                                 "</li>\n",
                                 "<a href=\"/wiki/index.php?id=4711\">",
                                 "</a>",
                                 "<td>",
                                 "</td>",
                                 "the",
                                 "server",
                                 "größte",
                                 "Straße",
                                 "élève",
                                 "français",
                                 "który",
                                 "жизнь",
                                 "вопрос",
                                 "история",
                                 "経済発展",
                                 "世界",
                                 "これは日本語の文章です",
                                 "技术工作",
                                 "&nbsp;",
                                 "“",
                                 "”",
                                 "…",
                                 "€"},
                                " ",
                                ", ",
                                ". "};
    switch (script) {
        case Script::ASCII:
            return kASCII;
        case Script::Latin:
            return kLatin;
        case Script::Cyrillic:
            return kCyrillic;
        case Script::CJK:
            return kCJK;
        case Script::Emoji:
            return kEmoji;
        case Script::HTML:
            break;
    }
    return kHTML;
}

}  // namespace

std::string proseOf(Script script, std::size_t bytes) {
    const Prose& from = prose(script);
    std::uint32_t random = 1;
    const auto below = [&random](std::size_t n) {
        random = random * 1664525U + 1013904223U;
        return (random >> 16) % n;
    };
    std::string text;
    while (text.size() < bytes) {
        text += from.words[below(from.words.size())];
        const std::size_t kind = below(40);
        text += kind < 3 ? from.comma : kind < 5 ? from.stop : kind == 5 ? "\n" : from.space;
    }
    while (bytes != 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) --bytes;
    text.resize(bytes);
    return text;
}

std::u16string toUtf16(const std::string& utf8) {
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

#include <unicode/regex.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/support/Bench.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

// Simple patterns, as LIKE patterns and as regular expressions. Each side compiles them once.
const struct {
    const char* like;
    const char* expression;
} kPatterns[] = {{"the server%", "the server.*"},
                 {"%delivery", ".*delivery"},
                 {"%request%", ".*request.*"},
                 {"order _ of%value", "order . of.*value"}};
const char* const kNames[] = {"the server has been waiting for a request",
                              "every order in that delivery", "order a of twenty has no value",
                              "the customer returns when every request has been read"};

class Like {
public:
    explicit Like(const char* pattern)
        : m_pCode(I18NString::getPatternCode(I18NString(pattern)), I18NString::deletePatternCode) {}
    bool matches(const I18NString& text) { return text.matchLike(*m_pCode); }
    static const char* pattern(std::size_t i) { return kPatterns[i].like; }
    static I18NString text(const char* name) { return I18NString(name); }

private:
    std::unique_ptr<I18NPatternCode, void (*)(I18NPatternCode*)> m_pCode;
};

class Expression {
public:
    explicit Expression(const char* pattern)
        : m_status(U_ZERO_ERROR), m_matcher(pattern, UREGEX_DOTALL, m_status) {}
    bool matches(const icu::UnicodeString& text) {
        return m_matcher.reset(text).matches(m_status) && U_SUCCESS(m_status);
    }
    static const char* pattern(std::size_t i) { return kPatterns[i].expression; }
    static icu::UnicodeString text(const char* name) { return icu::UnicodeString(name); }

private:
    UErrorCode m_status;
    icu::RegexMatcher m_matcher;
};

/// Returns one bit for each pair of a pattern and a text. The bit is set if they match.
template <class Pattern, class Text>
unsigned matchAll(const std::vector<std::unique_ptr<Pattern>>& patterns,
                  const std::vector<Text>& texts) {
    unsigned matches = 0;
    for (const auto& pattern : patterns)
        for (const Text& text : texts) matches = matches << 1 | pattern->matches(text);
    return matches;
}

template <class Pattern, class Body>
void withPatterns(Body body) {
    std::vector<std::unique_ptr<Pattern>> patterns;
    for (std::size_t i = 0; i < std::size(kPatterns); ++i)
        patterns.push_back(std::make_unique<Pattern>(Pattern::pattern(i)));
    std::vector<decltype(Pattern::text(""))> texts;
    for (const char* name : kNames) texts.push_back(Pattern::text(name));
    body([&] { return matchAll(patterns, texts); });
}

/// Times are per pattern and text.
template <class Pattern>
void simple(benchmark::State& state) {
    withPatterns<Pattern>([&state](auto matchAll) {
        while (state.KeepRunningBatch(std::size(kPatterns) * std::size(kNames)))
            benchmark::DoNotOptimize(matchAll());
    });
}

const OutputCheck check("I18NString::matchLike", [] {
    unsigned ours = 0, its = 0;
    withPatterns<Like>([&ours](auto matchAll) { ours = matchAll(); });
    withPatterns<Expression>([&its](auto matchAll) { its = matchAll(); });
    return ours == its && ours != 0;
});

/// A backtracking matcher takes exponential time for this pattern.
void thirtyRuns(benchmark::State& state) {
    std::string pattern;
    for (int i = 0; i < 30; ++i) pattern += "%a";
    const I18NString text(std::string(200, 'a').append("b").c_str()), like(pattern.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(text.matchLike(like));
}

BENCHMARK_TEMPLATE(simple, Like)->Name("BM_I18NString_matchLike");
BENCHMARK_TEMPLATE(simple, Expression)->Name("BM_IcuRegexMatcher_matches");
BENCHMARK(thirtyRuns)->Name("BM_I18NString_matchLikeThirtyRuns");

}  // namespace

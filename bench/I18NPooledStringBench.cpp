#include "i18n/cpp/i18n_pooledstring.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_BOOST
#include <boost/flyweight.hpp>
#endif
#ifdef BENCH_HAVE_GLIB
#include <glib.h>
#endif

namespace {

/// Distinct texts in one block, in random order, so that consecutive lookups use distant texts.
class Texts {
public:
    explicit Texts(unsigned count, const char* format = "key%07u") {
        std::vector<std::size_t> starts;
        for (unsigned i = 0; i < count; ++i) {
            char text[24];
            const int length = std::snprintf(text, sizeof text, format, i);
            starts.push_back(m_block.size());
            m_block.append(text, static_cast<std::size_t>(length) + 1);
        }
        for (const std::size_t start : starts) m_texts.push_back(m_block.data() + start);
        std::shuffle(m_texts.begin(), m_texts.end(), std::minstd_rand(7));
    }
    Texts(const Texts&) = delete;
    Texts& operator=(const Texts&) = delete;
    const std::vector<const char*>& operator*() const { return m_texts; }

private:
    std::string m_block;
    std::vector<const char*> m_texts;
};

struct Ours {
    using Holder = I18NPooledString;
    static std::string text(const Holder& holder) { return holder.getString().c_str(); }
    static void removeUnheld() { I18NPooledString::purge(); }
};

/// Holds a text by calling getString() and releaseString() of the pool.
struct OursByPool {
    struct Holder {
        explicit Holder(const char* text) : string(I18NPooledString::getPool().getString(text)) {}
        ~Holder() { I18NPooledString::getPool().releaseString(string); }
        const I18NString& string;
    };
};

#ifdef BENCH_HAVE_BOOST
struct Flyweight {
    using Holder = boost::flyweight<std::string>;
    static std::string text(const Holder& holder) { return holder.get(); }
    static void removeUnheld() {}  // the last holder removes the text
};
#endif

#ifdef BENCH_HAVE_GLIB
/// GLib keeps interned texts forever.
struct Interned {
    struct Holder {
        explicit Holder(const char* text) : string(g_intern_string(text)) {}
        const char* string;
    };
    static std::string text(const Holder& holder) { return holder.string; }
};
#endif

/// Returns this number of texts. The first call for a side and a number puts the texts into the
/// side's pool, where they stay until the program ends.
template <class Side>
const Texts& held(unsigned count) {
    struct Held {
        explicit Held(unsigned n) : texts(n) {
            for (const char* text : *texts) holders.emplace_back(text);
        }
        Texts texts;
        std::vector<typename Side::Holder> holders;
    };
    static auto& all = *new std::map<unsigned, Held>;
    return all.try_emplace(count, count).first->second.texts;
}

/// @tparam Keeper  the side whose holders keep the texts
template <class Side, class Keeper = Side>
void hit(benchmark::State& state) {
    const auto count = static_cast<unsigned>(state.range(0));
    static const Texts* shared = nullptr;
    if (state.thread_index() == 0) shared = &held<Keeper>(count);
    const Pinned here(state.thread_index());
    // Each thread starts at a different text.
    std::size_t next = count / static_cast<unsigned>(state.thread_index() + 1);
    for (auto _ : state) {
        const std::vector<const char*>& texts = **shared;
        if (next == 0) next = texts.size();
        typename Side::Holder holder(texts[--next]);
        benchmark::DoNotOptimize(holder);
    }
}

/// Adds texts that the pool does not contain. Removing them after each round is not measured.
template <class Side>
void miss(benchmark::State& state) {
    const unsigned batch = 100000;
    const Texts texts(batch, "new%07u");
    while (state.KeepRunningBatch(batch)) {
        std::vector<typename Side::Holder> holders;
        holders.reserve(batch);
        for (const char* text : *texts) holders.emplace_back(text);
        state.PauseTiming();
        holders.clear();
        Side::removeUnheld();
        state.ResumeTiming();
    }
}

template <class Side>
bool keepsTexts() {
    const Texts texts(1000);
    std::vector<typename Side::Holder> holders;
    for (const char* text : *texts) holders.emplace_back(text);
    for (std::size_t i = 0; i < 1000; ++i)
        if (Side::text(holders[i]) != (*texts)[i]) return false;
    return true;
}

#define SIZES Arg(1000)->Arg(100000)->Arg(1000000)
#define SIDE(kName, ...)                                                   \
    BENCHMARK_TEMPLATE(hit, __VA_ARGS__)->Name("BM_" kName "_hit")->SIZES; \
    BENCHMARK_TEMPLATE(hit, __VA_ARGS__)                                   \
        ->Name("BM_" kName "_hitByTwo")                                    \
        ->Arg(100000)                                                      \
        ->Threads(2)                                                       \
        ->UseRealTime()

const OutputCheck checkOurs("I18NPooledString", keepsTexts<Ours>);
SIDE("I18NPooledString", Ours);
SIDE("I18NPooledStringPool", OursByPool, Ours);
BENCHMARK_TEMPLATE(miss, Ours)->Name("BM_I18NPooledString_miss");
#ifdef BENCH_HAVE_GLIB
const OutputCheck checkInterned("g_intern_string", keepsTexts<Interned>);
SIDE("GInternString", Interned);
#endif
#ifdef BENCH_HAVE_BOOST
const OutputCheck checkFlyweight("boost::flyweight", keepsTexts<Flyweight>);
SIDE("BoostFlyweight", Flyweight);
BENCHMARK_TEMPLATE(miss, Flyweight)->Name("BM_BoostFlyweight_miss");
#endif

}  // namespace

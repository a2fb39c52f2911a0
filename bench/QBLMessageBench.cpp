#include "QBLCore/Messages/QBLMessage.hpp"

#include <libintl.h>
#include <sys/stat.h>
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"
#include "bench/support/Bench.hpp"
#include "bench/support/TempDir.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

// Message kPatternId is a pattern with two arguments: kPattern in our catalogue, kPrintfPattern in
// gettext's catalogue. All other messages are plain texts.
std::string plainText(unsigned id) { return "The text of message " + std::to_string(id) + "."; }
const char kPattern[] = "Cannot open {0}: error {1} of the system.";
const char kPrintfPattern[] = "Cannot open %s: error %d of the system.";
const char kFileName[] = "/var/lib/product/data";
const char kShown[] = "Cannot open /var/lib/product/data: error 5 of the system.";
const unsigned kPatternId = 7;

std::string keyOf(unsigned id) {
    char key[16];
    std::snprintf(key, sizeof key, "MSG%08u", id);
    return key;
}

void append(std::string& out, unsigned value, bool bigEndian) {
    for (int i = 0; i < 4; ++i) out += static_cast<char>(value >> 8 * (bigEndian ? 3 - i : i));
}

void save(const std::string& path, const std::string& bytes) {
    QBLFmFile file;
    if (!file.open(path.c_str(), QBLFmFile::create | QBLFmFile::truncated, 0) ||
        file.write(bytes.data(), bytes.size()) != static_cast<long>(bytes.size()))
        throw std::runtime_error("cannot write " + path);
}

/// Returns the bytes of a message file with the texts 1 to count.
std::string messageFile(unsigned count) {
    std::string index, texts, out("BMF1\0\0\0\0", 8);
    for (unsigned id = 1; id <= count; ++id) {
        const std::string text = id == kPatternId ? kPattern : plainText(id);
        append(index, id, true);
        append(index, static_cast<unsigned>(texts.size()), true);
        append(index, static_cast<unsigned>(text.size()) + 1, true);
        texts.append(text).append(1, '\0');
    }
    append(out, count, true);
    append(out, static_cast<unsigned>(texts.size()), true);
    return out + index + texts;
}

/// The hash function of GNU gettext's .mo files, by P. J. Weinberger.
unsigned moHash(const std::string& key) {
    unsigned hash = 0;
    for (const char c : key) {
        hash = (hash << 4) + static_cast<unsigned char>(c);
        if (const unsigned high = hash & 0xf0000000U) hash ^= high >> 24 ^ high;
    }
    return hash;
}

/// Returns the bytes of a .mo file with the same texts, as described in the manual of GNU gettext,
/// "The Format of GNU MO Files".
std::string moFile(unsigned count) {
    const unsigned slots = (count * 4 / 3) | 1, header = 28, keySize = 12;
    std::vector<unsigned> table(slots, 0);
    std::string keys, texts, keyIndex, textIndex, out;
    const unsigned keysAt = header + 16 * count + 4 * slots, textsAt = keysAt + keySize * count;
    for (unsigned id = 1; id <= count; ++id) {
        const std::string key = keyOf(id);
        const std::string text = id == kPatternId ? kPrintfPattern : plainText(id);
        append(keyIndex, static_cast<unsigned>(key.size()), false);
        append(keyIndex, keysAt + static_cast<unsigned>(keys.size()), false);
        append(textIndex, static_cast<unsigned>(text.size()), false);
        append(textIndex, textsAt + static_cast<unsigned>(texts.size()), false);
        keys.append(key).append(1, '\0');
        texts.append(text).append(1, '\0');
        const unsigned hash = moHash(key), step = 1 + hash % (slots - 2);
        unsigned slot = hash % slots;
        while (table[slot] != 0) slot = slot >= slots - step ? slot - (slots - step) : slot + step;
        table[slot] = id;
    }
    for (const unsigned word :
         {0x950412deU, 0U, count, header, header + 8 * count, slots, header + 16 * count})
        append(out, word, false);
    out += keyIndex + textIndex;
    for (const unsigned id : table) append(out, id, false);
    return out + keys + texts;
}

/// A message file and a .mo file with the same number of texts, kept until the program ends.
class Catalogues {
    TempDir m_dir;

public:
    static Catalogues& of(unsigned count) {
        static Catalogues thousand(1000), million(1000000);
        return count == 1000 ? thousand : million;
    }

    const std::string base;    // of the message file
    const std::string domain;  // of the .mo file

private:
    explicit Catalogues(unsigned count)
        : base(m_dir.path("texts")), domain("texts" + std::to_string(count)) {
        save(base + "_de.bmf", messageFile(count));
        mkdir(m_dir.path("de").c_str(), 0700);
        mkdir(m_dir.path("de/LC_MESSAGES").c_str(), 0700);
        save(m_dir.path(("de/LC_MESSAGES/" + domain + ".mo").c_str()), moFile(count));
        // gettext translates nothing in the locale "C". The locale "C.UTF-8" always exists.
        setenv("LANGUAGE", "de", 1);
        setlocale(LC_MESSAGES, "C.UTF-8");
        bindtextdomain(domain.c_str(), m_dir.path().c_str());
    }
};

/// Yields identifiers in a pseudo-random order, so that caches do not help.
class Walk {
public:
    explicit Walk(unsigned count) : m_uCount(count) {}
    unsigned next() {
        m_uState = m_uState * 1664525U + 1013904223U;
        return 1 + (m_uState >> 8) % m_uCount;
    }

private:
    unsigned m_uCount;
    unsigned m_uState = 1;
};

class OurTexts {
public:
    explicit OurTexts(unsigned count) : m_file(Catalogues::of(count).base, "de", 1) {}
    const char* text(unsigned id) {
        char* text = nullptr;
        return m_file.getResource(id, &text) ? text : "";
    }

private:
    QBLResourceFile m_file;
};

class GettextTexts {
public:
    explicit GettextTexts(unsigned count) : m_domain(Catalogues::of(count).domain) {
        for (unsigned id = 1; id <= count; ++id) m_keys.push_back(keyOf(id));
    }
    const char* text(unsigned id) { return dgettext(m_domain.c_str(), m_keys[id - 1].c_str()); }

private:
    std::string m_domain;
    std::vector<std::string> m_keys;
};

template <class Side>
void lookup(benchmark::State& state) {
    const auto count = static_cast<unsigned>(state.range(0));
    Side side(count);
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(*side.text(walk.next()));
}

QBLMessageFile twoArguments() {
    QBLMessageFile message(Catalogues::of(1000).base.c_str(), kPatternId);
    message << kFileName << 5;
    return message;
}

std::string formatted(const QBLMessage& message) {
    I18NString out;
    message.format("de", nullptr, out);
    return out.toUtf8();
}

void formatOurs(benchmark::State& state, const QBLMessage& message) {
    for (auto _ : state) {
        I18NString out;
        message.format("de", nullptr, out);
        benchmark::DoNotOptimize(out.c_str());
    }
}

/// The message keeps the open file and the parsed pattern from the previous call.
void formatKept(benchmark::State& state) { formatOurs(state, twoArguments()); }

/// The process keeps the texts and the pattern; each call checks whether the file has changed.
void formatAnew(benchmark::State& state) { formatOurs(state, QBLMessage(twoArguments())); }

std::string byIcu() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::MessageFormat format(icu::UnicodeString::fromUTF8(kPattern), icu::Locale("de"),
                                    status);
    const icu::Formattable arguments[] = {icu::UnicodeString::fromUTF8(kFileName), int32_t(5)};
    icu::UnicodeString text;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    format.format(arguments, 2, text, position, status);
    std::string out;
    return text.toUTF8String(out);
}

void formatIcu(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(byIcu());
}

/// Formats into a fixed buffer that is large enough for the text.
class Printf {
public:
    const char* format() {
        const char* pattern = m_texts.text(kPatternId);
        std::snprintf(m_buffer, sizeof m_buffer, pattern, kFileName, 5);
        return m_buffer;
    }

private:
    GettextTexts m_texts{1000};
    char m_buffer[200];
};

void formatGettext(benchmark::State& state) {
    Printf side;
    for (auto _ : state) benchmark::DoNotOptimize(*side.format());
}

class BenchError : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(BenchError)
};

[[gnu::noinline]] void raise(const QBLMessage& message) {
    QBL_THROW(BenchError(7) << message << QBLErrnoMessage(2));
}

[[gnu::noinline]] void passOn(const QBLMessage& message) {
    try {
        raise(message);
    } catch (QBLThrowable& e) {
        QBL_RETHROW(e);
    }
}

[[gnu::noinline]] void passOnAgain(const QBLMessage& message) {
    try {
        passOn(message);
    } catch (QBLThrowable& e) {
        QBL_RETHROW(e);
    }
}

/// Throwing costs three unwindings and copies of the messages: the set contains each message twice.
/// Rendering formats each message in the set. Most of this time goes into checking whether the
/// catalogue's file has changed.
void throwAndRender(benchmark::State& state) {
    QBLMessage message(Catalogues::of(1000).base.c_str(), kPatternId);
    message << kFileName << 5;
    for (auto _ : state) {
        try {
            passOnAgain(message);
        } catch (QBLException& e) {
            if (state.range(0) == 0) continue;
            I18NString xml;
            e.toString("de", nullptr, xml, 1);
            benchmark::DoNotOptimize(xml.c_str());
        }
    }
}

const OutputCheck check("QBLMessage", [] {
    OurTexts ours(1000);
    GettextTexts theirs(1000);
    for (unsigned id = 1; id <= 1000; ++id)
        if (id != kPatternId && std::strcmp(ours.text(id), theirs.text(id)) != 0) return false;
    return ours.text(5) == plainText(5) && formatted(twoArguments()) == kShown &&
           formatted(QBLMessage(twoArguments())) == kShown && byIcu() == kShown &&
           std::strcmp(Printf().format(), kShown) == 0;
});

BENCHMARK_TEMPLATE(lookup, OurTexts)
    ->Name("BM_QBLResourceFile_getResource")
    ->Arg(1000)
    ->Arg(1000000);
BENCHMARK_TEMPLATE(lookup, GettextTexts)->Name("BM_Gettext_lookup")->Arg(1000)->Arg(1000000);
BENCHMARK(formatKept)->Name("BM_QBLMessageFile_format");
BENCHMARK(formatAnew)->Name("BM_QBLMessage_format");
BENCHMARK(formatIcu)->Name("BM_IcuMessageFormat_constructFormat");
BENCHMARK(formatGettext)->Name("BM_GettextSnprintf_format");
BENCHMARK(throwAndRender)->Name("BM_QBLException_throwRethrowTwice")->Arg(0)->Arg(1);

}  // namespace

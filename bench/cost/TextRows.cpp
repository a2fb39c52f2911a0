#include <sstream>
#include <string>

#include "bench/cost/Work.hpp"
#include "fuzz/support/ConverterChecks.hpp"
#include "tests/support/Library.hpp"
#include "tests/support/TempTree.hpp"

// The rows of strings, converters, streams, resources and pools.

namespace {

using cost::Order;
using cost::repeated;
using cost::use;
using cost::Work;

I18NString stringOf(std::size_t n, const std::string& piece) {
    return I18NString(repeated(piece, n));
}

void decode(Work& work, const char* encoding, const std::string& bytes, int policy) {
    I18NConverter from(encoding);
    from.setBuiltInUnconvertibleInputSequenceCallback(policy);
    work.of(encoding, [&] { use(converterchecks::decoded(from, bytes)); });
}

/// Converts by a stream, in pieces of one byte and as a whole.
void stream(Work& work, const char* from, const char* to, const std::string& bytes) {
    const I18NConverter in(from), out(to);
    for (const std::size_t piece : {std::size_t{1}, bytes.size()})
        work.of(from, [&] { use(convertedByStream(&in, &out, bytes, {piece})); });
}

/// Reads a file as the resource file.
void load(Work& work, const char* name, const std::string& text) {
    const TempTree tree;
    const auto before = std::filesystem::current_path();
    tree.file("cost_res.xml", text);
    std::filesystem::current_path(tree.root());
    I18NInternalResources& resources = I18NInternalResources::getInternalResources();
    I18NInternalResources::__changeResourceFileName("./cost_res.xml");
    work.of(name, [&] { resources.loadSequenceTable(); });
    resources.release();
    std::filesystem::current_path(before);
}

/// Texts with the same hash in the pools: "Az" and "BT" change the hash alike.
std::string colliding(std::size_t number) {
    std::string text;
    for (int bit = 0; bit < 16; ++bit) text += (number >> bit & 1) != 0 ? "Az" : "BT";
    return text;
}

const cost::Rows kRows{
    {"SearchesAndEdits", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString plain = stringOf(n, "a"), wanted = stringOf(n / 2, "a") + "b";
         const I18NString pattern = std::string("%") + wanted, gaps = stringOf(n / 2, "_a") + "b%";
         const I18NString wide = stringOf(n, "\u4E2D"), other = stringOf(n / 2, "\u4E2D") + "b";
         const I18NString pairs = stringOf(n, "\U0001F600"), set = stringOf(n, "bc");
         I18NString marked("e"), inserted, replaced = stringOf(n, "\u4E2Da");
         int start = 0, end = 0;
         work.of("find", [&] { use(plain.find(wanted)); });
         work.of("rfind", [&] { use(wide.rfind(other)); });
         work.of("findFirstOf", [&] { use(pairs.findFirstOf(set) + pairs.findLastOf(set)); });
         work.of("matchLike", [&] { use(plain.matchLike(pattern)); });
         work.of("substringLike", [&] { use(plain.substringLike(gaps, 0, 0, start, end)); });
         work.of("append", [&] {
             for (std::size_t i = 0; i < n; ++i) marked += i % 2 == 0 ? L'\u0301' : L'\u0323';
         });
         work.of("insert", [&] {
             for (std::size_t i = 0; i < n; ++i) inserted.insert(0, L'\u4E2D');
         });
         work.of("replace", [&] {
             for (int at = 0; (at = replaced.find(L'a', at)) >= 0; at += 2)
                 replaced.replace(at, 1, "bb");
         });
         work.of("pools with one hash", [&] {
             I18NStringPool pool(1);
             for (std::size_t i = 0; i < n; ++i) {
                 use(I18NPooledString(colliding(i)));
                 pool.getPooledString(colliding(i).c_str());
             }
         });
         I18NPooledString::purge();
     }},
    {"Strings", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string bytes = repeated("\xF0\x90\x80\xE4\xB8\xC3\x80\xFF", n);
         const std::string escaped = repeated("%E4%B8%", n), plain = repeated("\"'\u00E9 ", n);
         const I18NString wide = stringOf(n, "\u4E2D");
         const I18NString text = stringOf(n, "\U0001F600\u4E2D"), same(text);
         I18NString ascii, longer, sized("\u4E2D"), word, encoded;
         std::istringstream in(repeated("a\u0301", n));
         work.of("find", [&] { use(wide.find(L'b') + wide.rfind(L'b')); });
         work.of("findFirstNotOf", [&] { use(wide.findFirstNotOf(L'\u4E2D')); });
         work.of("append", [&] {
             for (std::size_t i = 0; i < n; ++i) {
                 ascii += "a";
                 (longer += L'\u4E2D') += "\u00E9";
             }
         });
         work.of("ill-formed UTF-8", [&] { use(I18NString(bytes)); });
         work.of("compare", [&] { use(text.length() + text.compare(same)); });
         work.of("compare bytes", [&] { use(text.compare(text.toUtf8())); });
         work.of("hash", [&] { use(std::hash<I18NString>()(text)); });
         work.of("iterate", [&] {
             for (const auto c : text) use(c);
         });
         work.of("resize", [&] { sized.resize(static_cast<int>(n)); });
         work.of("trim", [&] { sized.insert(0, stringOf(n, " ")).trim(); });
         work.of("read", [&] { in >> word; });
         work.of("URL", [&] { I18NURLEncode(plain.c_str(), encoded); });
         work.of("URI", [&] { use(I18NUriDecode(escaped.c_str())); });
         work.of("pool", [&] {
             for (std::size_t i = 0; i < n; ++i) use(I18NPooledString(std::to_string(i * i)));
         });
         I18NPooledString::purge();
     }},
    // Marks of two combining classes in turn, which have to be sorted.
    {"NormalizeMarks", Order::kLinearLog, 256,
     [](std::size_t n, Work& work) {
         for (const char* const two : {"\u0301\u0323", "\U0001D16D\U0001D165", "\u0344\u0F73"})
             for (const char* const before : {"", "e", "ee"}) {
                 const std::string utf8 = before + repeated(two, n);
                 work.of(before, [&] { use(I18NString(utf8)); });
             }
     }},
    {"Conversions", Order::kLinear, 1024,
     [](std::size_t n, Work& work) {
         decode(work, "Shift_JIS", repeated("\x81\xFD\x9F\x20\xF0\xFF", n), I18N_ESCAPE);
         decode(work, "ISO-2022-JP", repeated("\x1B$B\x1B(J\x1B$@0!\x1B$(D\x1B(B\x1B$", n),
                I18N_SUBSTITUTE);
         decode(work, "UTF-7", repeated("+AGE-+", n), I18N_SUBSTITUTE);
         decode(work, "HZ", repeated("~{~}~{0!~}~x~", n), I18N_SUBSTITUTE);
         decode(work, "SCSU", repeated("\x0F\xE0\x01\x18\x10\x0B\x7F", n), I18N_SUBSTITUTE);
         decode(work, "GB18030", repeated("\x81\x30\x81\xFE\x39", n), I18N_LOOKUP);
         const I18NString text = stringOf(n, "\u4E2D\U0001F600a");
         for (const char* const to : {"US-ASCII", "ISO-2022-JP", "windows-1252"})
             for (const int policy : {I18N_ESCAPE, I18N_SUBSTITUTE, I18N_LOOKUP}) {
                 I18NConverter converter(to);
                 converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
                 work.of(to, [&] { use(text.c_str(converter)); });
             }
         stream(work, "UTF-8", "UTF-16", repeated("\xF0\x90\x80\xE4\xB8\xADz\n", n));
         stream(work, "ISO-2022-JP", "Shift_JIS", repeated("\x1B$B0!\x1B(B", n));
         stream(work, "UTF-7", "UTF-8", "+" + repeated("AGEAYQBh", n));
         stream(work, "GB18030", "US-ASCII", repeated("\x81\x30\x81\x30\x81", n));
         stream(work, "UTF-16LE", "x11-compound-text", repeated("\x3D\xD8", n));
         stream(work, "UTF-8", "ISO-2022-CN", repeated("\u00E9\u4E2D\xFF\U0001F600", n));
     }},
    {"Names", Order::kLinear, 64,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(8, "\u00E9");
         work.of("names of an encoding", [&] {
             for (std::size_t i = 0; i < n; ++i) {
                 std::string name;
                 for (std::size_t k = 0; k < 12; ++k)
                     name.append(i >> k & 1, '_') += "windows-1252"[k];
                 use(text.c_str(name.c_str()));
             }
         });
         const std::string name = repeated("utf-8,version=1-", 32 * n);
         const std::string locale = repeated("en_US_", 32 * n);
         work.of("encoding", [&] {
             try {
                 use(I18NConverter(name.c_str()).getEncoding());
             } catch (const I18NRuntimeError&) {  // no such encoding
             }
         });
         work.of("locale", [&] { use(I18NLocale(locale.c_str()).getLanguage()); });
     }},
    {"ResourceFiles", Order::kLinearLog, 1024,
     [](std::size_t n, Work& work) {
         std::string list, entries = "<output>\n<encoding value=\"US-ASCII;Shift_JIS\">\n";
         for (std::size_t i = n; i > 0; --i) {
             list += std::to_string(i * 7919 % 50000) + ";";
             entries += "<sequence value=\"" + std::to_string(i) +
                        "\">\n<replacement value=\"0x41\"/>\n</sequence>\n<locale value=\"x" +
                        std::to_string(n - i) + "\">\n<inUse value=\"true\"/>\n";
         }
         load(work, "long line",
              "<ja_substitution x" + repeated(" a=\"<!--\" -->", n) + " to=\"1\"/>\n");
         load(work, "comments",
              repeated("<!-- \"--><!--", n) + "\n" + repeated("<!--\n-->\n<a\n", n));
         load(work, "list", "<nonNormalizableCharacters value=\"" + list + "\"/>\n");
         load(work, "encodings",
              "<output><encoding value=\"" + repeated("UTF-8;ascii;x;", n) + "\"/>\n");
         load(work, "entries", entries);
     }},
};

}  // namespace

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "bench/cost/Work.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_locale.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_stringpool.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "i18n/cpp/i18n_uri.hpp"
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
    work.of([&] {
        void* block = nullptr;
        int size = 0;
        from.toUnicode(&block, &size, bytes.data(), static_cast<int>(bytes.size()));
        std::free(block);
    });
}

struct Listener : I18NTextStreamListener {
    void unconvertible(const I18NUnconvertible& what) override { use(what); }
};

/// Converts by a stream, in pieces of one byte and as a whole.
void stream(Work& work, const char* from, const char* to, const std::string& bytes) {
    const I18NConverter in(from), out(to);
    Listener listener;
    for (const std::size_t piece : {std::size_t{1}, bytes.size()}) {
        I18NTextStream stream(&in, &out, I18N_MARK_KEEP, &listener);
        work.of([&] {
            for (std::size_t at = 0; at < bytes.size(); at += piece)
                stream.put(bytes.data() + at, std::min(piece, bytes.size() - at));
            stream.finish();
        });
    }
}

/// Reads a file as the resource file.
void load(Work& work, const std::string& text) {
    const TempTree tree;
    const auto before = std::filesystem::current_path();
    tree.file("cost_res.xml", text);
    std::filesystem::current_path(tree.root());
    I18NInternalResources& resources = I18NInternalResources::getInternalResources();
    I18NInternalResources::__changeResourceFileName("./cost_res.xml");
    work.of([&] { resources.loadSequenceTable(); });
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
    {"FindRepetitive", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "a"), wanted = stringOf(n / 2, "a") + "b";
         work.of([&] { use(text.find(wanted)); });
     }},
    {"RfindRepetitive", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "\u4E2D"), wanted = stringOf(n / 2, "\u4E2D") + "b";
         work.of([&] { use(text.rfind(wanted)); });
     }},
    {"FindCharacter", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "\u4E2D");
         work.of([&] { use(text.find(L'b') + text.rfind(L'b') + text.findFirstNotOf(L'b')); });
     }},
    {"FindOfSet", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "\U0001F600"), set = stringOf(n, "bc");
         work.of([&] { use(text.findFirstOf(set) + text.findLastOf(set)); });
     }},
    {"MatchLike", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "a"),
                          pattern = std::string("%") + stringOf(n / 2, "a") + "b";
         work.of([&] { use(text.matchLike(pattern)); });
     }},
    {"SubstringLike", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "a"), pattern = stringOf(n / 2, "_a") + "b%";
         int start = 0, end = 0;
         work.of([&] { use(text.substringLike(pattern, 0, 0, start, end)); });
     }},
    {"AppendCharacters", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         work.of([&] {
             I18NString ascii, wide;
             for (std::size_t i = 0; i < n; ++i) {
                 ascii += "a";
                 wide += L'\u4E2D';
                 wide += "\u00E9";
             }
         });
     }},
    {"AppendMarks", Order::kQuadratic, 128,
     [](std::size_t n, Work& work) {
         work.of([&] {
             I18NString text("e");
             for (std::size_t i = 0; i < n; ++i) text += i % 2 == 0 ? L'\u0301' : L'\u0323';
         });
     }},
    {"InsertAtFront", Order::kQuadratic, 512,
     [](std::size_t n, Work& work) {
         work.of([&] {
             I18NString text;
             for (std::size_t i = 0; i < n; ++i) text.insert(0, L'\u4E2D');
         });
     }},
    {"ReplaceAll", Order::kQuadratic, 256,
     [](std::size_t n, Work& work) {
         I18NString text = stringOf(n, "\u4E2Da");
         work.of([&] {
             for (int at = 0; (at = text.find(L'a', at)) >= 0; at += 2) text.replace(at, 1, "bb");
         });
     }},
    // Marks of two combining classes in turn, which have to be sorted.
    {"NormalizeMarks", Order::kLinearLog, 256,
     [](std::size_t n, Work& work) {
         for (const char* const two : {"\u0301\u0323", "\U0001D16D\U0001D165", "\u0344\u0F73"})
             for (const char* const before : {"", "e", "ee"}) {
                 const std::string utf8 = before + repeated(two, n);
                 work.of([&] { use(I18NString(utf8)); });
             }
     }},
    {"DecodeIllFormedUtf8", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string bytes = repeated("\xF0\x90\x80\xE4\xB8\xC3\x80\xFF", n);
         work.of([&] { use(I18NString(bytes)); });
     }},
    {"LengthHashCompareIterate", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "\U0001F600\u4E2D"), same(text);
         work.of([&] {
             use(text.length() + text.compare(same) + text.compare(text.toUtf8()));
             use(std::hash<I18NString>()(text));
             for (const auto c : text) use(c);
         });
     }},
    {"ResizeAndTrim", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         I18NString text("\u4E2D");
         work.of([&] {
             text.resize(static_cast<int>(n));
             text.insert(0, stringOf(n, " "));
             text.trim();
         });
     }},
    {"ReadWord", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         std::istringstream in(repeated("a\u0301", n));
         I18NString text;
         work.of([&] { in >> text; });
     }},
    {"Uri", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string escaped = repeated("%E4%B8%", n), plain = repeated("\"'\u00E9 ", n);
         work.of([&] {
             I18NString text;
             I18NURLEncode(plain.c_str(), text);
             use(I18NUriDecode(escaped.c_str()));
         });
     }},
    {"DecodeEscapingShiftJis", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         decode(work, "Shift_JIS", repeated("\x81\xFD\x9F\x20\xF0\xFF", n), I18N_ESCAPE);
     }},
    {"DecodeStates", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         decode(work, "ISO-2022-JP", repeated("\x1B$B\x1B(J\x1B$@0!\x1B$(D\x1B(B\x1B$", n),
                I18N_SUBSTITUTE);
         decode(work, "UTF-7", repeated("+AGE-+", n), I18N_SUBSTITUTE);
         decode(work, "HZ", repeated("~{~}~{0!~}~x~", n), I18N_SUBSTITUTE);
         decode(work, "SCSU", repeated("\x0F\xE0\x01\x18\x10\x0B\x7F", n), I18N_SUBSTITUTE);
         decode(work, "GB18030", repeated("\x81\x30\x81\xFE\x39", n), I18N_LOOKUP);
     }},
    {"EncodeLacking", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(n, "\u4E2D\U0001F600a");
         for (const char* const to : {"US-ASCII", "ISO-2022-JP", "windows-1252"})
             for (const int policy : {I18N_ESCAPE, I18N_SUBSTITUTE, I18N_LOOKUP}) {
                 I18NConverter converter(to);
                 converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
                 work.of([&] { use(text.c_str(converter)); });
             }
     }},
    {"BytesInManyNamesOfAnEncoding", Order::kLinear, 64,
     [](std::size_t n, Work& work) {
         const I18NString text = stringOf(8, "\u00E9");
         work.of([&] {
             for (std::size_t i = 0; i < n; ++i) {
                 std::string name;
                 for (std::size_t k = 0; k < 12; ++k)
                     name.append(i >> k & 1, '_') += "windows-1252"[k];
                 use(text.c_str(name.c_str()));
             }
         });
     }},
    {"StreamPieces", Order::kLinear, 512,
     [](std::size_t n, Work& work) {
         stream(work, "UTF-8", "UTF-16", repeated("\xF0\x90\x80\xE4\xB8\xADz\n", n));
         stream(work, "ISO-2022-JP", "Shift_JIS", repeated("\x1B$B0!\x1B(B", n));
         stream(work, "UTF-7", "UTF-8", "+" + repeated("AGEAYQBh", n));
         stream(work, "GB18030", "US-ASCII", repeated("\x81\x30\x81\x30\x81", n));
         stream(work, "UTF-16LE", "x11-compound-text", repeated("\x3D\xD8", n));
         stream(work, "UTF-8", "ISO-2022-CN", repeated("\u00E9\u4E2D\xFF\U0001F600", n));
     }},
    {"EncodingAndLocaleNames", Order::kLinear, 2048,
     [](std::size_t n, Work& work) {
         const std::string name = repeated("utf-8,version=1-", n);
         work.of([&] {
             try {
                 use(I18NConverter(name.c_str()).getEncoding());
             } catch (const I18NRuntimeError&) {  // no such encoding
             }
             use(I18NLocale(repeated("en_US_", n).c_str()).getLanguage());
         });
     }},
    {"ResourceFileLongLine", Order::kLinear, 4096,
     [](std::size_t n, Work& work) {
         load(work, "<ja_substitution x" + repeated(" a=\"<!--\" -->", n) + " to=\"1\"/>\n");
         load(work, repeated("<!-- \"--><!--", n) + "\n" + repeated("<!--\n-->\n<a\n", n));
     }},
    {"ResourceFileLists", Order::kLinearLog, 4096,
     [](std::size_t n, Work& work) {
         std::string list;
         for (std::size_t i = n; i > 0; --i) list += std::to_string(i * 7919 % 50000) + ";";
         load(work, "<nonNormalizableCharacters value=\"" + list + "\"/>\n");
         load(work, "<output><encoding value=\"" + repeated("UTF-8;ascii;x;", n) + "\"/>\n");
     }},
    {"ResourceFileEntries", Order::kLinearLog, 256,
     [](std::size_t n, Work& work) {
         std::string text = "<output>\n<encoding value=\"US-ASCII;Shift_JIS\">\n";
         for (std::size_t i = 0; i < n; ++i)
             text += "<sequence value=\"" + std::to_string(n - i) +
                     "\">\n<replacement value=\"0x41\"/>\n</sequence>\n<locale value=\"x" +
                     std::to_string(i) + "\">\n<inUse value=\"true\"/>\n";
         load(work, text);
     }},
    {"PoolSameHash", Order::kQuadratic, 64,
     [](std::size_t n, Work& work) {
         I18NStringPool pool(1);
         work.of([&] {
             for (std::size_t i = 0; i < n; ++i) {
                 use(I18NPooledString(colliding(i)));
                 pool.getPooledString(colliding(i).c_str());
             }
         });
         I18NPooledString::purge();
     }},
    {"PoolOtherHashes", Order::kLinear, 256,
     [](std::size_t n, Work& work) {
         work.of([&] {
             for (std::size_t i = 0; i < n; ++i) use(I18NPooledString(std::to_string(i * i)));
         });
         I18NPooledString::purge();
     }},
};

}  // namespace

// Tests how qblconv detects the encoding of texts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <vector>

#include "tests/tools/RunTool.hpp"

namespace {

// Texts in UTF-8. Their encoded forms below come from another implementation of the encodings.
const char kJapanese[] =
    "\xE3\x81\x93\xE3\x82\x8C\xE3\x81\xAF\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83"
    "\x86\xE3\x82\xAD\xE3\x82\xB9\xE3\x83\x88\xE3\x81\xA7\xE3\x81\x99\xE3\x80\x82\n\xE6\x96\x87\xE5"
    "\xAD\x97\xE3\x82\xB3\xE3\x83\xBC\xE3\x83\x89\xE3\x81\xAE\xE5\x88\xA4\xE5\xAE\x9A\xE3\x82\x92"
    "\xE7\xA2\xBA\xE8\xAA\x8D\xE3\x81\x97\xE3\x81\xBE\xE3\x81\x99\xE3\x80\x82\xE3\x82\xAB\xE3\x82"
    "\xBF\xE3\x82\xAB\xE3\x83\x8A\xE3\x82\x82\xE5\x90\xAB\xE3\x81\xBF\xE3\x81\xBE\xE3\x81\x99\xE3"
    "\x80\x82\n";
const char kRussian[] =
    "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, \xD0\xBC\xD0\xB8\xD1\x80! "
    "\xD0\xAD\xD1\x82\xD0\xBE \xD0\xBF\xD1\x80\xD0\xBE\xD1\x81\xD1\x82\xD0\xBE\xD0\xB9 "
    "\xD1\x82\xD0\xB5\xD0\xBA\xD1\x81\xD1\x82 \xD0\xBD\xD0\xB0 "
    "\xD1\x80\xD1\x83\xD1\x81\xD1\x81\xD0\xBA\xD0\xBE\xD0\xBC "
    "\xD1\x8F\xD0\xB7\xD1\x8B\xD0\xBA\xD0\xB5.\n\xD0\x9E\xD0\xBD "
    "\xD0\xBD\xD1\x83\xD0\xB6\xD0\xB5\xD0\xBD \xD0\xB4\xD0\xBB\xD1\x8F "
    "\xD0\xBF\xD1\x80\xD0\xBE\xD0\xB2\xD0\xB5\xD1\x80\xD0\xBA\xD0\xB8 "
    "\xD0\xBE\xD0\xBF\xD1\x80\xD0\xB5\xD0\xB4\xD0\xB5\xD0\xBB\xD0\xB5\xD0\xBD\xD0\xB8\xD1\x8F "
    "\xD0\xBA\xD0\xBE\xD0\xB4\xD0\xB8\xD1\x80\xD0\xBE\xD0\xB2\xD0\xBA\xD0\xB8.\n";
const char kSimplified[] =
    "\xE8\xBF\x99\xE6\x98\xAF\xE4\xB8\xAD\xE6\x96\x87\xE6\x96\x87\xE6\x9C\xAC\xE3\x80\x82\n\xE7\x94"
    "\xA8\xE4\xBA\x8E\xE6\xA3\x80\xE6\x9F\xA5\xE5\xAD\x97\xE7\xAC\xA6\xE7\xBC\x96\xE7\xA0\x81\xE7"
    "\x9A\x84\xE6\xA3\x80\xE6\xB5\x8B\xE3\x80\x82\xE6\x88\x91\xE4\xBB\xAC\xE9\x9C\x80\xE8\xA6\x81"
    "\xE5\xA4\x9A\xE4\xB8\x80\xE4\xBA\x9B\xE6\x96\x87\xE5\xAD\x97\xE3\x80\x82\n";
const char kTraditional[] =
    "\xE9\x80\x99\xE6\x98\xAF\xE7\xB9\x81\xE9\xAB\x94\xE4\xB8\xAD\xE6\x96\x87\xE6\x96\x87\xE6\x9C"
    "\xAC\xE3\x80\x82\n\xE7\x94\xA8\xE6\x96\xBC\xE6\xAA\xA2\xE6\x9F\xA5\xE5\xAD\x97\xE5\x85\x83\xE7"
    "\xB7\xA8\xE7\xA2\xBC\xE7\x9A\x84\xE5\x81\xB5\xE6\xB8\xAC\xE3\x80\x82\xE6\x88\x91\xE5\x80\x91"
    "\xE9\x9C\x80\xE8\xA6\x81\xE5\xA4\x9A\xE4\xB8\x80\xE4\xBA\x9B\xE6\x96\x87\xE5\xAD\x97\xE3\x80"
    "\x82\n";
const char kKorean[] =
    "\xEC\x9D\xB4\xEA\xB2\x83\xEC\x9D\x80 \xED\x95\x9C\xEA\xB5\xAD\xEC\x96\xB4 "
    "\xED\x85\x8D\xEC\x8A\xA4\xED\x8A\xB8\xEC\x9E\x85\xEB\x8B\x88\xEB\x8B\xA4."
    "\n\xEB\xAC\xB8\xEC\x9E\x90 \xEC\x9D\xB8\xEC\xBD\x94\xEB\x94\xA9\xEC\x9D\x84 "
    "\xED\x99\x95\xEC\x9D\xB8\xED\x95\xA9\xEB\x8B\x88\xEB\x8B\xA4. \xEC\x97\xAC\xEB\x9F\xAC "
    "\xEC\xA4\x84\xEC\x9D\xB4 \xEC\x9E\x88\xEC\x8A\xB5\xEB\x8B\x88\xEB\x8B\xA4.\n";
const char kGerman[] =
    "Die K\xC3\xB6"
    "chin \xC3\xB6"
    "ffnete die T\xC3\xBCr und gr\xC3\xBC\xC3\x9Fte h\xC3\xB6"
    "flich \xE2\x80\x93 wie immer.\n";
const char kShort[] =
    "Wir pr\xC3\xBC"
    "fen, in welcher Kodierung\n";

std::string bytes(const char* text, std::size_t size) { return {text, size}; }

/// Runs $Q, which is qblconv, with arguments in a tree, and compares status and output.
void expectRun(const TempTree& tree, const std::string& command, int status,
               const std::string& output) {
    const Outcome result = runTool(tree, "Q='" QBL_CONV "'; $Q " + command);
    EXPECT_EQ(status, result.status) << command;
    EXPECT_EQ(output, result.output) << command;
}

std::string unclear(const std::string& name, const std::string& fits) {
    return name + ": the encoding is ambiguous, these fit: " + fits +
           "; compare them with -g, then use -f NAME or -f auto:LIST\n";
}

const char kUnknown[] =
    ": unknown encoding; name it with -f NAME, or candidates with -f auto:LIST\n";

/// Creates the files: s is Shift_JIS, u UTF-8, l windows-1252, w and d UTF-16 with a byte-order
/// mark, m UTF-8 with one, c ambiguous, e empty.
void makeFiles(const TempTree& tree) {
    tree.file("s", "\x82\xA0\n");
    tree.file("u", "\xC3\xA4\n");
    tree.file("l", "gr\xFC\xDF\n");
    tree.file("w", bytes("\xFF\xFE\xE4\0\n\0", 6));
    tree.file("d", bytes("\xFE\xFF\0\xE4\0\n", 6));
    tree.file("m", "\xEF\xBB\xBF\xC3\xA4\n");
    tree.file("c", "un caf\xE9 cr\xE8me \xE0 la carte\n");
    tree.file("e", "");
}

}  // namespace

TEST(QblconvDetectTest, DetectsManyEncodings) {
    const struct {
        std::string encoding, text;
        const char* expected;
    } table[] = {
        {"Shift_JIS",
         "\x82\xB1\x82\xEA\x82\xCD\x93\xFA\x96{\x8C\xEA\x82\xCC\x83"
         "e\x83L\x83X\x83g\x82\xC5\x82\xB7\x81"
         "B\n\x95\xB6\x8E\x9A\x83R\x81[\x83h\x82\xCC\x94\xBB\x92\xE8\x82\xF0\x8Am\x94"
         "F\x82\xB5\x82\xDC\x82\xB7\x81"
         "B\x83J\x83^\x83J\x83i\x82\xE0\x8A\xDC\x82\xDD\x82\xDC\x82\xB7\x81"
         "B\n",
         kJapanese},
        {"EUC-JP",
         "\xA4\xB3\xA4\xEC\xA4\xCF\xC6\xFC\xCB\xDC\xB8\xEC\xA4\xCE\xA5\xC6\xA5\xAD\xA5\xB9\xA5\xC8"
         "\xA4\xC7\xA4\xB9\xA1\xA3\n\xCA\xB8\xBB\xFA\xA5\xB3\xA1\xBC\xA5\xC9\xA4\xCE\xC8\xBD\xC4"
         "\xEA\xA4\xF2\xB3\xCE\xC7\xA7\xA4\xB7\xA4\xDE\xA4\xB9\xA1\xA3\xA5\xAB\xA5\xBF\xA5\xAB\xA5"
         "\xCA\xA4\xE2\xB4\xDE\xA4\xDF\xA4\xDE\xA4\xB9\xA1\xA3\n",
         kJapanese},
        {"ISO-2022-JP",
         "\x1B$B$3$l$OF|K\\8l$N%F%-%9%H$G$9!#\x1B(B\n\x1B$BJ8;z%3!<%I$NH=Dj$r3NG'$7$^$9!#%+%\?%+%J$"
         "b4^$_$^$9!#\x1B(B\n",
         kJapanese},
        {"GB18030",
         "\xD5\xE2\xCA\xC7\xD6\xD0\xCE\xC4\xCE\xC4\xB1\xBE\xA1\xA3\n\xD3\xC3\xD3\xDA\xBC\xEC\xB2"
         "\xE9\xD7\xD6\xB7\xFB\xB1\xE0\xC2\xEB\xB5\xC4\xBC\xEC\xB2\xE2\xA1\xA3\xCE\xD2\xC3\xC7\xD0"
         "\xE8\xD2\xAA\xB6\xE0\xD2\xBB\xD0\xA9\xCE\xC4\xD7\xD6\xA1\xA3\n",
         kSimplified},
        {"Big5",
         "\xB3o\xACO\xC1"
         "c\xC5\xE9\xA4\xA4\xA4\xE5\xA4\xE5\xA5\xBB\xA1"
         "C\n\xA5\xCE\xA9\xF3\xC0\xCB\xAC"
         "d\xA6r\xA4\xB8\xBDs\xBDX\xAA\xBA\xB0\xBB\xB4\xFA\xA1"
         "C\xA7\xDA\xAD\xCC\xBB\xDD\xADn\xA6h\xA4@\xA8\xC7\xA4\xE5\xA6r\xA1"
         "C\n",
         kTraditional},
        {"EUC-KR",
         "\xC0\xCC\xB0\xCD\xC0\xBA \xC7\xD1\xB1\xB9\xBE\xEE "
         "\xC5\xD8\xBD\xBA\xC6\xAE\xC0\xD4\xB4\xCF\xB4\xD9.\n\xB9\xAE\xC0\xDA "
         "\xC0\xCE\xC4\xDA\xB5\xF9\xC0\xBB \xC8\xAE\xC0\xCE\xC7\xD5\xB4\xCF\xB4\xD9. "
         "\xBF\xA9\xB7\xAF \xC1\xD9\xC0\xCC \xC0\xD6\xBD\xC0\xB4\xCF\xB4\xD9.\n",
         kKorean},
        {"windows-1251",
         "\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0! \xDD\xF2\xEE \xEF\xF0\xEE\xF1\xF2\xEE\xE9 "
         "\xF2\xE5\xEA\xF1\xF2 \xED\xE0 \xF0\xF3\xF1\xF1\xEA\xEE\xEC "
         "\xFF\xE7\xFB\xEA\xE5.\n\xCE\xED \xED\xF3\xE6\xE5\xED \xE4\xEB\xFF "
         "\xEF\xF0\xEE\xE2\xE5\xF0\xEA\xE8 \xEE\xEF\xF0\xE5\xE4\xE5\xEB\xE5\xED\xE8\xFF "
         "\xEA\xEE\xE4\xE8\xF0\xEE\xE2\xEA\xE8.\n",
         kRussian},
        {"KOI8-R",
         "\xF0\xD2\xC9\xD7\xC5\xD4, \xCD\xC9\xD2! \xFC\xD4\xCF \xD0\xD2\xCF\xD3\xD4\xCF\xCA "
         "\xD4\xC5\xCB\xD3\xD4 \xCE\xC1 \xD2\xD5\xD3\xD3\xCB\xCF\xCD "
         "\xD1\xDA\xD9\xCB\xC5.\n\xEF\xCE \xCE\xD5\xD6\xC5\xCE \xC4\xCC\xD1 "
         "\xD0\xD2\xCF\xD7\xC5\xD2\xCB\xC9 \xCF\xD0\xD2\xC5\xC4\xC5\xCC\xC5\xCE\xC9\xD1 "
         "\xCB\xCF\xC4\xC9\xD2\xCF\xD7\xCB\xC9.\n",
         kRussian},
        {"windows-1252",
         "Die K\xF6"
         "chin \xF6"
         "ffnete die T\xFCr und gr\xFC\xDFte h\xF6"
         "flich \x96 wie immer.\n",
         kGerman},
        {"UTF-16LE",
         bytes("W\x00i\x00r\x00 \x00p\x00r\x00\xFC\x00"
               "f\x00"
               "e\x00n\x00,\x00 \x00i\x00n\x00 \x00w\x00"
               "e\x00l\x00"
               "c\x00h\x00"
               "e\x00r\x00 \x00K\x00o\x00"
               "d\x00i\x00"
               "e\x00r\x00u\x00n\x00g\x00\n\x00",
               66),
         kShort},
    };
    for (const auto& row : table) {
        TempTree tree;
        tree.file("f", row.text);
        expectRun(tree, "-v -f auto f -o out; cat f | $Q -f auto | cmp - out", 0,
                  "f: converted from " + row.encoding + "\n");
        EXPECT_EQ(row.expected, tree.text("out")) << row.encoding;
        // The encoding is also detected if many line ends come before the text, and if the end of a
        // block splits the text.
        const bool isWide = row.encoding == "UTF-16LE";
        for (int i = isWide ? 2 : 0; i < 2; ++i) {
            tree.file("f", std::string(0xFFF0 + static_cast<std::size_t>(i), '\n') + row.text);
            expectRun(tree, "-nv -f auto f", 0, "f: valid " + row.encoding + "\n");
        }
        // In place, a file is replaced only if no other encoding fits.
        const bool isAlone = isWide || row.encoding == "ISO-2022-JP" || row.expected == kGerman;
        tree.file("f", row.text);
        EXPECT_EQ(isAlone ? 0 : 1, runTool(tree, "'" QBL_CONV "' -i=.o -f auto f").status);
        EXPECT_EQ(isAlone ? row.expected : row.text, tree.text("f")) << row.encoding;
        EXPECT_EQ(isAlone, std::filesystem::exists(tree("f.o"))) << row.encoding;
    }
}

TEST(QblconvDetectTest, ByteOrderMarksAndUTF8DetermineTheEncoding) {
    TempTree tree;
    makeFiles(tree);
    tree.file("both", bytes("\xFF\xFE\0\0a\0", 6));  // the mark of UTF-32, but not valid UTF-32
    tree.file("color", "\x1B[1mGr\xC3\xBC\xC3\x9F\x65\x1B[0m\n");
    tree.file("bell", "ring\a\n");
    tree.file("zeros", bytes("a\0", 2));
    tree.file("names", bytes("./a\0./b.txt\0", 12));
    // A UTF-8 text with one invalid byte is not mistaken for a text in another encoding.
    std::string broken;
    for (int i = 0; i < 20; ++i) broken += kGerman;
    tree.file("broken", broken + "\xFF\n");
    expectRun(tree, "-f auto -i broken; $Q -gq broken", 0,
              "broken: malformed, but most likely UTF-8; qblconv -n -f UTF-8 shows the errors\n"
              "broken: malformed, but most likely UTF-8; qblconv -n -f UTF-8 shows the errors\n"
              "broken: windows-1252, windows-1254 (confidence 88 %)\n"
              "broken: windows-1250 (confidence 46 %)\n");
    tree.file("random", "\x81\x8D\x8F\x90\xFF\xFE");
    expectRun(tree, "-nv -f auto u w d m e both color bell zeros names random", 1,
              "u: valid UTF-8\nw: valid UTF-16LE\nd: valid UTF-16BE\n"
              "m: valid UTF-8\ne: valid UTF-8\nboth: valid UTF-16LE\n"
              "color: valid UTF-8\nbell: valid UTF-8\n" +
                  (std::string("zeros") + kUnknown) + "names: valid UTF-8\nrandom" + kUnknown +
                  "11 files: 9 valid, 2 failed\n");
    expectRun(tree, "-f auto m w; $Q -f auto --bom=keep m", 0,
              "\xC3\xA4\n\xC3\xA4\n\xEF\xBB\xBF\xC3\xA4\n");
}

// The bytes of many DOS letters are symbols in windows-1252. Symbols do not occur within words.
TEST(QblconvDetectTest, DosTextsAreNotGuessed) {
    TempTree tree;
    std::string text;
    for (int i = 0; i < 20; ++i) text += "Il a re\x87u une r\x82ponse tr\x8As s\x82v\x8Are.\n";
    tree.file("dos", text);
    tree.file("short", "x\xE9\n");
    for (const char* const mode : {"-i dos", "-i -k --verify dos", "dos -o out"})
        EXPECT_EQ(1, runTool(tree, std::string("'" QBL_CONV "' -f auto ") + mode).status) << mode;
    EXPECT_EQ(text, tree.text("dos"));
    expectRun(tree, "-f auto short", 1, std::string("short") + kUnknown);
}

TEST(QblconvDetectTest, TakesTheFirstFittingEncodingOfAList) {
    TempTree tree;
    makeFiles(tree);
    expectRun(tree, "-f auto:UTF-8,sjis,windows-1252 -v -d out u s l w m", 1,
              "u: converted from UTF-8\ns: converted from sjis\nl: converted from windows-1252\n"
              "w: not valid in any of these encodings: UTF-8, sjis, windows-1252; -g lists the "
              "encodings that fit\n"
              "m: converted from UTF-8\n"
              "5 files: 4 converted, 0 unchanged, 1 failed; characters replaced: 0\n");
    EXPECT_EQ("gr\xC3\xBC\xC3\x9F\n\xE3\x81\x82\n", tree.text("out/l") + tree.text("out/s"));
    EXPECT_FALSE(std::filesystem::exists(tree("out/w")));
    // An encoding name without a byte order needs a byte-order mark, and a mark must belong to an
    // encoding of the list.
    expectRun(tree, "-f auto:latin1,ucs-2 -nv w d u m", 1,
              "w: valid UTF-16LE\nd: valid UTF-16BE\nu: valid latin1\n"
              "m: not valid in any of these encodings: latin1, ucs-2; -g lists the encodings that "
              "fit\n4 files: 3 valid, 1 failed\n");
    expectRun(tree, "-f auto:sjis,latin1 -ki l s u -v; cat s", 0,
              "l: converted from latin1\ns: converted from sjis\nu: already UTF-8\n"
              "3 files: 2 converted, 1 unchanged, 0 failed; characters replaced: 0\n"
              "\xE3\x81\x82\n");
    // Input that cannot be read twice is copied. Detection starts where the last reader stopped.
    expectRun(
        tree, "-f auto:UTF-8,sjis - <c", 1,
        "-: not valid in any of these encodings: UTF-8, sjis; -g lists the encodings that fit\n");
    expectRun(tree,
              "-v </dev/null; (read a; $Q -f auto:UTF-8,latin1 -v) <c; cat l c | "
              "TMPDIR=/nowhere $Q -f auto",
              1,
              "-: converted from UTF-8\n-: converted from UTF-8\n"
              "-: cannot be copied to a temporary file: No such file or directory; TMPDIR sets its "
              "directory\n");
    const std::string big(0x20000, 'a');
    tree.file("big", big + "\xE3\x81\x82 \xFF");
    expectRun(tree, "-nv -f auto:UTF-8,sjis,latin1 big; cat big | $Q -nv -f auto:UTF-8,latin1 -", 0,
              "big: valid latin1\n-: valid latin1\n");
}

TEST(QblconvDetectTest, ListedEncodingsShowWhereTheirTextsDiffer) {
    TempTree tree;
    makeFiles(tree);
    tree.file("random", "\x81\x8D\x8F\x90\xFF\xFE");
    const std::string fits =
        "c: windows-1250, ISO-8859-2 (confidence 80 %)\n"
        "c: windows-1252, ISO-8859-1 (confidence 69 %)\n";
    const std::string readings =
        "c:1: in windows-1250: un caf\xC3\xA9 cr\xC4\x8Dme \xC5\x95 la carte\n"
        "c:1: in windows-1252: un caf\xC3\xA9 cr\xC3\xA8me \xC3\xA0 la carte\n";
    expectRun(tree, "-gj4 c u w e", 0, fits + readings + "u: UTF-8\nw: UTF-16LE\ne: UTF-8\n");
    expectRun(tree, "--guess c random u 2>err; echo $?; cat err; $Q -gq c; $Q -g <u", 0,
              fits + readings + "u: UTF-8\n1\nrandom" + kUnknown + fits + "-: UTF-8\n");
    // A few Hebrew words are ambiguous, even if most of the text is English.
    tree.file("h",
              "The text is in English, and the words that stand here are not: \xF9\xEC\xE5\xED\n"
              "The rest of the text, however, is in English again and then there is more: "
              "\xF2\xE5\xEC\xED\n");
    expectRun(tree, "-n -f auto h 2>&1 | cut -d'(' -f1", 0,
              "h: the encoding is ambiguous, these fit: windows-1252 \n");
    expectRun(tree, "-n -f auto c; $Q -f auto -i c", 1,
              unclear("c", "windows-1250 (80), windows-1252 (69)") +
                  unclear("c", "windows-1250 (80), windows-1252 (69)"));
    // With a list, all fitting encodings are shown in its order. Long lines are shortened around
    // the difference.
    const std::string a(100, 'a'), shown = "...aaaaaaaaaaaaaaaaaaaa";
    tree.file("long", "\r\n\r" + a + "\xA4\x1B" + a + "\nb");
    expectRun(tree, "-g -f auto:UTF-16,UTF-16LE,UTF-8 w; $Q -g -f auto:ISO-8859-1,windows-1252 l",
              0, "w: UTF-16LE\nl: ISO-8859-1, windows-1252\n");
    expectRun(tree, "-g -f auto:UTF-8,latin1,latin9,cp1252 long", 0,
              "long: latin1, cp1252\nlong: latin9\nlong:3: in latin1: " + shown +
                  "\xC2\xA4\\x1Baaaaaaaaaaaaaaaaaaaaaaaaaaaa...\nlong:3: in latin9: " + shown +
                  "\xE2\x82\xAC\\x1Baaaaaaaaaaaaaaaaaaaaaaaaaaaa...\n");
    expectRun(tree,
              "-gX u -L fr | grep -o '<MessageText>.*</MessageText>'; $Q -g -L de c | head -n 1", 0,
              "<MessageText>u : UTF-8</MessageText>\n"
              "c: windows-1250, ISO-8859-2 (Sicherheit 80 %)\n");
}

TEST(QblconvDetectTest, InvalidListsAreMisuse) {
    TempTree tree;
    makeFiles(tree);
    expectRun(tree, "-f auto: u", 2,
              "qblconv: invalid argument for -f: \"auto:\"; valid values: auto auto:LIST\n");
    expectRun(tree, "-n -f auto:UTF-8,shiftjsi u", 2,
              "qblconv: unknown encoding: shiftjsi; did you mean Shift_JIS?\n");
    expectRun(tree, "-f auto:UTF-8, u", 2,
              "qblconv: unknown encoding: ; qblconv -l lists all encodings\n");
    expectRun(tree, "-f AUTO u", 2,
              "qblconv: unknown encoding: AUTO; qblconv -l lists all encodings\n");
    expectRun(tree, "-g -f sjis u", 2,
              "qblconv: invalid argument for -f: \"sjis\"; valid values: auto auto:LIST\n");
    expectRun(tree, "-g -t sjis u", 2, "qblconv: -t and -g cannot be used together\n");
}

#include "tests/tools/RunTool.hpp"

namespace {

const char kJapanese[] =
    "これは日本語のテキストです。\n文字コードの判定を確認します。カタカナも含みます。\n";
const char kRussian[] =
    "Привет, мир! Это простой текст на русском языке.\nОн нужен для проверки определения "
    "кодировки.\n";
const char kGerman[] = "Die Köchin öffnete die Tür und grüßte höflich – wie immer.\n";

const char kUnknown[] =
    ": unknown encoding; name it with -f NAME, or candidates with -f auto:LIST\n";

/// Creates the files: s is Shift_JIS, u UTF-8, l windows-1252, w and d UTF-16 with a byte-order
/// mark, m UTF-8 with one, c ambiguous, e empty.
void makeFiles(const TempTree& tree) {
    tree.file("s", "\x82\xA0\n");
    tree.file("u", "ä\n");
    tree.file("l", "gr\xFC\xDF\n");
    tree.file("w", bytes("\xFF\xFE\xE4\0\n\0", 6));
    tree.file("d", bytes("\xFE\xFF\0\xE4\0\n", 6));
    tree.file("m", "\uFEFFä\n");
    tree.file("c", "un caf\xE9 cr\xE8me \xE0 la carte\n");
    tree.file("e", "");
}

}  // namespace

TEST(QblconvDetectTest, DetectsManyEncodings) {
    const std::pair<std::string, std::string> table[] = {
        {"Shift_JIS", kJapanese},
        {"EUC-JP", kJapanese},
        {"ISO-2022-JP", kJapanese},
        {"GB18030", "这是中文文本。\n用于检查字符编码的检测。我们需要多一些文字。\n"},
        {"Big5", "這是繁體中文文本。\n用於檢查字元編碼的偵測。我們需要多一些文字。\n"},
        {"EUC-KR", "이것은 한국어 텍스트입니다.\n문자 인코딩을 확인합니다. 여러 줄이 있습니다.\n"},
        {"windows-1251", kRussian},
        {"KOI8-R", kRussian},
        {"windows-1252", kGerman},
        {"UTF-16LE", "Wir prüfen, in welcher Kodierung\n"},
    };
    for (const auto& [encoding, text] : table) {
        TempTree tree;
        tree.file("utf8", text);
        EXPECT_EQ(0, runTool(tree, "iconv -f UTF-8 -t " + encoding + " utf8 >f").status);
        const std::string encoded = tree.text("f");
        expectRun(tree, "$Q -v -f auto f | cmp - utf8; cat f | $Q -f auto | cmp - utf8", 0,
                  "f: converted from " + encoding + "\n");
        // The encoding is also detected if many line ends come before the text, and if the end of a
        // block splits the text.
        const bool isWide = encoding == "UTF-16LE";
        for (int i = isWide ? 2 : 0; i < 2; ++i) {
            tree.file("f", std::string(0xFFF0 + static_cast<std::size_t>(i), '\n') + encoded);
            expectRun(tree, "$Q -nv -f auto f", 0, "f: valid " + encoding + "\n");
        }
        // In place, a file is replaced only if no other encoding fits.
        const bool isAlone = isWide || encoding == "ISO-2022-JP" || text == kGerman;
        tree.file("f", encoded);
        EXPECT_EQ(isAlone ? 0 : 1, runTool(tree, "$Q -i=.o -f auto f").status);
        EXPECT_EQ(isAlone ? text : encoded, tree.text("f")) << encoding;
        EXPECT_EQ(isAlone, std::filesystem::exists(tree("f.o"))) << encoding;
    }
}

TEST(QblconvDetectTest, ByteOrderMarksAndUTF8DetermineTheEncoding) {
    TempTree tree;
    makeFiles(tree);
    tree.file("both", bytes("\xFF\xFE\0\0a\0", 6));  // the mark of UTF-32, but not valid UTF-32
    tree.file("color", "\x1B[1mGrüße\x1B[0m\n");
    tree.file("bell", "ring\a\n");
    tree.file("zeros", bytes("a\0", 2));
    tree.file("names", bytes("./a\0./b.txt\0", 12));
    // A UTF-8 text with one invalid byte is not mistaken for a text in another encoding.
    std::string broken;
    for (int i = 0; i < 20; ++i) broken += kGerman;
    tree.file("broken", broken + "\xFF\n");
    expectRun(tree, "$Q -f auto -i broken; $Q -gq broken", 0,
              "broken: malformed, but most likely UTF-8; qblconv -n -f UTF-8 shows the errors\n"
              "broken: malformed, but most likely UTF-8; qblconv -n -f UTF-8 shows the errors\n"
              "broken: windows-1252, windows-1254 (confidence 88 %)\n"
              "broken: windows-1250 (confidence 46 %)\n");
    expectRun(tree, "$Q -nv -f auto d both color bell zeros names", 1,
              "d: valid UTF-16BE\nboth: valid UTF-16LE\ncolor: valid UTF-8\nbell: valid UTF-8\n"
              "zeros" +
                  (kUnknown + std::string("names: valid UTF-8\n")) +
                  "6 files: 5 valid, 1 failed\n");
    expectRun(tree, "$Q -f auto m w; $Q -f auto --bom=keep m", 0, "ä\nä\n\uFEFFä\n");
}

// The bytes of many DOS letters are symbols in windows-1252. Symbols do not occur within words.
TEST(QblconvDetectTest, DosTextsAreNotGuessed) {
    TempTree tree;
    std::string text;
    for (int i = 0; i < 20; ++i) text += "Il a re\x87u une r\x82ponse tr\x8As s\x82v\x8Are.\n";
    tree.file("dos", text);
    tree.file("short", "x\xE9\n");
    for (const char* const mode : {"-i dos", "-i -k --verify dos", "dos -o out"})
        EXPECT_EQ(1, runTool(tree, std::string("$Q -f auto ") + mode).status) << mode;
    EXPECT_EQ(text, tree.text("dos"));
    expectRun(tree, "$Q -f auto short", 1, std::string("short") + kUnknown);
}

TEST(QblconvDetectTest, TakesTheFirstFittingEncodingOfAList) {
    TempTree tree;
    makeFiles(tree);
    expectRun(tree, "$Q -f auto:UTF-8,sjis,windows-1252 -v -d out u s l w m", 1,
              "u: converted from UTF-8\ns: converted from sjis\nl: converted from windows-1252\n"
              "w: not valid in any of these encodings: UTF-8, sjis, windows-1252; -g lists the "
              "encodings that fit\n"
              "m: converted from UTF-8\n"
              "5 files: 4 converted, 0 unchanged, 1 failed; characters replaced: 0\n");
    EXPECT_EQ("grüß\nあ\n", tree.text("out/l") + tree.text("out/s"));
    EXPECT_FALSE(std::filesystem::exists(tree("out/w")));
    // An encoding name without a byte order needs a byte-order mark, and a mark must belong to an
    // encoding of the list.
    expectRun(tree, "$Q -f auto:latin1,ucs-2 -nv w d u m", 1,
              "w: valid UTF-16LE\nd: valid UTF-16BE\nu: valid latin1\n"
              "m: not valid in any of these encodings: latin1, ucs-2; -g lists the encodings that "
              "fit\n4 files: 3 valid, 1 failed\n");
    expectRun(tree, "$Q -f auto:sjis,latin1 -ki l s u -v; cat s", 0,
              "l: converted from latin1\ns: converted from sjis\nu: already UTF-8\n"
              "3 files: 2 converted, 1 unchanged, 0 failed; characters replaced: 0\n"
              "あ\n");
    // Input that cannot be read twice is copied. Detection starts where the last reader stopped.
    expectRun(
        tree, "$Q -f auto:UTF-8,sjis - <c", 1,
        "-: not valid in any of these encodings: UTF-8, sjis; -g lists the encodings that fit\n");
    expectRun(tree,
              "$Q -v </dev/null; (read a; $Q -f auto:UTF-8,latin1 -v) <c; cat l c | "
              "TMPDIR=/nowhere $Q -f auto",
              1,
              "-: converted from UTF-8\n-: converted from UTF-8\n"
              "-: cannot be copied to a temporary file: No such file or directory; TMPDIR sets its "
              "directory\n");
    const std::string big(0x20000, 'a');
    tree.file("big", big + "あ \xFF");
    expectRun(tree, "$Q -nv -f auto:UTF-8,sjis,latin1 big; cat big | $Q -nv -f auto:UTF-8,latin1 -",
              0, "big: valid latin1\n-: valid latin1\n");
}

TEST(QblconvDetectTest, ListedEncodingsShowWhereTheirTextsDiffer) {
    TempTree tree;
    makeFiles(tree);
    tree.file("random", "\x81\x8D\x8F\x90\xFF\xFE");
    const std::string fits =
        "c: windows-1250, ISO-8859-2 (confidence 80 %)\n"
        "c: windows-1252, ISO-8859-1 (confidence 69 %)\n";
    const std::string readings =
        "c:1: in windows-1250: un café crčme ŕ la carte\n"
        "c:1: in windows-1252: un café crème à la carte\n";
    expectRun(tree, "$Q -gj4 c u w e", 0, fits + readings + "u: UTF-8\nw: UTF-16LE\ne: UTF-8\n");
    expectRun(tree, "$Q --guess c random u 2>err; echo $?; cat err; $Q -gq c; $Q -g <u", 0,
              fits + readings + "u: UTF-8\n1\nrandom" + kUnknown + fits + "-: UTF-8\n");
    // A few Hebrew words are ambiguous, even if most of the text is English.
    tree.file("h",
              "The text is in English, and the words that stand here are not: \xF9\xEC\xE5\xED\n"
              "The rest of the text, however, is in English again and then there is more: "
              "\xF2\xE5\xEC\xED\n");
    expectRun(tree, "$Q -n -f auto h 2>&1 | cut -d'(' -f1", 0,
              "h: the encoding is ambiguous, these fit: windows-1252 \n");
    const std::string unclear =
        "c: the encoding is ambiguous, these fit: windows-1250 (80), windows-1252 (69); compare "
        "them with -g, then use -f NAME or -f auto:LIST\n";
    expectRun(tree, "$Q -n -f auto c; $Q -f auto -i c", 1, unclear + unclear);
    // With a list, all fitting encodings are shown in its order. Long lines are shortened around
    // the difference.
    const std::string a(100, 'a'), shown = "...aaaaaaaaaaaaaaaaaaaa";
    tree.file("long", "\r\n\r" + a + "\xA4\x1B" + a + "\nb");
    expectRun(tree, "$Q -g -f auto:UTF-16,UTF-16LE,UTF-8 w", 0, "w: UTF-16LE\n");
    expectRun(tree, "$Q -g -f auto:UTF-8,latin1,latin9,cp1252 long", 0,
              "long: latin1, cp1252\nlong: latin9\nlong:3: in latin1: " + shown +
                  "\xC2\xA4\\x1Baaaaaaaaaaaaaaaaaaaaaaaaaaaa...\nlong:3: in latin9: " + shown +
                  "\xE2\x82\xAC\\x1Baaaaaaaaaaaaaaaaaaaaaaaaaaaa...\n");
    expectRun(tree,
              "$Q -gX u -L fr | grep -o '<MessageText>.*</MessageText>'; $Q -g -L de c | head -n 1",
              0,
              "<MessageText>u : UTF-8</MessageText>\n"
              "c: windows-1250, ISO-8859-2 (Sicherheit 80 %)\n");
}

#include <vector>

#include "tests/tools/RunTool.hpp"

namespace {

/// Creates the files of the tables: s is Shift_JIS; b is malformed Shift_JIS; u and w begin with a
/// byte-order mark; e is empty; n has a null; z has characters that Shift_JIS lacks; o does not
/// round-trip in ISO-2022-JP; t has characters with similar texts in ASCII; j is
/// malformed UTF-8; l has all line ends; big has one at the end of a block.
void makeFiles(const TempTree& tree) {
    tree.file("s", "a\x82\xA0\n");
    tree.file("b", "x\n\x82\xA0\x82 c\n\x82");
    tree.file("u", "\uFEFFä\n");
    tree.file("w", std::string("\xFF\xFE\xE4\0\n\0", 6));
    tree.file("e", "");
    tree.file("n", std::string("n\0l", 3));
    tree.file("z", "é\u200Bz😀");
    tree.file("o", "\x1B(Ba\n");
    tree.file("t", "½ ﬁ Ł 1½ Я e\u0301\n");
    tree.file("j", "日“\xFF\n");
    tree.file("l", "a\r\nb\nc\rd\r\n\r");
    tree.file("big", std::string(65535, 'x') + "\r\n");
    tree.file("big.lf", std::string(65535, 'x') + "\n");
    tree.dir("dir");
}

struct Row {
    const char* arguments;
    int status;
    std::string output;
};

void expectRuns(const std::vector<Row>& table, const std::string& environment = "LC_ALL=C") {
    TempTree tree;
    makeFiles(tree);
    for (const Row& row : table)
        expectRun(tree, std::string("$Q ") + row.arguments, row.status, row.output, environment);
}

}  // namespace

TEST(QblconvTest, JoinsTextsUnderEachPolicyAndMark) {
    expectRuns({
        {"s --from sjis - e s -q <s", 0, "aあ\naあ\naあ\n"},
        {"--from=UTF-8 --to=windows-1252 <u", 0, "\xE4\n"},
        {"n e", 0, bytes("n\0l", 3)},
        {"-f UTF-16 w", 0, "ä\n"},
        {"--bom add -t UTF-16BE e w u", 0, bytes("\xFE\xFF\0\xE4\0\n\0\xE4\0\n", 10)},
        {"-f latin1 u", 0, "ï»¿Ã¤\n"},
        {"-f sjis b s", 1, "x\nあb:2:2: byte 4: 82 is not sjis\naあ\n"},
        {"-qp escape -f sjis b", 0, "x\nあ%X82 c\n%X82"},
        {"-qc -f sjis b", 0, "x\nあ c\n"},
        {"-vp substitute,skip -t sjis z", 0,
         "zz:1:1: U+00E9 is not in sjis\nz:1:2: U+200B is not in sjis\nz:1:4: U+1F600 is not in "
         "sjis\nz: warning: replaced or left out: 3\nz: converted from UTF-8\n"},
        // By default, no character is replaced by a similar one or dropped.
        {"-vp skip,fit -t Big5 u", 0,
         "a\nu:1:1: warning: U+00E4 becomes a similar character of Big5\nu: warning: replaced by "
         "similar characters: 1\nu: converted from UTF-8\n"},
        {"-p fit -t US-ASCII z", 1, "z:1:1: U+00E9 is not in US-ASCII\n"},
        {"-p escape,stop -t latin1 z -o out; test -e out || printf none", 0,
         "z:1:2: U+200B is not in latin1\nout: not written, because an input failed\nnone"},
        // -f overrides a byte-order mark, except for the byte order if the name leaves it open.
        {"w -f UTF-16LE; printf '\\376\\377\\0a' | $Q -f UTF-16", 0, "ä\na"},
        {"-t UTF-16 u; $Q --bom=strip -t UTF-16 u", 0, bytes("\xFF\xFE\xE4\0\n\0\xE4\0\n\0", 10)},
        {"--bom=keep e u e u", 0, "\uFEFFä\nä\n"},
        {"--bom=add -t UTF-7 u", 0, "+/v8-+AOQ\n"},
        {"-f sjis -t ISO-2022-JP b 2>&1 >out; cat out e | $Q -f ISO-2022-JP", 0,
         "b:2:2: byte 4: 82 is not sjis\nx\nあ"},
    });
}

TEST(QblconvTest, CheckReportsEveryMalformedSequence) {
    expectRuns({
        {"-n -f Shift_JIS b s e -v", 1,
         "b:2:2: byte 4: 82 is not Shift_JIS\nb:3:1: byte 8: 82 is an incomplete Shift_JIS "
         "sequence "
         "at the end\ns: valid Shift_JIS\ne: valid Shift_JIS\n3 files: 2 valid, 1 failed\n"},
        {"-n -f sjis -t US-ASCII s b", 1,
         "s:1:2: U+3042 is not in US-ASCII\nb:2:1: U+3042 is not in US-ASCII\nb:2:2: byte 4: 82 is "
         "not sjis\nb:3:1: byte 8: 82 is an incomplete sjis sequence at the end\n2 files: 0 valid, "
         "2 failed\n"},
        {"-nv w - <u", 0, "w: valid UTF-16LE\n-: valid UTF-8\n2 files: 2 valid, 0 failed\n"},
        {"-nq w u; $Q -n <s", 1,
         "-:1:2: byte 1: 82 is not UTF-8\n-:1:3: byte 2: A0 is not UTF-8\n"},
        // A person at a terminal also gets advice.
        {"-h >/dev/null; script -qec \"$Q -n s\" /dev/null | tail -n 1", 0,
         "qblconv: without -f, the input was read as UTF-8; -g lists the encodings that fit\r\n"},
        {"-n s >/dev/null", 1, "s:1:2: byte 1: 82 is not UTF-8\ns:1:3: byte 2: A0 is not UTF-8\n"},
    });
}

TEST(QblconvTest, MessagesUseTheUsersLanguageOrXml) {
    expectRuns({{"-n -f sjis b", 1,
                 "b:2:2: Byte 4: 82 ist kein sjis\n"
                 "b:3:1: Byte 8: 82 ist eine unvollst\u00e4ndige sjis-Folge am Ende\n"},
                {"-L fr -nf sjis -t latin1 s", 1, "s:1:2: U+3042 n'est pas dans latin1\n"}},
               "LC_ALL=de_AT.UTF-8");
    // The message's text, and the components from which it can be shown in another language.
    const auto message = [](const char* id, const std::string& text,
                            const std::vector<const char*>& parameters) {
        std::string element =
            "<Message Name=\"QBLMessage\" File=\"qblconvmsgs\" Severity=\"Error\" "
            "Nesting=\"0\" ><MessageText>" +
            text + "</MessageText><MessageComponents  ID=\"" + id + "\" ><MessageParms>";
        for (const char* const each : parameters)
            element.append("<MessageParm Name=\"QBLMessageParm\" Type=\"string\" Value=\"")
                .append(each)
                .append("\" />");
        return "<Messages>\n" + element +
               "</MessageParms></MessageComponents></Message>\n</Messages>\n";
    };
    const char* const name = "q&amp;&lt;&gt;&quot;&apos;\\xFF\\x0A.x";
    expectRuns({
        {"-Xn e", 0, "<Messages>\n</Messages>\n"},
        {"-Z -X", 2,
         message("0x02", "qblconv: unknown option: -Z; qblconv --help lists the options", {"-Z"})},
        {"-Xn nofile", 2,
         message("0x1e", "nofile: cannot be read: No such file or directory",
                 {"nofile", "No such file or directory"})},
        {"-X -t sjis z 2>report; cat report", 0,
         message("0x16", "z:1:1: U+00E9 is not in sjis",
                 {"z", "1", "1", "00E9", "sjis", "lacking", "stop"})},
        {"-Xn -f sjis b | $M -s - en | tail -n 1", 0,
         "Error: b:3:1: byte 8: 82 is an incomplete sjis sequence at the end\n"},
        {"-V >&- ; cp s \"$(printf 'q&<>\"\\047\\377\\n.x')\"; "
         "$Q -Xn q*x -f US-ASCII 2>/dev/null | head -n 2; $Q -Xn q*x | tail -n 1",
         0,
         "the standard output: cannot be written: Bad file descriptor\n" +
             message("0x14", std::string(name) + ":1:2: byte 1: 82 is not US-ASCII",
                     {name, "1", "2", "1", "82", "US-ASCII", "malformed", "stop"})},
    });
}

TEST(QblconvTest, JsonReportsHaveOneObjectPerLine) {
    const std::string file = R"({"type":"file","file":)";
    expectRuns({
        {"--json -n -f sjis s b | sed '2d; 4d'", 0,
         file + R"("s","status":"valid","from":"sjis","to":null,"replaced":0,"messages":[]})" +
             "\n"
             R"({"type":"finding","file":"b","line":3,"column":1,"offset":8,"bytes":"82",)"
             R"("codePoint":null,"kind":"truncated","policy":"stop","encoding":"sjis",)"
             R"("replacement":null,"severity":"error",)"
             R"("text":"b:3:1: byte 8: 82 is an incomplete sjis sequence at the end"})"
             "\n"},
        {"--json -p skip,translit -t sjis -o out \"$(cp u 'x\"\\y'; echo 'x\"\\y')\"; cat out", 0,
         R"({"type":"finding","file":"x\"\\y","line":1,"column":1,"offset":null,"bytes":null,)"
         R"("codePoint":"U+00E4","kind":"transliterated","policy":"translit","encoding":"sjis",)"
         R"("replacement":"a","severity":"warning",)"
         R"("text":"x\"\\y:1:1: warning: U+00E4 becomes \"a\""})"
         "\n" +
             file +
             R"("x\"\\y","status":"converted","from":"UTF-8","to":"sjis","replaced":1,)"
             R"("messages":[{"severity":"warning","id":47,)"
             R"("text":"x\"\\y: warning: transliterated: 1"}]})"
             "\na\n"},
        {"--json -X s", 2,
         R"({"type":"error","id":8,"text":"qblconv: -X and --json cannot be used together"})"
         "\n"},
    });
}

TEST(QblconvTest, ReplacesCharactersBySimilarTexts) {
    // A fraction is separated from the number before it. Japanese is not transliterated.
    expectRuns({
        {"-qt ASCII -p translit t", 0, "1/2 fi L 1 1/2 A e\n"},
        {"-qt ISO-8859-2 -p translit t | tr '\\243' l", 0, "1/2 fi l 1 1/2 \xC2 e\n"},
        {"-t ASCII -p skip,translit j", 1, "j:1:1: U+65E5 is not in US-ASCII\n"},
        {"-st ascii//translit j", 1, "?\"j:1:3: byte 6: FF is not UTF-8\n"},
        {"-ct ASCII//TRANSLIT j", 0,
         "\"\nj: warning: replaced or left out: 2\nj: warning: transliterated: 1\n"},
        {"--to-code=ascii//TRANSLIT//IGNORE --from-code UTF-8//IGNORE --silent j", 0, "\"\n"},
        {"-st //IGNORE -f char j", 0, "\n"},
        {"-t ascii//TRANSLIT -p stop j", 2, "qblconv: //TRANSLIT and -p cannot be used together\n"},
        {"-t ascii//NONE j", 2,
         "qblconv: invalid argument for -t: \"ascii//NONE\"; valid values: //TRANSLIT //IGNORE\n"},
    });
}

TEST(QblconvTest, ConvertsLineEndsInAnyEncoding) {
    expectRuns({
        {"--eol=keep l", 0, "a\r\nb\nc\rd\r\n\r"},
        {"--eol=crlf l", 0, "a\r\nb\r\nc\rd\r\n\r"},
        {"--eol=crlf -t UTF-16LE --bom=strip l | $Q -f UTF-16LE --eol lf", 0, "a\nb\nc\rd\n\r"},
        // Longer than a block: a carriage return is the last byte of the first block.
        {"--eol=lf big | cmp - big.lf", 0, ""},
        {"--eol=lf l -p escape --verify", 2,
         "qblconv: --eol and --verify cannot be used together\n"},
        {"-i -k --eol=lf l", 2, "qblconv: --eol and -k cannot be used together\n"},
    });
}

TEST(QblconvTest, VerifyRejectsFilesThatDoNotRoundTrip) {
    // These encodings have two byte sequences for a character, or redundant escape sequences.
    expectRuns({
        {"--verify -t sjis -f EUC-JP e u -k", 2, "qblconv: -k requires -d or -i\n"},
        {"--verify -vif Shift_JIS s && cat s", 0, "s: converted from Shift_JIS\naあ\n"},
        {"--verify --bom=strip -t sjis -p escape w", 1,
         "w:1:1: byte 2: E4 00 would convert back to 25 00; not converted\n"},
        {"--verify w | od -An -tx1", 0, " c3 a4 0a\n"},
        {"--verify -f ISO-2022-JP o", 1,
         "o:1:1: byte 0: 1B 28 42 61 would convert back to 61 0A; not converted\n"},
    });
}

TEST(QblconvTest, ReportsMisuseAndDoesNothing) {
    const std::string all = "; qblconv -l lists all encodings", bad = "invalid argument for ";
    const std::string help = "; qblconv --help lists the options";
    const std::pair<const char*, std::string> table[] = {
        {"--form=X s", "unknown option: --form; did you mean --from?"},
        {"--nonsense s", "unknown option: --nonsense" + help},
        {"s -f", "-f requires an argument"},
        {"--xml=1 s", "--xml takes no argument"},
        {"-p subst s", bad + "-p: \"subst\"; did you mean substitute?"},
        {"-p fit,stop s", bad + "-p: \"fit\"; valid values: stop escape substitute lookup skip"},
        {"-p skip,xyz s",
         bad + "-p: \"xyz\"; valid values: stop escape substitute lookup skip fit translit"},
        {"--bom=of s", bad + "--bom: \"of\"; valid values: strip keep add"},
        {"-j 0 -n s", bad + "-j: \"0\"; valid values: 1-256"},
        {"-j 2x -n s", bad + "-j: \"2x\"; valid values: 1-256"},
        {"-j 4294967297 -n s", bad + "-j: \"4294967297\"; valid values: 1-256"},
        {"-i=a/b s", bad + "-i: \"a/b\""},
        {"s -vi=", bad + "-i: \"\""},
        {"-ri.bak s", "unknown option: -ri.bak; did you mean -ri=.bak?"},
        {"-i -=.x s", "unknown option: -=" + help},
        {"-n: s", "unknown option: -:" + help},
        {"-n -k s", "-k and -n cannot be used together"},
        {"-o x -d y s", "-o and -d cannot be used together"},
        {"-r s", "-r requires -d, -i, -n or -g"},
        {"-d out", "-d requires at least one file or directory"},
        {"-i -", "- and -i cannot be used together"},
        {"-j 2 s", "-j requires -d, -i, -n or -g"},
        {"--bom=add -t BOCU-1 s", "BOCU-1 has no byte-order mark; leave out --bom=add"},
        {"-k -t latin1 -i s", "-k would skip every file, because all bytes are valid latin1"},
        {"-k -t UTF-16LE -i s",
         "-k cannot recognise UTF-16LE files without a byte-order mark; use --bom=add"},
        {"-r -d . dir",
         "the output ./dir would overwrite its input; use -i to convert files in place"},
        {"-r -d . $(mkdir -p x/dir; echo x/dir) dir/a.txt",
         "the output ./dir would overwrite the input dir/a.txt or files in it; choose another "
         "directory"},
        {"-f latin1 -d dir/.. s",
         "the output dir/../s would overwrite its input; use -i to convert files in place"},
        {"-f auto: u", bad + "-f: \"auto:\"; valid values: auto auto:LIST"},
        {"-n -f auto:UTF-8,shiftjsi u", "unknown encoding: shiftjsi; did you mean Shift_JIS?"},
        {"-f auto:UTF-8, u", "unknown encoding: " + all},
        {"-g -f sjis u", bad + "-f: \"sjis\"; valid values: auto auto:LIST"},
        {"-g -t sjis u", "-t and -g cannot be used together"},
        {"--clean", "--clean requires at least one directory"},
        {"--clean -n .", "--clean and -n cannot be used together"},
        {"--clean -t UTF-8 .", "-t and --clean cannot be used together"},
        {"-f latin1,utf8 s", "unknown encoding: latin1,utf8; did you mean -f auto:latin1,utf8?"},
        {"-j 257 -n s", bad + "-j: \"257\"; valid values: 1-256"},
        {"-d out dir/.. s -r",
         "the outputs of dir/.. and s would mix in out; convert them separately"},
        {"-r -d dir s dir", "the outputs of dir and s would mix in dir; convert them separately"},
        {"-f \"$(printf 'q\\377\\1\\\\x41')\" s", "unknown encoding: q\\xFF\\x01\\x5Cx41" + all},
        {"-d out s dir/../s",
         "s and dir/../s would both be written to out/s; convert them separately"},
    };
    TempTree tree;
    makeFiles(tree);
    tree.file("dir/a.txt", "a");
    for (const auto& [arguments, said] : table) {
        expectRun(tree, std::string("$Q ") + arguments, 2, "qblconv: " + said + "\n");
        EXPECT_FALSE(std::filesystem::exists(tree("out"))) << arguments;
    }
    expectRuns({
        {"-d out s nofile; echo $?; ls out", 2,
         "nofile: cannot be read: No such file or directory\n2\n"
         "ls: cannot access 'out': No such file or directory\n"},
        {"--clean nodir", 2, "nodir: cannot be read: No such file or directory\n"},
        {"--clean dir s", 2, "s: cannot be read: Not a directory\n"},
        {"-n dir", 2, "dir: is a directory; use -r with -d, -i, -n or -g to process its files\n"},
        {"-V >/dev/null; echo -Z >-Z; $Q -- -Z", 0, "-Z\n"},
    });
}

TEST(QblconvTest, ListsEncodingsByAnyName) {
    TempTree tree;
    const Outcome found = runTool(tree, "$Q -l latin-9");
    EXPECT_EQ(0U, found.output.find("ISO-8859-15 "));
    expectRuns({
        {"-l latin9", 0, found.output},
        {"-l no-such", 1, "qblconv: unknown encoding: no-such; qblconv -l lists all encodings\n"},
        // Every listed encoding can be opened.
        {"-l | cut -d' ' -f1 | while read e; do : | $Q -t $e >/dev/null || echo $e; done", 0, ""},
    });
}

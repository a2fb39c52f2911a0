#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/Workers.hpp"
#include "tests/tools/RunTool.hpp"

namespace {

/// Returns the bytes of a message file exactly as the tool writes it.
std::string compiled(const std::map<unsigned, std::string>& texts) {
    return bmfBytes(texts).replace(5, 3, 3, '\0');
}

}  // namespace

TEST(QblmsgcTest, ReportsEachMistakeWithItsPlace) {
    std::string many = "1 \"";
    for (int i = 0; i < 101; ++i) many += "{0,choice,0#a}";
    many += '"';
    const std::string braces = "; an argument is a number in braces, other braces need apostrophes";
    const struct {
        const char* source;
        std::string found;
    } table[] = {
        {"1 A \"a\"\n0x2 A \"b\"", "2:5: error: duplicate name A; line 1 has it already"},
        {"1 \"\xC3\xA4\xE2\x82\"", "1:5: error: not UTF-8; save the file as UTF-8"},
        {"1 \"a\x01\"", "1:5: error: control character; write it as an escape in a text"},
        {"4294967296 \"b\"", "1:1: error: invalid identifier; use a number from 0 to 4294967295"},
        {"\uFEFFname",
         "1:1: error: expected a message (ID NAME \"TEXT\"), a text in quotes or a comment (#)"},
        {R"("a")",
         "1:1: error: the text belongs to no message; begin a message with its identifier"},
        {"1 A\n# b\n2 \"b\"", "1:1: error: the message has no text; write one in double quotes"},
        {"1 \"a\\\"", "1:3: error: the text has no closing quote on this line"},
        {"1 \"\\n\xC3\xA4\"\r\n \"\\u00e4 {0} and {1\"",
         "2:18: error: the closing brace for this brace is missing"},
        {R"(1 "'{' {1 it''s {2}")",
         "1:9: error: invalid message pattern (U_PATTERN_SYNTAX_ERROR)" + braces},
        {R"(1 "{0,plural,one{a}}")",
         "1:4: error: the case \"other\" is missing; every choice needs one"},
        {R"(1 "{9}" "{10}")", "1:11: error: 10 is not an argument; use a number from 0 to 9"},
        {R"(1 "{0,select,a{{1,what}}other{}}")",
         "1:19: error: unknown kind of argument: what; use number, date, time, spellout, ordinal, "
         "duration, choice, plural, select or selectordinal"},
        {R"(1 "{0,number,::zzz}")",
         "1:4: error: invalid message pattern (U_NUMBER_SKELETON_SYNTAX_ERROR)" + braces},
        {R"(1 "{0,number,\u000b::scale/1E9}")",
         "1:14: error: an option of a number skeleton has an exponent; write the number without "
         "one"},
        {many.c_str(),
         "1:1406: error: too many choices, plurals and selects; at most 100 are possible"},
        {"1 \"'{ 0 }' '{name}'\"",
         "1:5: warning: the apostrophe turns argument 0 into plain text; write two to show one\n"
         "t.msg:1:13: warning: the apostrophe turns argument name into plain text; write two to "
         "show one"},
        {R"(1 "{0,plural,=0{a}ones{b}other{c}}")",
         "1:19: warning: ones is not a plural keyword; use "
         "zero, one, two, few, many, other or =NUMBER"},
        {"1 = \"{ {0\"", "1:8: warning: this argument makes the text a pattern despite the ="},
    };
    TempTree tree;
    for (const auto& row : table) {
        tree.file("t.msg", row.source);
        const std::string found = "t.msg:" + row.found + "\n";
        const bool isWarning = found.find("warning") != std::string::npos;
        expectRun(tree, "$M -c t.msg", isWarning ? 0 : 1, found);
        expectRun(tree, "$M -cqW t.msg", 1, isWarning ? "" : found);
    }
    // All errors of a run are sorted by place. A message with a malformed text still defines its
    // identifier.
    tree.file("t.msg", "7 \"\\uD800\"\n7 \"{x}\"\n");
    expectRun(
        tree, "$M -c -r no.msg t.msg", 2,
        "no.msg: cannot be read: No such file or directory\n"
        "t.msg:1:4: error: unknown escape; use \\\" \\\\ \\n \\r \\t or \\u with four digits\n"
        "t.msg:2:1: error: duplicate identifier 7; line 1 has it already\n"
        "t.msg:2:5: error: x is not an argument; use a number from 0 to 9\n");
    const std::string xml = runTool(tree, "$M -L de_AT -cX t.msg").output;
    EXPECT_NE(std::string::npos,
              xml.find("Severity=\"Error\" Nesting=\"0\" ><MessageText>t.msg:2:1: Fehler: "
                       "doppelte Nummer 7; sie steht schon in Zeile 1</MessageText>"));
}

TEST(QblmsgcTest, ComparesATranslationWithItsReference) {
    TempTree tree;
    tree.file("en.msg", "1 A \"{0} {1}\"\n2 B \"b\"\n3 C \"c\"\n");
    tree.file("de.msg", "1 A \"{1,number} {0}\"\n3 X \"{2}{2}\"\n4 \"d\"\n");
    expectRun(tree, "$M -W -r en.msg de.msg", 1,
              "de.msg:2:3: error: this message is called C in en.msg\n"
              "de.msg:2:6: error: the arguments are {2}, but those in en.msg are -\n"
              "de.msg:3:1: error: 4 is not in en.msg\n"
              "en.msg:2:1: error: 2 B is missing from de.msg\n");
    EXPECT_FALSE(std::filesystem::exists(tree("de.bmf")));
}

TEST(QblmsgcTest, ChecksTheTypesOfArguments) {
    TempTree tree;
    tree.file("en.msg",
              "1 \"{0}\"\n2 \"{0,plural,other{#}} {0}\"\n3 \"{0,number}\"\n4 \"{0,time}\"\n");
    const std::pair<const char*, const char*> table[] = {
        {"1 \"{0,select,other{}}\"\n2 \"{0,number}\"\n3 \"{0}\"\n4 \"{0,date}\"", ""},
        {"1 \"{0,number}\"", "1:4: error: {0,number} does not fit the argument {0} of en.msg"},
        {"2 \"{0,select,other{}}\"",
         "1:4: error: {0,select} does not fit the argument {0,number,integer} of en.msg"},
        {"3 \"{0}{0,ordinal}\"",
         "1:4: error: {0,number,integer} does not fit the argument {0,number} of en.msg"},
        {"4 \"{0}{1}\"", "1:4: error: {1} does not fit the argument - of en.msg"},
        {"1 \"{0,date}{0}{0,spellout}\"",
         "1:16: error: {0,number} and {0,date} are uses of one argument that no value fits"},
        {"1 DISK_IS \"a\"\n2 disk_is \"{0}\"",
         "2:3: error: DISK_IS and disk_is would both have the function diskIs; rename one of them"},
    };
    for (const auto& [source, found] : table) {
        tree.file("t.msg", source);
        const Outcome outcome = runTool(tree, "$M --typed -qr en.msg t.msg");
        EXPECT_EQ(*found == '\0' ? 0 : 1, outcome.status) << source;
        EXPECT_NE(std::string::npos, outcome.output.find(found)) << outcome.output;
        EXPECT_EQ(0, runTool(tree, "$M -qr en.msg t.msg").status) << "only --typed requires types";
    }
    // All languages have the shape of the reference. A text does not change it; a number, a name or
    // a type does.
    const auto shape = [&](const std::string& source, const std::string& reference) {
        tree.file("t.msg", source);
        EXPECT_EQ(0, runTool(tree, "$M --typed -q " + reference + " t.msg").status) << source;
        return tree.text("t.bmf").substr(5, 3);
    };
    EXPECT_EQ(shape("1 \"a\"", "-r en.msg"), shape("3 \"{0}\"", "-r en.msg"));
    EXPECT_EQ(shape("1 A \"{0} a\"\n2 \"\"", ""),
              shape("# {1}\n2 \"\"\n1 A \"{0,select,other{}}\"", ""));
    EXPECT_NE(shape("1 FULL \"{0}\"\n2 EMPTY \"{0}\"", ""),
              shape("2 FULL \"{0}\"\n1 EMPTY \"{0}\"", ""));
    EXPECT_NE(shape("1 \"{0}\"\n2 \"\"", ""), shape("1 \"{0}\"\n3 \"\"", ""));
    EXPECT_NE(shape("1 \"{0}\"\n2 \"\"", ""), shape("1 \"{0,number}\"\n2 \"\"", ""));
}

TEST(QblmsgcTest, WritesWholeFilesThatReadBackUnchanged) {
    TempTree tree;
    const std::string bytes = compiled({{1, "\xC3\xA4\n\"\\"}, {0x80000001, "it's {0}"}});
    tree.file(
        "x.msg",
        "# {0} \xC3\xA4\\\n2147483649 HIGH \"it's {0}\"\n\n1 \"\\u00e4\\n\"  # b\n \"\\\"\\\\\"");
    expectRun(tree, "$M -H x-ids.h -o out.bmf x.msg", 0, "");
    EXPECT_EQ(bytes, tree.text("out.bmf"));
    EXPECT_EQ(
        "// Made by qblmsgc from x.msg.\n#ifndef X_IDS_H\n#define X_IDS_H\n\nenum x_ids {\n"
        "    /// {0} \xC3\xA4\n    HIGH = 2147483649u,\n};\n\n#endif\n",
        tree.text("x-ids.h"));
    expectRun(tree, "$M -d out.bmf", 0,
              "1 \"\xC3\xA4\\n\"\n    \"\\\"\\\\\"\n2147483649 \"it's {0}\"\n");
    // The option --typed changes only the bytes after the magic.
    expectRun(tree, "$M --typed -o typed.bmf x.msg", 0, "");
    const std::string typed = tree.text("typed.bmf");
    EXPECT_NE(bytes, typed);
    EXPECT_EQ(bytes, std::string(typed).replace(5, 3, 3, '\0'));
    expectRun(tree, "$M -d typed.bmf | tail -n +2 >again.msg && $M --typed -r x.msg again.msg", 0,
              "");
    EXPECT_EQ(typed, tree.text("again.bmf"));
    // After an error, the old files are unchanged.
    tree.file("x.msg", "1 A \"{\"");
    EXPECT_EQ(1, runTool(tree, "$M -H x-ids.h -o out.bmf x.msg").status);
    EXPECT_EQ(bytes, tree.text("out.bmf"));
    EXPECT_NE(std::string::npos, tree.text("x-ids.h").find("HIGH"));
    // Texts that are not patterns, and invisible characters, also round-trip.
    tree.file("odd.bmf", compiled({{5, "{\t"}, {6, ""}, {7, "\x01\xC2\xA0\r{0,x}"}}));
    EXPECT_EQ(0, runTool(tree, "$M -d odd.bmf >odd.msg && $M -qo again.bmf odd.msg").status);
    EXPECT_EQ(tree.text("odd.bmf"), tree.text("again.bmf"));
    expectRun(tree, "$M -o /no/x.bmf odd.msg -q", 1,
              "/no/x.bmf: cannot be written: No such file or directory\n");
}

TEST(QblmsgcTest, HeadersOfTheToolsAreUpToDate) {
    expectRun(TempTree(),
              "for t in qblmsgc qblconv; do $M --typed -o a -H ${t}msgs.hpp '" QBL_MSGS_DIR
              "'/${t}msgs_en.msg && cmp ${t}msgs.hpp '" QBL_TOOLS_DIR "'/$t/${t}msgs.hpp; done",
              0, "");
}

TEST(QblmsgcTest, RejectsHostileMessageFiles) {
    TempTree tree;
    const std::string good = bmfBytes({{1, "one"}, {2, "two"}});
    const auto expectDump = [&](const std::string& bytes, const std::string& output) {
        tree.file("t.bmf", bytes);
        expectRun(tree, "$M -d t.bmf", 1, output);
    };
    // The tool writes nothing after the texts.
    expectDump(good + '\0',
               "# Compiled with --typed; shape 78797A.\n\n1 \"one\"\n2 \"two\"\n"
               "t.bmf: compiling this dump gives the same texts, but not the same bytes\n");
    const struct {
        std::size_t at;
        unsigned lie;
        const char* problem;
    } table[] = {{8, 0x7FFFFFFF, "at byte 8: the declared size exceeds the file\n"},
                 {16, 2, "at byte 28: the identifiers are not in ascending order\n"},
                 {20, ~0U, "at byte 16: the text lies outside the block of texts\n"},
                 {24, 0, "at byte 40: the text does not end at its first null byte\n"},
                 {36, 3, "at byte 44: the text does not end at its first null byte\n"},
                 {44, 0xFFFFFF00, "at byte 44: the text is not UTF-8\n"}};
    for (const auto& row : table) {
        std::string bytes = good;
        expectDump(bytes.replace(row.at, 4, bigEndian(row.lie)),
                   "t.bmf: not a valid message file; " + std::string(row.problem));
    }
}

TEST(QblmsgcTest, ReportsMisuseAndOverwritesNothing) {
    TempTree tree;
    tree.file("t.msg", "1 A \"a\"\n");
    std::filesystem::create_symlink("t.msg", tree("link"));
    std::filesystem::create_hard_link(tree("t.msg"), tree("t.bmf"));
    const std::string missing = "an operand is missing; qblmsgc --help shows the usage";
    const auto over = [](const std::string& name) {
        return " would overwrite " + name + "; choose another name";
    };
    const std::pair<const char*, std::string> table[] = {
        {"", missing},
        {"--help -qz", "unknown option: -z; qblmsgc --help lists the options"},
        {"-o '' t.msg", "invalid argument for -o: \"\""},
        {"-c -o a.bmf t.msg", "-c and -o cannot be used together"},
        {"t.msg u.msg", "unexpected operand: u.msg; qblmsgc --help shows the usage"},
        {"-o ./t.msg t.msg", "the output ./t.msg" + over("t.msg")},
        {"-H link -o a.bmf t.msg", "the output link" + over("t.msg")},
        {"t.msg", "the output t.bmf" + over("t.msg")},
        {"-o a.hpp -H ./a.hpp t.msg", "the output ./a.hpp" + over("a.hpp")},
    };
    for (const auto& [arguments, said] : table)
        expectRun(tree, std::string("$M ") + arguments, 2, "qblmsgc: " + said + "\n");
    EXPECT_EQ("1 A \"a\"\n", tree.text("t.msg"));
    expectRun(tree, "$M -H a.hpp -o no/a.bmf t.msg", 1,
              "no/a.bmf: cannot be written: No such file or directory\n");
    EXPECT_FALSE(std::filesystem::exists(tree("a.hpp"))) << "neither file is written";
    expectRun(
        tree, "$M -o /dev/null t.msg", 1,
        "/dev/null: cannot be written: not a regular file; use -c to check without writing\n");
    expectRun(tree, "$M -d /dev/zero", 1, "/dev/zero: cannot be read: File too large\n");
}

TEST(QblmsgcTest, EscapesHostileNamesAndTexts) {
    TempTree tree;
    const std::string name = "x\nint y;\xE2\x80\xAE\\.msg";
    tree.file(name, "1 A \"\"\n2 class \"\\u001B[2J\"");
    const std::string quoted = "\"$(printf 'x\\nint y;\\342\\200\\256\\134.msg')\"";
    const std::string seen = "x\\x0Aint y;\\xE2\\x80\\xAE\\.msg:";
    expectRun(tree, "$M -c " + quoted, 1,
              seen + "1:6: warning: an empty text counts as missing\n" + seen +
                  "2:3: error: class is reserved in C or C++; choose another name\n");
    tree.file(name, "1 A \"a\"");
    expectRun(tree, "$M -H a.hpp -o a.bmf " + quoted, 0, "");
    EXPECT_EQ(0U, tree.text("a.hpp").find("// Made by qblmsgc from x\\x0Aint y;"));
    // Pipes are read, but a pipe without a writer is an error.
    expectRun(tree, "$M -c /dev/stdin <<'X'\n1 \"\"\nX", 0,
              "/dev/stdin:1:4: warning: an empty text counts as missing\n");
    expectRun(tree, "mkfifo fifo; $M -d fifo", 1, "fifo: cannot be read: Broken pipe\n");
}

TEST(QblmsgcTest, ReadsSharedTextsWithoutCopies) {
    if (kSanitizer) GTEST_SKIP() << "sanitizers need more address space than this test allows";
    TempTree tree;
    // 2000 identifiers share a text of 1 MB. Copies would need 2 GB.
    std::string texts(1000000, 'a'), bytes = std::string("BMF1\0\0\0\0", 8) + bigEndian(2000) +
                                             bigEndian(static_cast<unsigned>(texts.size() + 1));
    for (unsigned i = 0; i < 2000; ++i)
        bytes += bigEndian(i) + bigEndian(0) + bigEndian(static_cast<unsigned>(texts.size() + 1));
    tree.file("t.bmf", bytes + texts + '\0');
    expectRun(tree, "ulimit -v 400000; $M -d t.bmf | head -c 9", 0, "0 \"aaaaaa");
}

TEST(QblmsgcTest, ShowsReportsInTheReadersLanguage) {
    TempTree tree;
    tree.file("disk_en.bmf", bmfBytes({{7, "Only {1} bytes are left in {0}."}}));
    tree.file("disk_de.bmf", bmfBytes({{7, "In {0} sind nur noch {1} Bytes frei."}}));
    QBLPluginException error(QBLSeverityError, "5");
    QBLMessage message(QBLSeverityWarning, "/srv/disk", 7);
    message << "/var" << 1234567L << QBLMessageParm(QBLMsgParmUnknown);
    message.setNesting(1);
    error << message << QBLErrnoMessage(QBLSeverityError, 2) << QBLMessageString("a\x1B[2J&lt;");
    error.addBackTrace({"a.cpp", 1}, "main", "QBL_THROW");
    I18NString xml;
    error.toString("xx", nullptr, xml, 0);
    const std::string report = xml.toUtf8(), broken = "<Exception Name=\"x\"><Messages>";
    tree.file("log", "before " + report + " after\n" + broken + "\n<Message\n");
    expectRun(tree, "$M -s log 2>/dev/null", 1,
              "before QBLPluginException (Error), code 5\n"
              "    Warning: Only 1,234,567 bytes are left in /var.\n"
              "  Error: No such file or directory\n"
              "  Error: a\\x1B[2J<\n"
              "  at a.cpp(1): QBLPluginException: QBL_THROW: main\n"
              " after\n" +
                  broken + "\n<Message\n");
    const std::string place = std::to_string(("before " + report + " after\n").size());
    expectRun(tree, "$M -s log >/dev/null", 1,
              "byte " + place + ": a report begins here that is malformed or too large\n");
    // The report arrives in pieces, from a pipe.
    const Outcome german =
        runTool(tree, "$M -s - de <<X\n" + std::string("$(head -c 9000 /dev/zero | tr '\\0' '<')") +
                          report + "\nX");
    EXPECT_EQ(0, german.status);
    EXPECT_NE(std::string::npos,
              german.output.find("Warnung: In /var sind nur noch 1.234.567 Bytes frei."));
    tree.file("w.msg", "1 \"\"");
    expectRun(tree, "$M -cX w.msg | $M -s", 0,
              "w.msg:1:4: warning: an empty text counts as missing\n");
}

TEST(QblmsgcTest, ShowsTextsAndSearchedFiles) {
    TempTree tree;
    tree.file("t_de_AT.bmf", bmfBytes({{1, "{0}|{1}|{2}|{3}|{4}|{5}"}, {2, "two"}, {3, "{"}}));
    tree.file("t_en.bmf", "x");
    expectRun(
        tree,
        "$M -g 0x1 t_de_AT.bmf ulong:2147483649 long:-5 double:1.5 string:a:b msgid:2 opaque:1", 0,
        "-2\u00A0147\u00A0483\u00A0647|-5|1,5|a:b|two|\n");
    expectRun(
        tree, "$M -g 3 t_de_AT.bmf long:1", 1,
        "./t_de_AT.bmf: the text for 3 cannot be formatted: it is not a message pattern, or a "
        "parameter has the wrong type\n");
    expectRun(
        tree, "$M -g 1 t_de_AT.bmf long:1x", 2,
        "qblmsgc: invalid parameter: long:1x; write TYPE:VALUE, such as string:text or long:5\n");
    expectRun(
        tree, "$M -w ./t", 1,
        "* ./t_en.bmf\n  ./t.bmf\n./t_en.bmf: not a valid message file; qblmsgc -d shows why\n");
    expectRun(tree, "$M -w ./u", 1,
              "  ./u_en.bmf\n  ./u.bmf\n./u: no catalogue found for en; none of the files listed "
              "exists\n");
    expectRun(tree, "$M -g 1 t.msg", 2, "./t.msg: the name of a message file must end in .bmf\n");
    for (const char* absent : {"no.msg", "-c -r t.msg no.msg", "-d no.bmf", "-g 1 ./no.bmf"}) {
        const std::string words = absent, file = words.substr(words.rfind(' ') + 1);
        expectRun(tree, "$M " + words, 2, file + ": cannot be read: No such file or directory\n");
    }
}

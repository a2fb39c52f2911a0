#include "QBLCore/FileManagement/QBLFmLines.hpp"

#include <cerrno>
#include <stdexcept>
#include <vector>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

using Lines = std::vector<std::string>;

Lines rest(QBLFmLines& lines) { return Lines(lines.begin(), lines.end()); }
Lines read(const std::string& path, const char* encoding = nullptr) {
    QBLFmLines lines(path, encoding);
    return rest(lines);
}

struct Throws : I18NTextStreamListener {
    void unconvertible(const I18NUnconvertible& what) override {
        throw std::out_of_range(std::to_string(what.line));
    }
};

}  // namespace

TEST(QBLFmLinesTest, CutsAtEachKindOfEndWhereverABlockEnds) {
    const TempTree tree;
    EXPECT_EQ(Lines(), read(tree.file("empty")));
    EXPECT_EQ(Lines({"", "a", "", "b"}), read(tree.file("ends", "\na\r\n\rb")));
    EXPECT_EQ(Lines({"\u00e9"}),
              read(tree.file("mark", "\xFF\xFE\xE9" + std::string("\0\n\0", 3))));
    EXPECT_EQ(Lines({"\u00e9", "x"}), read(tree.file("latin", "\xE9\rx\r"), "ISO-8859-1"));
    std::string many;
    for (int i = 0; i < 1000; ++i) many += "\r\n\n";
    EXPECT_EQ(Lines(2000, ""), read(tree.file("many", many)));
    // The end stands at each place around the end of the first block.
    for (const std::string end : {"\n", "\r", "\r\n"})
        for (std::size_t length = 65530; length < 65540; ++length) {
            const std::string line(length, 'x');
            std::string text = line;
            for (const char* next : {"y", "", "z"}) text.append(end).append(next);
            EXPECT_EQ(Lines({line, "y", "", "z"}), read(tree.file("long", text))) << length;
        }
}

TEST(QBLFmLinesTest, DeliversTheLinesBeforeMalformedTextAndThenTellsWhere) {
    const TempTree tree;
    const std::filesystem::path path = tree.file("bad", "one\ntwo\nbut\xFFt\nfour\n");
    QBLFmLines lines(path);
    std::string line;
    EXPECT_TRUE(lines.getLine(line) && lines.getLine(line));
    EXPECT_EQ("two", line);
    EXPECT_EQ(2, lines.getLineNumber());
    const std::string text =
        "QBLFmLines: " + path.string() + ": byte 11, line 3, column 4: FF is not in UTF-8";
    QBL_EXPECT_THROW(lines.getLine(line), I18NRuntimeError, text.c_str(), I18N_CONVERSION);
    EXPECT_FALSE(lines.getLine(line));
    I18NConverter lenient("UTF-8");
    lenient.setBuiltInUnconvertibleInputSequenceCallback(I18N_SUBSTITUTE);
    QBLFmLines replaced(path, lenient);
    EXPECT_EQ(Lines({"one", "two", "but\uFFFDt", "four"}), rest(replaced));
    Throws listener;
    QBLFmLines thrown(path, lenient, &listener);
    EXPECT_THROW(thrown.begin(), std::out_of_range);
    EXPECT_TRUE(thrown.begin() == thrown.end());
}

TEST(QBLFmLinesTest, ReportsWhatItCannotRead) {
    const TempTree tree;
    const std::string absent = tree("absent");
    const std::string text = "QBLFmLines: cannot read " + absent + ": No such file or directory";
    QBL_EXPECT_THROW(QBLFmLines(absent.c_str()), QBLSystemError, text.c_str(), ENOENT);
    EXPECT_THROW(QBLFmLines(static_cast<const char*>(nullptr)), QBLSystemError);
    EXPECT_THROW(QBLFmLines(std::string("/\0x", 3)), QBLSystemError);
    EXPECT_THROW(QBLFmLines(tree.file("x"), "no-such-encoding"), I18NRuntimeError);
    EXPECT_THROW(read(tree.root()), QBLSystemError) << "a directory";
}

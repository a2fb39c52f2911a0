#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Returns message 1 with the parameter 7, or "XML" if there is no text.
std::string shown(const std::string& base) {
    QBLMessage message(base.c_str(), 1);
    message << 7;
    I18NString out;
    message.format("de", nullptr, out);
    const std::string text = out.toUtf8();
    return text[0] == '<' ? "XML" : text;
}

/// Returns true if a message is formatted without reading a file.
bool isKept(const std::string& base) {
    const long before = fault::seen(fault::kRead);
    return shown(base) != "XML" && fault::seen(fault::kRead) == before;
}

/// Formats until the cache keeps the catalogue. The cache does not keep a file that is very new.
bool becomesKept(const std::string& base) {
    return eventually([&] { return isKept(base); });
}

}  // namespace

TEST(QBLCatalogueCacheTest, EachChangeOfTheFileShowsAtOnce) {
    TempTree tree;
    const std::string base = tree("texts"), name = "texts_de.bmf", path = tree(name);
    tree.file(name, bmfBytes({{1, "a {0}"}}));
    const auto time = std::filesystem::last_write_time(path);
    const struct {
        const char* shown;
        std::function<void()> change;
    } rows[] = {
        {"a 7", [] {}},
        {"b 7",  // another file with the same size and time
         [&] {
             tree.file("new", bmfBytes({{1, "b {0}"}}));
             std::filesystem::last_write_time(tree("new"), time);
             std::filesystem::rename(tree("new"), path);
         }},
        {"c 7",  // the same file with the same size and time
         [&] {
             tree.file(name, bmfBytes({{1, "c {0}"}}));
             std::filesystem::last_write_time(path, time);
         }},
        {"XML", [&] { std::filesystem::resize_file(path, 30); }},
        {"d 7",
         [&] {
             tree.file(name, bmfBytes({{1, "d {0}"}}));
         }},
        {"XML", [&] { std::filesystem::remove(path); }},
        {"e 7",
         [&] {
             tree.file(name, bmfBytes({{1, "e {0}"}, {9, std::string(5 << 20, 'x')}}));
         }},
    };
    for (const auto& row : rows) {
        row.change();
        fault::failCall(fault::kRead, 0, EIO);
        const std::string first = shown(base);
        EXPECT_TRUE(first == "XML" || first == row.shown) << first;
        fault::reset();
        EXPECT_EQ(row.shown, shown(base)) << "the failure is not remembered";
        const bool keepable = *row.shown < 'e' && *row.shown != 'X';
        EXPECT_EQ(keepable, keepable ? becomesKept(base) : isKept(base));
    }
}

TEST(QBLCatalogueCacheTest, KeepsTheLastFilesAndNeedsNoMemory) {
    TempTree tree;
    std::vector<std::string> bases;
    for (int i = 0; i < 100; ++i) {
        bases.push_back(tree("texts" + std::to_string(i)));
        tree.file("texts" + std::to_string(i) + "_de.bmf", bmfBytes({{1, "a {0}"}}));
        EXPECT_EQ("a 7", shown(bases.back()));
    }
    ASSERT_TRUE(becomesKept(bases.back()));
    const I18NString expected("a 7");
    auto base = bases.begin();
    EXPECT_LT(8, fault::eachAllocation([&] {
                  bool right = false;
                  try {
                      QBLMessage message((base++)->c_str(), 1);
                      message << 7;
                      I18NString out;
                      message.format("de", nullptr, out);
                      right = out == expected;
                  } catch (const QBLThrowable& error) {
                      right = std::strcmp(error.getThrowableName(), "QBLOutOfMemoryError") == 0;
                  }
                  EXPECT_TRUE(right);
              }));
    for (const std::string& each : bases) EXPECT_EQ("a 7", shown(each));
    for (std::size_t i = bases.size(); i-- > 0;) EXPECT_EQ(i >= 36, isKept(bases[i])) << i;
}

TEST(QBLCatalogueCacheTest, ThreadsSeeOneVersionOrAnother) {
    TempTree tree;
    const std::string base = tree("texts");
    tree.file("texts_de.bmf", bmfBytes({{1, "b {0}"}}));
    std::atomic<bool> stop{false};
    Workers workers(3, [&] {
        while (!stop) {
            const std::string text = shown(base);
            EXPECT_TRUE(text == "a 7" || text == "b 7") << text;
        }
    });
    for (const char* text : {"a {0}", "b {0}", "a {0}"}) {
        tree.file("new", bmfBytes({{1, text}}));
        std::filesystem::rename(tree("new"), tree("texts_de.bmf"));
        EXPECT_EQ(std::string(1, *text) + " 7", shown(base));
        EXPECT_TRUE(becomesKept(base));
    }
    stop = true;
}

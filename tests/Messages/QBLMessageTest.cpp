#include "QBLCore/Messages/QBLMessage.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <type_traits>
#include <vector>

#include "QBLCore/Messages/QBLErrnoMessage.hpp"
#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLWin32Message.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"

namespace {

std::string formatted(const QBLMessageBase& message, const char* language = nullptr) {
    I18NString out;
    message.format(language, nullptr, out);
    return out.toUtf8();
}

std::string xml(const QBLMessageBase& message, int flag) {
    I18NString out;
    message.toString("en", nullptr, out, flag);
    return out.toUtf8();
}

const char kFive[] =
    "<Message Name=\"QBLMessageComponents\" File=\"\" Severity=\"Error\" Nesting=\"0\" >"
    "<MessageComponents  ID=\"0x05\" ></MessageComponents></Message>";

static_assert(!std::is_constructible<QBLErrnoMessage, QBLSeverity>::value &&
                  !std::is_constructible<QBLWin32Message, QBLSeverity>::value &&
                  !std::is_constructible<QBLMessageComponents, QBLSeverity>::value &&
                  !std::is_constructible<QBLMessage, const char*, QBLSeverity>::value &&
                  !std::is_constructible<QBLMessageFile, const char*, QBLSeverity>::value,
              "a severity must not convert to an identifier");

}  // namespace

TEST(QBLMessageParmTest, FormatsItsValueByItsType) {
    const QBLMsgParm illegal = static_cast<QBLMsgParm>(9);
    const struct {
        QBLMessageParm parm;
        const char *text, *value;
    } rows[] = {{QBLMessageParm(5), "5", "\"long\" Value=\"5\""},
                {QBLMessageParm(0xFFFFFFFFUL), "4294967295", "\"ulong\" Value=\"4294967295\""},
                {QBLMessageParm(-5LL), "-5", "\"long\" Value=\"-5\""},
                {QBLMessageParm(0xFFFFFFFFULL), "4294967295", "\"ulong\" Value=\"4294967295\""},
                {QBLMessageParm(LLONG_MIN), "-9223372036854775808",
                 "\"string\" Value=\"-9223372036854775808\""},
                {QBLMessageParm(ULLONG_MAX), "18446744073709551615",
                 "\"string\" Value=\"18446744073709551615\""},
                {QBLMessageParm(-7L, QBLMsgParmDate), "-7", "\"long\" Value=\"-7\""},
                {QBLMessageParm(0UL, 1), "msgid(0000)", "\"msgid\" Value=\"0000\""},
                {QBLMessageParm(0x105UL, 1), "msgid(0x105)", "\"msgid\" Value=\"0x105\""},
                {QBLMessageParm(-1.5), "-1.500000", "\"double\" Value=\"-1.500000\""},
                {QBLMessageParm("\u00E9"), "\u00E9", "\"string\" Value=\"\u00E9\""},
                {QBLMessageParm(5, QBLMsgParmString), "", "\"string\" Value=\"\""},
                {QBLMsgParmString, "", "\"string\" Value=\"\""},
                {QBLMessageParm(5, QBLMsgParmOpaque), "<opaque parm>", "\"opaque\" Value=\"0x05\""},
                {QBLMessageParm(QBLMsgParmUnknown), "", "\"unknown\" Value=\""},
                {QBLMessageParm(5, illegal), "", "\"illegal\" Value=\""}};
    for (const auto& row : rows) {
        I18NString text, byType, byText, value("old");
        QBLMessageParm copy(QBLMsgParmUnknown);
        copy = row.parm;
        copy.format(nullptr, text);
        EXPECT_EQ(row.text, text.toUtf8());
        copy.toString(nullptr, byType, 0);
        EXPECT_EQ("<MessageParm Name=\"QBLMessageParm\" Type=" + std::string(row.value) + " />",
                  byType.toUtf8());
        copy.toString(nullptr, byText, 1);
        EXPECT_EQ("<MessageParm Text=\"" + std::string(row.text) + "\" />", byText.toUtf8());
        EXPECT_TRUE(copy.getValue(value));
        EXPECT_EQ(copy.getType() == QBLMsgParmOpaque ? "" : row.text, value.toUtf8());
        long number = 1;
        const bool isLong = copy.getType() == QBLMsgParmLong || copy.getType() == QBLMsgParmDate;
        EXPECT_EQ(isLong, copy.getValue(number));
        EXPECT_TRUE(isLong || number == 0);
    }
    I18NString most;
    QBLMessageParm(1.7976931348623157e308).format(nullptr, most);
    EXPECT_EQ(316, most.length());
}

TEST(QBLMessageParmTest, TakesEveryNumberAndText) {
    struct Both : std::string {
        operator const char*() const { return "pointer"; }
    };
    static_assert(!std::is_constructible_v<QBLMessageParm, std::wstring>);
    QBLMessage message("none");
    message << std::string("a\0b", 3) << std::string_view("cd", 1) << I18NString("e")
            << QBLMessageParm(Both()) << static_cast<short>(-1) << static_cast<unsigned char>(2)
            << true << 'A' << L'B' << std::size_t{3} << std::ptrdiff_t{-4} << 5LL << 6ULL << 0.5F
            << 1.5L;
    const char* const texts[] = {"a",  "c", "e",  "pointer", "-1", "2",        "1",       "65",
                                 "66", "3", "-4", "5",       "6",  "0.500000", "1.500000"};
    I18NString text;
    for (unsigned n = 0; n < std::size(texts); ++n) {
        message.getParmN(n)->getValue(text);
        EXPECT_STREQ(texts[n], text.c_str()) << n;
    }
    message.getParmN(0)->getValue(text);
    EXPECT_EQ(3, text.nUnits());
    EXPECT_EQ("left", formatted(QBLMessageString(std::string_view("left|right", 4))));
}

TEST(QBLMessageTest, ShowsItsPartsIfItHasNoText) {
    EXPECT_EQ(kFive, xml(QBLMessageComponents(5), 0));
    EXPECT_EQ(kFive, formatted(QBLMessageComponents(5)));
    QBLMessage message(QBLSeverityWarning, "/nowhere/at_all", 0);
    message << 1 << "x";
    message.increaseNesting(3);
    const std::string parts =
        "<Message Name=\"QBLMessage\" File=\"/nowhere/at_all\" Severity=\"Warning\" Nesting=\"3\" >"
        "<MessageComponents  ID=\"0000\" ><MessageParms>"
        "<MessageParm Name=\"QBLMessageParm\" Type=\"long\" Value=\"1\" />"
        "<MessageParm Name=\"QBLMessageParm\" Type=\"string\" Value=\"x\" />"
        "</MessageParms></MessageComponents></Message>";
    EXPECT_EQ(parts, xml(message, 0));
    const std::size_t inner = parts.find("<MessageComponents");
    EXPECT_EQ(parts.substr(0, inner) + "<MessageText>" + parts + "</MessageText></Message>",
              xml(message, 1));
    for (const int flag : {0, 1})
        EXPECT_EQ(
            "<Message Name=\"QBLMessageString\" File=\"\" Severity=\"Fatal\" Nesting=\"0\" >"
            "<MessageText>a < b</MessageText></Message>",
            xml(QBLMessageString(QBLSeverityFatal, "a < b"), flag));
    EXPECT_NE(std::string::npos, formatted(QBLErrnoMessage(2)).find("QBLErrnoMessage\" File=\"\""));
}

TEST(QBLXmlEscapeTest, EscapesMarkupAndReplacesWhatXmlForbids) {
    EXPECT_EQ("&lt;a b=&quot;&apos;&amp;\t\uFFFD&gt;", qblXmlEscape("<a b=\"'&\t\x01>"));
    EXPECT_EQ("\U0001F600\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFD",
              qblXmlEscape("\U0001F600\xEF\xBF\xBE\xEF\xBF\xBF\xC0|\xF0\x9F\x98|\xFF"));
    EXPECT_EQ(std::string::npos, qblXmlEscape("\xED\xA0\x80").find('\xED'));
    EXPECT_EQ("a\uFFFD", qblXmlEscape(I18NString("a\xED\xA0\x80")).toUtf8());
    EXPECT_EQ("<x>&#x338;a\u0338", "<x>" + qblXmlEscape("\u0338a\u0338"));
}

TEST(QBLMessageTest, FillsItsTextInTheRequestedLanguage) {
    std::string deep, words;
    for (int i = 0; i < 5000; ++i) deep += "{0,choice,0#'}'";
    for (int i = 0; i < 101; ++i) words += "select, ";
    const char kXml[] = "<Message Name=\"QBLMessageFile\" File=\"";
    const std::vector<QBLMessageParm> x = {"x"}, named = {"\u00E9", INT_MIN};
    const struct {
        std::string pattern;
        std::vector<QBLMessageParm> parms;
        const char* locale;
        std::string text;  // empty if the pattern is refused
    } rows[] = {
        {"It''s {1}", {}, nullptr, "It''s {1}"},  // not a pattern, because there are no parameters
        {"It''s {0}, isn't it, {1}?", named, "", "It's \u00E9, isn't it, -2,147,483,648?"},
        {"{1}", named, "ar_EG",
         "\u061C-\u0662\u066C\u0661\u0664\u0667\u066C\u0664\u0668\u0663\u066C\u0666\u0664\u0668"},
        {"{9}{10}", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, "", "9{10}"},  // ten parameters are used
        {"{0,number,percent} {1,choice,0#none|1#one}", {0.25, 1}, "", "25% one"},
        {"{0,date,yyyy}{1}", {QBLMessageParm(0L, QBLMsgParmDate), QBLMsgParmOpaque}, "", "1970"},
        {"'{0}' '{'{0}", x, "", "{0} {x"},
        {words + "{0}", x, "", words + "x"},
        {"QBLX::open of /3e5f: {0}", x, "", "QBLX::open of /3e5f: x"},
        {"bad { {0}", x, "", ""},
        {"{0,number,::scale/1E900000000}", {1}, "", ""},
        {"{0,number,\v::scale/1E99999999}", {1}, "", ""},
        {"{0,number,\u2028::percent scale/1E2}", {1}, "", ""},
        {deep, {1}, "", ""},
    };
    std::map<unsigned, std::string> english = {{100, "{0} of {1}: {2}"}, {9, "plain"}};
    for (unsigned i = 0; i < std::size(rows); ++i) english[200 + i] = rows[i].pattern;
    TempTree tree;
    const std::string base = tree("texts");
    tree.file("texts_en.bmf", bmfBytes(english));
    tree.file("texts_de.bmf", bmfBytes({{100, "{1}, davon {0}: {2}"}, {9, "schlicht"}}));
    for (unsigned i = 0; i < std::size(rows); ++i) {
        QBLMessageFile message(base.c_str(), 200 + i);
        for (const QBLMessageParm& parm : rows[i].parms) message << parm;
        const std::string text = formatted(message, rows[i].locale);
        EXPECT_EQ(rows[i].text, text.find(kXml) == 0 ? "" : text) << i;
    }
    QBLMessageFile count(base.c_str(), 100), missing(base.c_str(), 11);
    missing << 1;
    count << 1234567 << 4294967295UL << QBLMessageParm(9UL, 1);
    for (int round = 0; round < 2; ++round) {  // the second round uses the cached text
        EXPECT_EQ("1,234,567 of -1: plain", formatted(count, "en"));
        EXPECT_EQ("-1, davon 1.234.567: schlicht", formatted(count, " de_DE,en"));
        EXPECT_EQ("1,234,567 of -1: plain", formatted(count));
    }
    EXPECT_EQ(formatted(count, "de_CH"), formatted(count, "de_CH.UTF-8"));
    EXPECT_EQ(0U, formatted(missing).find(kXml));
    count.setMessage(9);
    EXPECT_EQ("plain", formatted(count));
    count.setMsgFile(I18NString("/nowhere"));
    EXPECT_EQ(0U, formatted(count).find("<Message"));
}

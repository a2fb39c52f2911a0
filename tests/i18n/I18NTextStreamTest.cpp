#include "i18n/cpp/i18n_text_stream.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <sstream>
#include <string>

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "fuzz/support/ConverterChecks.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/ThrowChecks.hpp"

using converterchecks::decoded;
using converterchecks::encoded;

namespace {

extern "C" {
void describeBytes(const char*, const char*, int length, wchar_t* codePoints, int* count,
                   I18NErrorCodes*) {
    for (const int c : {int{'<'}, 0x1F600, '0' + length})
        codePoints[(*count)++] = static_cast<wchar_t>(c);
}

void dropSequence(const char*, const char*, int, wchar_t*, int*, I18NErrorCodes*) {}
void dropCharacter(wchar_t, const char*, char*, int*, I18NErrorCodes*) {}
}

I18NConverter withPolicy(const char* encoding, int policy) {
    I18NConverter converter(encoding);
    converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    if (policy != I18N_USER_DEFINED) return converter;
    converter.setUserDefinedUnconvertibleInputSequenceCallback(describeBytes);
    converter.setUserDefinedUnconvertibleOutputSequenceCallback(dropCharacter);
    return converter;
}

// Converts the source at once, and expects the same results in blocks of 1 to 17 units.
template <class Unit>
StreamOutcome runAnyhow(const I18NConverter* from, const I18NConverter* to,
                        const std::basic_string<Unit>& source,
                        I18NByteOrderMark mark = I18N_MARK_KEEP) {
    StreamOutcome whole = convertedByStream(from, to, source, {source.size()}, mark);
    EXPECT_EQ(std::string::npos, whole.told.find("not at this place")) << whole.told;
    for (std::size_t block = 1; block <= 17; ++block) {
        const StreamOutcome cut = convertedByStream(from, to, source, {block}, mark);
        EXPECT_EQ(whole.output, cut.output) << block;
        EXPECT_EQ(whole.told, cut.told) << block;
    }
    return whole;
}

std::string unitsOf(const std::u16string& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
}

// Texts that are hard to split in some encodings: surrogate pairs, combining sequences that have a
// single code, and shift sequences.
const std::u16string kText =
    u"a\r\n\r\r\n\n\u00E9\u20AC\u3042\u6F22\u304B\u309A\U0001F600\u00CA\u0304\u0434\u4E02\u200Bz";
const char kEncodings[] =
    "UTF-8 UTF-16LE UTF-32 windows-1252 Shift_JIS GB18030 ISO-2022-JP UTF-7 ibm-1399 SCSU BOCU-1 "
    "LMBCS-1 x11-compound-text UTF-16,version=1 HZ CESU-8";
const char* const kBroken[] = {"\x81\x30\x81", "\x1B(", "\x8F\xA2", "\xF0\x9F\x98"};

}  // namespace

TEST(I18NTextStreamTest, ResultsDoNotDependOnBlockSizes) {
    std::mt19937 random(4);
    const auto some = [&] { return kText.substr(random() % kText.size(), 1 + random() % 3); };
    bool isExact = true;
    std::istringstream encodings(kEncodings);
    for (std::string encoding; encodings >> encoding;)
        for (int policy = I18N_ESCAPE; policy <= I18N_STOP; ++policy) {
            SCOPED_TRACE(encoding + " " + std::to_string(policy));
            std::u16string text;
            std::string bytes;
            for (int i = 0; i < 80; ++i) {
                text += some();
                bytes += encoded(I18NConverter(encoding.c_str()), some()).output;
                if (random() % 4 == 0) bytes += static_cast<char>(random());
                if (random() % 3 == 0) bytes += kBroken[random() % std::size(kBroken)];
                if (random() % 8 == 0) bytes.pop_back();
            }
            const I18NConverter converter = withPolicy(encoding.c_str(), policy);
            const I18NConverter other = withPolicy("ibm-1399", policy);
            runAnyhow(&converter, &other, bytes);
            const StreamOutcome in = runAnyhow<char>(&converter, nullptr, bytes);
            const StreamOutcome out = runAnyhow<char16_t>(nullptr, &converter, text);
            // For SCSU and the encodings after it, ICU's output depends on the block size, or ICU
            // drops text.
            isExact = isExact && encoding != "SCSU";
            if (policy == I18N_STOP || !isExact) continue;
            EXPECT_EQ(decoded(converter, bytes).output, in.output);
            EXPECT_EQ(encoded(converter, text).output, out.output);
        }
}

TEST(I18NTextStreamTest, ReportsUnconvertibleCharactersAndTheirPlaces) {
    using namespace std::string_literals;
    const struct {
        const char *from, *to;
        int policy;
        std::string bytes, output, told;
    } rows[] = {
        {"UTF-8", "UTF-8", I18N_STOP, "a\xC3\xA9\r\n\r\xF0\x9F\x98\x80\xE3\x81z",
         "a\xC3\xA9\r\n\r\xF0\x9F\x98\x80",
         "in 10 U+0 text 7, 3:2\nI18NTextStream: byte 10, line 3, column 2: E3 81 is not in UTF-8"},
        {"UTF-8", "UTF-8", I18N_STOP, "\n\xE3\x81", "\n",
         "in cut 1 U+0 text 1, 2:1\nI18NTextStream: byte 1, line 2, column 1: E3 81 is cut off, in "
         "UTF-8"},
        {"us-ascii", "ISO-8859-1", I18N_ESCAPE, "a\x80\x81\nb\r\x82\n", "a%X80%X81\nb\r%X82\n",
         "in 1 U+0 text 1, 1:2\nin 2 U+0 text 5, 1:3\nin 6 U+0 text 12, 3:1\n"},
        {"UTF-8", "us-ascii", I18N_SUBSTITUTE, "\0\0\xC3\xA9\0\xFF\xE4\xB8\x80"s,
         "\0\0\x1A\0\x1A\x1A"s,
         "out -1 U+e9 text 2, 1:3\nin 5 U+0 text 4, 1:5\nout -1 U+fffd text 4, 1:5\n"
         "out -1 U+4e00 text 5, 1:6\n"},
        {"UTF-8", "us-ascii", I18N_USER_DEFINED, "\xFF\xE2\x82\xAC", "<1",
         "in 0 U+0 text 0, 1:1\nout -1 U+1f600 text 1, 1:1\nout -1 U+20ac text 4, 1:2\n"},
        {"UTF-8", "ISO-8859-1", I18N_STOP, "\n\xE2\x80\x8B\xE2\x82\xAC\xFF", "\n",
         "out -1 U+200b text 1, 2:1\nout -1 U+20ac text 2, 2:2\n"
         "I18NTextStream: line 2, column 2: U+20AC is not in ISO-8859-1"},
        {"x-iscii-de", "UTF-8", I18N_ESCAPE, "a\xF0\xB5", "a%XB5%XF0",
         "in 2 U+0 text 1, 1:2\nin cut 1 U+0 text 5, 1:3\n"},
        // ICU reports these sequences and characters in the wrong order, only in part, without
        // their bytes, or as another character.
        {"x-iscii-de", "UTF-8", I18N_SUBSTITUTE, "\xF0\xBD\xEA", "\uFFFD\uFFFD\uFFFD",
         "in 1 U+0 text 0, 1:1\nin 2 U+0 text 1, 1:2\nin cut 0 U+0 text 2, 1:3\n"},
        {"SCSU", "UTF-8", I18N_SUBSTITUTE, "a\x1C\xE2\xCB\xB4", "a\uFFFD",
         "in cut 1 U+0 text 1, 1:2\n"},
        {"SCSU", "UTF-8", I18N_SUBSTITUTE, "\x1C\xB4\x41\x1C\xE2\xCB\xB4", "\uFFFD",
         "in cut 3 U+0 text 0, 1:1\n"},
        {"gsm-03.38-2009", "UTF-8", I18N_ESCAPE, "a\x1B\x80z", "a %X80z", "in 2 U+0 text 2, 1:3\n"},
        {"BOCU-1", "UTF-8", I18N_ESCAPE, "\x92\x32\xD7\xFE\xD9\x4F\xD9z",
         "B%X32%XD7%XFE%XD9%X4F%XD9*", "in 1 U+0 text 1, 1:2\nin 3 U+0 text 9, 1:3\n"},
        {"UTF-8", "x-iscii-de", I18N_ESCAPE, "\u0BF2", "\xEF\x44%U0BF2",
         "out -1 U+bf2 text 0, 1:1\n"},
        // In both cases, the output returns to the initial shift state.
        {"UTF-8", "ISO-2022-JP", I18N_STOP, "\xE3\x81\x82\xFF", "\x1B$B$\"\x1B(B",
         "in 3 U+0 text 1, 1:2\nI18NTextStream: byte 3, line 1, column 2: FF is not in UTF-8"},
        {"UTF-8", "ISO-2022-JP", I18N_STOP, "\xE3\x81\x82\xF0\x9F\x98\x80z", "\x1B$B$\"\x1B(B",
         "out -1 U+1f600 text 1, 1:2\n"
         "I18NTextStream: line 1, column 2: U+1F600 is not in ISO-2022-JP"}};
    for (const auto& row : rows) {
        const I18NConverter from = withPolicy(row.from, row.policy);
        const I18NConverter to = withPolicy(row.to, row.policy);
        const StreamOutcome outcome = runAnyhow(&from, &to, row.bytes);
        EXPECT_EQ(row.output, outcome.output);
        EXPECT_EQ(row.told, outcome.told.substr(0, outcome.told.rfind('\n'))) << outcome.told;
    }
    // In these texts, the stream's buffer is full before the last sequences, or the lead byte is
    // far before the end.
    const I18NConverter bocu = withPolicy("BOCU-1", I18N_ESCAPE);
    const std::string spaces(16381, ' ');
    EXPECT_NE(std::string::npos,
              runAnyhow<char>(&bocu, nullptr, spaces + "\x2B\x16\x2B\x16\x2B\x16")
                  .told.find("in 16383 U+0 text 16389, 1:16383\nin 16385"));
    const I18NConverter iscii = withPolicy("x-iscii-de", I18N_SUBSTITUTE);
    EXPECT_NE(std::string::npos, runAnyhow<char>(&iscii, nullptr, "a\xF0" + std::string(70, '\xB5'))
                                     .told.find("in cut 1 U+0 text 71, 1:72\n"));
    const I18NConverter hz = withPolicy("HZ", I18N_ESCAPE);
    EXPECT_EQ("~}z%UD83D%UDE00", runAnyhow<char16_t>(nullptr, &hz, u"z\U0001F600").output);
    const I18NConverter compound = withPolicy("x11-compound-text", I18N_ESCAPE);
    EXPECT_NE(std::string::npos, runAnyhow<char16_t>(nullptr, &compound, u"z\U0001F600z")
                                     .told.find("out -1 U+1f600 text 1, 1:2\n\n0 and 1, 1:4"));
    const std::u16string portion = std::u16string(4094, u'z') + u"\xD800\xD989z";
    for (const I18NConverter& to : {hz, compound}) {
        const StreamOutcome outcome = runAnyhow<char16_t>(nullptr, &to, portion);
        EXPECT_NE(std::string::npos, outcome.output.find("z%UD800%UD989z"));
        EXPECT_NE(std::string::npos, outcome.told.find("4095\nout -1 U+d989 text 4095, 1:4096"));
    }
}

TEST(I18NTextStreamTest, ReportsDroppedBytesAtOnce) {
    // If the stream kept findings for later, its memory would grow with their number.
    I18NConverter from("UTF-8");
    from.setUserDefinedUnconvertibleInputSequenceCallback(dropSequence);
    const I18NConverter to("UTF-8");
    I18NTextStream stream(&from, &to);
    for (int i = 1; i <= 3; ++i) {
        stream.put("\xFF\xFF", 2);
        EXPECT_EQ(2 * i, stream.getReplacedInput());
    }
    // A byte-order mark after dropped bytes is text.
    I18NConverter utf16("UTF-16BE");
    utf16.setUserDefinedUnconvertibleInputSequenceCallback(dropSequence);
    const std::string late = "\xDF\xEE\xFE\xFF";
    EXPECT_EQ("\xEF\xBB\xBF", runAnyhow(&utf16, &to, late, I18N_MARK_STRIP).output);
    // Findings between surrogates, which may be halves of a pair, are reported in text order.
    I18NConverter scsu("SCSU");
    scsu.setUserDefinedUnconvertibleInputSequenceCallback(dropSequence);
    using namespace std::string_literals;
    const StreamOutcome lone =
        runAnyhow(&scsu, &to, "\x0F\xD8\0\xF2\xD8\x01\xF2\0a\xD8\0\xF2\xF2\xDC\0"s);
    EXPECT_EQ(
        "out -1 U+d800 text 0, 1:1\nin 3 U+0 text 1, 1:2\nout -1 U+d801 text 1, 1:3\n"
        "in 6 U+0 text 2, 1:4\nin 11 U+0 text 4, 1:7\nin 12 U+0 text 4, 1:8\n",
        lone.told.substr(0, lone.told.rfind('\n')));
}

TEST(I18NTextStreamTest, ReportsBestFitsOrTreatsThemAsUnconvertible) {
    const struct {
        const char* encoding;
        std::u16string text;
        std::string fitted, told, without;
    } rows[] = {
        {"GBK", u"x\u00DC\u00FC", "x\xA8\xB9\xA8\xB9", "out fit -1 U+dc text 1, 1:2\n", "x"},
        {"ibm-1399", u"\u6F22\u9839z", "\x0E\x4F\x58\x66\xC8\x0F\xA9",
         "out fit -1 U+9839 text 1, 1:2\n", "\x0E\x4F\x58\x0F"},
        // ICU asks no policy about the first of these, and drops the second without reporting it.
        {"ibm-943_P15A-2003", u"\uF86Fz", "\x87\x82z", "out fit -1 U+f86f text 0, 1:1\n", ""},
        {"x11-compound-text", u"z\u0001", "z", "out -1 U+1 text 1, 1:2\n", "z"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoding);
        I18NConverter to = withPolicy(row.encoding, I18N_STOP);
        const StreamOutcome fitted = runAnyhow<char16_t>(nullptr, &to, row.text);
        EXPECT_EQ(row.fitted, fitted.output);
        EXPECT_EQ(row.told, fitted.told.substr(0, row.told.size()));
        I18NTextStream stream(nullptr, &to);
        if (row.fitted.size() > row.without.size()) stream.put(row.text.data(), row.text.size());
        EXPECT_EQ(row.fitted.size() > row.without.size() ? 1 : 0, stream.getBestFits());
        EXPECT_EQ(0, stream.getReplacedOutput());
        to.useFallback(false);
        EXPECT_FALSE(I18NConverter(to).usesFallback());
        const StreamOutcome without = runAnyhow<char16_t>(nullptr, &to, row.text);
        EXPECT_EQ(row.without, without.output);
        EXPECT_EQ(std::string::npos, without.told.find("fit")) << without.told;
        EXPECT_NE(std::string::npos, without.told.find("is not in")) << without.told;
    }
}

// Replaces a character by the digits of its code point if these are only a few digits.
struct Replacing : I18NTextStreamListener {
    I18NTextStream* stream = nullptr;
    void unconvertible(const I18NUnconvertible& what) override {
        if (!what.isOutput) {
            QBL_EXPECT_THROW(stream->replaceBy(u"x", 1), QBLIllegalStateError,
                             "I18NTextStream::replaceBy: nothing is to be replaced");
            return;
        }
        std::u16string text = u"<<\x3042\xE9";
        for (const char c : std::to_string(what.codePoint)) text += static_cast<char16_t>(c);
        if (what.codePoint == u'\xE8') return stream->replaceBy(nullptr, 0);
        if (text.size() <= 8) return stream->replaceBy(text.data(), text.size());
        EXPECT_THROW(stream->replaceBy(text.data(), text.size()), I18NRuntimeError);
    }
};

TEST(I18NTextStreamTest, WritesTheReplacementsOfTheListener) {
    const char* const text = "\xE6\x97\xA5\xC3\xA9\xC3\xA8\xFFz\xE2\x82\xAC\xC5\x81";
    const struct {
        const char *encoding, *output;
    } table[] = {
        // Switches between the shift states. Characters of a replacement that the encoding lacks
        // are dropped.
        {"ISO-2022-JP",
         "\x1B$BF|\x1B(B<<\x1B$B$\"\x1B(B233%UFFFDz<<\x1B$B$\"\x1B(B8364<<\x1B$B$\"\x1B(B321"},
        {"US-ASCII", "%U65E5<<233%UFFFDz<<8364<<321"},
        {"Shift_JIS",
         "\x93\xFA<<\x82\xA0\x32\x33\x33%UFFFDz<<\x82\xA0\x38\x33\x36\x34<<\x82\xA0\x33\x32\x31"},
    };
    for (const auto& row : table)
        for (std::size_t cut = 1; cut < 9; ++cut) {
            I18NConverter from = withPolicy("UTF-8", I18N_SUBSTITUTE);
            I18NConverter to = withPolicy(row.encoding, I18N_ESCAPE);
            to.useFallback(false);
            Replacing listener;
            I18NTextStream stream(&from, &to, I18N_MARK_KEEP, &listener);
            listener.stream = &stream;
            std::string output;
            for (std::size_t at = 0; at < std::strlen(text); at += cut) {
                stream.put(text + at, std::min(cut, std::strlen(text) - at));
                output.append(stream.getBytes(), stream.getByteCount());
            }
            stream.finish();
            output.append(stream.getBytes(), stream.getByteCount());
            EXPECT_EQ(row.output, output) << row.encoding << cut;
            QBL_EXPECT_THROW(stream.replaceBy(u"x", 1), QBLIllegalStateError,
                             "I18NTextStream::replaceBy: nothing is to be replaced");
        }
}

TEST(I18NTextStreamTest, RecognizesByteOrderMarks) {
    using namespace std::string_literals;
    constexpr I18NByteOrderMark kBoth = I18N_MARK_CHOOSE_AND_STRIP;
    const struct {
        std::string bytes;
        I18NByteOrderMark mark;
        const char* encoding;
        std::u16string text;
    } rows[] = {{"\xEF\xBB\xBF\xC3\xA9\xEF\xBB\xBF", kBoth, "UTF-8", u"\u00E9\uFEFF"},
                {"\xEF\xBB\xBF\xC3\xA9", I18N_MARK_CHOOSE, "UTF-8", u"\uFEFF\u00E9"},
                {"\xEF\xBB\xBFz", I18N_MARK_STRIP, "KOI8-R", u"\u041E\u2569\u00A9z"},
                {"\xEF\xBB", kBoth, "KOI8-R", u"\u041E\u2569"},
                {"\xFF\xFE\0\0"s, kBoth, "UTF-32LE", u""},
                {"\xFF\xFE\0"s, kBoth, "UTF-16LE", u"%X00"},
                {"\xFF\xFEz\0z\0"s, kBoth, "UTF-16LE", u"zz"},
                {"\xFE\xFF\0z"s, kBoth, "UTF-16BE", u"z"},
                {"\0\0\xFE\xFF\0\0\0z"s, kBoth, "UTF-32BE", u"z"},
                {"", kBoth, "KOI8-R", u""}};
    const I18NConverter from = withPolicy("KOI8-R", I18N_ESCAPE);
    for (const auto& row : rows) {
        const StreamOutcome outcome = runAnyhow<char>(&from, nullptr, row.bytes, row.mark);
        EXPECT_EQ(unitsOf(row.text), outcome.output);
        EXPECT_EQ(row.encoding, outcome.encoding);
    }
    const I18NConverter utf8("UTF-8"), marked("UTF-16LE,version=1");
    const std::u16string many(20, u'z');
    const StreamOutcome withMark = runAnyhow<char16_t>(nullptr, &marked, many);
    EXPECT_EQ(unitsOf(u"\uFEFF" + many), withMark.output);
    EXPECT_EQ(unitsOf(many),
              convertedByStream<char>(&marked, nullptr, withMark.output, {9}).output);
    EXPECT_EQ("z",
              convertedByStream<char16_t>(nullptr, &utf8, u"\uFEFFz", {9}, I18N_MARK_STRIP).output);
    EXPECT_EQ("\uFFFDz", convertedByStream<char>(&utf8, &utf8, "\xFFz", {9}, kBoth).output)
        << "no policy is set";
}

TEST(I18NTextStreamTest, CountsLinesOfLongTexts) {
    std::mt19937 random(5);
    const I18NConverter utf8("UTF-8");
    std::u16string text;
    while (text.size() < 300000) {
        text.append(random() % 40, u'x');
        text += kText.substr(random() % kText.size());
        if (random() % 2000 == 0) text.append(random() % 40000, u"x\r\n\xD83D"[random() % 4]);
    }
    const auto place = [&text] {
        long line = 1, column = 1;
        char16_t before = 0;
        for (const char16_t unit : text) {
            const bool ends = unit == u'\r' || (unit == u'\n' && before != u'\r');
            const bool isPart = unit == u'\n' || (unit >> 10 == 0x37 && before >> 10 == 0x36);
            line += ends ? 1 : 0;
            column = ends ? 1 : column + (isPart ? 0 : 1);
            before = unit;
        }
        return std::to_string(line) + ":" + std::to_string(column);
    };
    const StreamOutcome outcome = convertedByStream(nullptr, &utf8, text, {20011});
    EXPECT_EQ(encoded(utf8, text).output, outcome.output);
    EXPECT_EQ(place(), outcome.told.substr(outcome.told.rfind(' ') + 1));
    // The stream copies ASCII directly; other characters are between the runs of ASCII.
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] >= 0x80) text[i] = random() % 1000 != 0 ? u'y' : u'\u00E4';
    const I18NConverter latin("windows-1252");
    for (std::size_t cut = 0; cut < 40; ++cut) {
        text.pop_back();
        const StreamOutcome copied =
            convertedByStream(&utf8, &latin, encoded(utf8, text).output, {8011 + cut});
        EXPECT_EQ(encoded(latin, text).output, copied.output);
        EXPECT_EQ(place(), copied.told.substr(copied.told.rfind(' ') + 1)) << cut;
    }
}

TEST(I18NTextStreamTest, ErrorsAndMisuseEndTheStream) {
    struct Refuse : StreamOutcome {
        void unconvertible(const I18NUnconvertible&) override { throw 5; }
    } refuse;
    const I18NConverter utf8("UTF-8");
    I18NTextStream stream(&utf8, nullptr, I18N_MARK_KEEP, &refuse);
    EXPECT_THROW(stream.put(u"x", 1), I18NRuntimeError) << "the stream reads bytes";
    EXPECT_THROW(stream.put("\xFFx", 2), int);
    QBL_EXPECT_THROW(stream.finish(), QBLIllegalStateError, "I18NTextStream: the stream has ended");
    // The output ends before the reported character.
    for (const char* encoding : {"ISO-2022-JP", "Shift_JIS", "UTF-8", "UTF-16"})
        for (const std::string bad : {"\xFF", "\U0001F600", "\u200B"})
            for (const std::size_t before : {0, 4}) {  // units that the stream gets alone
                const I18NConverter to(encoding);
                I18NTextStream broken(&utf8, &to, I18N_MARK_KEEP, &refuse);
                const std::string text = "x\u65E5" + bad + "\u672Cy\xFF";
                refuse.output.clear();
                broken.put(text.data(), before);
                refuse.take(broken);
                EXPECT_THROW(broken.put(text.data() + before, text.size() - before), int);
                refuse.take(broken);
                const bool hasBad = encoding[0] == 'U' && bad != "\xFF";
                const I18NString written("x\u65E5" + (hasBad ? bad + "\u672Cy" : ""));
                EXPECT_EQ(encoded(to, written.toUtf16()).output, refuse.output)
                    << encoding << bad << before;
            }
    EXPECT_THROW(I18NTextStream(nullptr, nullptr), I18NRuntimeError);
    EXPECT_THROW(I18NTextStream(nullptr, &utf8, I18N_MARK_CHOOSE), I18NRuntimeError);
}

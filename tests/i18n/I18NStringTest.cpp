#include "i18n/cpp/i18n_string.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <unordered_map>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_uri.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Counts the allocated blocks and the calls. The call with the number failAt fails.
struct Arena {
    int blocks = 0, calls = 0, failAt = -1;

    static char* allocate(void* context, char* block, int size, int* error) {
        Arena& arena = *static_cast<Arena*>(context);
        if (size > 0 && arena.calls++ == arena.failAt) {
            *error = -1;
            return nullptr;
        }
        arena.blocks += (block == nullptr && size > 0) - (block != nullptr && size == 0);
        return I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, size, error);
    }
};

}  // namespace

TEST(I18NStringTest, TakesMemoryFromItsAllocatorOnlyBeyond32Characters) {
    for (const int length : {0, 1, 31, 32, 33, 34, 1000}) {
        Arena arena;
        const std::string text(static_cast<std::size_t>(length), 'x');
        {
            I18NString made(text.c_str(), nullptr, -1, &Arena::allocate, &arena);
            I18NString counted(text.c_str(), "ISO-8859-1", length, &Arena::allocate, &arena);
            I18NString copy(made, &Arena::allocate, &arena);
            I18NString grown(&Arena::allocate, &arena);
            for (int i = 0; i < length; ++i) grown += L'x';
            I18NString moved(std::move(copy));
            EXPECT_TRUE(copy.empty());  // NOLINT(bugprone-use-after-move): a moved string is empty
            EXPECT_TRUE(made == text.c_str() && counted == made && grown == made && moved == made);
            EXPECT_EQ(length > 32 ? 4 : 0, arena.blocks) << length;
            EXPECT_EQ(made.c_str(), made.c_str("windows-1252")) << "both return the stored bytes";
            made += L'\u00E9';
            EXPECT_FALSE(made.isUsingAsciiBuffer());
            EXPECT_EQ(text + "\u00E9", made.c_str());
        }
        EXPECT_EQ(0, arena.blocks) << length;
    }
}

TEST(I18NStringTest, DecodesUtf8WithAnErrorValueForEachBadSequence) {
    const std::pair<std::string, std::u16string> table[] = {
        {"a\x80z", u"a\u0015z"},
        {"\xC3\xA9", u"\u00E9"},
        {"\xC3z", u"\u0015z"},
        {"\xE2\x82", u"\u009F"},
        {"\xF0\x9F\x98", u"\uFFFF"},
        {"\xC0\x80", u"\u009F"},
        {"\xED\xA0\x80", u"\uFFFF"},
        {"\xF4\x90\x80\x80", u"\U0010FFFF"},
        {"\xF8\x88\x80\x80\x80", u"\uFFFF"},
        {"\xFE\xFF", u"\u0015\u0015"},
        {std::string("\xC3\xA9\0z", 4), u"\u00E9"},
        {"0123456789abcdef\u4E2Dx", u"0123456789abcdef\u4E2Dx"}};
    for (const auto& [bytes, text] : table) {
        const I18NString decoded(bytes.data(), nullptr, static_cast<int>(bytes.size()));
        EXPECT_EQ(text, decoded.toUtf16()) << bytes;
    }
}

TEST(I18NStringTest, NormalizesUnlessItIsSwitchedOff) {
    const std::u16string expanding = u"\u0958\u0958\u0958";
    I18NString text(expanding.data(), 6);
    EXPECT_EQ(6, text.nUnits());
    text = L"\uFDFA\u00E9";
    text.normalize(I18N_NFKD);
    EXPECT_EQ(20, text.nUnits());
    EXPECT_FALSE(text.isNormalized());
    EXPECT_EQ(u"e\u0301", text.toUtf16().substr(18));
    I18NString kept;
    kept.useNormalization(false);
    kept = I18NString("u") + "x";
    EXPECT_EQ(3, (kept = "ue\u0301").nUnits()) << "a move assignment keeps the switch";
    EXPECT_EQ(u"u\u00E9", (text = kept).toUtf16()) << "a copy assignment normalises";
    text.normalize(I18N_NFD);
    EXPECT_EQ(text, I18NString(text)) << "a copy keeps the requested form";
    I18NString halves(L"\xDD5E");
    halves.insert(0, L'\xD834');
    EXPECT_EQ(u"\U0001D157\U0001D165", halves.toUtf16())
        << "the two surrogates become a pair, which is decomposed";
}

TEST(I18NStringTest, ConversionsCallAllocatorsWithoutALock) {
    I18NString text(L"\u4E2D");
    const auto nested = [](void* context, char* block, int size, int* error) {
        if (size > 0) static_cast<I18NString*>(context)->c_str("UTF-32");
        return I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, size, error);
    };
    const char* const before = text.c_str("UTF-16", nullptr, nested, &text);
    EXPECT_EQ(before, text.c_str("UTF-16"));
    text = L"\u4E2E";
    EXPECT_NE(before, text.c_str("UTF-16")) << "a new pointer shows the change";
}

TEST(I18NStringTest, NullBytesBecomeAnEmptyText) {
    for (const char* encoding : {static_cast<const char*>(nullptr), "UTF-16", "UTF-32", "latin1"})
        for (const int length : {-1, 0, 64})
            EXPECT_TRUE(I18NString(nullptr, encoding, length).empty()) << length;
}

TEST(I18NStringTest, ConvertsOneConstantStringOnManyThreads) {
    const I18NString texts[] = {I18NString("Stra\u00DFe \u4E2D"), I18NString("only ASCII")};
    const std::string utf8[] = {texts[0].toUtf8(), texts[1].toUtf8()};
    Workers(8, [&] {
        for (int i = 0; i < 200; ++i) {
            for (int k = 0; k < 2; ++k) {
                EXPECT_EQ(utf8[k], texts[k].c_str(i % 2 != 0 ? "UTF-8" : nullptr));
                int length = 0;
                const char* const units = texts[k].c_str("UTF-16", &length);
                EXPECT_EQ(texts[k].nUnits() * 2 + 2, length);
                EXPECT_EQ(texts[k], I18NString(static_cast<const void*>(units), length));
            }
        }
    }).join();
}

TEST(I18NStringTest, ConvertsWithConvertersInBothDirections) {
    I18NConverter latin("ISO-8859-1");
    const I18NString text("Stra\u00DFe \u4E2D");
    latin.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
    EXPECT_STREQ("Stra\337e %U4E2D", text.c_str(latin));
    latin.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
    QBL_EXPECT_THROW(text.c_str(latin), I18NRuntimeError, nullptr, I18N_CONVERSION);
    EXPECT_EQ(I18NString("\u00DF"), I18NString("\xDF", latin));
    I18NString changed("old");
    latin.toUnicode(changed, "\xE9t\xE9", -1);
    EXPECT_EQ("\u00E9t\u00E9", changed.toUtf8());
    EXPECT_TRUE(I18NString("\xDF", "ibm-943").empty()) << "the layer is not initialised";
    char* block = nullptr;
    int size = 0;
    latin.fromUnicode(&block, &size, changed);
    EXPECT_STREQ("\xE9t\xE9", block);
    EXPECT_EQ(4, size);
    I18NFreeBuffer(block);
    latin.fromUnicode(&block, &size, I18NString());
    EXPECT_EQ(gI18NNullString, block);
    EXPECT_EQ(4, size);
    I18NFreeBuffer(block);
    EXPECT_EQ(nullptr, block);
}

TEST(I18NStringTest, EscapesForUrlsAndReadsEscapes) {
    I18NString escaped;
    I18NURLEncode("a b\"'\u00E9%", escaped);
    EXPECT_EQ("a%20b%34%5C\u00E9%25", escaped.toUtf8());
    EXPECT_EQ(I18NString("\u00E9 +%zz%4"), I18NUriDecode("%C3%a9%20+%zz%4"));
    EXPECT_EQ(I18NString("\u00E9"), I18NUriDecode("%E9", I18NConverter("ISO-8859-1")));
    EXPECT_TRUE(I18NUriDecode(nullptr).empty());
}

TEST(I18NStringTest, ReadsOtherEncodingsOnceTheLayerIsInitialised) {
    I18NInitialize();
    EXPECT_EQ(u"\u65E5\u672C", I18NString("\x93\xFA\x96\x7B", "Shift_JIS").toUtf16());
    EXPECT_EQ("\u044F", I18NString("\xFF", "windows-1251").toUtf8());
    const I18NString cyrillic("\u044F");
    EXPECT_STREQ("\xFF", cyrillic.c_str("windows-1251"));
    EXPECT_EQ(cyrillic.c_str("WINDOWS 12-51"), cyrillic.c_str("cp1251"))
        << "aliases share a conversion";
    EXPECT_EQ(cyrillic.c_str(), cyrillic.c_str("utf-8"));
    EXPECT_FALSE(I18NString("abc", "windows-1251").isUsingAsciiBuffer());
    QBL_EXPECT_THROW(I18NString("x", "no such one"), I18NRuntimeError,
                     "The specified encoding is not valid: \"no such one\".", I18N_ENCODING);
    I18NTerminate();
    EXPECT_TRUE(I18NString("\xFF", "windows-1251").empty());
}

TEST(I18NStringTest, ComparesAndHashesEquallyInBothModes) {
    for (const bool forced : {false, true}) {
        I18NString::setForceUnicodeString(forced);
        const I18NString abc("abc"), abd(L"abd"), empty;
        EXPECT_EQ(!forced, abc.isUsingAsciiBuffer());
        EXPECT_EQ(8, abc.size());
        EXPECT_EQ(0, empty.size() + abc.displaySize());
        EXPECT_TRUE(abc < abd && abd > abc && abc <= abc && abc != abd && abc >= abc);
        EXPECT_TRUE(abc == "abc" && "abd" != abc && empty == nullptr);
        EXPECT_EQ(empty, "");  // NOLINT(readability-container-size-empty): tests operator==
        EXPECT_LT(abc, I18NString(L"abc\u00E9"));
        std::unordered_map<I18NString, int> map{{abc, 1}};
        I18NString::setForceUnicodeString(false);
        EXPECT_EQ(1, map.at(I18NString("abc")));
        EXPECT_EQ(abc, I18NString(u"abc", 6));
    }
    const I18NString text(L"a\U0001F600b\xD800");
    const int next[] = {1, 3, 3, 4, 5, -1}, before[] = {-1, 0, 1, 1, 3, 4};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(next[i], text.incrementOffset(i)) << i;
        EXPECT_EQ(before[i], text.decrementOffset(i)) << i;
    }
    EXPECT_EQ(-1, text.incrementOffset(-1));
    EXPECT_EQ(L'\U0001F600', text.codePointAt(1));
}

TEST(I18NStringTest, FindsWideTextsAndWritesToStreams) {
    const I18NString text("abcabcx");
    EXPECT_EQ(4, text.find(L"bc", 2));
    EXPECT_EQ(1, text.rfind(L"bc", 3));
    EXPECT_EQ(6, text.find(L'x'));
    EXPECT_EQ(-1, text.find(L"", 8));
    EXPECT_EQ(1, text.findFirstOf(L"xcb"));
    EXPECT_EQ(6, text.findFirstNotOf(L"abc"));
    EXPECT_EQ(6, text.findLastOf(L'x'));
    EXPECT_EQ(0, text.findLastNotOf(L"bc", 2));
    EXPECT_EQ(I18NString(L"ab\U0001F600\U0001F600"), I18NString("ab").resize(7, 0x1F600));
    std::istringstream in("  w\u00F6rd next");
    I18NString word;
    in >> word;
    std::ostringstream out;
    out << word << I18NString() << I18NString("a\0\xE9", I18NConverter("ISO-8859-1"), 3);
    EXPECT_EQ(std::string("w\u00F6rda\0\u00E9", 9), out.str());
}

TEST(I18NStringTest, AssignsThroughIterators) {
    I18NString text(L"a\U0001F600b");
    EXPECT_EQ(3, text.end() - text.begin());
    *(text.begin() + 1) = L'-';
    EXPECT_EQ("a-b", text.toUtf8());
    I18NString ascii("xy");
    EXPECT_EQ(L'\0', static_cast<wchar_t>(*ascii.end()));
    QBL_EXPECT_THROW(*ascii.end() = L'z', QBLAssertError,
                     "QBL_ASSERT(m_offset < m_pI18NString->m_asciiBufLength);");
    *ascii.begin() = L'\u00E9';
    EXPECT_EQ("\u00E9y", ascii.toUtf8());
}

TEST(I18NStringTest, UsesACallersBufferUpToItsSize) {
    char16_t buffer[8] = u"ab";
    {
        I18NString text;
        text.attach(buffer, sizeof buffer);
        text += L"c\u00E9";
        EXPECT_EQ(std::u16string(u"abc\u00E9"), buffer);
        QBL_EXPECT_THROW(text += L"12345678", I18NRuntimeError,
                         "Cannot resize a static external buffer.", I18N_UNEXPECTED);
        EXPECT_EQ("abc\u00E9", text.toUtf8()) << "the text is unchanged";
        QBL_EXPECT_THROW(text = L"\u0958\u0958\u0958\u0958", I18NRuntimeError,
                         "Cannot resize a static external buffer.", I18N_UNEXPECTED);
        EXPECT_EQ("abc\u00E9", text.toUtf8())
            << "unchanged if only the normalised text does not fit";
        buffer[1] = u'\0';
        text.attach(buffer, sizeof buffer);
        EXPECT_STREQ("a", text.c_str()) << "attached again";
        char odd[9];
        EXPECT_EQ(4, text.copyToExternalBuffer(odd + 1, 8));
        QBL_EXPECT_THROW(text.resizeExternalBuffer(), I18NRuntimeError,
                         "Cannot resize a static external buffer.", I18N_UNEXPECTED);
        EXPECT_TRUE(text.empty());
    }
    EXPECT_EQ(u'a', buffer[0]);
}

TEST(I18NStringTest, ResizeAllocatesOnlyTheTextItself) {
    for (const wchar_t fill : {L'x', L'\u00E9', L'\u0301'}) {
        Arena arena;
        I18NString text(L"\u4E2D", &Arena::allocate, &arena);
        arena.failAt = arena.calls;
        QBL_EXPECT_THROW(text.resize(900000000, fill), QBLOutOfMemoryError,
                         "The specified allocator callback failed to allocate memory.");
        EXPECT_EQ(u"\u4E2D", text.toUtf16());
    }
}

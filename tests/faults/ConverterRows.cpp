#include <cstdlib>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

const std::string kJapanese = [] {
    std::string text;
    for (int i = 0; i < 300; ++i) text += "ascii \u00E9 \u65E5\u672C\u8A9E\n";
    return text;
}();
const I18NString kJapaneseText(kJapanese);

void refuse(I18NErrorCodes code) {
    if (code != I18N_OK && code != I18N_NOMEM) throw Broken{"code " + std::to_string(code)};
    need(code == I18N_OK);
}

std::string there(const char* encoding) {
    const I18NConverter converter(encoding);
    char* bytes = nullptr;
    int length = 0;
    converter.fromUnicode(&bytes, &length, kJapaneseText);
    std::string copy = calmly([&] { return std::string(bytes, std::size_t(length)); });
    I18NFreeBuffer(bytes);
    return copy;
}

I18NString andBack(const char* encoding) {
    const std::string bytes = calmly([=] { return there(encoding); });
    const I18NConverter converter(encoding);
    I18NString text;
    converter.toUnicode(text, bytes.c_str(), static_cast<int>(bytes.size()));
    return text;
}

std::string streamed(const char* encoding, const std::string& text, I18NByteOrderMark mark) {
    const I18NConverter utf8("UTF-8"), other(encoding);
    std::string out;
    I18NTextStream stream(&utf8, &other, mark);
    const auto take = [&] {
        calmly([&] { out.append(stream.getBytes(), stream.getByteCount()); });
    };
    for (std::size_t at = 0; at < text.size(); at += 1000) {
        stream.put(text.data() + at, std::min<std::size_t>(1000, text.size() - at));
        take();
    }
    stream.finish();
    take();
    return out;
}

const bool kConversions = [] {
    for (const char* encoding :
         {"windows-1252", "Shift_JIS", "ISO-2022-JP", "UTF-16BE", "GB18030"}) {
        const auto with = [encoding](const char* name, auto run) {
            add(std::string(name) + encoding, kOutOfMemory, [=] { return run(encoding); });
        };
        with("I18NConverter.fromUnicode/", there);
        with("I18NConverter.toUnicode/", andBack);
        with("I18NTextStream.put/",
             [](auto to) { return streamed(to, kJapanese, I18N_MARK_KEEP); });
    }
    return true;
}();

/// An error parameter of the C interface. Checks the code at the end of the statement.
struct Code {
    I18NErrorCodes code = I18N_OK;
    operator I18NErrorCodes*() { return &code; }
    // NOLINTNEXTLINE(bugprone-exception-escape): C functions throw nothing else
    ~Code() noexcept(false) { need(code == I18N_OK); }
};

I18NInternalResources& resources() { return I18NInternalResources::getInternalResources(); }
const I18NLocale& german() {
    static const I18NLocale kGerman("de_DE");
    return kGerman;
}

/// Asks for a description. Each run reads the file of the language again.
template <class Ask>
void description(const char* name, Ask ask) {
    const auto run = [ask] {
        calmly([] {
            start();
            resources().release();
            resources().loadSequenceTable();
        });
        I18NString out;
        need(ask(resources(), out));
        return out;
    };
    add(std::string("I18NInternalResources.") + name, kOutOfMemory | kRefuses, kFallback | kOther,
        run);
}

const bool kRows = [] {
    add("i18nConverter", kRefuses | kOutOfMemory, [] {
        I18NConverter converter("UTF-8");
        converter.create(I18NConverter("Shift_JIS"));
        const auto c = reinterpret_cast<I18NConverterHandle>(&converter);
        char bytes[200], *block = nullptr;
        char16_t units[100];
        void* wide = nullptr;
        int size = 0, used = 0;
        I18NString text;
        const auto string = reinterpret_cast<I18NStringHandle>(&text);
        for (int policy = I18N_ESCAPE; policy <= I18N_SUBSTITUTE; ++policy) {
            i18nConverterSetBuiltInUnconvertibleInputSequenceCallback(c, policy, Code());
            i18nConverterSetBuiltInUnconvertibleOutputSequenceCallback(c, policy, Code());
            i18nConverterToUnicode(c, units, 200, "a\xFF\x80z", -1, Code());
            i18nConverterFromUnicode(c, bytes, 200, u"a\u0E01z", Code());
        }
        i18nConverterToUnicodeString(c, string, "\x93\xFA", 2, Code());
        i18nConverterFromUnicodeString(c, &block, &size, string, nullptr, nullptr, Code());
        I18NFreeBuffer(block);
        i18nConverterFromUnicodeWithAllocator(c, &block, &size, units, nullptr, nullptr, Code());
        I18NFreeBuffer(block);
        converter.fromUnicodeStream(&block, &size, u"\u65E5", 2);
        I18NFreeBuffer(block);
        i18nConverterToUnicodeWithAllocator(c, &wide, &size, bytes, -1, nullptr, nullptr, Code());
        I18NFreeBuffer(wide);
        converter.toUnicodeStream(units, 200, "\x93", 1, &size, &used);
        converter.toUnicodeStream(&wide, &size, "\xFA", 1);
        I18NFreeBuffer(wide);
        return together(text, bytes, I18NUriDecode("%93%FA", converter));
    });
    add("I18NConverter.copy", kOutOfMemory, [] {
        const I18NConverter converter("Shift_JIS");
        I18NConverter copy(converter), assigned("EUC-JP");
        const I18NConverterUTF16 holder;
        copy = assigned;
        copy.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
        copy.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
        copy.useFallback(false);
        copy.reset();
        return calmly([&] { return std::string(copy.getEncoding()); });
    });
    add("I18NConverter.codes", kRefuses | kOutOfMemory, [] {
        const I18NConverter converter("EUC-JP");
        static const std::u16string kUnits(400, u'\u65E5');
        char bytes[2000];
        char16_t units[1000];
        I18NErrorCodes code = I18N_OK;
        converter.fromUnicode(bytes, sizeof bytes, kUnits.c_str(), &code);
        refuse(code);
        converter.toUnicode(units, sizeof units, bytes, -1, &code);
        refuse(code);
        return calmly([&] { return std::u16string(units).size(); });
    });
    add("i18nConverterCreate", kRefuses, [] {
        I18NErrorCodes code = I18N_OK;
        const auto converter = i18nConverterCreate("Shift_JIS", &code);
        if ((converter != nullptr) != (code == I18N_OK)) throw Broken{"code and result differ"};
        need(converter != nullptr);
        i18nConverterFree(converter, &code);
    });
    add("I18NTextStream.unconvertible", kOutOfMemory, [] {
        static const std::string kBad = "\xEF\xBB\xBFx" + std::string(9000, '\xFF') + "\u65E5y";
        return streamed("US-ASCII", kBad, I18N_MARK_CHOOSE);
    });
    add("I18NPooledString", kOutOfMemory, [] {
        I18NPooledString first("a pooled text that is new each time"), second;
        second = kJapaneseText;
        first = second;
        second = "another text for the pool";
        const I18NPooledString copy(first), third(kJapaneseText);
        first = I18NPooledString(copy);
        I18NPooledStringCustodian([](std::time_t*) { return std::time_t{7}; }).doIt(0);
        I18NPooledString::purge();
        return calmly([&] { return first.getString() + second.getString(); });
    });
    add("I18NStringPool", kOutOfMemory, kThreadResource, [] {
        I18NStringPool pool(16, "windows-1252");
        const I18NString& text = pool.getPooledString(kJapaneseText);
        const I18NString& other = pool.getPooledString("plain");
        return calmly([&] { return text + other; });
    });
    add("I18NLocale", kOutOfMemory, [] {
        const I18NLocale parts("sr", "RS", "POSIX"),
            text(calmly([] { return I18NString("ja_JP"); }));
        I18NLocale copy(parts);
        copy = text;
        const I18NLocale bytes("de_AT"), none;
        const char* const name = bytes.getName();
        return together(name, copy.getName(), parts.getLanguage(), parts.getCountry(),
                        parts.getVariant());
    });
    add("I18NURLEncode", kOutOfMemory, [] {
        I18NString out;
        I18NURLEncode("a b/\u00E9 and more text to encode", out);
        return out;
    });
    add("I18NUriDecode", kOutOfMemory,
        [] { return I18NUriDecode("%E6%97%A5%E6%9C%AC and more text", "UTF-8"); });
    add("I18NEncodingNames", kOutOfMemory | kRefuses, [] {
        const int count = I18NCountEncodings();
        const char* const name = I18NGetEncodingName(0, 0);
        need(count > 0 && name != nullptr);
        return calmly([=] { return std::to_string(count) + name; });
    });
    add("I18NInternalResources.loadSequenceTable", kOutOfMemory, kFallback | kOther, [] {
        calmly([] {
            start();
            resources().release();
        });
        resources().loadSequenceTable();
        I18NString word;
        resources().getNoDescriptionWord(german(), word);
        return calmly(
            [&] { return word + (resources().getURLEncodeTranslit() != nullptr ? "table" : ""); });
    });
    // The maps stay loaded: the rows below fail the loading.
    add("I18NInternalResources.codes", kOutOfMemory | kRefuses, kFallback | kOther, [] {
        start();
        I18NInternalResources& all = resources();
        I18NString out;
        std::string code, other, country, id, language, path;
        unsigned short lcid = 0;
        const bool found =
            all.getCurrencyCodeForLCID(1031, code) && all.getCurrencyMapping("DEM", other) &&
            all.getISOCurrencyCodeForCountry("DE", country) && all.getLocaleIdFroLCID(1031, id) &&
            all.getDefaultLocaleForLanguage("de", language) &&
            all.getLCIDForCurrencyCode("JPY", lcid) && all.isISOCurrencyCodeValid("JPY") &&
            all.getNumbDecimPlacesForCurrency("JPY") == 0 &&
            all.findResourceFile(path, out, "qbli18nrescr_", german().getICULocale());
        need(found);
        return together(out, code, other, country, id, language, lcid);
    });
    description("getCurrencyDescription", [](auto& all, auto& out) {
        all.getCurrencyDescription("JPY", german(), out);
        return true;
    });
    description("getTimeZoneDescription", [](auto& all, auto& out) {
        return all.getTimeZoneDescription("Europe/Berlin", german(), out);
    });
    description("getSymbolForISOCode",
                [](auto& all, auto& out) { return all.getSymbolForISOCode("JPY", german(), out); });
    description("getLocaleDescription", [](auto& all, auto& out) {
        return all.getLocaleDescription(german(), german(), out);
    });
    return true;
}();

}  // namespace
}  // namespace fault

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_locale.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/i18n_stringpool.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "i18n/cpp/i18n_uri.hpp"
#include "tests/faults/Rows.hpp"

namespace {

using faults::calmly;
using faults::changed;
using faults::kBadAlloc;
using faults::kFallback;
using faults::kOther;
using faults::kOutOfMemory;
using faults::kRefuses;
using faults::need;

const char* const kEncodings[] = {"windows-1252", "Shift_JIS", "ISO-2022-JP", "UTF-16BE",
                                  "GB18030"};

std::string japanese() {
    static const std::string kText = [] {
        std::string text;
        for (int i = 0; i < 300; ++i) text += "ascii \u00E9 \u65E5\u672C\u8A9E\n";
        return text;
    }();
    return kText;
}
const I18NString& japaneseText() {
    static const I18NString kText(japanese());
    return kText;
}

void refuse(I18NErrorCodes code) {
    if (code != I18N_OK && code != I18N_NOMEM) throw faults::Broken{"code " + std::to_string(code)};
    need(code == I18N_OK);
}

std::string there(const char* encoding) {
    const I18NConverter converter(encoding);
    char* bytes = nullptr;
    int length = 0;
    converter.fromUnicode(&bytes, &length, japaneseText());
    std::string copy = calmly([&] { return std::string(bytes, std::size_t(length)); });
    I18NFreeBuffer(bytes);
    return copy;
}

std::string andBack(const char* encoding) {
    const std::string bytes = calmly([=] { return there(encoding); });
    const I18NConverter converter(encoding);
    I18NString text;
    converter.toUnicode(text, bytes.c_str(), static_cast<int>(bytes.size()));
    return calmly([&] { return text.toUtf8(); });
}

std::string streamed(const char* encoding) {
    const I18NConverter utf8("UTF-8"), other(encoding);
    std::string out;
    I18NTextStream stream(&utf8, &other);
    const auto take = [&] {
        calmly([&] { out.append(stream.getBytes(), stream.getByteCount()); });
    };
    const std::string text = calmly(japanese);
    for (std::size_t at = 0; at < text.size(); at += 1000) {
        stream.put(text.data() + at, std::min<std::size_t>(1000, text.size() - at));
        take();
    }
    stream.finish();
    take();
    return out;
}

const bool kConversions = [] {
    for (const char* encoding : kEncodings) {
        const std::string suffix = std::string("/") + encoding;
        faults::rows().push_back(
            {"I18NConverter.fromUnicode" + suffix, kOutOfMemory, [=] { return there(encoding); }});
        faults::rows().push_back(
            {"I18NConverter.toUnicode" + suffix, kOutOfMemory, [=] { return andBack(encoding); }});
        faults::rows().push_back(
            {"I18NTextStream.put" + suffix, kOutOfMemory, [=] { return streamed(encoding); }});
    }
    return true;
}();

void start() {
    static const bool kStarted = [] {
        setenv("TAV_EXEC_PATH", QBL_RES_DIR, 1);
        const bool started = qblCoreInitialize() == 0;
        I18NInitialize();
        return started;
    }();
    if (!kStarted) throw faults::Broken{"not started"};
}

/// Asks for a description. Each run reads the file of the language again.
template <class Call>
std::string resource(Call call) {
    calmly([] {
        start();
        I18NInternalResources::getInternalResources().release();
        I18NInternalResources::getInternalResources().loadSequenceTable();
    });
    I18NString out;
    need(call(I18NInternalResources::getInternalResources(), out));
    return calmly([&] { return out.toUtf8(); });
}

const I18NLocale& german() {
    static const I18NLocale kGerman("de_DE");
    return kGerman;
}

const faults::Rows kRows{
    {"I18NConverter.copy", kOutOfMemory,
     [] {
         const I18NConverter converter("Shift_JIS");
         I18NConverter copy(converter), assigned("EUC-JP");
         copy = assigned;
         copy.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
         copy.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
         copy.useFallback(false);
         copy.reset();
         return calmly([&] { return std::string(copy.getEncoding()); });
     }},
    {"I18NConverter.codes", kRefuses | kOutOfMemory,
     [] {
         const I18NConverter converter("EUC-JP");
         static const std::u16string kUnits(400, u'\u65E5');
         char bytes[2000];
         char16_t units[1000];
         I18NErrorCodes code = I18N_OK;
         converter.fromUnicode(bytes, sizeof bytes, kUnits.c_str(), &code);
         refuse(code);
         converter.toUnicode(units, sizeof units, bytes, -1, &code);
         refuse(code);
         return calmly([&] { return std::to_string(std::u16string(units).size()); });
     }},
    {"I18NPooledString", kOutOfMemory,
     [] {
         I18NPooledString first("a pooled text that is new each time"), second;
         second = japaneseText();
         first = second;
         second = "another text for the pool";
         std::string all =
             calmly([&] { return first.getString().toUtf8() + second.getString().toUtf8(); });
         I18NPooledString::purge();
         return all;
     }},
    {"I18NStringPool", kOutOfMemory,
     [] {
         I18NStringPool pool(16, "windows-1252");
         const I18NString& text = pool.getPooledString(japaneseText());
         const I18NString& other = pool.getPooledString("plain");
         return calmly([&] { return text.toUtf8() + other.toUtf8(); });
     },
     faults::kThreadResource},
    {"I18NLocale", kOutOfMemory,
     [] {
         const I18NLocale parts("sr", "RS", "POSIX"),
             text(calmly([] { return I18NString("ja_JP"); }));
         I18NLocale copy(parts);
         copy = text;
         const I18NLocale bytes("de_AT"), none;
         const char* const name = bytes.getName();
         return calmly([&] {
             return std::string(name) + copy.getName() + parts.getLanguage() + parts.getCountry() +
                    parts.getVariant();
         });
     }},
    {"I18NURLEncode", kOutOfMemory,
     [] {
         I18NString out;
         I18NURLEncode("a b/\u00E9 and more text to encode", out);
         return calmly([&] { return out.toUtf8(); });
     }},
    {"I18NUriDecode", kOutOfMemory,
     [] {
         const I18NString text = I18NUriDecode("%E6%97%A5%E6%9C%AC and more text", "UTF-8");
         return calmly([&] { return text.toUtf8(); });
     }},
    {"I18NEncodingNames", kOutOfMemory | kRefuses,
     [] {
         const int count = I18NCountEncodings();
         const char* const name = I18NGetEncodingName(0, 0);
         need(count > 0 && name != nullptr);
         return calmly([=] { return std::to_string(count) + name; });
     }},
    {"I18NInternalResources.getCurrencyDescription", kOutOfMemory,
     [] {
         return resource([](auto& all, I18NString& out) {
             all.getCurrencyDescription("JPY", german(), out);
             return true;
         });
     },
     kFallback | kOther},
    {"I18NInternalResources.getTimeZoneDescription", kOutOfMemory | kRefuses,
     [] {
         return resource([](auto& all, I18NString& out) {
             return all.getTimeZoneDescription("Europe/Berlin", german(), out);
         });
     },
     kFallback | kOther},
    {"I18NInternalResources.getSymbolForISOCode", kOutOfMemory | kRefuses,
     [] {
         return resource([](auto& all, I18NString& out) {
             return all.getSymbolForISOCode("JPY", german(), out);
         });
     },
     kFallback | kOther},
    {"I18NInternalResources.getLocaleDescription", kOutOfMemory | kRefuses,
     [] {
         return resource([](auto& all, I18NString& out) {
             return all.getLocaleDescription(german(), german(), out);
         });
     },
     kFallback | kOther},
};

}  // namespace

#include "tools/common/LocaleText.hpp"

#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <memory>
#include <set>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/common/Shown.hpp"
#include "tools/common/Utf8.hpp"

namespace tools {

namespace {

const char kUtf8[] = "UTF-8";
/// The ASCII characters that all national variants of ASCII share.
const char kCommon[] =
    "\n !\"%&'()*+,-./0123456789:;<=>?ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";

class Lacking : public I18NTextStreamListener {
public:
    void unconvertible(const I18NUnconvertible& what) override {
        if (what.isOutput) m_codePoints.insert(what.codePoint);
    }
    bool isEmpty() const { return m_codePoints.empty(); }
    bool has(int codePoint) const {
        return m_codePoints.count(static_cast<char32_t>(codePoint)) != 0;
    }

private:
    std::set<char32_t> m_codePoints;
};

std::string converted(const std::string& utf8, const std::string& encoding, Lacking& lacking) {
    I18NConverter from(kUtf8), to(encoding.c_str());
    from.setBuiltInUnconvertibleInputSequenceCallback(I18N_SUBSTITUTE);
    to.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
    to.useFallback(false);
    I18NTextStream stream(&from, &to, I18N_MARK_KEEP, &lacking);
    stream.put(utf8.data(), utf8.size());
    std::string bytes(stream.getBytes(), stream.getByteCount());
    stream.finish();
    return bytes.append(stream.getBytes(), stream.getByteCount());
}

bool isUsable(const std::string& encoding) {
    if (encoding.empty()) return false;
    try {
        Lacking lacking;
        return converted(kCommon, encoding, lacking) == kCommon && lacking.isEmpty();
    } catch (const I18NRuntimeError&) {  // unknown encoding
        return false;
    }
}

/// The encoding of a locale, as the C library tells it; empty if the locale is not installed.
std::string installedEncoding(const char* locale) {
    const locale_t known = newlocale(LC_CTYPE_MASK, locale, nullptr);
    if (known == nullptr) return {};
    std::string encoding = nl_langinfo_l(CODESET, known);
    freelocale(known);
    return encoding;
}

/// @param plain  result if no locale is set, and for C and POSIX
/// @param isShown  whether to accept only encodings that a terminal can use
std::string encodingOf(const char* plain, bool isShown) {
    std::string locale;
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        locale = value;
        break;
    }
    if (locale.empty() || locale == "C" || locale == "POSIX") return plain;
    const std::size_t dot = locale.find('.');
    std::string named;
    if (dot != std::string::npos) named = locale.substr(dot + 1, locale.find('@', dot) - dot - 1);
    // The library treats "ASCII" as UTF-8.
    if (named == "ASCII" || named == "ascii") named = "US-ASCII";
    if (isUsable(named) || (!isShown && !named.empty())) return named;
    const std::string installed = installedEncoding(locale.c_str());
    return isUsable(installed) ? installed : kUtf8;
}

}  // namespace

std::string localeEncoding() { return encodingOf(kUtf8, true); }

std::string localeEncodingName() { return encodingOf("US-ASCII", false); }

std::string localText(const std::string& utf8) {
    static const std::string kEncoding = localeEncoding();
    static const bool kIsUtf8 = I18NConverter::isUTF8(kEncoding.c_str());
    if (kIsUtf8) return utf8;
    Lacking lacking;
    std::string bytes = converted(utf8, kEncoding, lacking);
    if (lacking.isEmpty()) return bytes;
    std::string escaped;
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t begin = i;
        const int c = nextCodePoint(utf8, i, utf8.size());
        if (c < 0) ++i;
        const std::string each = utf8.substr(begin, i - begin);
        escaped += c >= 0 && lacking.has(c) ? inHex(each) : each;
    }
    return converted(escaped, kEncoding, lacking);
}

}  // namespace tools

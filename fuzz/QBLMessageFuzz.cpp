// Formats messages with arbitrary patterns and arguments, in several locales. QBLMessage and
// QBLMessageFile must give the same text. This text must be the text of ICU's MessageFormat, or the
// XML form if the text is not a valid pattern. The input has the locale, the arguments, and the
// texts of the catalogue, each of which ends with a null byte.
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

#include <cstring>
#include <iterator>
#include <map>
#include <vector>

#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "fuzz/support/Input.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"

namespace {

const char* const kLocales[] = {"en", "de", "ar-EG", "hi", "ja", "th", "fr", "sr", "", "x-y_z@q"};

/// The arguments of a message, for the library and for ICU.
struct Arguments {
    std::vector<QBLMessageParm> parms;
    std::vector<icu::Formattable> values;

    void add(const QBLMessageParm& parm, const icu::Formattable& value) {
        parms.push_back(parm);
        values.push_back(value);
    }
    void read(Input& input, const std::map<unsigned, std::string>& texts) {
        for (unsigned left = input.below(12); left > 0; --left) {
            const unsigned kind = input.below(7);
            const auto number = static_cast<int>(input.word());
            const auto real = static_cast<double>(number) * 0x1p-16;
            switch (kind) {
                case 0:
                    add(number, icu::Formattable(number));
                    break;
                case 1:
                    add(static_cast<unsigned>(number), icu::Formattable(number));
                    break;
                case 2:
                    add(real, icu::Formattable(real));
                    break;
                case 3:
                    add(QBLMessageParm(number, QBLMsgParmDate),
                        icu::Formattable(number, icu::Formattable::kIsDate));
                    break;
                case 4: {
                    const auto found = texts.find(static_cast<unsigned>(number) % 4);
                    if (found == texts.end() || found->second.empty()) break;
                    add(QBLMessageParm(static_cast<unsigned long>(found->first), 1),
                        textOf(found->second));
                    break;
                }
                case 5:
                    add(QBLMsgParmOpaque, icu::Formattable(icu::UnicodeString()));
                    break;
                default: {
                    const std::string text = input.bytes(static_cast<unsigned>(number) % 32);
                    add(text.c_str(), textOf(text.c_str()));
                }
            }
        }
    }
    static icu::Formattable textOf(const std::string& utf8) {
        const std::string inFormC = I18NString(utf8.c_str()).toUtf8();
        return icu::Formattable(icu::UnicodeString::fromUTF8(inFormC));
    }
};

std::string formatted(const QBLMessageBase& message, const char* locale) {
    I18NString out;
    message.format(locale, nullptr, out);
    return out.toUtf8();
}

bool formatByIcu(const std::string& text, const char* locale, const Arguments& arguments,
                 std::string& out) {
    UErrorCode status = U_ZERO_ERROR;
    icu::MessageFormat format(icu::UnicodeString::fromUTF8(text), icu::Locale(locale), status);
    icu::UnicodeString result;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    const auto count = static_cast<int>(std::min<std::size_t>(arguments.values.size(), 10));
    if (U_SUCCESS(status)) format.format(arguments.values.data(), count, result, position, status);
    std::string utf8;
    out = I18NString(result.toUTF8String(utf8).c_str()).toUtf8();
    return U_SUCCESS(status);
}

/// Returns true if the library refuses the text although ICU accepts it.
bool maybeRefused(const std::string& text) {
    return std::count(text.begin(), text.end(), ',') > 100 || text.find("::") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempTree kTree;
    Input input(data, size);
    const char* const locale = kLocales[input.below(std::size(kLocales))];
    const Input atArguments = input;
    Arguments arguments;
    arguments.read(input, {});  // finds the end of the arguments
    std::map<unsigned, std::string> texts;
    for (unsigned id = 0; id < 4 && !input.atEnd(); ++id) texts[id] = input.line();
    if (texts.empty()) return 0;
    arguments = Arguments();
    input = atArguments;
    arguments.read(input, texts);

    const std::string base = kTree("texts");
    kTree.file("texts.bmf", bmfBytes(texts));
    QBLMessage message(base.c_str(), 0);
    QBLMessageFile kept(base.c_str(), 0);
    for (const QBLMessageParm& parm : arguments.parms) {
        message << parm;
        kept << parm;
    }
    const std::string whole = formatted(message, locale);
    const std::string byKept = formatted(kept, locale);
    require(byKept == formatted(kept, locale));
    const std::string xml = "<Message Name=\"" + std::string(message.getClassName()) + "\" File=\"";
    const bool isXml = whole.compare(0, xml.size(), xml) == 0;
    require(isXml || whole == byKept);

    const std::string& text = texts[0];
    if (arguments.parms.empty() && text.find("{0") == std::string::npos) {
        require(text.empty() ? isXml : whole == I18NString(text.c_str()).toUtf8());
        return 0;
    }
    if (isXml && maybeRefused(text)) return 0;
    std::string byIcu;
    const bool isPattern =
        !text.empty() && formatByIcu(text, *locale != '\0' ? locale : "en", arguments, byIcu);
    require(isPattern ? whole == byIcu : isXml);
    return 0;
}

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

char* reallocate(void* /*context*/, char* block, int size, int* error) {
    return I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, size, error);
}

/// Shows the text, and checks that the string's counts and its forms agree.
std::string print(const I18NString& text) {
    const std::u16string units = text.toUtf16();
    int length = 0;
    const char* const bytes = text.c_str(nullptr, &length);
    if (text.nUnits() != static_cast<int>(units.size())) throw Broken{"nUnits"};
    if (text.size() != (units.empty() ? 0 : 2 * text.nUnits() + 2)) throw Broken{"size"};
    if (I18NString(units) != text && text.isNormalized()) throw Broken{"units"};
    return std::string(bytes) + (text.isNormalized() ? "" : "?");
}

const std::string kLong(40, 'l');

/// Texts in each storage: short and long ASCII, UTF-16, a caller's allocator.
I18NString (*const kTexts[])() = {[] { return I18NString("plain"); },
                                  [] { return I18NString(kLong); },
                                  [] { return I18NString("\u00E9t\u00E9 \u65E5"); },
                                  [] { return I18NString("al\u00F6", nullptr, -1, &reallocate); }};

char16_t g_units[90] = u"a caller's buffer \u00E9";

const bool kEdits = [] {
    using S = I18NString&;
    static const I18NString kOther("\u00FCber"), kPlain(kLong);
    static const std::u16string kUnits(30, u'\u00E9');
    static const std::u32string kPoints(30, U'\u00E9');
    static const std::wstring kWide(30, L'\u00E9');
    static const I18NPooledString kPooled("pooled");
    static const I18NConverter kLatin("windows-1252");
    const struct {
        const char* name;
        void (*change)(S);
    } table[] = {
        {"assign", [](S s) { s = kOther; }},
        {"assignPlain", [](S s) { s = kPlain; }},
        {"assignBytes", [](S s) { s = kLong.c_str(); }},
        {"assignWide", [](S s) { s = L"wide \u00E9 and longer than the inline room"; }},
        {"assignChar", [](S s) { s = L'\u0416'; }},
        {"assignPooled", [](S s) { s = kPooled; }},
        {"assignMoved", [](S s) { s = calmly([] { return I18NString(kOther); }); }},
        {"assignView", [](S s) { s = std::u32string_view(U"\U0001F600 view"); }},
        {"append", [](S s) { s.append(kOther); }},
        {"appendPlain", [](S s) { s.append(kPlain); }},
        {"appendBytes", [](S s) { s.append("\u0301 combining, and a long rest of it"); }},
        {"appendWide", [](S s) { s.append(L"\u0301w"); }},
        {"appendChar", [](S s) { s.append(L'\u0301'); }},
        {"appendPooled", [](S s) { s.append(kPooled); }},
        {"appendViews", [](S s) { s += std::string_view("v"); }},
        {"appendViews16", [](S s) { s += kUnits; }},
        {"appendViews32", [](S s) { s += kPoints; }},
        {"appendViewsWide", [](S s) { s += kWide; }},
        {"insert", [](S s) { s.insert(1, kOther); }},
        {"insertBytes", [](S s) { s.insert(1, kLong.c_str()); }},
        {"insertWide", [](S s) { s.insert(2, L"\u0301"); }},
        {"insertChar", [](S s) { s.insert(9, L'\u00E9'); }},
        {"replace", [](S s) { s.replace(1, 2, kOther); }},
        {"replaceBytes", [](S s) { s.replace(1, -1, kLong.c_str()); }},
        {"replaceWide", [](S s) { s.replace(0, 1, L"\u65E5\u672C"); }},
        {"replaceChar", [](S s) { s.replace(0, 9, L'\u0301'); }},
        {"erase", [](S s) { s.erase(1, 2); }},
        {"remove", [](S s) { s.remove(); }},
        {"resize", [](S s) { s.resize(60, L'\u00E9'); }},
        {"trim", [](S s) { s.trim(L'l').trimLeading(L'p').trimTrailing(L'n'); }},
        {"normalize", [](S s) { s.normalize(I18N_NFD); }},
        {"useNormalization", [](S s) { s.useNormalization(false); }},
        {"create", [](S s) { s.create("other \u00E9", nullptr, -1, &reallocate); }},
        {"fromConverter", [](S s) { kLatin.toUnicode(s, "\xE9\x80 euro", -1); }},
        {"createFromConverter", [](S s) { s.create("\xE9\x80 euro", kLatin); }},
        {"createFilled", [](S s) { s.create(70, L'\u00E9'); }},
        {"attach", [](S s) { s.attach(g_units, sizeof g_units); }},
        {"iteratorAssign", [](S s) { *s.begin() = L'\u00E9'; }},
        {"iteratorCopy", [](S s) { *s.begin() = *++s.begin(); }},
        {"getUnicodeString", [](S s) { s.getUnicodeString(); }},
        {"getExternalBuffer", [](S s) { s.getExternalBuffer(); }},
        {"resizeExternalBuffer", [](S s) { s.resizeExternalBuffer(); }},
    };
    for (const auto& edit : table)
        for (int kind = 0; kind < 4; ++kind)
            add(std::string("I18NString.") + edit.name + "/" + std::to_string(kind), kOutOfMemory,
                [kind, change = edit.change] {
                    I18NString text = calmly(kTexts[kind]);
                    return changed(text, print, change);
                });
    return true;
}();

std::string bytesOf(const I18NString& text, const char* encoding) {
    int length = 0;
    const char* const bytes = text.c_str(encoding, &length);
    return calmly([=] { return std::string(bytes, static_cast<std::size_t>(length)); });
}

const bool kRows = [] {
    add("I18NString.read", kOutOfMemory | kBadAlloc, [] {
        const I18NString text = calmly(kTexts[2]);
        const I18NConverter latin("windows-1252");
        char* block = nullptr;
        text.toBytes(&block, latin);
        I18NString::freeBuffer(&block);
        int from = 0, to = 0;
        return together(text.find(L"\u00E9"), text.rfind(L"\u00E9"), text.findFirstOf(L"t "),
                        text.findFirstNotOf(L"\u00E9"), text.findLastOf(L"t "),
                        text.findLastNotOf(L"\u65E5"), text.compare("\u00E9t\u00E8") > 0,
                        text.matchLike(text), text.c_str(latin),
                        text.substringLike(text, 0, 0, from, to), text.toUtf32(), text.toWide(),
                        I18NTextHash()("\u00E9") != 0, text + L"wide" + L'\u00E9');
    });
    add("I18NString.c_str", kOutOfMemory, [] {
        const I18NString text = calmly(kTexts[2]);
        return together(bytesOf(text, "Shift_JIS"), bytesOf(text, "UTF-16"),
                        bytesOf(text, "windows-1252"), bytesOf(text, nullptr),
                        bytesOf(text, "Shift_JIS"));
    });
    return true;
}();

}  // namespace
}  // namespace fault

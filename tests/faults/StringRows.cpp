#include <cstdlib>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_pattern.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Rows.hpp"

namespace {

using faults::calmly;
using faults::changed;
using faults::kBadAlloc;
using faults::kOutOfMemory;

char* reallocate(void* /*context*/, char* block, int size, int* error) {
    char* moved = nullptr;
    if (size == 0)
        std::free(block);
    else
        moved = static_cast<char*>(std::realloc(block, static_cast<std::size_t>(size)));
    *error = size == 0 || moved != nullptr ? 0 : -1;
    return moved;
}

/// Shows the text, and checks that the string's counts and its forms agree.
std::string print(const I18NString& text) {
    const std::u16string units = text.toUtf16();
    int length = 0;
    const char* const bytes = text.c_str(nullptr, &length);
    if (text.nUnits() != static_cast<int>(units.size())) throw faults::Broken{"nUnits"};
    if (text.size() != (units.empty() ? 0 : 2 * text.nUnits() + 2)) throw faults::Broken{"size"};
    if (I18NString(units) != text && text.isNormalized()) throw faults::Broken{"units"};
    return std::string(bytes) + (text.isNormalized() ? "" : "?");
}

const std::string kLong(40, 'l');

/// Texts in each storage: short and long ASCII, UTF-16, a caller's allocator.
I18NString start(int kind) {
    switch (kind) {
        case 0:
            return I18NString("plain");
        case 1:
            return I18NString(kLong);
        case 2:
            return I18NString("\u00E9t\u00E9 \u65E5");
        default:
            return I18NString("al\u00F6", nullptr, -1, &reallocate);
    }
}

template <class Change>
void addEdit(const char* name, Change change) {
    for (int kind = 0; kind < 4; ++kind) {
        faults::rows().push_back({std::string("I18NString.") + name + "/" + std::to_string(kind),
                                  kOutOfMemory, [kind, change] {
                                      I18NString text = calmly([kind] { return start(kind); });
                                      return changed(text, print, change);
                                  }});
    }
}

const bool kEdits = [] {
    static const I18NString kOther("\u00FCber"), kPlain(kLong);
    static const std::u16string kUnits(30, u'\u00E9');
    static const std::u32string kPoints(30, U'\u00E9');
    static const std::wstring kWide(30, L'\u00E9');
    static const I18NPooledString kPooled("pooled");
    static const I18NConverter kLatin("windows-1252");
    addEdit("assign", [](I18NString& s) { s = kOther; });
    addEdit("assignPlain", [](I18NString& s) { s = kPlain; });
    addEdit("assignBytes", [](I18NString& s) { s = kLong.c_str(); });
    addEdit("assignWide",
            [](I18NString& s) { s = L"wide \u00E9 and longer than the inline room"; });
    addEdit("assignChar", [](I18NString& s) { s = L'\u0416'; });
    addEdit("assignPooled", [](I18NString& s) { s = kPooled; });
    addEdit("assignMoved", [](I18NString& s) { s = calmly([] { return I18NString(kOther); }); });
    addEdit("assignView", [](I18NString& s) { s = std::u32string_view(U"\U0001F600 view"); });
    addEdit("append", [](I18NString& s) { s.append(kOther); });
    addEdit("appendPlain", [](I18NString& s) { s.append(kPlain); });
    addEdit("appendBytes",
            [](I18NString& s) { s.append("\u0301 combining, and a long rest of it"); });
    addEdit("appendWide", [](I18NString& s) { s.append(L"\u0301w"); });
    addEdit("appendChar", [](I18NString& s) { s.append(L'\u0301'); });
    addEdit("appendPooled", [](I18NString& s) { s.append(kPooled); });
    addEdit("appendViews", [](I18NString& s) { s += std::string_view("v"); });
    addEdit("appendViews16", [](I18NString& s) { s += kUnits; });
    addEdit("appendViews32", [](I18NString& s) { s += kPoints; });
    addEdit("appendViewsWide", [](I18NString& s) { s += kWide; });
    addEdit("insert", [](I18NString& s) { s.insert(1, kOther); });
    addEdit("insertBytes", [](I18NString& s) { s.insert(1, kLong.c_str()); });
    addEdit("insertWide", [](I18NString& s) { s.insert(2, L"\u0301"); });
    addEdit("insertChar", [](I18NString& s) { s.insert(9, L'\u00E9'); });
    addEdit("replace", [](I18NString& s) { s.replace(1, 2, kOther); });
    addEdit("replaceBytes", [](I18NString& s) { s.replace(1, -1, kLong.c_str()); });
    addEdit("replaceWide", [](I18NString& s) { s.replace(0, 1, L"\u65E5\u672C"); });
    addEdit("replaceChar", [](I18NString& s) { s.replace(0, 9, L'\u0301'); });
    addEdit("erase", [](I18NString& s) { s.erase(1, 2); });
    addEdit("remove", [](I18NString& s) { s.remove(); });
    addEdit("resize", [](I18NString& s) { s.resize(60, L'\u00E9'); });
    addEdit("trim", [](I18NString& s) { s.trim(L'l').trimLeading(L'p').trimTrailing(L'n'); });
    addEdit("normalize", [](I18NString& s) { s.normalize(I18N_NFD); });
    addEdit("useNormalization", [](I18NString& s) { s.useNormalization(false); });
    addEdit("create", [](I18NString& s) { s.create("other \u00E9", nullptr, -1, &reallocate); });
    addEdit("fromConverter", [](I18NString& s) { kLatin.toUnicode(s, "\xE9\x80 euro", -1); });
    addEdit("getUnicodeString", [](I18NString& s) { s.getUnicodeString(); });
    addEdit("getExternalBuffer", [](I18NString& s) { s.getExternalBuffer(); });
    addEdit("resizeExternalBuffer", [](I18NString& s) { s.resizeExternalBuffer(); });
    return true;
}();

std::string bytesOf(const I18NString& text, const char* encoding) {
    int length = 0;
    const char* const bytes = text.c_str(encoding, &length);
    return calmly([=] { return std::string(bytes, static_cast<std::size_t>(length)); });
}

const faults::Rows kRows{
    {"I18NString.c_str", kOutOfMemory,
     [] {
         const I18NString text = calmly([] { return start(2); });
         const std::string first = bytesOf(text, "Shift_JIS"), second = bytesOf(text, "UTF-16"),
                           third = bytesOf(text, "windows-1252"), fourth = bytesOf(text, nullptr),
                           again = bytesOf(text, "Shift_JIS");
         return calmly([&] { return first + second + third + fourth + again; });
     }},
};

}  // namespace

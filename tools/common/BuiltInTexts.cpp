#include "tools/common/BuiltInTexts.hpp"

#include <algorithm>

namespace tools {

namespace {

const BuiltInText* g_begin = nullptr;
const BuiltInText* g_end = nullptr;

}  // namespace

void setBuiltInTexts(const BuiltInText* texts, std::size_t count) {
    g_begin = texts;
    g_end = texts + count;
}

const char* builtInText(unsigned id) {
    const BuiltInText* const found =
        std::lower_bound(g_begin, g_end, id,
                         [](const BuiltInText& text, unsigned wanted) { return text.id < wanted; });
    return found != g_end && found->id == id ? found->text : nullptr;
}

}  // namespace tools

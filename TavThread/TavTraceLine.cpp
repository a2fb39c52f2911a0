#include "TavThread/internal/TavTraceLine.hpp"

#include <cstdio>

extern "C" __attribute__((visibility("hidden"))) void tavThreadTraceOutputBuiltIn(void*,
                                                                                  unsigned long,
                                                                                  const char*, ...);

namespace {

// The loader sets both pointers. `g_output` gets the first definition that the symbol search finds:
// the program's own function if the program defines one. Both pointers are volatile, because a
// compiler may assume that two functions with different names have different addresses.
using Output = void (*)(void*, unsigned long, const char*, ...);
// NOLINTBEGIN(readability-identifier-naming): volatile, so not a constant for the compiler
volatile const Output g_output = &tavThreadTraceOutput;
volatile const Output g_builtIn = &tavThreadTraceOutputBuiltIn;
// NOLINTEND(readability-identifier-naming)

}  // namespace

bool tavTraceReplaced() { return g_output != g_builtIn; }

TavAttributeText::TavAttributeText(const TavAttrKind& kind, Form form, va_list list) {
    m_text[0] = '\0';
    va_list args;
    va_copy(args, list);
    for (int tag = va_arg(args, int); tag > 0 && tag < kind.count; tag = va_arg(args, int)) {
        const TavAttrTag& known = kind.tags[tag];
        if (form == kCall)
            add(", %s%s", kind.prefix, known.name);
        else if (known.syntax != nullptr)
            add("%s%s", m_uLength > 0 ? "," : "", known.syntax);
        switch (known.value) {
            case TavAttrValue::kNone:
                break;
            case TavAttrValue::kTraceObj:
                add(" %0x", tavTraceHex(va_arg(args, void*)));
                break;
            case TavAttrValue::kCancelFlag:
                static_cast<void>(va_arg(args, int*));
                break;
            case TavAttrValue::kStackSize:
                static_cast<void>(va_arg(args, unsigned));
                break;
        }
    }
    va_end(args);
}

void TavAttributeText::add(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int wanted = std::vsnprintf(m_text + m_uLength, sizeof m_text - m_uLength, format, args);
    va_end(args);
    const unsigned room = static_cast<unsigned>(sizeof m_text) - 1 - m_uLength;
    if (wanted > 0)
        m_uLength += static_cast<unsigned>(wanted) < room ? static_cast<unsigned>(wanted) : room;
}

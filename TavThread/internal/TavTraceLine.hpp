#ifndef TAVTHREAD_INTERNAL_TAVTRACELINE_HPP
#define TAVTHREAD_INTERNAL_TAVTRACELINE_HPP

#include <cstdint>

#include "TavThread/TavTrace.h"
#include "TavThread/internal/TavAttributes.hpp"

/// Returns true if the program has replaced the output function. If not, all lines would be
/// dropped, so the callers do not format them.
bool tavTraceReplaced();

/// A pointer as trace lines print it: its low 32 bits.
inline unsigned tavTraceHex(const void* p) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(p));
}

/// The text of the attributes at the end of a trace line.
class TavAttributeText {
public:
    enum Form { kCall, kSyntax };
    TavAttributeText(const TavAttrKind& kind, Form form, va_list list);
    const char* text() const { return m_text; }

private:
    __attribute__((format(printf, 2, 3))) void add(const char* format, ...);

    unsigned m_uLength = 0;
    char m_text[512];
};

/// The first two arguments of every line in call form.
#define TAV_TRACE_CALL(name) "[S]", (name)

#endif

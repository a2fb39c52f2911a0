#ifndef TAVTHREAD_INTERNAL_TAVCREATE_HPP
#define TAVTHREAD_INTERNAL_TAVCREATE_HPP

#include "TavThread/TavResult.h"
#include "TavThread/internal/TavTraceLine.hpp"

/// The common part of all create functions: sets *out to null, reads the attributes, calls make,
/// and traces the new object.
/// @param list  the attributes; the caller begins and ends the list
/// @param make  makes the object from the attributes, stores it in *out and returns a result code
/// @param traceCall  traces the call; receives the trace object and the text of the attributes
/// @param traceSyntax  traces the creation statement; receives the same arguments as traceCall
/// @return the result of make; TAVTHREAD_BADATTR or TAVTHREAD_INVALID if make was not called
template <class Object, class Make, class TraceCall, class TraceSyntax>
int tavCreate(Object** out, const TavAttrKind& kind, va_list list, const Make& make,
              const TraceCall& traceCall, const TraceSyntax& traceSyntax) {
    va_list again;
    va_copy(again, list);
    if (out != nullptr) *out = nullptr;
    TavAttributes attrs;
    int rc = tavReadAttributes(kind, list, attrs);
    if (rc == TAVTHREAD_OK) rc = out != nullptr ? make(attrs) : TAVTHREAD_INVALID;
    if (rc == TAVTHREAD_OK && tavTraceReplaced()) {
        void* const traceObj = attrs.traceObject();
        traceCall(traceObj, TavAttributeText(kind, TavAttributeText::kCall, again).text());
        if (attrs.syntaxTraced())
            traceSyntax(traceObj, TavAttributeText(kind, TavAttributeText::kSyntax, again).text());
    }
    va_end(again);
    return rc;
}

#endif

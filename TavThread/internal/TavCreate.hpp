#ifndef TAVTHREAD_INTERNAL_TAVCREATE_HPP
#define TAVTHREAD_INTERNAL_TAVCREATE_HPP

#include "TavThread/TavResult.h"
#include "TavThread/internal/TavTraceLine.hpp"

/// What the create functions do around the making of an object: clears the result, reads the
/// attributes, and traces an object that was made.
/// @param list  of attributes; the caller begins and ends it
/// @param make  makes the object from the attributes, and stores it in *out. @return a result code
/// @param traceCall  prints the call, with a trace object and the text of the attributes
/// @param traceSyntax  prints the creation statement, with the same
/// @return what make returned; TAVTHREAD_BADATTR or TAVTHREAD_INVALID if it was not called
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

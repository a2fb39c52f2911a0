#ifndef QBLCORE_EXCEPTIONS_INTERNAL_QBLTHROWABLEXML_HPP
#define QBLCORE_EXCEPTIONS_INTERNAL_QBLTHROWABLEXML_HPP

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLList.hpp"

/// Appends the XML element of a throwable: its start tag, the messages, the back-trace, its end
/// tag.
/// @param code  null is shown as 0
/// @param messages  appends the text between the start tag and the back-trace
/// @param traceEnd  the end of the element of a trace entry
template <class Text, class Messages>
void qblAppendThrowable(Text& out, const char* name, const char* code, const char* severity,
                        const Messages& messages, const QBLList<char*>& trace,
                        const char* traceEnd) {
    out.append("<Exception Name=\"").append(name != nullptr ? name : "<NULL THROWABLE NAME>");
    // The custodian prints every throwable that it catches, and a code can be a null text.
    out.append("\" Error=\"").append(code != nullptr ? code : "0");
    out.append("\" Severity=\"").append(severity).append("\">");
    messages();
    if (!trace.empty()) {
        out.append("<TraceInfo>");
        for (const char* entry : trace)
            if (entry != nullptr) out.append("<Trace Text=\"").append(entry).append(traceEnd);
        out.append("</TraceInfo>");
    }
    out.append("</Exception>");
}

#endif

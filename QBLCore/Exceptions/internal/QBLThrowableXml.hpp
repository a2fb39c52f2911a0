#ifndef QBLCORE_EXCEPTIONS_INTERNAL_QBLTHROWABLEXML_HPP
#define QBLCORE_EXCEPTIONS_INTERNAL_QBLTHROWABLEXML_HPP

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLList.hpp"

/// The XML element of a throwable: its begin tag, the messages, the back-trace, its end tag.
/// @param code  null shows as 0
/// @param messages  appends what is between the begin tag and the back-trace
/// @param traceEnd  how the element of a trace entry ends
template <class Text, class Messages>
void qblAppendThrowable(Text& out, const char* name, const char* code, const char* severity,
                        const Messages& messages, const QBLList<char*>& trace,
                        const char* traceEnd) {
    out.append("<Exception Name=\"").append(name != nullptr ? name : "<NULL THROWABLE NAME>");
    // The custodian prints whatever it caught, and a null text can be a code.
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

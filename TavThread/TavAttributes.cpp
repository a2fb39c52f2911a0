#include "TavThread/internal/TavAttributes.hpp"

#include "TavThread/TavResult.h"
#include "TavThread/TavTrace.h"

void* TavAttributes::traceObject() const {
    return has(kTavAttrTraceObj) ? traceObj : tavXThreadGetTraceObj();
}

int tavReadAttributes(const TavAttrKind& kind, va_list list, TavAttributes& read) {
    int rc = TAVTHREAD_OK;
    while (const int tag = va_arg(list, int)) {
        if (tag < 0 || tag >= kind.count) {
            rc = TAVTHREAD_BADATTR;
            continue;
        }
        read.given |= 1U << tag;
        switch (kind.tags[tag].value) {
            case TavAttrValue::kNone:
                break;
            case TavAttrValue::kTraceObj:
                read.traceObj = va_arg(list, void*);
                break;
            case TavAttrValue::kCancelFlag:
                read.cancelFlag = va_arg(list, int*);
                break;
            case TavAttrValue::kStackSize:
                read.stackSize = va_arg(list, unsigned);
                break;
        }
    }
    return rc;
}

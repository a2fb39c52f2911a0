#ifndef TAVTHREAD_INTERNAL_TAVATTRIBUTES_HPP
#define TAVTHREAD_INTERNAL_TAVATTRIBUTES_HPP

#include <cstdarg>

/// What follows a tag in an attribute list.
enum class TavAttrValue : unsigned char { kNone, kTraceObj, kCancelFlag, kStackSize };

struct TavAttrTag {
    const char* name;    // what follows the kind's prefix in the tag's name
    const char* syntax;  // its name in a creation statement; null if it has none
    TavAttrValue value;
};

/// The tags that one kind of object knows, numbered from 0.
struct TavAttrKind {
    const char* prefix;
    const TavAttrTag* tags;
    int count;
};

/// The four tags that every kind begins with.
#define TAV_BASIC_ATTR_TAGS                                                        \
    {"End", nullptr, TavAttrValue::kNone}, {"Noop", nullptr, TavAttrValue::kNone}, \
        {"DisableSyntax", " NO SYNTAX", TavAttrValue::kNone}, {                    \
        "TraceObj", " TRACEOBJ", TavAttrValue::kTraceObj                           \
    }
constexpr int kTavAttrDisableSyntax = 2;
constexpr int kTavAttrTraceObj = 3;
inline constexpr TavAttrTag kTavBasicAttrTags[] = {TAV_BASIC_ATTR_TAGS};

/// A kind that knows these four only.
constexpr TavAttrKind tavBasicAttrKind(const char* prefix) {
    return {prefix, kTavBasicAttrTags, 4};
}

/// An attribute list as read; of a tag given twice the last value counts.
struct TavAttributes {
    unsigned given = 0;  // a bit per tag
    void* traceObj = nullptr;
    int* cancelFlag = nullptr;
    unsigned stackSize = 0;

    bool has(int tag) const { return ((given >> tag) & 1U) != 0; }
    bool syntaxTraced() const { return !has(kTavAttrDisableSyntax); }
    /// The trace object given, else the calling thread's.
    void* traceObject() const;
};

/// Reads the list to its end. Returns TAVTHREAD_BADATTR if a tag was unknown (it is taken to have
/// no value), else 0.
int tavReadAttributes(const TavAttrKind& kind, va_list list, TavAttributes& read);

#endif

#ifndef TAVTHREAD_INTERNAL_TAVATTRIBUTES_HPP
#define TAVTHREAD_INTERNAL_TAVATTRIBUTES_HPP

#include <cstdarg>

/// The kind of value that follows a tag in an attribute list.
enum class TavAttrValue : unsigned char { kNone, kTraceObj, kCancelFlag, kStackSize };

struct TavAttrTag {
    const char* name;    // the tag's name without the prefix of the kind
    const char* syntax;  // the tag's text in a creation statement; null for no text
    TavAttrValue value;
};

/// The tags of one kind of object, numbered from 0.
struct TavAttrKind {
    const char* prefix;
    const TavAttrTag* tags;
    int count;
};

/// The first four tags of every kind.
#define TAV_BASIC_ATTR_TAGS                                                        \
    {"End", nullptr, TavAttrValue::kNone}, {"Noop", nullptr, TavAttrValue::kNone}, \
        {"DisableSyntax", " NO SYNTAX", TavAttrValue::kNone}, {                    \
        "TraceObj", " TRACEOBJ", TavAttrValue::kTraceObj                           \
    }
constexpr int kTavAttrDisableSyntax = 2;
constexpr int kTavAttrTraceObj = 3;
inline constexpr TavAttrTag kTavBasicAttrTags[] = {TAV_BASIC_ATTR_TAGS};

/// A kind that has only these four tags.
constexpr TavAttrKind tavBasicAttrKind(const char* prefix) {
    return {prefix, kTavBasicAttrTags, 4};
}

/// The contents of an attribute list. If a tag occurs twice, its last value counts.
struct TavAttributes {
    unsigned given = 0;  // one bit for each tag in the list
    void* traceObj = nullptr;
    int* cancelFlag = nullptr;
    unsigned stackSize = 0;

    bool has(int tag) const { return ((given >> tag) & 1U) != 0; }
    bool syntaxTraced() const { return !has(kTavAttrDisableSyntax); }
    /// Returns the trace object in the list, else the trace object of the calling thread.
    void* traceObject() const;
};

/// Reads the list to its end. Returns TAVTHREAD_BADATTR if a tag is unknown, else 0. Treats an
/// unknown tag as a tag without a value.
int tavReadAttributes(const TavAttrKind& kind, va_list list, TavAttributes& read);

#endif

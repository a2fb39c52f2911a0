#ifndef QBLCORE_TYPES_QBLVARIANT_HPP
#define QBLCORE_TYPES_QBLVARIANT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A value of one of a few types, with a type tag and a size in bytes. The variant copies strings
/// and owns the copies. It does not own the object that a stored pointer points to.
///
/// setVarType() and setValueSize() change the tag and the size but not the value. The variant then
/// reads the same bytes as a value of the new type. A variant without a string reads as a null
/// string if it gets the tag QBLVariantString.
///
/// No operation throws. If memory runs out, the variant gets the type QBLVariantUnknown.
///
/// Threads: one thread at a time for each object.
///
///     QBLVariant size, name;
///     size.setValue(5L);  // a plain 5 is ambiguous: long, unsigned long or double
///     name.setValue("disk", 0);  // without the length, a char* is stored as a pointer
///     char text[20];
///     if (size.getValue(text, sizeof text)) show(text);
class QBL_API QBLVariant {
public:
    /// @name Types and their sizes
    /// @{

    enum QBLVariantType : unsigned int {
        QBLVariantUnknown,
        QBLVariantLong,
        QBLVariantUnsignedLong,
        QBLVariantDouble,
        QBLVariantString,
        QBLVariantPointer
    };
    /// The sizes of values in bytes, indexed by type; 0 for strings, whose length varies.
    static const unsigned long valueSizes[6];
    /// @}

    /// @name Making and copying
    /// @{

    QBLVariant();
    QBLVariant(const QBLVariant& other);
    virtual ~QBLVariant();
    /// Copies value, type and size. If the value is a string, copies at most as many bytes as the
    /// size says. If the string is shorter than the size, the copy is filled up with zeros.
    // NOLINTNEXTLINE(misc-unconventional-assign-operator): it has a virtual slot
    virtual QBLVariant& operator=(const QBLVariant& other);
    /// @}

    /// @name Comparing
    /// @{

    /// Returns true if types, sizes and values are equal. Strings are compared up to the first null
    /// character. Variants of type QBLVariantUnknown have no value to compare. A variant whose tag
    /// is not in QBLVariantType equals only itself.
    virtual bool operator==(const QBLVariant& other) const;
    virtual bool operator!=(const QBLVariant& other) const;
    /// @}

    /// @name Tag and size
    /// @{

    unsigned long valueSize() const { return m_uSize; }
    unsigned long getValueSize() const { return m_uSize; }
    void setValueSize(unsigned long size) { m_uSize = size; }
    QBLVariantType getVarType() const { return m_type; }
    void setVarType(QBLVariantType type) { m_type = type; }
    /// @}

    /// @name Reading the value
    /// @{

    /// Stores the value and returns true if the variant has exactly this type. Otherwise returns
    /// false and leaves the argument unchanged.
    bool getValue(long& value) const;
    bool getValue(unsigned long& value) const;
    bool getValue(double& value) const;
    bool getValue(void*& value) const;
    /// @param value  receives the variant's own string, which may be null; null if the variant has
    ///     another type. The string is valid until clear(), an assignment, the destructor, or any
    ///     setValue() except setValue(void*).
    /// @return true if the variant has the type QBLVariantString
    bool getValue(char*& value) const;
    /// Writes the value as text: integers in decimal, doubles as 1.500000e+00 in every locale,
    /// pointers in hexadecimal without a prefix, "<unknown>" for QBLVariantUnknown, "<invalid>" for
    /// a tag that is not in QBLVariantType. Truncates a text that does not fit; the result is
    /// always null-terminated.
    /// @param bufferSize  in bytes. Writes all bytes of the buffer, as strncpy(3) does, but only
    ///     the first byte for a null string or a string of size 0.
    /// @return true if the text and its terminating NUL fit. For a string, the variant's size
    ///     counts instead of the length; a null string always fits. Returns false if the buffer is
    ///     null or bufferSize is 0.
    bool getValue(char* buffer, unsigned long bufferSize) const;
    /// Returns the value as an optional. QBLVariantValues.hpp defines the two operations.
    template <class Value>
    auto get() const;
    /// Calls a visitor with the value, and returns its result.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const;
    /// @}

    /// @name Setting the value
    /// @{

    /// Stores the value and its size, and returns true.
    bool setValue(long value);
    bool setValue(unsigned long value);
    bool setValue(double value);
    /// Stores the pointer and returns true. Does not free a string that the variant holds. The
    /// caller now owns this string: get it with getValue() before the call, and free it with
    /// delete[].
    bool setValue(void* value);
    /// Stores the address of the array, like setValue(void*). The compiler warns, because the call
    /// looks as if it copied the text.
    template <decltype(sizeof 0) kSize>
    [[deprecated("stores the address; setValue(text, 0) copies the text")]] bool setValue(
        char (&text)[kSize]) {
        return setValue(static_cast<void*>(text));
    }
    /// @param text  may point into the variant's own string; null stores a null string of size 0
    /// @param length  the number of bytes to copy, which becomes the variant's size. If the text is
    ///     shorter, the copy is filled up with zeros. 0 means strlen(text).
    /// @return false if memory runs out. Also false for an empty text with length 0, which is
    ///     stored as a null string.
    bool setValue(const char* text, unsigned long length);

    /// Frees the string if the variant holds one, and sets the value to zero. Type and size stay.
    void clear();
    /// @}

private:
    template <class Value>
    Value as() const;
    template <class Value>
    bool get(QBLVariantType type, Value& value) const;
    template <class Value>
    bool set(QBLVariantType type, Value value);
    char* string() const;
    bool hold(char* copy, unsigned long size);
    const char* format(char* buffer) const;

    unsigned long m_uSize;
    QBLVariantType m_type;
    union {
        long m_long;
        unsigned long m_unsignedLong;
        double m_double;
        char* m_string;
        void* m_pointer;
    } m_value;
    char* m_pOwned;  // the string to free, regardless of the tag
};

#endif

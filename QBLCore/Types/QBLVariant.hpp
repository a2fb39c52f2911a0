#ifndef QBLCORE_TYPES_QBLVARIANT_HPP
#define QBLCORE_TYPES_QBLVARIANT_HPP

#include "QBLCore/Frame/QBLExport.h"

/// A value of one of a few types, with a type tag and a size in bytes. A string is the variant's
/// own copy; a pointer is only kept.
///
/// Tag and size can be set apart from the value, which then is read as what the tag says. A tag
/// that makes a string of something else makes a null string.
///
/// Nothing throws: where memory does not suffice, the variant becomes one of no type.
///
/// Threads: one at a time for each object.
///
///     QBLVariant size, name;
///     size.setValue(5L);  // a plain 5 could be either integer, or a double
///     name.setValue("disk", 0);  // without the length a char* would be kept as a pointer
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
    /// By type, in bytes; of a string 0, as its length varies.
    static const unsigned long valueSizes[6];
    /// @}

    /// @name Making and copying
    /// @{

    QBLVariant();
    QBLVariant(const QBLVariant& other);
    virtual ~QBLVariant();
    /// Copies of a string as many characters as its size says, filled up with zeros.
    // NOLINTNEXTLINE(misc-unconventional-assign-operator): it has a virtual slot
    virtual QBLVariant& operator=(const QBLVariant& other);
    /// @}

    /// @name Comparing
    /// @{

    /// Equal are values of the same type and size: numbers and pointers as such, strings by their
    /// characters up to a zero. One of no type equals any other of no type and its size, one of an
    /// unknown tag only itself.
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

    /// Each stores the value if it has this very type; otherwise false, and the argument stays.
    bool getValue(long& value) const;
    bool getValue(unsigned long& value) const;
    bool getValue(double& value) const;
    bool getValue(void*& value) const;
    /// @param value  receives the variant's own string, which may be null; null where the type is
    ///     another. It ends with the value: at the next set, clear(), assignment, or destructor.
    bool getValue(char*& value) const;
    /// The value as text: integers in decimal, doubles as 1.500000e+00 whatever the locale,
    /// pointers in hexadecimal, "<unknown>" or "<invalid>". As much of it as fits is stored, with a
    /// zero behind it.
    /// @param bufferSize  in bytes, of which all are written, as by strncpy(3); only the first for
    ///     a null string or one of size 0; nothing for 0
    /// @return whether all fitted; of a string, whether as many bytes as its size says would, and a
    ///     zero, whatever its length
    bool getValue(char* buffer, unsigned long bufferSize) const;
    /// @}

    /// @name Setting the value
    /// @{

    /// Each gives true.
    bool setValue(long value);
    bool setValue(unsigned long value);
    bool setValue(double value);
    /// A string that was held is not freed: whoever took it by getValue() goes on with it, and
    /// frees it with delete[].
    bool setValue(void* value);
    /// @param text  may be part of the string that is held; null makes a null string
    /// @param length  how much of it, and the size in any case; 0 means all up to its zero
    /// @return false, with a null string, for an empty text with length 0; false too where memory
    ///     does not suffice
    bool setValue(const char* text, unsigned long length);

    /// Frees a string, and makes the value zero. Type and size stay.
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
    char* m_pOwned;  // the string to free, whatever the tag says
};

#endif

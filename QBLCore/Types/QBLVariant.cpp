#include "QBLCore/Types/QBLVariant.hpp"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

const std::size_t kNumberSize = 32;

/// Copies at most length bytes of a text into a new array of length + 1 bytes. The bytes after the
/// text are zero. Returns null if memory runs out.
char* copyOf(const char* text, unsigned long length) {
    if (length >= PTRDIFF_MAX) return nullptr;
    char* const copy = new (std::nothrow) char[length + 1];
    if (copy == nullptr) return nullptr;
    const std::size_t count = strnlen(text, length);
    std::memcpy(copy, text, count);
    std::memset(copy + count, 0, length - count + 1);
    return copy;
}

}  // namespace

const unsigned long QBLVariant::valueSizes[6] = {
    0, sizeof(long), sizeof(unsigned long), sizeof(double), 0, sizeof(void*)};

// Reads the bytes of the union as a Value, even if another member was stored last.
template <class Value>
Value QBLVariant::as() const {
    Value value;
    std::memcpy(&value, &m_value, sizeof value);
    return value;
}

template <class Value>
bool QBLVariant::get(QBLVariantType type, Value& value) const {
    if (m_type == type) value = as<Value>();
    return m_type == type;
}

template <class Value>
bool QBLVariant::set(QBLVariantType type, Value value) {
    clear();
    m_type = type;
    m_uSize = valueSizes[type];
    std::memcpy(&m_value, &value, sizeof value);
    return true;
}

QBLVariant::QBLVariant() : m_uSize(0), m_type(QBLVariantUnknown), m_value(), m_pOwned(nullptr) {
    clear();
}

QBLVariant::QBLVariant(const QBLVariant& other) : QBLVariant() { QBLVariant::operator=(other); }

QBLVariant::~QBLVariant() { clear(); }

// NOLINTNEXTLINE(misc-unconventional-assign-operator): it has a virtual slot
QBLVariant& QBLVariant::operator=(const QBLVariant& other) {
    if (this == &other) return *this;
    clear();
    m_type = other.m_type;
    m_uSize = other.m_uSize;
    if (m_type == QBLVariantString) {
        if (const char* text = other.string()) hold(copyOf(text, m_uSize), m_uSize);
    } else if (m_type != QBLVariantUnknown && m_type <= QBLVariantPointer) {
        m_value = other.m_value;
    }
    return *this;
}

bool QBLVariant::operator==(const QBLVariant& other) const {
    if (this == &other) return true;
    if (m_type != other.m_type || m_uSize != other.m_uSize) return false;
    switch (m_type) {
        case QBLVariantUnknown:
            return true;
        case QBLVariantLong:
        case QBLVariantUnsignedLong:
            return as<unsigned long>() == other.as<unsigned long>();
        case QBLVariantDouble:
            return as<double>() == other.as<double>();
        case QBLVariantString: {
            const char *a = string(), *b = other.string();
            return a == b || (a != nullptr && b != nullptr && std::strcmp(a, b) == 0);
        }
        case QBLVariantPointer:
            return as<void*>() == other.as<void*>();
        default:
            return false;
    }
}

bool QBLVariant::operator!=(const QBLVariant& other) const { return !(*this == other); }

bool QBLVariant::getValue(long& value) const { return get(QBLVariantLong, value); }
bool QBLVariant::getValue(unsigned long& value) const { return get(QBLVariantUnsignedLong, value); }
bool QBLVariant::getValue(double& value) const { return get(QBLVariantDouble, value); }
bool QBLVariant::getValue(void*& value) const { return get(QBLVariantPointer, value); }

bool QBLVariant::getValue(char*& value) const {
    value = m_type == QBLVariantString ? string() : nullptr;
    return m_type == QBLVariantString;
}

bool QBLVariant::getValue(char* buffer, unsigned long bufferSize) const {
    if (buffer == nullptr || bufferSize == 0) return false;
    char local[kNumberSize];
    const char* const text = m_type == QBLVariantString ? string() : format(local);
    const bool held = m_type == QBLVariantString;
    if (held && (text == nullptr || m_uSize == 0)) {
        buffer[0] = '\0';
        return true;
    }
    // For a string, the result depends on the variant's size, which may differ from the length.
    const std::size_t size = held ? m_uSize : std::strlen(text);
    std::strncpy(buffer, text, bufferSize);
    buffer[bufferSize - 1] = '\0';
    return bufferSize > size;
}

bool QBLVariant::setValue(long value) { return set(QBLVariantLong, value); }
bool QBLVariant::setValue(unsigned long value) { return set(QBLVariantUnsignedLong, value); }
bool QBLVariant::setValue(double value) { return set(QBLVariantDouble, value); }

bool QBLVariant::setValue(void* value) {
    m_pOwned = nullptr;
    return set(QBLVariantPointer, value);
}

bool QBLVariant::setValue(const char* text, unsigned long length) {
    if (text != nullptr && length == 0) length = std::strlen(text);
    const bool empty = text == nullptr || length == 0;
    std::unique_ptr<char[]> copy(empty ? nullptr : copyOf(text, length));  // clear() may free text
    clear();
    m_uSize = 0;
    m_type = QBLVariantString;
    return empty ? text == nullptr : hold(copy.release(), length);
}

void QBLVariant::clear() {
    delete[] m_pOwned;
    m_pOwned = nullptr;
    std::memset(&m_value, 0, sizeof m_value);
}

// Returns the variant's own string, or null if the value does not point to it. Does not check the
// tag.
char* QBLVariant::string() const { return as<char*>() == m_pOwned ? m_pOwned : nullptr; }

// Makes the variant a string that owns `copy`. If `copy` is null, the variant gets the type
// QBLVariantUnknown.
bool QBLVariant::hold(char* copy, unsigned long size) {
    m_type = copy != nullptr ? QBLVariantString : QBLVariantUnknown;
    m_uSize = copy != nullptr ? size : 0;
    m_pOwned = m_value.m_string = copy;
    return copy != nullptr;
}

// Returns a value that is not a string as text. The text is a constant, or it is in `buffer`, which
// has kNumberSize bytes.
const char* QBLVariant::format(char* buffer) const {
    char *end = buffer, *const limit = buffer + kNumberSize - 1;
    switch (m_type) {
        case QBLVariantUnknown:
            return "<unknown>";
        case QBLVariantLong:
            end = std::to_chars(buffer, limit, as<long>()).ptr;
            break;
        case QBLVariantUnsignedLong:
            end = std::to_chars(buffer, limit, as<unsigned long>()).ptr;
            break;
        case QBLVariantDouble:
            end = std::to_chars(buffer, limit, as<double>(), std::chars_format::scientific, 6).ptr;
            break;
        case QBLVariantPointer:
            end = std::to_chars(buffer, limit, as<std::uintptr_t>(), 16).ptr;
            break;
        default:
            return "<invalid>";
    }
    *end = '\0';
    return buffer;
}

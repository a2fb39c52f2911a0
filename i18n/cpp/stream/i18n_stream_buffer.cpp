#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/stream/i18n_stream_sides.hpp"

namespace {

constexpr std::size_t kLeastBuffer = 4096;

}  // namespace

I18NStreamBuffer::~I18NStreamBuffer() { std::free(m_pBytes); }

void I18NStreamBuffer::reserve(std::size_t more) {
    if (m_iCapacity - m_iSize >= more) return;
    std::size_t needed = 0;
    const bool fits = !__builtin_add_overflow(m_iSize, more, &needed);
    const std::size_t twice = m_iCapacity <= SIZE_MAX / 2 ? m_iCapacity * 2 : 0;
    const std::size_t capacity = std::max({needed, twice, kLeastBuffer});
    auto* bytes = fits ? std::realloc(m_pBytes, capacity) : nullptr;
    if (bytes == nullptr) qblThrowNoMemory(QBL_HERE);
    m_pBytes = static_cast<char*>(bytes);
    m_iCapacity = capacity;
}

void I18NStreamBuffer::append(const void* bytes, std::size_t size) {
    if (size == 0) return;
    reserve(size);
    std::memcpy(end(), bytes, size);
    m_iSize += size;
}

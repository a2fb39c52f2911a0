#ifndef QBLCORE_UTILITY_INTERNAL_QBLBASE64KERNELS_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLBASE64KERNELS_HPP

#include <cstddef>

#include "QBLCore/Utility/internal/QBLBase64Alphabet.hpp"

/// The inner loops for one set of instructions. They do whole groups from the begin, as many as
/// they like.
struct QBLBase64Kernels {
    /// @return the bytes done, a multiple of 3
    std::size_t (*encode)(const QBLBase64Alphabet& alphabet, const unsigned char* data,
                          std::size_t length, char* out);
    /// Stops at what has to be looked at one by one, such as blanks. Writes exactly the bytes of
    /// the characters done, each only after those were read.
    /// @return the characters done, a multiple of 4
    std::size_t (*decode)(const QBLBase64Alphabet& alphabet, const char* text, std::size_t length,
                          unsigned char* out);
};

/// For any processor, for one with SSSE3, for one with AVX2.
extern const QBLBase64Kernels kQBLBase64Scalar, kQBLBase64Ssse3, kQBLBase64Avx2;

/// The best for this processor.
inline const QBLBase64Kernels& qblBase64Kernels() {
    if (__builtin_cpu_supports("avx2")) return kQBLBase64Avx2;
    return __builtin_cpu_supports("ssse3") ? kQBLBase64Ssse3 : kQBLBase64Scalar;
}

void qblBase64Encode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const unsigned char* data, std::size_t length, char* out);
/// @param length  receives the number of bytes
/// @return false for what cannot be decoded
bool qblBase64Decode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const char* text, unsigned char* out, std::size_t& length);

#endif

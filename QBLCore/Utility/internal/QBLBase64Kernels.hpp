#ifndef QBLCORE_UTILITY_INTERNAL_QBLBASE64KERNELS_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLBASE64KERNELS_HPP

#include <cstddef>

#include "QBLCore/Utility/internal/QBLBase64Alphabet.hpp"

/// The inner loops for one instruction set. They process whole groups from the beginning, and may
/// stop before the end.
struct QBLBase64Kernels {
    /// @return the number of bytes encoded, a multiple of 3
    std::size_t (*encode)(const QBLBase64Alphabet& alphabet, const unsigned char* data,
                          std::size_t length, char* out);
    /// Stops before characters that need individual treatment, such as blanks. Writes no bytes
    /// after the decoded bytes. Reads the characters of each byte before it writes the byte.
    /// @return the number of characters decoded, a multiple of 4
    std::size_t (*decode)(const QBLBase64Alphabet& alphabet, const char* text, std::size_t length,
                          unsigned char* out);
};

/// The kernels for any processor, and for processors with SSSE3, AVX2, and AVX-512 with VBMI.
extern const QBLBase64Kernels kQBLBase64Scalar, kQBLBase64Ssse3, kQBLBase64Avx2, kQBLBase64Vbmi;

inline bool qblBase64HasVbmi() {
    return __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw");
}

/// Returns the best kernels for this processor.
inline const QBLBase64Kernels& qblBase64Kernels() {
    if (qblBase64HasVbmi()) return kQBLBase64Vbmi;
    if (__builtin_cpu_supports("avx2")) return kQBLBase64Avx2;
    return __builtin_cpu_supports("ssse3") ? kQBLBase64Ssse3 : kQBLBase64Scalar;
}

void qblBase64Encode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const unsigned char* data, std::size_t length, char* out);
/// @param length  receives the number of bytes
/// @return false if the text cannot be decoded
bool qblBase64Decode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const char* text, unsigned char* out, std::size_t& length);

#endif

#include <cstring>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

namespace {

/// Decodes a text in stretches; a group may begin in one stretch and end in a later one.
class Decoder {
public:
    Decoder(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet, unsigned char* out)
        : m_kernels(kernels), m_alphabet(alphabet), m_pOut(out) {}

    /// @return false for an invalid character
    bool take(const char* at, const char* end) {
        while (at != end) {
            if (m_iHeld == 0) {
                at += groups(m_kernels, at, end);
                if (at == end) break;
                if (isSkipped(*at)) {
                    while (++at != end && isSkipped(*at)) continue;
                    continue;
                }
                if (end - at == 4 && takePadded(reinterpret_cast<const unsigned char*>(at))) break;
                at += groups(kQBLBase64Scalar, at, end);
                if (at == end) break;
                if (end - at >= 4 && takePadded(reinterpret_cast<const unsigned char*>(at))) {
                    at += 4;
                    continue;
                }
            }
            if (!takeOne(static_cast<unsigned char>(*at++))) return false;
        }
        return true;
    }
    /// Ends the last group. @return false if the group has only one character
    bool end() {
        if (m_iHeld == 1) return false;
        if (m_iHeld != 0) putGroup();
        return true;
    }
    unsigned char* out() const { return m_pOut; }

private:
    bool isSkipped(char c) const {
        return m_alphabet.value[static_cast<unsigned char>(c)] == QBLBase64Alphabet::kSkipped;
    }

    std::size_t groups(const QBLBase64Kernels& kernels, const char* at, const char* end) {
        const std::size_t done =
            kernels.decode(m_alphabet, at, static_cast<std::size_t>(end - at), m_pOut);
        m_pOut += done / 4 * 3;
        return done;
    }

    /// Decodes a group that ends with one or two "=", as the last group of most texts does.
    /// @return false, without writing anything, for any other group
    bool takePadded(const unsigned char* at) {
        const unsigned first = m_alphabet.value[at[0]], second = m_alphabet.value[at[1]];
        const unsigned third = m_alphabet.value[at[2]];
        if (at[3] != '=' || (first | second) > 63) return false;
        if (at[2] != '=' && third > 63) return false;
        *m_pOut++ = static_cast<unsigned char>(first << 2 | second >> 4);
        if (at[2] != '=') *m_pOut++ = static_cast<unsigned char>(second << 4 | third >> 2);
        return true;
    }

    bool takeOne(unsigned char c) {
        const unsigned char value = m_alphabet.value[c];
        if (value == QBLBase64Alphabet::kInvalid) return false;
        if (value == QBLBase64Alphabet::kSkipped) return true;
        m_bPad[m_iHeld] = value == QBLBase64Alphabet::kPad;
        m_value[m_iHeld] = m_bPad[m_iHeld] ? 0U : value;
        if (++m_iHeld == 4) putGroup();
        return true;
    }

    // The upper bits of values above 63 change the bits of neighbouring values in the same byte.
    void putGroup() {
        *m_pOut++ = static_cast<unsigned char>(m_value[0] << 2 | m_value[1] >> 4);
        if (m_iHeld > 2 && !m_bPad[2])
            *m_pOut++ = static_cast<unsigned char>(m_value[1] << 4 | m_value[2] >> 2);
        if (m_iHeld > 3 && !m_bPad[3])
            *m_pOut++ = static_cast<unsigned char>(m_value[2] << 6 | m_value[3]);
        m_iHeld = 0;
    }

    const QBLBase64Kernels& m_kernels;
    const QBLBase64Alphabet& m_alphabet;
    unsigned char* m_pOut;
    unsigned m_value[4] = {};  // values of the group's characters so far
    bool m_bPad[4] = {};
    int m_iHeld = 0;
};

}  // namespace

void qblBase64Encode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const unsigned char* data, std::size_t length, char* out) {
    std::size_t done = kernels.encode(alphabet, data, length, out);
    if (length - done >= 3)
        done += kQBLBase64Scalar.encode(alphabet, data + done, length - done, out + done / 3 * 4);
    out += done / 3 * 4;
    if (done < length) {
        const bool two = length - done == 2;
        const unsigned first = data[done], second = two ? data[done + 1] : 0U;
        *out++ = static_cast<char>(alphabet.character[first >> 2]);
        *out++ = static_cast<char>(alphabet.character[(first & 3) << 4 | second >> 4]);
        *out++ = two ? static_cast<char>(alphabet.character[(second & 15) << 2]) : '=';
        *out++ = '=';
    }
    *out = '\0';
}

bool qblBase64Decode(const QBLBase64Kernels& kernels, const QBLBase64Alphabet& alphabet,
                     const char* text, unsigned char* out, std::size_t& length) {
    // Short, so that a stretch is still in the first-level cache after memchr() has read it.
    constexpr std::size_t kStretch = 4096;
    Decoder decoder(kernels, alphabet, out);
    for (const char* end = nullptr; end == nullptr;) {
        end = static_cast<const char*>(std::memchr(text, '\0', kStretch));  // faster than strnlen
        const char* const stretch = end != nullptr ? end : text + kStretch;
        if (!decoder.take(text, stretch)) return false;
        text = stretch;
    }
    if (!decoder.end()) return false;
    length = static_cast<std::size_t>(decoder.out() - out);
    return true;
}

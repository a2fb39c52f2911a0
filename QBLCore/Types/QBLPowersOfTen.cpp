#include "QBLCore/Types/internal/QBLPowersOfTen.hpp"

namespace {

/// A 128-bit number; the most significant part comes first.
struct Wide {
    std::uint32_t part[4];

    constexpr Wide timesTen() const {
        Wide out{};
        std::uint64_t carry = 0;
        for (int i = 3; i >= 0; --i) {
            carry += std::uint64_t{part[i]} * 5;
            out.part[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        // Shifts the product of up to 131 bits so that its highest bit is at the top again.
        const int shift = carry >= 4 ? 3 : 2;
        for (std::uint32_t& p : out.part) {
            const std::uint64_t both = carry << 32 | p;
            carry = p;
            p = static_cast<std::uint32_t>(both >> shift);
        }
        return out;
    }

    constexpr Wide byTen() const {
        // Multiplies by 8 or 4 and divides by 5. The factor makes the quotient 128 bits long.
        const int shift = part[0] < 0xA0000000U ? 3 : 2;
        Wide out{};
        std::uint64_t rest = part[0] >> (32 - shift);
        for (int i = 0; i < 4; ++i) {
            const std::uint32_t next = i < 3 ? part[i + 1] >> (32 - shift) : 0;
            const std::uint64_t both =
                rest << 32 | static_cast<std::uint32_t>(part[i] << shift) | next;
            out.part[i] = static_cast<std::uint32_t>(both / 5);
            rest = both % 5;
        }
        return out;
    }
};

constexpr QBLPowersOfTen makePowers() {
    QBLPowersOfTen out{};
    Wide up{{0x80000000U, 0, 0, 0}}, down = up;
    const auto put = [&out](int power, const Wide& bits) {
        out[static_cast<unsigned>(power - kQBLLowestPower)] =
            std::uint64_t{bits.part[0]} << 32 | bits.part[1];
    };
    put(0, up);
    for (int power = 1; power <= kQBLHighestPower; ++power) put(power, up = up.timesTen());
    for (int power = -1; power >= kQBLLowestPower; --power) put(power, down = down.byTen());
    return out;
}

}  // namespace

const QBLPowersOfTen kQBLPowersOfTen = makePowers();

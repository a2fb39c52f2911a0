#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "QBLCore/Types/internal/QBLCharacters.hpp"
#include "QBLCore/Types/internal/QBLPowersOfTen.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"

// The digits are the integer part of value * 10^n, computed with 64 bits of the power of ten. The
// bits after the integer part decide the rounding. If they are so close to one half that their
// precision does not suffice, std::to_chars formats the number, which is exact but slower.

namespace {

/// The number digits * 10^(exponent + 1 - number of digits).
struct Rounded {
    std::uint32_t digits;
    int exponent;
};

constexpr std::uint32_t powerOfTen(int n) { return n == 0 ? 1 : 10 * powerOfTen(n - 1); }

/// @param bits  the bits of a positive finite value
/// @return false if the precision does not suffice
template <int kDigits>
bool round(std::uint64_t bits, Rounded& out) {
    constexpr std::uint32_t kLimit = powerOfTen(kDigits);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << 52) - 1);
    int exponent = static_cast<int>(bits >> 52);
    if (exponent != 0)
        mantissa |= std::uint64_t{1} << 52;
    else
        exponent = 1;
    // After these lines, the value is mantissa * 2^exponent, and the mantissa's highest bit is set.
    const int shift = __builtin_clzll(mantissa);
    mantissa <<= shift;
    exponent -= 1075 + shift;

    // The decimal exponent of the highest bit alone. The exponent of the value is the same or
    // greater by 1.
    int decimal = static_cast<int>((exponent + 63) * std::int64_t{1292913986} >> 32);
    const int power = kDigits - 1 - decimal;
    const std::uint64_t product = qblMultiplyHigh(mantissa, qblPowerOfTen(power));
    // The exact product is at least `product` and less than `product` + 2.
    const int places = -(exponent + qblPowerOfTwo(power) + 1);
    const std::uint64_t fraction = product & ((std::uint64_t{1} << places) - 1);
    const std::uint64_t whole = product >> places;
    bool up;
    if (whole < kLimit) {
        const std::uint64_t half = std::uint64_t{1} << (places - 1);
        if (fraction + 2 > half && fraction <= half) return false;
        out.digits = static_cast<std::uint32_t>(whole);
        up = fraction > half;
    } else {
        ++decimal;
        out.digits = static_cast<std::uint32_t>(whole / 10);
        const auto rest = static_cast<unsigned>(whole - std::uint64_t{out.digits} * 10);
        if ((rest == 5 && fraction == 0) ||
            (rest == 4 && fraction + 2 > std::uint64_t{1} << places))
            return false;
        up = rest >= 5;
    }
    if (up && ++out.digits == kLimit) {
        out.digits = kLimit / 10;
        ++decimal;
    }
    out.exponent = decimal;
    return true;
}

void writeDigits(char* out, std::uint32_t digits, int count) {
    if (count == 9) {
        *out = static_cast<char>('0' + digits / 100000000);
        qblWriteEight(out + 1, digits % 100000000);
    } else {
        qblWriteFour(qblWritePair(out, digits / 10000), digits % 10000);
    }
}

char* writeRounded(char* out, const Rounded& number, int count) {
    char digits[9];
    writeDigits(digits, number.digits, count);
    const int exponent = number.exponent;
    const bool fixed = exponent >= -4 && exponent < count;
    int used = count;
    while (used > 1 && digits[used - 1] == '0') --used;
    if (fixed && exponent < 0) {
        std::memcpy(out, "0.000", static_cast<std::size_t>(1 - exponent));
        out += 1 - exponent;
        std::memcpy(out, digits, static_cast<std::size_t>(used));
        return out + used;
    }
    const int whole = fixed ? exponent + 1 : 1;
    std::memcpy(out, digits, static_cast<std::size_t>(whole));
    if (used > whole) {
        out[whole] = '.';
        std::memcpy(out + whole + 1, digits + whole, static_cast<std::size_t>(used - whole));
        out += used + 1;
    } else {
        out += whole;
    }
    if (fixed) return out;
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    auto rest = static_cast<std::uint32_t>(exponent < 0 ? -exponent : exponent);
    if (rest >= 100) {
        *out++ = static_cast<char>('0' + rest / 100);
        rest %= 100;
    }
    return qblWritePair(out, rest);
}

/// Uses a local array, because std::to_chars may overwrite the whole array that it gets.
char* writeExactly(char* out, double value, int digits) {
    char text[32];
    const char* const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
    std::memcpy(out, text, static_cast<std::size_t>(end - text));
    return out + (end - text);
}

}  // namespace

char* qblWriteReal(char* out, double value, int digits) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const std::uint64_t magnitude = bits & ~(std::uint64_t{1} << 63);
    Rounded number;
    if (magnitude == 0 || magnitude >= std::uint64_t{0x7FF} << 52 ||
        !(digits == 9 ? round<9>(magnitude, number) : round<6>(magnitude, number)))
        return writeExactly(out, value, digits);
    if (bits != magnitude) *out++ = '-';
    return writeRounded(out, number, digits);
}

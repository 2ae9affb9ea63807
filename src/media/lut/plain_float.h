#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace cratewell {

// The longest stretch that `readPlainFloat` looks at.
inline constexpr int plainFloatReach = 48;

namespace plain_float {

static_assert(std::endian::native == std::endian::little, "eight bytes are read as one number");

constexpr auto everyByte = [](std::uint64_t byte) { return byte * 0x0101010101010101U; };

// From 10^-22 to 10^22; those from 1 on are exact.
constexpr int largestExponent = 22;
constexpr std::array powersOfTen{
    1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8,
    1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,  1e7,
    1e8,   1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21, 1e22};
constexpr std::array<std::uint64_t, 9> wholePowersOfTen{1,      10,      100,      1000,     10000,
                                                        100000, 1000000, 10000000, 100000000};

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Eight digit values, the first in the lowest byte, as one number.
inline std::uint64_t joinDigits(std::uint64_t digits)
{
    digits = digits * 10 + (digits >> 8);
    const std::uint64_t pairs = 0x000000FF000000FFU;
    return ((digits & pairs) * (100 + (1000000ULL << 32)) +
            ((digits >> 16) & pairs) * (1 + (10000ULL << 32))) >>
           32;
}

// Up to eight digits, behind those of `mantissa`; gives how many there were.
[[gnu::always_inline]] inline int readDigits(const char *text, std::uint64_t &mantissa)
{
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof bytes);
    bytes ^= everyByte('0');
    const std::uint64_t others = ((bytes + everyByte(0x76)) | bytes) & everyByte(0x80);
    if (others == 0) {
        mantissa = mantissa * wholePowersOfTen[8] + joinDigits(bytes);
        return 8;
    }
    const int count = std::countr_zero(others) / 8;
    // Shifted in two steps, because there may be none.
    mantissa = mantissa * wholePowersOfTen[size_t(count)] + joinDigits(bytes << 8 << (56 - 8 * count));
    return count;
}

// The float nearest to mantissa * 10^exponent, for up to 53 bits and a power of the list; false where that is
// hard to tell.
[[gnu::always_inline]] inline bool round(std::uint64_t mantissa, int exponent, bool negative, float &value)
{
    // The power and the product are both rounded, so the product lies up to two units of its last place
    // beside the number. Its float is the right one unless the middle between two floats may lie there too,
    // or floats are no longer normal.
    const double near = double(std::int64_t(mantissa)) * powersOfTen[size_t(exponent + largestExponent)];
    constexpr std::uint64_t middle = 0x10000000U;
    const std::uint64_t belowFloat = std::bit_cast<std::uint64_t>(near) & (2 * middle - 1);
    const bool decided = belowFloat - (middle - 3) > 6;
    const bool normal = near >= double(std::numeric_limits<float>::min()) &&
                        near <= double(std::numeric_limits<float>::max());
    value = negative ? -float(near) : float(near);
    return decided && (normal || mantissa == 0);
}

// What the shortest form below leaves over.
inline const char *readLongerFloat(const char *text, bool negative, float &value)
{
    const char *const start = text;
    std::uint64_t mantissa = 0;
    while (isDigit(*text)) {
        if (text - start == 3)
            return nullptr;
        mantissa = mantissa * 10 + std::uint64_t(*text++ - '0');
    }
    std::ptrdiff_t digits = text - start;
    int exponent = 0;
    if (*text == '.') {
        int count = readDigits(++text, mantissa);
        if (count == 8)
            count += readDigits(text + 8, mantissa);
        text += count;
        if (isDigit(*text))
            return nullptr;
        digits += count;
        exponent = -count;
    }
    if (digits == 0 || mantissa >> 53 != 0)
        return nullptr;
    if ((*text | 0x20) == 'e') {
        ++text;
        const bool down = *text == '-';
        text += down || *text == '+' ? 1 : 0;
        if (!isDigit(*text))
            return nullptr;
        int written = *text++ - '0';
        if (isDigit(*text))
            written = written * 10 + (*text++ - '0');
        if (isDigit(*text))
            return nullptr;
        exponent += down ? -written : written;
    }
    if (exponent < -largestExponent || exponent > largestExponent)
        return nullptr;
    return round(mantissa, exponent, negative, value) ? text : nullptr;
}

} // namespace plain_float

// The common short form of a number read fast: a sign or none, at most three digits, a point and at most
// sixteen digits or none, an exponent of at most two digits or none. Gives the end of the number, or null
// where it is written otherwise or one product of doubles cannot tell its nearest float; then
// floatFromText() decides. All of the reach must be readable.
[[gnu::always_inline]] inline const char *readPlainFloat(const char *text, float &value)
{
    using namespace plain_float;
    const bool negative = *text == '-';
    text += negative || *text == '+' ? 1 : 0;
    // Mostly one digit, a point and some more.
    if (isDigit(*text) && text[1] == '.') {
        auto mantissa = std::uint64_t(*text - '0');
        const int count = readDigits(text + 2, mantissa);
        const char *const end = text + 2 + count;
        if (count < 8 && (*end | 0x20) != 'e')
            return round(mantissa, -count, negative, value) ? end : nullptr;
    }
    return readLongerFloat(text, negative, value);
}

} // namespace cratewell

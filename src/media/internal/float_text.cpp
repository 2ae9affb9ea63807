#include "media/internal/float_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace cratewell {

namespace {

static_assert(std::endian::native == std::endian::little, "eight bytes are read as one number");

constexpr auto everyByte = [](std::uint64_t byte) { return byte * 0x0101010101010101U; };

// Exact as doubles.
constexpr std::array powersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::array<std::uint64_t, 9> wholePowersOfTen{1,      10,      100,      1000,     10000,
                                                        100000, 1000000, 10000000, 100000000};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
}

// Eight digit values, the first in the lowest byte, as one number.
std::uint64_t joinDigits(std::uint64_t digits)
{
    digits = digits * 10 + (digits >> 8);
    const std::uint64_t pairs = 0x000000FF000000FFU;
    return ((digits & pairs) * (100 + (1000000ULL << 32)) +
            ((digits >> 16) & pairs) * (1 + (10000ULL << 32))) >>
           32;
}

// Up to eight digits of a fraction; gives how many there were.
int readFraction(const char *text, std::uint64_t &mantissa)
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
    if (count > 0)
        mantissa = mantissa * wholePowersOfTen[size_t(count)] + joinDigits(bytes << (64 - 8 * count));
    return count;
}

// Whether a number that does not fit is too large rather than too small, from the place of its first digit
// and its exponent.
bool isTooLarge(std::string_view unsignedText, bool hexadecimal)
{
    const size_t exponentAt = unsignedText.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view digits = unsignedText.substr(0, exponentAt);
    const size_t first = digits.find_first_not_of("0.");
    if (first == std::string_view::npos)
        return false;
    const auto point = std::int64_t(std::min(digits.find('.'), digits.size()));
    const std::int64_t place = point - std::int64_t(first);
    std::int64_t exponent = 0;
    if (exponentAt != std::string_view::npos) {
        std::string_view written = unsignedText.substr(exponentAt + 1);
        const bool negative = written.starts_with('-');
        if (negative || written.starts_with('+'))
            written.remove_prefix(1);
        if (std::from_chars(written.data(), written.data() + written.size(), exponent).ec != std::errc())
            exponent = std::int64_t{1} << 48;
        exponent = negative ? -exponent : exponent;
    }
    return place * (hexadecimal ? 4 : 1) + exponent > 0;
}

} // namespace

std::optional<float> floatFromText(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty() || text.front() == '-')
        return std::nullopt;
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
    if (hexadecimal) {
        text.remove_prefix(2);
        if (!isHexDigit(text.front()) && text.front() != '.')
            return std::nullopt;
    }
    const char *end = text.data() + text.size();
    float value = 0;
    const auto [stop, error] = std::from_chars(
        text.data(), end, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::invalid_argument || stop != end)
        return std::nullopt;
    if (error == std::errc::result_out_of_range)
        value = isTooLarge(text, hexadecimal) ? std::numeric_limits<float>::infinity() : 0.0F;
    return negative ? -value : value;
}

const char *readPlainFloat(const char *text, float &value)
{
    const bool negative = *text == '-';
    text += negative || *text == '+' ? 1 : 0;
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
        int count = readFraction(++text, mantissa);
        if (count == 8)
            count += readFraction(text + 8, mantissa);
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
    if (std::abs(exponent) >= int(powersOfTen.size()))
        return nullptr;
    const double power = powersOfTen[size_t(std::abs(exponent))];
    const double nearest = exponent < 0 ? double(mantissa) / power : double(mantissa) * power;

    // One correctly rounded operation on exact doubles: its float is the right one unless the double lies
    // just between two floats, or where floats are no longer normal.
    const std::uint64_t belowFloat = std::bit_cast<std::uint64_t>(nearest) & 0x1FFFFFFFU;
    const bool normal = nearest >= double(std::numeric_limits<float>::min()) &&
                        nearest <= double(std::numeric_limits<float>::max());
    if (belowFloat == 0x10000000U || (mantissa != 0 && !normal))
        return nullptr;
    value = negative ? -float(nearest) : float(nearest);
    return text;
}

} // namespace cratewell

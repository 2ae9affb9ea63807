#include "media/lut/float_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

namespace cratewell {

namespace {

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
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

} // namespace cratewell

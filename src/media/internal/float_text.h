#pragma once

#include <optional>
#include <string_view>

namespace cratewell {

// The 32-bit float nearest to what `text` writes, whatever the locale; nothing unless the whole of it is one
// number. A number is a sign or none, then digits with a point or none and an exponent or none ("-1.5e-3",
// "5.",
// ".5"), the same in hexadecimal after "0x" with a power of two after "p", or "inf", "infinity", "nan" or
// "nan(letters)" in any case. What is too large becomes infinity, what is too small zero.
std::optional<float> floatFromText(std::string_view text);

// The longest stretch that `readPlainFloat` looks at.
inline constexpr int plainFloatReach = 48;

// The common short form read fast: a sign or none, at most three digits, a point and at most sixteen digits
// or none, an exponent of at most two digits or none. Gives the end of the number, or null where it is
// written otherwise or one operation on doubles cannot tell its nearest float; then floatFromText() decides.
// All of the reach must be readable.
const char *readPlainFloat(const char *text, float &value);

} // namespace cratewell

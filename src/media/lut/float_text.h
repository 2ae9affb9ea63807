#pragma once

#include <optional>
#include <string_view>

namespace cratewell {

// The 32-bit float nearest to what `text` writes, whatever the locale; nothing unless the whole of it is one
// number. A number is a sign or none, then digits with a point or none and an exponent or none (-1.5e-3), the
// same in hexadecimal after 0x with a power of two after p, or one of inf, infinity, nan and nan(letters) in
// any case. What is too large becomes infinity, what is too small zero.
std::optional<float> floatFromText(std::string_view text);

} // namespace cratewell

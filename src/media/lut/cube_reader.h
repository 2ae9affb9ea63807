#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace cratewell {

// A three-dimensional color table as a .cube file holds it.
struct CubeTable
{
    std::int64_t size = 0; // points along each edge, at least 2
    // size^3 points of red, green, blue and 1, the red index running fastest, then green, then blue.
    std::unique_ptr<float[]> points;
    std::optional<std::string> title; // UTF-8
};

// Longer texts are refused. That is room for 2 million points (128 along an edge, the most that is in use) at
// over a hundred letters each.
inline constexpr std::size_t longestCubeText = std::size_t{256} << 20;
// With its points a text takes at most so many times its length of memory.
inline constexpr int cubeReadingCost = 4;

// Reads the text of a .cube file, UTF-8 with or without a byte order mark. Nothing for what is no such text
// or does not fill its table exactly. Touches no other state: any thread.
//
// The text is lines; blanks around each are dropped, as are empty ones and those that begin with "#". The
// first word says what a line is, in any case:
//   TITLE "text"          the rest of the line without the quotes around it; the last one counts
//   LUT_3D_SIZE n         points along an edge: the last word of the line, 0 when that is no whole number;
//                         the last such line counts, wherever it stands
//   LUT_1D_SIZE n         a one-dimensional table: the text is refused
//   DOMAIN_MIN r g b      what the rows call 0 and 1: every word after the first that is a number; one that
//   DOMAIN_MAX r g b      misses repeats the last; counts for the rows below it
//   0.1 0.2 0.3           three numbers (floatFromText) and anything after them: a point of the table
//   anything else         is passed over
// A point is kept as (number - min) / (max - min), a divisor of at most 0.0001 counting as 0.0001, and is not
// clamped. After a domain line without any number the first point refuses the text.
std::optional<CubeTable> readCube(std::string_view text);

} // namespace cratewell

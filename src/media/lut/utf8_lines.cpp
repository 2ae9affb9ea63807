#include "media/lut/utf8_lines.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace cratewell {

using namespace std::string_view_literals;

namespace {

static_assert(std::endian::native == std::endian::little, "eight bytes are read as one number");

constexpr std::uint64_t everyByte(std::uint64_t byte)
{
    return byte * 0x0101010101010101U;
}

std::uint64_t eightBytes(const char *text)
{
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof bytes);
    return bytes;
}

// The length of the well-formed sequence at the start of a text; 0 when there is none.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [&](size_t index) { return index < text.size() ? std::uint8_t(text[index]) : 0; };
    const auto follows = [&](size_t index) { return (byte(index) & 0xC0) == 0x80; };
    const int first = byte(0);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return follows(1) ? 2 : 0;
    if ((first & 0xF0) == 0xE0) {
        const bool overlong = first == 0xE0 && byte(1) < 0xA0;
        const bool surrogate = first == 0xED && byte(1) > 0x9F;
        return follows(1) && follows(2) && !overlong && !surrogate ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool overlong = first == 0xF0 && byte(1) < 0x90;
        const bool tooLarge = first == 0xF4 && byte(1) > 0x8F;
        return follows(1) && follows(2) && follows(3) && !overlong && !tooLarge ? 4 : 0;
    }
    return 0;
}

// Beside LF, VT, FF and CR.
constexpr std::array wideLineEnds{"\u0085"sv, "\u2028"sv, "\u2029"sv};

constexpr std::array blanks{" "sv,      "\t"sv,     "\u00A0"sv, "\u1680"sv, "\u2000"sv, "\u2001"sv,
                            "\u2002"sv, "\u2003"sv, "\u2004"sv, "\u2005"sv, "\u2006"sv, "\u2007"sv,
                            "\u2008"sv, "\u2009"sv, "\u200A"sv, "\u202F"sv, "\u205F"sv, "\u3000"sv};

// Of the blank that is there; 0 when none is.
template<typename IsThere> std::size_t blankLength(IsThere isThere)
{
    for (const std::string_view blank : blanks) {
        if (isThere(blank))
            return blank.size();
    }
    return 0;
}

// 0 where no line ends.
std::size_t lineEndLength(const char *at, const char *end)
{
    if (isAsciiLineEnd(*at))
        return 1;
    if ((*at & 0x80) != 0) {
        const std::string_view rest(at, size_t(end - at));
        for (const std::string_view wide : wideLineEnds) {
            if (rest.starts_with(wide))
                return wide.size();
        }
    }
    return 0;
}

// Whether one of the wide ends stands just before `at`.
bool endsWide(const char *start, const char *at)
{
    const std::string_view before(start, size_t(at - start));
    return (at[-1] & 0x80) != 0 &&
           std::ranges::any_of(wideLineEnds, [&](std::string_view wide) { return before.ends_with(wide); });
}

// The highest bit of each byte that ends a line; those above 127 must be looked at by themselves.
std::uint64_t asciiLineEnds(std::uint64_t bytes)
{
    const std::uint64_t low = bytes & everyByte(0x7F);
    return (low + everyByte(0x80 - '\n')) & ~(low + everyByte(0x7F - '\r')) & everyByte(0x80);
}

// The first byte from `at` on that ends a line or is no ASCII.
const char *findNoteworthy(const char *at, const char *end)
{
    for (; end - at >= 8; at += 8) {
        const std::uint64_t bytes = eightBytes(at);
        if (const std::uint64_t found = asciiLineEnds(bytes) | (bytes & everyByte(0x80)))
            return at + std::countr_zero(found) / 8;
    }
    while (at < end && !isAsciiLineEnd(*at) && (*at & 0x80) == 0)
        ++at;
    return at;
}

} // namespace

std::optional<std::size_t> countLines(std::string_view text)
{
    std::size_t ends = 0;
    while (!text.empty()) {
        if (text.size() >= 8) {
            const std::uint64_t bytes = eightBytes(text.data());
            if ((bytes & everyByte(0x80)) == 0) {
                // Each byte is 0 or 1; the highest one of the product is their sum.
                ends += ((asciiLineEnds(bytes) >> 7) * everyByte(1)) >> 56;
                text.remove_prefix(8);
                continue;
            }
        }
        const std::size_t length = sequenceLength(text);
        if (length == 0)
            return std::nullopt;
        ends += lineEndLength(text.data(), text.data() + text.size()) > 0 ? 1 : 0;
        text.remove_prefix(length);
    }
    return ends + 1;
}

std::string_view trimmed(std::string_view line)
{
    while (const size_t length = blankLength([&](std::string_view blank) { return line.starts_with(blank); }))
        line.remove_prefix(length);
    while (const size_t length = blankLength([&](std::string_view blank) { return line.ends_with(blank); }))
        line.remove_suffix(length);
    return line;
}

bool Utf8Lines::next(std::string_view &line)
{
    if (atEnd())
        return false;
    const char *at = m_position;
    for (;; ++at) {
        at = findNoteworthy(at, m_end);
        const std::size_t length = at == m_end ? 0 : lineEndLength(at, m_end);
        if (at == m_end || length > 0) {
            line = {m_position, size_t(at - m_position)};
            m_position = at + length;
            return true;
        }
    }
}

void Utf8Lines::skipLineFrom(const char *within)
{
    std::string_view rest;
    m_position = within;
    if (m_end - m_position < 2 || !isAsciiLineEnd(*m_position))
        next(rest);
    else
        m_position += m_position[0] == '\r' && m_position[1] == '\n' ? 2 : 1;
}

void Utf8Lines::moveToLineOf(const char *within)
{
    // Going back meets the last byte of an end first.
    while (within != m_position && !isAsciiLineEnd(within[-1]) && !endsWide(m_position, within))
        --within;
    m_position = within;
}

} // namespace cratewell

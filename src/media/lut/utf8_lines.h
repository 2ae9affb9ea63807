#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace cratewell {

// As many as the text has, or more where CR LF ends them; nothing when it is not UTF-8.
std::optional<std::size_t> countLines(std::string_view text);

// LF, VT, FF or CR.
constexpr bool isAsciiLineEnd(char c)
{
    return c >= '\n' && c <= '\r';
}

// Without the blanks at both ends: tabs, and Unicode's spaces.
std::string_view trimmed(std::string_view line);

// The lines of a valid UTF-8 text, which end at LF, VT, FF, CR, U+0085, U+2028 and U+2029. CR LF may count
// as two ends with an empty line between them.
class Utf8Lines
{
public:
    explicit Utf8Lines(std::string_view text) : m_position(text.data()), m_end(text.data() + text.size()) {}

    bool atEnd() const { return m_position == m_end; }
    const char *position() const { return m_position; }

    // False, and `line` as it was, at the end of the text.
    bool next(std::string_view &line);
    // `within` lies in the line that begins at the position, or is its end.
    void skipLineFrom(const char *within);
    // To the start of the line that `within` stands in, which lies at the position or behind.
    void moveToLineOf(const char *within);

private:
    const char *m_position;
    const char *m_end;
};

} // namespace cratewell

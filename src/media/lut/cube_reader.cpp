#include "media/lut/cube_reader.h"

#include "media/lut/float_text.h"
#include "media/lut/plain_float.h"
#include "media/lut/utf8_lines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <new>
#include <vector>

namespace cratewell {

namespace {

constexpr std::size_t shortestRow = 6; // "0 0 0" and the end of its line

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// The next word of the line, which loses it; empty when there is none.
std::string_view takeWord(std::string_view &line)
{
    const auto start = std::find_if_not(line.begin(), line.end(), isBlank);
    const auto stop = std::find_if(start, line.end(), isBlank);
    const std::string_view word(start, stop);
    line.remove_prefix(size_t(stop - line.begin()));
    return word;
}

bool isKeyword(std::string_view word, std::string_view capitals)
{
    return std::ranges::equal(word, capitals, [](char written, char capital) {
        return written == capital || (capital >= 'A' && capital <= 'Z' && written == capital + ('a' - 'A'));
    });
}

std::int64_t sizeFromLine(std::string_view line)
{
    std::string_view last;
    for (std::string_view word = takeWord(line); !word.empty(); word = takeWord(line))
        last = word;
    if (last.starts_with('+') && last.size() > 1 && last[1] != '-')
        last.remove_prefix(1);
    std::int64_t size = 0;
    const auto [stop, error] = std::from_chars(last.data(), last.data() + last.size(), size);
    return error == std::errc() && stop == last.data() + last.size() ? size : 0;
}

std::string titleFromLine(std::string_view line)
{
    line.remove_prefix(5);
    line = trimmed(line);
    const size_t first = std::min(line.find_first_not_of('"'), line.size());
    line.remove_prefix(first);
    return std::string(line.substr(0, line.find_last_not_of('"') + 1));
}

// Goes from one place of a letter, in either case, to the next.
class LetterFinder
{
public:
    LetterFinder(char capital, const char *end)
        : m_capital{capital, nullptr}, m_small{char(capital | 0x20), nullptr}, m_end(end)
    {
    }
    // The first one from `text` on, or the end. `text` never goes back, so that nothing is searched twice.
    const char *next(const char *text) { return std::min(next(m_capital, text), next(m_small, text)); }

private:
    struct Case
    {
        char letter;
        const char *found; // null before the first search
    };
    const char *next(Case &one, const char *text) const
    {
        if (one.found == nullptr || one.found < text) {
            const void *found = text == m_end ? nullptr : std::memchr(text, one.letter, size_t(m_end - text));
            one.found = found != nullptr ? static_cast<const char *>(found) : m_end;
        }
        return one.found;
    }
    Case m_capital;
    Case m_small;
    const char *m_end;
};

// How many points the text has to hold. The size that counts may stand below the points, so it is looked for
// before any of them is read; nothing when the text cannot fill its table.
std::optional<std::int64_t> announcedSize(std::string_view text, std::size_t lines)
{
    const char *const end = text.data() + text.size();
    std::int64_t size = 0;
    Utf8Lines rest(text);
    std::string_view line;
    // Hardly any line but those with a keyword has this letter.
    LetterFinder finder('L', end);
    for (const char *letter = nullptr; (letter = finder.next(rest.position())) != end;) {
        rest.moveToLineOf(letter);
        rest.next(line);
        line = trimmed(line);
        std::string_view words = line;
        const std::string_view keyword = takeWord(words);
        if (isKeyword(keyword, "LUT_1D_SIZE"))
            return std::nullopt;
        if (isKeyword(keyword, "LUT_3D_SIZE"))
            size = sizeFromLine(line);
    }
    const auto room = std::int64_t(std::min(lines, (text.size() + 1) / shortestRow));
    constexpr std::int64_t largestWithCube = 1 << 20;
    if (size < 2 || size > largestWithCube || size * size * size > room)
        return std::nullopt;
    return size;
}

using Rgb = std::array<float, 3>;

// Where the rows begin and how far they reach; a list may be of any length.
class Domain
{
public:
    Domain() { update(); }
    void setMinimum(std::string_view words) { set(m_minimum, words); }
    void setMaximum(std::string_view words) { set(m_maximum, words); }
    bool isUsable() const { return !m_minimum.empty() && !m_maximum.empty(); }

    void write(const Rgb &row, float *point) const
    {
        for (size_t channel = 0; channel < row.size(); ++channel)
            point[channel] = m_isUnit ? row[channel] : (row[channel] - m_start[channel]) / m_range[channel];
        point[3] = 1;
    }

private:
    void set(std::vector<float> &list, std::string_view words)
    {
        list.clear();
        for (std::string_view word = takeWord(words); !word.empty(); word = takeWord(words)) {
            const std::optional<float> value = floatFromText(word);
            if (value && list.size() < m_start.size())
                list.push_back(*value);
        }
        if (isUsable())
            update();
    }
    void update()
    {
        m_isUnit = true;
        for (size_t channel = 0; channel < m_start.size(); ++channel) {
            m_start[channel] = m_minimum[std::min(channel, m_minimum.size() - 1)];
            const float end = m_maximum[std::min(channel, m_maximum.size() - 1)];
            const float range = end - m_start[channel];
            m_range[channel] = range <= 0.0001F ? 0.0001F : range;
            m_isUnit = m_isUnit && m_start[channel] == 0 && range == 1;
        }
    }

    std::vector<float> m_minimum{0, 0, 0};
    std::vector<float> m_maximum{1, 1, 1};
    Rgb m_start{};
    Rgb m_range{};
    bool m_isUnit = true; // 0 to 1, which leaves every row as it is
};

std::optional<Rgb> rowFromLine(std::string_view line)
{
    Rgb row;
    for (float &number : row) {
        const std::optional<float> value = floatFromText(takeWord(line));
        if (!value)
            return std::nullopt;
        number = *value;
    }
    return row;
}

// A row in its common form; gives where its third number ends, or null for any other line.
const char *readPlainRow(const char *text, const char *end, Rgb &row)
{
    for (float &number : row) {
        const char *const before = text;
        while (text < end && isBlank(*text))
            ++text;
        if (end - text < plainFloatReach || (text == before && &number != row.data()))
            return nullptr;
        text = readPlainFloat(text, number);
        if (text == nullptr)
            return nullptr;
    }
    return isBlank(*text) || isAsciiLineEnd(*text) ? text : nullptr;
}

class CubeReader
{
public:
    CubeReader(std::int64_t size, float *points) : m_next(points), m_end(points + 4 * size * size * size) {}

    bool read(std::string_view text)
    {
        Utf8Lines rest(text);
        const char *const end = text.data() + text.size();
        Rgb row;
        for (std::string_view line; !rest.atEnd();) {
            if (const char *stop = readPlainRow(rest.position(), end, row)) {
                if (!takeRow(row))
                    return false;
                rest.skipLineFrom(stop);
            } else if (rest.next(line) && !takeLine(trimmed(line))) {
                return false;
            }
        }
        return m_next == m_end;
    }
    std::optional<std::string> takeTitle() { return std::move(m_title); }

private:
    bool takeRow(const Rgb &row)
    {
        if (m_next == m_end || !m_domain.isUsable())
            return false;
        m_domain.write(row, m_next);
        m_next += 4;
        return true;
    }
    bool takeLine(std::string_view line)
    {
        if (line.empty() || line.front() == '#')
            return true;
        std::string_view words = line;
        const std::string_view keyword = takeWord(words);
        if (isKeyword(keyword, "TITLE"))
            m_title = titleFromLine(line);
        else if (isKeyword(keyword, "DOMAIN_MIN"))
            m_domain.setMinimum(words);
        else if (isKeyword(keyword, "DOMAIN_MAX"))
            m_domain.setMaximum(words);
        else if (const std::optional<Rgb> row = rowFromLine(line))
            return takeRow(*row);
        return true;
    }

    float *m_next;
    float *m_end;
    Domain m_domain;
    std::optional<std::string> m_title;
};

} // namespace

std::optional<CubeTable> readCube(std::string_view text)
{
    if (text.size() > longestCubeText)
        return std::nullopt;
    const std::optional<std::size_t> lines = countLines(text);
    if (!lines)
        return std::nullopt;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    const std::optional<std::int64_t> size = announcedSize(text, *lines);
    if (!size)
        return std::nullopt;

    CubeTable table{.size = *size, .points = nullptr, .title = std::nullopt};
    table.points.reset(new (std::nothrow) float[size_t(4 * *size * *size * *size)]);
    if (!table.points)
        return std::nullopt;
    CubeReader reader(*size, table.points.get());
    if (!reader.read(text))
        return std::nullopt;
    table.title = reader.takeTitle();
    return table;
}

} // namespace cratewell

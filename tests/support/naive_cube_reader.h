#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <locale.h>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace cratewell::test {

// What a .cube text means, written down with no thought of speed or memory: the readers' results are
// compared.
class NaiveCubeReader
{
public:
    std::int64_t size = 0;
    std::vector<float> points;
    std::optional<std::string> title;

    // False where the text is to be refused.
    bool read(std::string text)
    {
        if (!isUtf8(text))
            return false;
        if (text.starts_with("\uFEFF"))
            text.erase(0, 3);
        for (const std::string end : {"\v", "\f", "\r", "\u0085", "\u2028", "\u2029"}) {
            for (size_t at = 0; (at = text.find(end, at)) != text.npos;)
                text.replace(at, end.size(), "\n");
        }
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (!takeLine(trimmed(line, blanks)))
                return false;
        }
        return size >= 2 && size < 1000 && points.size() == size_t(4 * size * size * size);
    }

    static std::optional<float> number(const std::string &text)
    {
        static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
        char *end = nullptr;
        const float value = strtof_l(text.c_str(), &end, plain);
        if (text.empty() || end != text.c_str() + text.size())
            return std::nullopt;
        return value;
    }

private:
    static bool isUtf8(const std::string &text)
    {
        static constexpr char32_t least[]{0, 0, 0x80, 0x800, 0x10000};
        for (size_t at = 0; at < text.size();) {
            const auto first = std::uint8_t(text[at++]);
            const int length = std::countl_one(first);
            if (length == 1 || length > 4)
                return false;
            char32_t c = first & (0x7F >> length);
            for (int i = 1; i < length; ++i, ++at) {
                if ((std::uint8_t(text[at]) & 0xC0) != 0x80)
                    return false;
                c = c << 6 | (std::uint8_t(text[at]) & 0x3F);
            }
            if (c < least[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
                return false;
        }
        return true;
    }

    static std::string trimmed(std::string line, const std::vector<std::string> &of)
    {
        const auto outer = [&](const std::string &end) {
            return line.starts_with(end) || line.ends_with(end);
        };
        for (auto end = of.begin(); (end = std::ranges::find_if(of, outer)) != of.end();)
            line.erase(line.starts_with(*end) ? 0 : line.size() - end->size(), end->size());
        return line;
    }

    static std::int64_t wholeNumber(const std::string &word)
    {
        const size_t sign = word.starts_with('+') || word.starts_with('-') ? 1 : 0;
        const size_t first = std::min(word.find_first_not_of('0', sign), word.size());
        const bool whole = word.find_first_not_of("0123456789", sign) == word.npos;
        return whole && word.size() - first <= 9 ? std::atoll(word.c_str()) : 0;
    }

    bool takeLine(const std::string &line)
    {
        if (line.empty() || line.front() == '#')
            return true;
        std::vector<std::string> words;
        std::vector<float> numbers;
        std::istringstream stream(line);
        for (std::string word; stream >> word; words.push_back(word)) {
            if (const auto value = number(word))
                numbers.push_back(*value);
        }
        std::string keyword = words[0];
        std::ranges::transform(keyword, keyword.begin(),
                               [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
        if (keyword == "TITLE")
            title = trimmed(trimmed(line.substr(5), blanks), {"\""});
        else if (keyword == "LUT_3D_SIZE")
            size = wholeNumber(words.back());
        else if (keyword == "DOMAIN_MIN")
            m_minimum = numbers;
        else if (keyword == "DOMAIN_MAX")
            m_maximum = numbers;
        else if (words.size() >= 3 && number(words[0]) && number(words[1]) && number(words[2])) {
            if (m_minimum.empty() || m_maximum.empty())
                return false;
            for (size_t channel = 0; channel < 3; ++channel) {
                const float low = m_minimum[std::min(channel, m_minimum.size() - 1)];
                const float high = m_maximum[std::min(channel, m_maximum.size() - 1)];
                points.push_back((numbers[channel] - low) / std::max(high - low, 0.0001F));
            }
            points.push_back(1);
        }
        return keyword != "LUT_1D_SIZE";
    }

    static inline const std::vector<std::string> blanks{
        " ",      "\t",     "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
        "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};
    std::vector<float> m_minimum{0, 0, 0};
    std::vector<float> m_maximum{1, 1, 1};
};

} // namespace cratewell::test

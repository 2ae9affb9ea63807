#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <locale.h>
#include <optional>
#include <string>
#include <utility>
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
    bool read(const std::string &text)
    {
        std::u32string characters;
        if (!decode(text, characters))
            return false;
        if (characters.starts_with(U'\uFEFF'))
            characters.erase(0, 1);
        std::u32string line;
        for (const char32_t c : characters + U'\n') {
            if (std::u32string_view(U"\n\v\f\r\u0085\u2028\u2029").find(c) == std::u32string::npos)
                line += c;
            else if (!takeLine(trimmed(std::exchange(line, {}))))
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
    static bool decode(const std::string &text, std::u32string &characters)
    {
        static constexpr char32_t least[]{0, 0x80, 0x800, 0x10000};
        for (size_t at = 0; at < text.size();) {
            const auto first = std::uint8_t(text[at++]);
            const int more = first < 0x80 ? 0 : first < 0xC0 ? -1 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
            if (more < 0 || first >= 0xF8)
                return false;
            char32_t c = more == 0 ? first : first & (0x3F >> more);
            for (int i = 0; i < more; ++i, ++at) {
                if (at == text.size() || (std::uint8_t(text[at]) & 0xC0) != 0x80)
                    return false;
                c = c << 6 | (std::uint8_t(text[at]) & 0x3F);
            }
            if (c < least[more] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
                return false;
            characters += c;
        }
        return true;
    }

    static std::u32string trimmed(const std::u32string &line, const std::u32string &of = blanks)
    {
        const size_t first = line.find_first_not_of(of);
        return first == line.npos ? U"" : line.substr(first, line.find_last_not_of(of) + 1 - first);
    }

    static std::string encoded(const std::u32string &text)
    {
        std::string result;
        for (const char32_t c : text) {
            const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
            result += more == 0 ? char(c) : char((0xFF00 >> (more + 1) & 0xFF) | c >> (6 * more));
            for (int i = more - 1; i >= 0; --i)
                result += char(0x80 | (c >> (6 * i) & 0x3F));
        }
        return result;
    }

    static std::vector<std::string> wordsOf(const std::u32string &line)
    {
        std::vector<std::string> words(1);
        for (const char32_t c : line) {
            if (c == ' ' || c == '\t')
                words.emplace_back();
            else
                words.back() += encoded({c});
        }
        std::erase(words, "");
        return words;
    }

    static std::vector<float> numbersAfterFirst(const std::vector<std::string> &words)
    {
        std::vector<float> numbers;
        for (size_t i = 1; i < words.size(); ++i) {
            if (const auto value = number(words[i]))
                numbers.push_back(*value);
        }
        return numbers;
    }

    bool takeLine(const std::u32string &line)
    {
        if (line.empty() || line.front() == '#')
            return true;
        const std::vector<std::string> words = wordsOf(line);
        std::string keyword = words[0];
        std::ranges::transform(keyword, keyword.begin(),
                               [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
        if (keyword == "LUT_1D_SIZE")
            return false;
        if (keyword == "TITLE")
            title = encoded(trimmed(trimmed(line.substr(5)), U"\""));
        else if (keyword == "LUT_3D_SIZE")
            size = wholeNumber(words.back());
        else if (keyword == "DOMAIN_MIN")
            m_minimum = numbersAfterFirst(words);
        else if (keyword == "DOMAIN_MAX")
            m_maximum = numbersAfterFirst(words);
        else if (words.size() >= 3 && number(words[0]) && number(words[1]) && number(words[2]))
            return takeRow(words);
        return true;
    }

    static std::int64_t wholeNumber(const std::string &word)
    {
        const bool isSigned = word.starts_with('+') || word.starts_with('-');
        const std::string digits = word.substr(isSigned ? 1 : 0);
        const bool whole = !digits.empty() && digits.find_first_not_of("0123456789") == digits.npos;
        const size_t first = std::min(digits.find_first_not_of('0'), digits.size());
        if (!whole || digits.size() - first > 9)
            return 0;
        return (word[0] == '-' ? -1 : 1) * std::atoll(digits.c_str());
    }

    bool takeRow(const std::vector<std::string> &words)
    {
        if (m_minimum.empty() || m_maximum.empty())
            return false;
        for (size_t channel = 0; channel < 3; ++channel) {
            const float low = m_minimum[std::min(channel, m_minimum.size() - 1)];
            const float high = m_maximum[std::min(channel, m_maximum.size() - 1)];
            const float range = high - low <= 0.0001F ? 0.0001F : high - low;
            points.push_back((*number(words[channel]) - low) / range);
        }
        points.push_back(1);
        return true;
    }

    static inline const std::u32string blanks =
        U" \t\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007"
        U"\u2008\u2009\u200A\u202F\u205F\u3000";
    std::vector<float> m_minimum{0, 0, 0};
    std::vector<float> m_maximum{1, 1, 1};
};

} // namespace cratewell::test

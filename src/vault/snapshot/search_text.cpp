#include "vault/snapshot/search_text.h"

#include "platform/location.h"

#include <algorithm>
#include <cstring>

namespace cratewell {

void appendLowerCased(QByteArrayView name, std::vector<char> &text)
{
    const size_t start = text.size();
    text.resize(start + size_t(name.size()));
    char *out = text.data() + start;
    uchar seen = 0;
    for (const char byte : name) {
        const bool upper = byte >= 'A' && byte <= 'Z';
        *out++ = char(byte + (upper ? 'a' - 'A' : 0));
        seen |= uchar(byte);
    }
    if (seen < 0x80)
        return;
    const QByteArray lowered = bytesFromText(textFromBytes(name).toLower());
    text.resize(start);
    text.insert(text.end(), lowered.begin(), lowered.end());
}

void SearchText::reserve(size_t names, size_t bytes)
{
    m_ends.reserve(names);
    m_text.reserve(bytes + names);
}

void SearchText::append(QByteArrayView baseName)
{
    appendLowerCased(baseName, m_text);
    m_text.push_back(0);
    m_ends.push_back(quint32(m_text.size()));
}

void SearchText::mark(QByteArrayView needle, std::vector<bool> &matches, size_t first, size_t from,
                      size_t to) const
{
    size_t at = from == 0 ? 0 : m_ends[from - 1];
    size_t index = from;
    while (index < to) {
        const size_t left = m_ends[to - 1] - at;
        const void *hit = memmem(m_text.data() + at, left, needle.data(), size_t(needle.size()));
        if (!hit)
            return;
        const size_t place = size_t(static_cast<const char *>(hit) - m_text.data());
        while (m_ends[index] <= place)
            ++index;
        matches[first + (index - from)] = true;
        at = m_ends[index];
        ++index;
    }
}

} // namespace cratewell

#pragma once

#include <QByteArrayView>

#include <vector>

namespace cratewell {

// The lower-cased base names of one folder's assets, laid end to end for a quick search.
class SearchText
{
public:
    // Base names as they stand on disk, in the folder's order.
    void reserve(size_t names, size_t bytes);
    void append(QByteArrayView baseName);

    // Sets matches[first + i] for each name i that holds `needle`: UTF-8, lower-cased, neither empty nor
    // holding 0.
    void mark(QByteArrayView needle, std::vector<bool> &matches, size_t first, size_t from, size_t to) const;

private:
    std::vector<char> m_text;    // each name closed by 0
    std::vector<quint32> m_ends; // place behind the closing 0 of each name
};

// As QString lower-cases, from bytes to bytes; stray bytes stay as they are.
void appendLowerCased(QByteArrayView name, std::vector<char> &text);

} // namespace cratewell

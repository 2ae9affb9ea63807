#pragma once

#include "vault/vault_snapshot.h"

#include <memory>

namespace cratewell {

// Sorts assets by keys: bytes of which the last, and only the last, is 0, or numbers. One sorter serves
// several sorts in turn and keeps its memory between them.
class KeySorter
{
public:
    // Begins a sort of up to `count` assets whose keys have up to `keyBytes` bytes together.
    void begin(size_t count, size_t keyBytes);

    // Where the next key is to be written.
    uchar *keyEnd() { return m_keyEnd; }
    // What was written there up to `end` is the key of `index`.
    void addKey(const uchar *end, AssetIndex index);
    void addNumber(quint64 number, AssetIndex index) { m_entries.push_back({number, 0, index}); }

    // Ascending; equal ones as they were added, which must have been by rising index.
    std::vector<AssetIndex> sorted();

private:
    // `lead` holds eight bytes of the key, those from `place` on, so that most of the work touches no key.
    struct Entry
    {
        quint64 lead;
        quint32 place;
        AssetIndex index;
    };

    quint64 leadAt(quint32 place) const;
    template<int bits> static void sortByLead(std::span<Entry> entries, std::span<Entry> room);
    static void sort(std::span<Entry> entries, std::span<Entry> room);
    void sortTies(std::span<Entry> entries, std::span<Entry> room) const;

    std::vector<Entry> m_entries;
    std::vector<Entry> m_room;
    std::unique_ptr<uchar[]> m_keys;
    size_t m_keyCapacity = 0;
    uchar *m_keyEnd = nullptr;
};

} // namespace cratewell

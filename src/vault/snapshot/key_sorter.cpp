#include "vault/snapshot/key_sorter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <numeric>

#include <QtEndian>

namespace cratewell {

void KeySorter::begin(size_t count, size_t keyBytes)
{
    m_entries.clear();
    m_entries.reserve(count);
    const size_t readAhead = sizeof(quint64);
    if (keyBytes + readAhead > m_keyCapacity) {
        m_keyCapacity = keyBytes + readAhead;
        m_keys = std::make_unique_for_overwrite<uchar[]>(m_keyCapacity);
    }
    m_keyEnd = m_keys.get();
}

void KeySorter::addKey(const uchar *end, AssetIndex index)
{
    const quint32 place = quint32(m_keyEnd - m_keys.get());
    m_keyEnd = m_keys.get() + (end - m_keys.get());
    std::memset(m_keyEnd, 0, sizeof(quint64));
    m_entries.push_back({leadAt(place), place, index});
}

// Eight bytes as a number, those behind the end of the key as 0.
quint64 KeySorter::leadAt(quint32 place) const
{
    constexpr quint64 low = 0x7f7f'7f7f'7f7f'7f7f;
    const quint64 bytes = qFromBigEndian<quint64>(m_keys.get() + place);
    const quint64 zeros = ~(((bytes & low) + low) | bytes | low); // the high bit of each byte that is 0
    const int kept = std::countl_zero(zeros) & ~7;
    return kept == 64 ? bytes : bytes & ~(~quint64(0) >> kept);
}

// Sorts by lead, equal ones as they stand, in one pass for each group of `bits` in which any differ. `room`
// is as long as `entries`.
template<int bits> void KeySorter::sortByLead(std::span<Entry> entries, std::span<Entry> room)
{
    constexpr size_t passes = (64 + bits - 1) / bits;
    constexpr size_t values = 1u << bits;
    const auto digit = [](const Entry &entry, size_t pass) {
        return entry.lead >> (bits * pass) & (values - 1);
    };
    std::array<std::array<quint32, values>, passes> counts{};
    for (const Entry &entry : entries) {
        for (size_t pass = 0; pass < passes; ++pass)
            ++counts[pass][digit(entry, pass)];
    }
    std::span<Entry> from = entries;
    std::span<Entry> to = room.first(entries.size());
    for (size_t pass = 0; pass < passes; ++pass) {
        auto &places = counts[pass];
        if (places[digit(from.front(), pass)] == from.size())
            continue;
        std::exclusive_scan(places.begin(), places.end(), places.begin(), quint32{0});
        for (const Entry &entry : from)
            to[places[digit(entry, pass)]++] = entry;
        std::swap(from, to);
    }
    if (from.data() != entries.data())
        std::ranges::copy(from, entries.begin());
}

// The way of sorting that suits the number of entries.
void KeySorter::sort(std::span<Entry> entries, std::span<Entry> room)
{
    constexpr size_t few = 48;
    constexpr size_t many = 8192;
    if (entries.size() >= many) {
        sortByLead<11>(entries, room);
    } else if (entries.size() >= few) {
        sortByLead<8>(entries, room);
    } else {
        std::ranges::sort(entries, [](const Entry &a, const Entry &b) {
            return a.lead != b.lead ? a.lead < b.lead : a.index < b.index;
        });
    }
}

// Entries sorted by lead: those with the same one by what follows it in their keys.
void KeySorter::sortTies(std::span<Entry> entries, std::span<Entry> room) const
{
    size_t to = 0;
    for (size_t from = 0; from < entries.size(); from = to) {
        const quint64 lead = entries[from].lead;
        to = from + 1;
        while (to < entries.size() && entries[to].lead == lead)
            ++to;
        const bool ended = (lead & 0xff) == 0;
        if (to - from == 1 || ended)
            continue;
        const std::span<Entry> ties = entries.subspan(from, to - from);
        for (Entry &entry : ties) {
            entry.place += quint32(sizeof(quint64));
            entry.lead = leadAt(entry.place);
        }
        sort(ties, room);
        sortTies(ties, room);
    }
}

std::vector<AssetIndex> KeySorter::sorted()
{
    m_room.resize(m_entries.size());
    sort(m_entries, m_room);
    if (m_keyEnd != m_keys.get())
        sortTies(m_entries, m_room);
    std::vector<AssetIndex> indices(m_entries.size());
    std::ranges::transform(m_entries, indices.begin(), &Entry::index);
    return indices;
}

} // namespace cratewell

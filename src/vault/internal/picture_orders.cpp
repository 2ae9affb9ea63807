#include "vault/internal/picture_orders.h"

#include "vault/internal/name_collation.h"
#include "vault/internal/picture_changes.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <thread>

#include <QtEndian>

namespace cratewell {

namespace {

using Order = std::vector<AssetIndex>;

// Bytes that order like a name's code points. Those of UTF-8 do so by themselves; the stray ones of a name
// that is not UTF-8 stand for U+DC80 to U+DCFF and are written as those would be.
QByteArray codePointBytes(QByteArrayView name)
{
    QByteArray bytes;
    for (const uint point : textFromBytes(name).toUcs4()) {
        if (point < 0xdc80 || point > 0xdcff) {
            bytes += QString::fromUcs4(reinterpret_cast<const char32_t *>(&point), 1).toUtf8();
            continue;
        }
        bytes += char(0xe0 | point >> 12);
        bytes += char(0x80 | (point >> 6 & 0x3f));
        bytes += char(0x80 | (point & 0x3f));
    }
    return bytes;
}

int compareCodePoints(QByteArrayView a, QByteArrayView b)
{
    if (a.isValidUtf8() && b.isValidUtf8())
        return a.compare(b);
    return codePointBytes(a).compare(codePointBytes(b));
}

// Audio, LUT, Still, Video: by label. Never 0, since it begins a key.
int labelRank(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Audio:
        return 1;
    case AssetKind::Lut:
        return 2;
    case AssetKind::Image:
        return 3;
    case AssetKind::Video:
        return 4;
    }
    return 5;
}

// How two assets stand in an order, -1, 0 or 1; equal ones keep the order of the flat list.
class Comparison
{
public:
    explicit Comparison(const PictureData &data) : m_data(data) {}

    bool before(AssetOrder order, AssetIndex a, AssetIndex b) const
    {
        const int compared = compare(order, m_data.asset(a), m_data.asset(b));
        return compared != 0 ? compared < 0 : a < b;
    }
    const NameCollation &names() const { return m_names; }

private:
    int compare(AssetOrder order, const Asset &a, const Asset &b) const
    {
        switch (order) {
        case AssetOrder::Name:
            return m_names.compare(baseNameOf(a), baseNameOf(b));
        case AssetOrder::Added:
            return int(a.added < b.added) - int(a.added > b.added);
        case AssetOrder::Kind:
            if (const int byLabel = labelRank(a.kind) - labelRank(b.kind))
                return byLabel;
            return compareCodePoints(baseNameOf(a), baseNameOf(b));
        case AssetOrder::Size:
            return int(a.size < b.size) - int(a.size > b.size);
        }
        return 0;
    }

    const PictureData &m_data;
    NameCollation m_names;
};

// An asset to be sorted by a key of bytes that ends with 0, of which the next eight stand here as a number,
// so that most of the work touches nothing else; or by a number alone.
struct KeyedAsset
{
    quint64 lead;
    quint32 key; // where the eight bytes stand
    AssetIndex index;
};

// The keys of all assets end to end, with as many 0 behind them as reading ahead may take.
class Keys
{
public:
    // Room for `size` more bytes at the end; what is written there counts after grow().
    uchar *room(size_t size)
    {
        if (m_bytes.size() < m_used + size + sizeof(quint64))
            m_bytes.resize(2 * (m_bytes.size() + size) + sizeof(quint64));
        return m_bytes.data() + m_used;
    }
    // Closes a key that was written up to `end`; its place.
    quint32 close(const uchar *end)
    {
        const size_t start = m_used;
        m_used = size_t(end - m_bytes.data());
        return quint32(start);
    }
    // Eight bytes from there on; 0 from the end of the key on.
    quint64 lead(quint32 place) const
    {
        constexpr quint64 low = 0x7f7f'7f7f'7f7f'7f7f;
        const quint64 bytes = qFromBigEndian<quint64>(m_bytes.data() + place);
        const quint64 zeros = ~(((bytes & low) + low) | bytes | low); // the high bit of each byte that is 0
        const int kept = std::countl_zero(zeros) & ~7;
        return kept == 64 ? bytes : bytes & ~(~quint64(0) >> kept);
    }

private:
    std::vector<uchar> m_bytes;
    size_t m_used = 0;
};

// By lead, equal ones as they stood: one pass for each byte in which any differ.
void sortByLead(std::vector<KeyedAsset> &assets)
{
    constexpr int bytes = sizeof(quint64);
    std::array<std::array<quint32, 256>, bytes> counts{};
    for (const KeyedAsset &asset : assets) {
        for (int byte = 0; byte < bytes; ++byte)
            ++counts[size_t(byte)][asset.lead >> (8 * byte) & 0xff];
    }
    std::vector<KeyedAsset> sorted(assets.size());
    for (int byte = 0; byte < bytes; ++byte) {
        std::array<quint32, 256> &places = counts[size_t(byte)];
        if (std::ranges::find(places, assets.size()) != places.end())
            continue;
        std::exclusive_scan(places.begin(), places.end(), places.begin(), quint32{0});
        for (const KeyedAsset &asset : assets)
            sorted[places[asset.lead >> (8 * byte) & 0xff]++] = asset;
        assets.swap(sorted);
    }
}

// Sorts what is equal in the bytes before `lead` by those from there on.
void sortByKeys(std::span<KeyedAsset> assets, const Keys &keys);

// Assets sorted by lead: those with the same one by what follows it.
void sortTies(std::span<KeyedAsset> assets, const Keys &keys)
{
    for (auto from = assets.begin(); from != assets.end();) {
        const auto to = std::find_if(from, assets.end(),
                                     [&](const KeyedAsset &asset) { return asset.lead != from->lead; });
        const bool ended = (from->lead & 0xff) == 0;
        if (to - from > 1 && !ended) {
            for (KeyedAsset &asset : std::span(from, to)) {
                asset.key += sizeof(quint64);
                asset.lead = keys.lead(asset.key);
            }
            sortByKeys({from, to}, keys);
        }
        from = to;
    }
}

void sortByKeys(std::span<KeyedAsset> assets, const Keys &keys)
{
    std::ranges::sort(assets, [](const KeyedAsset &a, const KeyedAsset &b) {
        return a.lead != b.lead ? a.lead < b.lead : a.index < b.index;
    });
    sortTies(assets, keys);
}

Order indicesOf(const std::vector<KeyedAsset> &assets)
{
    Order order(assets.size());
    std::ranges::transform(assets, order.begin(), &KeyedAsset::index);
    return order;
}

// Calls visit(index, base name) for all assets, in flat-list order.
template<typename Visit> void forEachName(const PictureData &data, const Visit &visit)
{
    for (AssetIndex i = 0; i < data.assets.size(); ++i)
        visit(i, baseNameOf(data.asset(i)));
}

// Inserts `fresh`, sorted, into `kept`, sorted: looks up each place, since `fresh` is short.
template<typename Before> Order insertInto(const Order &kept, const Order &fresh, const Before &before)
{
    Order result;
    result.reserve(kept.size() + fresh.size());
    auto from = kept.begin();
    for (const AssetIndex index : fresh) {
        const auto to = std::lower_bound(from, kept.end(), index, before);
        result.insert(result.end(), from, to);
        result.push_back(index);
        from = to;
    }
    result.insert(result.end(), from, kept.end());
    return result;
}

// Names without a key of weights, in the collator's order.
Order byCollator(const PictureData &data, const Comparison &comparison, const Order &indices)
{
    std::vector<std::pair<QCollatorSortKey, AssetIndex>> collated;
    collated.reserve(indices.size());
    for (const AssetIndex index : indices)
        collated.emplace_back(comparison.names().collatorKey(baseNameOf(data.asset(index))), index);
    std::ranges::sort(collated, [](const auto &a, const auto &b) {
        const int compared = a.first.compare(b.first);
        return compared != 0 ? compared < 0 : a.second < b.second;
    });
    Order order(collated.size());
    std::ranges::transform(collated, order.begin(), [](const auto &one) { return one.second; });
    return order;
}

Order byName(const PictureData &data, const Comparison &comparison)
{
    Keys keys;
    std::vector<KeyedAsset> keyed;
    keyed.reserve(data.assets.size());
    Order unkeyed;
    forEachName(data, [&](AssetIndex index, QByteArrayView name) {
        uchar *room = keys.room(size_t(NameCollation::keySize(name.size())));
        if (const uchar *end = comparison.names().writeKey(name, room)) {
            const quint32 key = keys.close(end);
            keyed.push_back({keys.lead(key), key, index});
        } else {
            unkeyed.push_back(index);
        }
    });
    sortByLead(keyed);
    sortTies(keyed, keys);
    const Order plain = indicesOf(keyed);
    if (unkeyed.empty())
        return plain;
    const Order others = byCollator(data, comparison, unkeyed);
    const auto before = [&](AssetIndex a, AssetIndex b) { return comparison.before(AssetOrder::Name, a, b); };
    if (others.size() < plain.size() / 16)
        return insertInto(plain, others, before);
    Order result(data.assets.size());
    std::ranges::merge(plain, others, result.begin(), before);
    return result;
}

Order byKind(const PictureData &data)
{
    Keys keys;
    std::vector<KeyedAsset> keyed;
    keyed.reserve(data.assets.size());
    forEachName(data, [&](AssetIndex index, QByteArrayView name) {
        const QByteArray rewritten = name.isValidUtf8() ? QByteArray() : codePointBytes(name);
        const QByteArrayView bytes = rewritten.isEmpty() ? name : QByteArrayView(rewritten);
        uchar *end = keys.room(size_t(bytes.size()) + 2);
        *end++ = uchar(labelRank(data.asset(index).kind));
        end = std::ranges::copy(bytes, end).out;
        *end++ = 0;
        const quint32 key = keys.close(end);
        keyed.push_back({keys.lead(key), key, index});
    });
    sortByLead(keyed);
    sortTies(keyed, keys);
    return indicesOf(keyed);
}

// Orders like the number, as an unsigned one.
quint64 ascending(qint64 number)
{
    return quint64(number) ^ quint64(1) << 63;
}

quint64 ascending(double number)
{
    const quint64 bits = std::bit_cast<quint64>(number + 0.0); // no negative zero
    return bits >> 63 ? ~bits : bits | quint64(1) << 63;
}

template<typename Number> Order largestFirst(const PictureData &data, Number Asset::*field)
{
    std::vector<KeyedAsset> keyed(data.assets.size());
    for (AssetIndex i = 0; i < keyed.size(); ++i)
        keyed[i] = {~ascending(data.asset(i).*field), 0, i};
    sortByLead(keyed);
    return indicesOf(keyed);
}

Order fromScratch(const PictureData &data, const Comparison &comparison, AssetOrder order)
{
    switch (order) {
    case AssetOrder::Name:
        return byName(data, comparison);
    case AssetOrder::Added:
        return largestFirst(data, &Asset::added);
    case AssetOrder::Kind:
        return byKind(data);
    case AssetOrder::Size:
        return largestFirst(data, &Asset::size);
    }
    return {};
}

// What can be taken over from the orders of an earlier picture.
struct Carried
{
    std::vector<AssetIndex> next; // for each asset of `before` its index now, or noAsset
    Order fresh;                  // new or altered assets
};

// Nothing when too little can be taken over, or when what stayed no longer follows each other as before (then
// equal ones would be out of order).
std::optional<Carried> carriedOver(const PictureData &before, const PictureData &data)
{
    Carried carried;
    carried.next.assign(before.assets.size(), noAsset);
    const std::vector<AssetIndex> previous = previousIndices(before, data);
    AssetIndex behindLast = 0;
    for (AssetIndex i = 0; i < previous.size(); ++i) {
        const AssetIndex earlier = previous[i];
        if (earlier == noAsset || !isSame(before.asset(earlier), data.asset(i))) {
            carried.fresh.push_back(i);
            continue;
        }
        if (earlier < behindLast)
            return std::nullopt;
        behindLast = earlier + 1;
        carried.next[earlier] = i;
    }
    if (carried.fresh.size() > previous.size() / 8)
        return std::nullopt;
    return carried;
}

Order carryOver(const Order &earlier, const Carried &carried, const Comparison &comparison, AssetOrder order)
{
    const auto before = [&](AssetIndex a, AssetIndex b) { return comparison.before(order, a, b); };
    Order kept;
    kept.reserve(earlier.size());
    for (const AssetIndex index : earlier) {
        if (carried.next[index] != noAsset)
            kept.push_back(carried.next[index]);
    }
    Order fresh = carried.fresh;
    std::ranges::sort(fresh, before);
    return insertInto(kept, fresh, before);
}

} // namespace

bool makeOrders(PictureData &data, const PictureData *before, const std::function<bool()> &cancelled)
{
    const std::optional<Carried> carried =
        before && before->scanned ? carriedOver(*before, data) : std::optional<Carried>();
    const auto make = [&](const Comparison &comparison, AssetOrder order) {
        Order &result = data.orders[size_t(order)];
        if (carried)
            result = carryOver(before->orders[size_t(order)], *carried, comparison, order);
        else
            result = fromScratch(data, comparison, order);
    };
    std::jthread other([&] {
        const Comparison comparison(data);
        make(comparison, AssetOrder::Name);
    });
    const Comparison comparison(data);
    for (const AssetOrder order : {AssetOrder::Added, AssetOrder::Kind, AssetOrder::Size}) {
        make(comparison, order);
        if (cancelled && cancelled())
            return false;
    }
    return true;
}

} // namespace cratewell

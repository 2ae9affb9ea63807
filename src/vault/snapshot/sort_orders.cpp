#include "vault/snapshot/sort_orders.h"

#include "vault/snapshot/key_sorter.h"
#include "vault/snapshot/name_collation.h"
#include "vault/snapshot/snapshot_diff.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <thread>

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
    explicit Comparison(const SnapshotData &data) : m_data(data) {}

    bool before(AssetOrder order, AssetIndex a, AssetIndex b) const
    {
        const int compared = compare(order, m_data.asset(a), m_data.asset(b));
        return compared != 0 ? compared < 0 : a < b;
    }
    // Made when first asked for: not every order needs it, and it takes a while.
    const NameCollation &names() const
    {
        if (!m_names)
            m_names.emplace();
        return *m_names;
    }

private:
    int compare(AssetOrder order, const Asset &a, const Asset &b) const
    {
        switch (order) {
        case AssetOrder::Name:
            return names().compare(baseNameOf(a), baseNameOf(b));
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

    const SnapshotData &m_data;
    mutable std::optional<NameCollation> m_names;
};

// Calls visit(index, base name) for all assets, in flat-list order.
template<typename Visit> void forEachName(const SnapshotData &data, const Visit &visit)
{
    for (const FlatRun &run : data.runs) {
        for (quint32 i = 0; i < run.count; ++i)
            visit(run.first + i, run.contents->baseName(run.position + i));
    }
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
Order byCollator(const SnapshotData &data, const Comparison &comparison, const Order &indices)
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

Order byName(const SnapshotData &data, const Comparison &comparison, KeySorter &sorter)
{
    constexpr size_t mostPerByte = 4;
    static_assert(NameCollation::keySize(1) <= mostPerByte);
    sorter.begin(data.assets.size(), mostPerByte * data.nameBytes);
    Order unkeyed;
    forEachName(data, [&](AssetIndex index, QByteArrayView name) {
        if (const uchar *end = comparison.names().writeKey(name, sorter.keyEnd()))
            sorter.addKey(end, index);
        else
            unkeyed.push_back(index);
    });
    const Order plain = sorter.sorted();
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

Order byKind(const SnapshotData &data, KeySorter &sorter)
{
    constexpr size_t mostPerByte = 3; // a stray byte is written as three
    sorter.begin(data.assets.size(), mostPerByte * data.nameBytes);
    forEachName(data, [&](AssetIndex index, QByteArrayView name) {
        const QByteArray rewritten = name.isValidUtf8() ? QByteArray() : codePointBytes(name);
        const QByteArrayView bytes = rewritten.isEmpty() ? name : QByteArrayView(rewritten);
        uchar *end = sorter.keyEnd();
        *end++ = uchar(labelRank(data.asset(index).kind));
        end = std::ranges::copy(bytes, end).out;
        *end++ = 0;
        sorter.addKey(end, index);
    });
    return sorter.sorted();
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

template<typename Number>
Order largestFirst(const SnapshotData &data, Number Asset::*field, KeySorter &sorter)
{
    sorter.begin(data.assets.size(), 0);
    for (AssetIndex i = 0; i < data.assets.size(); ++i)
        sorter.addNumber(~ascending(data.asset(i).*field), i);
    return sorter.sorted();
}

Order fromScratch(const SnapshotData &data, const Comparison &comparison, AssetOrder order, KeySorter &sorter)
{
    switch (order) {
    case AssetOrder::Name:
        return byName(data, comparison, sorter);
    case AssetOrder::Added:
        return largestFirst(data, &Asset::added, sorter);
    case AssetOrder::Kind:
        return byKind(data, sorter);
    case AssetOrder::Size:
        return largestFirst(data, &Asset::size, sorter);
    }
    return {};
}

// What can be taken over from the orders of an earlier snapshot.
struct Carried
{
    std::vector<AssetIndex> next; // for each asset of `before` its index now, or noAsset
    Order fresh;                  // new or altered assets
};

// Nothing when too little can be taken over, or when what stayed no longer follows each other as before (then
// equal ones would be out of order).
std::optional<Carried> carriedOver(const SnapshotData &before, const SnapshotData &data)
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

bool makeOrders(SnapshotData &data, const SnapshotData *before, const std::function<bool()> &canceled)
{
    const std::optional<Carried> carried =
        before && before->scanned ? carriedOver(*before, data) : std::optional<Carried>();
    const auto make = [&](const Comparison &comparison, AssetOrder order, KeySorter &sorter) {
        Order &result = data.orders[size_t(order)];
        if (carried)
            result = carryOver(before->orders[size_t(order)], *carried, comparison, order);
        else
            result = fromScratch(data, comparison, order, sorter);
    };
    std::jthread other([&] {
        const Comparison comparison(data);
        KeySorter sorter;
        make(comparison, AssetOrder::Name, sorter);
    });
    const Comparison comparison(data);
    KeySorter sorter;
    for (const AssetOrder order : {AssetOrder::Kind, AssetOrder::Added, AssetOrder::Size}) {
        make(comparison, order, sorter);
        if (canceled && canceled())
            return false;
    }
    return true;
}

} // namespace cratewell

#include "vault/internal/picture_orders.h"

#include "vault/internal/name_collation.h"
#include "vault/internal/picture_changes.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <thread>

#include <QtEndian>

namespace cratewell {

namespace {

using Order = std::vector<AssetIndex>;

// By code point. Bytes of UTF-8 are ordered so already; stray bytes stand for U+DC80 to U+DCFF.
int compareCodePoints(QByteArrayView a, QByteArrayView b)
{
    if (a.isValidUtf8() && b.isValidUtf8())
        return a.compare(b);
    const QList<uint> left = textFromBytes(a).toUcs4();
    const QList<uint> right = textFromBytes(b).toUcs4();
    return left == right ? 0 : left < right ? -1 : 1;
}

// Audio, LUT, Still, Video: by label.
int labelRank(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Audio:
        return 0;
    case AssetKind::Lut:
        return 1;
    case AssetKind::Image:
        return 2;
    case AssetKind::Video:
        return 3;
    }
    return 4;
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

// The first eight bytes of a key as a number, so that most comparisons touch nothing else.
quint64 leadingBytes(const uchar *key, size_t size)
{
    std::array<uchar, 8> bytes{};
    std::memcpy(bytes.data(), key, std::min(size, bytes.size()));
    return qFromBigEndian<quint64>(bytes.data());
}

struct KeyedAsset
{
    quint64 lead;
    quint32 key; // where the whole key starts
    AssetIndex index;
};

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

Order byName(const PictureData &data, const Comparison &comparison)
{
    const AssetIndex count = AssetIndex(data.assets.size());
    std::vector<uchar> keys;
    std::vector<KeyedAsset> keyed;
    std::vector<std::pair<QCollatorSortKey, AssetIndex>> collated;
    keyed.reserve(count);
    size_t used = 0;
    for (AssetIndex i = 0; i < count; ++i) {
        const QByteArrayView name = baseNameOf(data.asset(i));
        const size_t room = used + size_t(NameCollation::keySize(name.size()));
        if (keys.size() < room)
            keys.resize(std::max(room, 2 * keys.size()));
        const uchar *end = comparison.names().writeKey(name, keys.data() + used);
        if (!end) {
            collated.emplace_back(comparison.names().collatorKey(name), i);
            continue;
        }
        const size_t size = size_t(end - keys.data()) - used;
        keyed.push_back({leadingBytes(keys.data() + used, size), quint32(used), i});
        used += size;
    }
    std::ranges::sort(keyed, [&](const KeyedAsset &a, const KeyedAsset &b) {
        if (a.lead != b.lead)
            return a.lead < b.lead;
        const auto text = [&](const KeyedAsset &one) {
            return reinterpret_cast<const char *>(keys.data() + one.key);
        };
        const int compared = std::strcmp(text(a), text(b));
        return compared != 0 ? compared < 0 : a.index < b.index;
    });
    std::ranges::sort(collated, [](const auto &a, const auto &b) {
        const int compared = a.first.compare(b.first);
        return compared != 0 ? compared < 0 : a.second < b.second;
    });
    Order plain;
    plain.reserve(keyed.size());
    std::ranges::transform(keyed, std::back_inserter(plain), &KeyedAsset::index);
    Order others;
    std::ranges::transform(collated, std::back_inserter(others), [](const auto &one) { return one.second; });
    const auto before = [&](AssetIndex a, AssetIndex b) { return comparison.before(AssetOrder::Name, a, b); };
    if (others.size() < plain.size() / 16)
        return insertInto(plain, others, before);
    Order result(count);
    std::ranges::merge(plain, others, result.begin(), before);
    return result;
}

Order byComparison(const PictureData &data, const Comparison &comparison, AssetOrder order)
{
    Order result(data.assets.size());
    std::iota(result.begin(), result.end(), AssetIndex{0});
    std::ranges::sort(result, [&](AssetIndex a, AssetIndex b) { return comparison.before(order, a, b); });
    return result;
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
        else if (order == AssetOrder::Name)
            result = byName(data, comparison);
        else
            result = byComparison(data, comparison, order);
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

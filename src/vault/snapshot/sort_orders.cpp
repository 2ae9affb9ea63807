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

// Made when first asked for: not every order needs it, and it takes a while. One for each thread.
class LazyCollation
{
public:
    const NameCollation &operator*() const
    {
        if (!m_names)
            m_names.emplace();
        return *m_names;
    }
    const NameCollation *operator->() const { return &**this; }

private:
    mutable std::optional<NameCollation> m_names;
};

// What a thread sorts with.
struct Sorting
{
    explicit Sorting(const SnapshotData &snapshot) : data(snapshot) {}

    const SnapshotData &data;
    LazyCollation names;
    KeySorter sorter;
};

// An order: how two assets compare (below 0, 0 or above), and how all are sorted at once, equal ones by
// index.
template<AssetOrder> struct OrderRule;
using Comparison = int (*)(const Sorting &, const Asset &, const Asset &);

// By a comparison, equal ones by index.
auto ordering(const Sorting &with, Comparison compare)
{
    return [&with, compare](AssetIndex a, AssetIndex b) {
        const int compared = compare(with, with.data.asset(a), with.data.asset(b));
        return compared != 0 ? compared < 0 : a < b;
    };
}

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
Order byCollator(const Sorting &with, const Order &indices)
{
    std::vector<std::pair<QCollatorSortKey, AssetIndex>> collated;
    collated.reserve(indices.size());
    for (const AssetIndex index : indices)
        collated.emplace_back(with.names->collatorKey(baseNameOf(with.data.asset(index))), index);
    std::ranges::sort(collated, [](const auto &a, const auto &b) {
        const int compared = a.first.compare(b.first);
        return compared != 0 ? compared < 0 : a.second < b.second;
    });
    Order order(collated.size());
    std::ranges::transform(collated, order.begin(), [](const auto &one) { return one.second; });
    return order;
}

template<> struct OrderRule<AssetOrder::Name>
{
    static int compare(const Sorting &with, const Asset &a, const Asset &b)
    {
        return with.names->compare(baseNameOf(a), baseNameOf(b));
    }
    static Order sortAll(Sorting &with)
    {
        constexpr size_t mostPerByte = 4;
        static_assert(NameCollation::keySize(1) <= mostPerByte);
        with.sorter.begin(with.data.assets.size(), mostPerByte * with.data.nameBytes);
        Order unkeyed;
        forEachName(with.data, [&](AssetIndex index, QByteArrayView name) {
            if (const uchar *end = with.names->writeKey(name, with.sorter.keyEnd()))
                with.sorter.addKey(end, index);
            else
                unkeyed.push_back(index);
        });
        const Order plain = with.sorter.sorted();
        if (unkeyed.empty())
            return plain;
        const Order others = byCollator(with, unkeyed);
        const auto before = ordering(with, &compare);
        if (others.size() < plain.size() / 16)
            return insertInto(plain, others, before);
        Order result(with.data.assets.size());
        std::ranges::merge(plain, others, result.begin(), before);
        return result;
    }
};

template<> struct OrderRule<AssetOrder::Kind>
{
    static int compare(const Sorting &, const Asset &a, const Asset &b)
    {
        if (const int byLabel = labelRank(a.kind) - labelRank(b.kind))
            return byLabel;
        return compareCodePoints(baseNameOf(a), baseNameOf(b));
    }
    static Order sortAll(Sorting &with)
    {
        constexpr size_t mostPerByte = 3; // a stray byte is written as three
        with.sorter.begin(with.data.assets.size(), mostPerByte * with.data.nameBytes);
        forEachName(with.data, [&](AssetIndex index, QByteArrayView name) {
            const QByteArray rewritten = name.isValidUtf8() ? QByteArray() : codePointBytes(name);
            const QByteArrayView bytes = rewritten.isEmpty() ? name : QByteArrayView(rewritten);
            uchar *end = with.sorter.keyEnd();
            *end++ = uchar(labelRank(with.data.asset(index).kind));
            end = std::ranges::copy(bytes, end).out;
            *end++ = 0;
            with.sorter.addKey(end, index);
        });
        return with.sorter.sorted();
    }
};

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

template<auto field> struct LargestFirst
{
    static int compare(const Sorting &, const Asset &a, const Asset &b)
    {
        return int(a.*field < b.*field) - int(a.*field > b.*field);
    }
    static Order sortAll(Sorting &with)
    {
        with.sorter.begin(with.data.assets.size(), 0);
        for (AssetIndex i = 0; i < with.data.assets.size(); ++i)
            with.sorter.addNumber(~ascending(with.data.asset(i).*field), i);
        return with.sorter.sorted();
    }
};

template<> struct OrderRule<AssetOrder::Added> : LargestFirst<&Asset::added>
{
};

template<> struct OrderRule<AssetOrder::Size> : LargestFirst<&Asset::size>
{
};

struct RuleOf
{
    AssetOrder order;
    Comparison compare;
    Order (*sortAll)(Sorting &);
};

// In the order of assetOrders.
constexpr auto rules = []<size_t... i>(std::index_sequence<i...>)
{
    return std::array{RuleOf{assetOrders[i].order, &OrderRule<assetOrders[i].order>::compare,
                             &OrderRule<assetOrders[i].order>::sortAll}...};
}
(std::make_index_sequence<assetOrders.size()>());

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

Order carryOver(const Order &earlier, const Carried &carried, const Sorting &with, const RuleOf &rule)
{
    const auto before = ordering(with, rule.compare);
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
    const auto make = [&](const RuleOf &rule, Sorting &with) {
        const size_t order = size_t(rule.order);
        data.orders[order] =
            carried ? carryOver(before->orders[order], *carried, with, rule) : rule.sortAll(with);
    };
    // By name takes as long as all others.
    std::jthread other([&] {
        Sorting with(data);
        make(rules[size_t(AssetOrder::Name)], with);
    });
    Sorting with(data);
    for (const RuleOf &rule : rules) {
        if (rule.order != AssetOrder::Name)
            make(rule, with);
        if (canceled && canceled())
            return false;
    }
    return true;
}

} // namespace cratewell

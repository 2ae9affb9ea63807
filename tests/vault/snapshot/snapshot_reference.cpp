#include "vault/snapshot/snapshot_reference.h"

#include <QCollator>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace cratewell::test {

namespace {

bool comesBefore(const QCollator &collator, AssetOrder order, const Asset &a, const Asset &b)
{
    switch (order) {
    case AssetOrder::Name:
        return collator(a.url.baseName(), b.url.baseName());
    case AssetOrder::Added:
        return a.added > b.added;
    case AssetOrder::Kind:
        return std::pair(kindLabel(a.kind), a.url.baseName().toUcs4()) <
               std::pair(kindLabel(b.kind), b.url.baseName().toUcs4());
    case AssetOrder::Size:
        return a.size > b.size;
    }
    return false;
}

void expectOrders(const VaultSnapshot &snapshot, const QCollator &collator)
{
    for (const auto &[order, label] : assetOrders) {
        std::vector<AssetIndex> expected(snapshot.size());
        std::iota(expected.begin(), expected.end(), AssetIndex{0});
        std::ranges::stable_sort(expected, [&, by = order](AssetIndex a, AssetIndex b) {
            return comesBefore(collator, by, snapshot.asset(a), snapshot.asset(b));
        });
        EXPECT_TRUE(std::ranges::equal(expected, snapshot.order(order))) << label;
    }
}

void expectNode(const VaultSnapshot &snapshot, const FolderNode &node, const QCollator &collator)
{
    SCOPED_TRACE(node.url.c_str());
    for (AssetIndex i = 0; i < snapshot.size(); ++i)
        EXPECT_EQ(snapshot.asset(i).url.isInside(node.url), node.assets.contains(i)) << i;
    EXPECT_EQ(node.count, int(node.assets.count()));
    EXPECT_EQ(snapshot.node(node.url), &node);
    EXPECT_TRUE(snapshot.under(node.url) == node.assets);
    for (size_t i = 0; i < node.children.size(); ++i) {
        EXPECT_FALSE(i > 0 && collator(node.children[i].url.name(), node.children[i - 1].url.name())) << i;
        expectNode(snapshot, node.children[i], collator);
    }
}

void expectSearch(const VaultSnapshot &snapshot)
{
    QStringList needles{QStringLiteral("a"), QStringLiteral("lut"),  QStringLiteral("\u00e9"),
                        QChar(0xDC80),       QString(QChar(0xD83C)), QString(QChar(0))};
    for (AssetIndex i = 0; i < snapshot.size(); i += 7 + snapshot.size() / 40) {
        const QString name = snapshot.asset(i).url.baseName().toLower();
        needles << name << name.right(2) << snapshot.asset(i).url.parent().name().toLower();
    }
    for (const QString &needle : needles) {
        std::vector<bool> expected;
        for (AssetIndex i = 0; i < snapshot.size(); ++i) {
            const Asset &asset = snapshot.asset(i);
            expected.push_back(asset.url.baseName().toLower().contains(needle) ||
                               asset.url.parent().name().toLower().contains(needle) ||
                               kindLabel(asset.kind).toLower().contains(needle));
        }
        EXPECT_EQ(snapshot.matching(needle), expected) << needle.toStdString();
    }
}

} // namespace

void expectPromisesKept(const VaultSnapshot &snapshot)
{
    const QLocale user = QLocale().collation();
    QCollator collator(user == QLocale::c() ? QLocale(QLocale::English, QLocale::UnitedStates) : user);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    expectOrders(snapshot, collator);
    expectSearch(snapshot);
    for (const VaultCategory category : allCategories)
        expectNode(snapshot, *snapshot.tree(category), collator);
    qint64 total = 0;
    for (AssetIndex i = 0; i < snapshot.size(); ++i) {
        total += snapshot.asset(i).size;
        EXPECT_EQ(snapshot.find(snapshot.asset(i).url), i) << snapshot.asset(i).url.c_str();
    }
    EXPECT_EQ(total, snapshot.totalSize());
}

void expectEqual(const VaultSnapshot &a, const VaultSnapshot &b)
{
    EXPECT_EQ(a.root(), b.root());
    EXPECT_EQ(a.totalSize(), b.totalSize());
    ASSERT_EQ(a.size(), b.size());
    for (AssetIndex i = 0; i < a.size(); ++i)
        EXPECT_TRUE(a.asset(i) == b.asset(i) && a.asset(i).version == b.asset(i).version)
            << a.asset(i).url.c_str();
    for (const VaultCategory category : allCategories)
        EXPECT_TRUE(*a.tree(category) == *b.tree(category)) << int(category);
    for (const auto &[order, label] : assetOrders)
        EXPECT_TRUE(std::ranges::equal(a.order(order), b.order(order))) << label;
}

void expectLeadsFromBeforeToAfter(const SnapshotDiff &diff)
{
    std::vector<AssetIndex> previous;
    std::vector<AssetIndex> altered;
    std::vector<AssetIndex> removed;
    for (AssetIndex i = 0; i < diff.after->size(); ++i) {
        const Asset &asset = diff.after->asset(i);
        previous.push_back(diff.before->find(asset.url).value_or(noAsset));
        if (previous.back() == noAsset)
            continue;
        const Asset &earlier = diff.before->asset(previous.back());
        if (!(earlier == asset) || !(earlier.version == asset.version))
            altered.push_back(i);
    }
    for (AssetIndex i = 0; i < diff.before->size(); ++i) {
        if (!diff.after->find(diff.before->asset(i).url))
            removed.push_back(i);
    }
    EXPECT_EQ(diff.previous, previous);
    EXPECT_EQ(diff.altered, altered);
    EXPECT_EQ(diff.removed, removed);
}

} // namespace cratewell::test

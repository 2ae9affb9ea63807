#include "vault/snapshot/snapshot_reference.h"

#include <QCollator>

#include <algorithm>
#include <numeric>

namespace cratewell::test {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

namespace {

QString folderNameOf(const Asset &asset)
{
    return asset.url.parent().name();
}

bool comesBefore(const QCollator &collator, AssetOrder order, const Asset &a, const Asset &b)
{
    switch (order) {
    case AssetOrder::Name:
        return collator.compare(a.url.baseName(), b.url.baseName()) < 0;
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

QCollator fileManagerOrder()
{
    const QLocale user = QLocale().collation();
    QCollator collator(user == QLocale::c() ? QLocale(QLocale::English, QLocale::UnitedStates) : user);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

AssertionResult checkOrders(const VaultSnapshot &snapshot)
{
    const QCollator collator = fileManagerOrder();
    for (const auto &[order, label] : assetOrders) {
        std::vector<AssetIndex> expected(snapshot.size());
        std::iota(expected.begin(), expected.end(), AssetIndex{0});
        std::ranges::stable_sort(expected, [&, by = order](AssetIndex a, AssetIndex b) {
            return comesBefore(collator, by, snapshot.asset(a), snapshot.asset(b));
        });
        if (!std::ranges::equal(expected, snapshot.order(order)))
            return AssertionFailure() << "order " << label;
    }
    return AssertionSuccess();
}

AssertionResult checkPlaces(const VaultSnapshot &snapshot)
{
    qint64 total = 0;
    for (AssetIndex i = 0; i < snapshot.size(); ++i) {
        total += snapshot.asset(i).size;
        if (snapshot.find(snapshot.asset(i).url) != i)
            return AssertionFailure() << "find " << snapshot.asset(i).url.bytes().toStdString();
    }
    if (total != snapshot.totalSize())
        return AssertionFailure() << "total size";
    return AssertionSuccess();
}

AssertionResult checkNode(const VaultSnapshot &snapshot, const FolderNode &node, const QCollator &collator)
{
    for (AssetIndex i = 0; i < snapshot.size(); ++i) {
        if (snapshot.asset(i).url.isInside(node.url) != node.assets.contains(i))
            return AssertionFailure() << "range of " << node.url.bytes().toStdString();
    }
    if (node.count != int(node.assets.count()) || snapshot.node(node.url) != &node ||
        !(snapshot.under(node.url) == node.assets))
        return AssertionFailure() << "node of " << node.url.bytes().toStdString();
    if (!std::ranges::is_sorted(
            node.children,
            [&collator](const QString &a, const QString &b) { return collator.compare(a, b) < 0; },
            [](const FolderNode &child) { return child.url.name(); }))
        return AssertionFailure() << "children of " << node.url.bytes().toStdString();
    for (const FolderNode &child : node.children) {
        if (const AssertionResult result = checkNode(snapshot, child, collator); !result)
            return result;
    }
    return AssertionSuccess();
}

AssertionResult checkSearch(const VaultSnapshot &snapshot)
{
    QStringList needles{QStringLiteral("a"),      QStringLiteral(" "),    QStringLiteral("lut"),
                        QStringLiteral("zzz"),    QString(QChar(0xDC80)), QString(QChar(0xD83C)),
                        QStringLiteral("\u00e9"), QString(QChar(0))};
    for (AssetIndex i = 0; i < snapshot.size(); i += 7 + snapshot.size() / 40) {
        const QString name = snapshot.asset(i).url.baseName().toLower();
        needles << name << name.mid(name.size() / 3, 3) << folderNameOf(snapshot.asset(i)).toLower();
    }
    for (const QString &needle : needles) {
        if (needle.isEmpty())
            continue;
        const std::vector<bool> matches = snapshot.matching(needle);
        for (AssetIndex i = 0; i < snapshot.size(); ++i) {
            const Asset &asset = snapshot.asset(i);
            const bool expected = asset.url.baseName().toLower().contains(needle) ||
                                  folderNameOf(asset).toLower().contains(needle) ||
                                  kindLabel(asset.kind).toLower().contains(needle);
            if (matches.at(i) != expected)
                return AssertionFailure() << "search for '" << needle.toStdString() << "' in "
                                          << asset.url.bytes().toStdString();
        }
    }
    return AssertionSuccess();
}

} // namespace

AssertionResult keepsItsPromises(const VaultSnapshot &snapshot)
{
    for (const auto check : {checkOrders, checkPlaces, checkSearch}) {
        if (const AssertionResult result = check(snapshot); !result)
            return result;
    }
    for (const VaultCategory category : allCategories) {
        if (const AssertionResult result = checkNode(snapshot, *snapshot.tree(category), fileManagerOrder());
            !result)
            return result;
    }
    return AssertionSuccess();
}

AssertionResult areEqual(const VaultSnapshot &a, const VaultSnapshot &b)
{
    if (!(a.root() == b.root()) || a.size() != b.size() || a.totalSize() != b.totalSize())
        return AssertionFailure() << "root, size or total: " << a.size() << " and " << b.size();
    for (AssetIndex i = 0; i < a.size(); ++i) {
        if (!(a.asset(i) == b.asset(i)) || !(a.asset(i).version == b.asset(i).version))
            return AssertionFailure() << "asset " << i << " " << a.asset(i).url.bytes().toStdString();
    }
    for (const VaultCategory category : allCategories) {
        if (!(*a.tree(category) == *b.tree(category)))
            return AssertionFailure() << "tree " << int(category);
    }
    for (const auto &[order, label] : assetOrders) {
        if (!std::ranges::equal(a.order(order), b.order(order)))
            return AssertionFailure() << "order " << label;
    }
    return AssertionSuccess();
}

} // namespace cratewell::test

#include "vault/files/trash_index.h"

#include "vault/category.h"
#include "vault/item_name.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>
#include <cmath>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

std::optional<TrashItem> decoded(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    TrashItem item;
    item.id = object[u"id"_s].toString();
    item.name = object[u"name"_s].toString();
    item.original = object[u"original"_s].toString();
    item.deletedAt = object[u"deletedAt"_s].toDouble(std::nan(""));
    item.isFolder = object[u"isFolder"_s].toBool();
    item.size = std::max<qint64>(0, object[u"size"_s].toInteger());
    const bool believable = isSlotName(item.id) && isPlainName(bytesFromText(item.name)) &&
                            item.original.startsWith(u'/') && std::isfinite(item.deletedAt);
    return believable ? std::optional(item) : std::nullopt;
}

} // namespace

Location trashFolder(const Location &root)
{
    return root.child(".Cratewell Trash");
}

Location trashIndexFile(const Location &root)
{
    return trashFolder(root).child("index.json");
}

Location trashSlot(const Location &root, const TrashItem &item)
{
    return trashFolder(root).child(item.id);
}

Location trashedItem(const Location &root, const TrashItem &item)
{
    return trashSlot(root, item).child(item.name);
}

bool isSlotName(const QString &name)
{
    const QUuid uuid = QUuid::fromString(name);
    return !uuid.isNull() && uuid.toString(QUuid::WithoutBraces).compare(name, Qt::CaseInsensitive) == 0;
}

Location defaultHome(const Location &root, const QString &name)
{
    const AssetKind kind = kindOf(bytesFromText(name)).value_or(AssetKind::Video);
    return categoryFolder(root, defaultCategory(kind)).child(name);
}

QByteArray encodeTrash(const std::vector<TrashItem> &items)
{
    QJsonArray array;
    for (const TrashItem &item : items)
        array.append(QJsonObject{{u"id"_s, item.id},
                                 {u"name"_s, item.name},
                                 {u"original"_s, item.original},
                                 {u"deletedAt"_s, item.deletedAt},
                                 {u"isFolder"_s, item.isFolder},
                                 {u"size"_s, item.size}});
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

DecodedTrash decodeTrash(const QByteArray &json)
{
    DecodedTrash result;
    const QJsonDocument document = QJsonDocument::fromJson(json);
    result.intact = document.isArray();
    for (const QJsonValue value : document.array()) {
        if (const std::optional<TrashItem> item = decoded(value))
            result.items.push_back(*item);
        else
            result.intact = false;
    }
    std::ranges::stable_sort(result.items, std::ranges::greater(), &TrashItem::deletedAt);
    return result;
}

} // namespace cratewell

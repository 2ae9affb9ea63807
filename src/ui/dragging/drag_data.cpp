#include "ui/dragging/drag_data.h"

#include <QMimeData>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

constexpr auto lineEnd = "\r\n";

// Other instances of the program use the same type.
const QByteArray &processToken()
{
    static const QByteArray token = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    return token;
}

} // namespace

std::unique_ptr<QMimeData> dragData(const std::vector<Location> &items)
{
    QByteArray list;
    for (const Location &item : items)
        list += item.uri() + lineEnd;
    auto data = std::make_unique<QMimeData>();
    data->setData(u"text/uri-list"_s, list);
    data->setData(QString::fromLatin1(ownDragType), processToken() + lineEnd + list);
    return data;
}

std::optional<std::vector<Location>> ownDragItems(QByteArrayView data)
{
    const QList<QByteArray> lines = data.toByteArray().split('\n');
    if (lines.first().trimmed() != processToken())
        return {};
    std::vector<Location> items;
    for (const QByteArray &line : lines.sliced(1)) {
        if (const Location item = Location::fromUri(line.trimmed()); !item.isEmpty())
            items.push_back(item);
    }
    return items;
}

} // namespace cratewell

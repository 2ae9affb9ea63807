#include "ui/dragging/dropped_items.h"

#include "vault/move_rule.h"

#include <QHash>

#include <algorithm>
#include <filesystem>

namespace cratewell {

namespace {

bool isLink(const Location &item)
{
    std::error_code failed;
    return std::filesystem::is_symlink(item.c_str(), failed);
}

bool isFolder(const Location &item)
{
    std::error_code failed;
    return std::filesystem::is_directory(item.c_str(), failed);
}

} // namespace

DroppedItems splitDropped(const std::vector<Location> &items, const Location &root, size_t most)
{
    const Location realRoot = root.resolved();
    QHash<Location, Location> realFolders; // the many items of a drag have few folders
    DroppedItems dropped;
    for (size_t i = 0; i < std::min(most, items.size()); ++i) {
        const Location &item = items[i];
        if (item.isEmpty())
            continue;
        auto folder = realFolders.find(item.parent());
        if (folder == realFolders.end())
            folder = realFolders.insert(item.parent(), item.parent().resolved());
        const Location place = folder->child(item.nameBytes());
        const Location end = isLink(place) ? place.resolved() : place;
        if (!end.isInside(realRoot))
            dropped.outside.push_back(item);
        else // a link from outside stands for what it leads to and stays where it is
            dropped.inside.push_back(place.isInside(realRoot) ? item : end);
    }
    return dropped;
}

bool movesAny(const std::vector<Location> &items, const Location &folder, const Location &root)
{
    const MoveRule rule(root, folder);
    return std::ranges::any_of(items, [&](const Location &item) { return rule.allows(item); });
}

bool importsAny(const std::vector<Location> &items)
{
    return std::ranges::any_of(
        items, [](const Location &item) { return kindOf(item).has_value() || isFolder(item); });
}

bool landsIn(const std::vector<Location> &items, const Location &folder, const Location &root)
{
    const auto category = categoryOf(root, folder);
    return std::ranges::any_of(items, [&](const Location &item) {
        const auto kind = kindOf(item);
        return kind ? !category || accepts(*category, *kind) : isFolder(item);
    });
}

} // namespace cratewell

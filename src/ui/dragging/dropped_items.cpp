#include "ui/dragging/dropped_items.h"

#include "vault/move_rule.h"

#include <QHash>

#include <algorithm>
#include <filesystem>
#include <set>

namespace cratewell {

namespace {

using std::filesystem::file_type;

// Of the item itself, were it a link.
file_type typeOf(const Location &item)
{
    std::error_code failed;
    return std::filesystem::symlink_status(item.c_str(), failed).type();
}

bool leadsToFolder(const Location &item)
{
    std::error_code failed;
    return std::filesystem::is_directory(item.c_str(), failed);
}

} // namespace

struct DropJudge
{
    explicit DropJudge(const Location &root) : realRoot(root.resolved()) {}

    void add(const Location &item);
    void addInside(const Location &place, const Location &resolved, file_type type);
    void addOutside(const Location &item);
    Location realFolder(const Location &folder);

    const Location realRoot;
    QHash<Location, Location> realFolders;         // the many items of a drag have few folders
    std::set<std::pair<AssetKind, Location>> seen; // kind and folder of files to move
    JudgedDrop drop;
};

Location DropJudge::realFolder(const Location &folder)
{
    auto found = realFolders.constFind(folder);
    if (found == realFolders.constEnd())
        found = realFolders.insert(folder, folder.resolved());
    return *found;
}

void DropJudge::add(const Location &item)
{
    if (item.isEmpty())
        return;
    const Location place = realFolder(item.parent()).child(item.nameBytes());
    if (isCategoryRoot(realRoot, place))
        return;
    const file_type type = typeOf(place);
    const Location end = type == file_type::symlink ? place.resolved() : place;
    if (!end.isInside(realRoot)) {
        addOutside(item);
    } else if (place.isInside(realRoot)) {
        drop.items.inside.push_back(item);
        addInside(place, end, type);
    } else if (!isCategoryRoot(realRoot, end)) {
        // A link from outside stands for what it leads to and stays where it is.
        drop.items.inside.push_back(end);
        addInside(end, end, typeOf(end));
    }
}

void DropJudge::addInside(const Location &place, const Location &resolved, file_type type)
{
    const std::optional<AssetKind> kind = kindOf(place);
    if (kind && type != file_type::directory) {
        if (!seen.emplace(*kind, resolved.parent()).second)
            return;
    }
    drop.effects.m_moved.push_back({kind, resolved});
}

void DropJudge::addOutside(const Location &item)
{
    drop.items.outside.push_back(item);
    DropEffects &effects = drop.effects;
    if (const auto kind = kindOf(item))
        effects.m_imported.insert(*kind);
    else
        effects.m_importsFolder = effects.m_importsFolder || leadsToFolder(item);
}

bool DropEffects::moveInto(const Location &folder, const Location &root) const
{
    const MoveRule rule(root, folder);
    return std::ranges::any_of(m_moved,
                               [&](const Moved &moved) { return rule.allows(moved.kind, moved.resolved); });
}

bool DropEffects::importInto(const Location &folder, const Location &root) const
{
    const auto category = categoryOf(root, folder);
    return m_importsFolder || std::ranges::any_of(m_imported, [&](AssetKind kind) {
               return !category || accepts(*category, kind);
           });
}

JudgedDrop judgeDrop(const std::vector<Location> &items, const Location &root)
{
    DropJudge judge(root);
    for (const Location &item : items)
        judge.add(item);
    return std::move(judge.drop);
}

} // namespace cratewell

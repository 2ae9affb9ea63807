#include "ui/dragging/dropped_items.h"

#include <algorithm>
#include <filesystem>

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

bool takes(const std::optional<VaultCategory> &category, AssetKind kind)
{
    return !category || accepts(*category, kind);
}

} // namespace

struct DropJudge
{
    explicit DropJudge(const Location &root) : realRoot(root.resolved()) {}

    void add(const Location &item);
    void addInside(const Location &place, file_type type);
    void addOutside(const Location &item);
    Location realFolder(const Location &folder);

    const Location realRoot;
    QHash<Location, Location> realFolders; // the many items of a drag have few folders
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
        addInside(place, type);
    } else if (!isCategoryRoot(realRoot, end)) {
        // A link from outside stands for what it leads to and stays where it is.
        drop.items.inside.push_back(end);
        addInside(end, typeOf(end));
    }
}

void DropJudge::addInside(const Location &place, file_type type)
{
    const std::optional<AssetKind> kind = kindOf(place);
    if (kind && type != file_type::directory)
        drop.effects.m_origins[*kind].insert(place.parent());
    else
        drop.effects.m_others.push_back({place, kind});
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
    const Location target = folder.resolved();
    const auto category = categoryOf(root, folder);
    for (auto origin = m_origins.begin(); origin != m_origins.end(); ++origin) {
        const bool elsewhere = origin->size() > 1 || !origin->contains(target);
        if (elsewhere && takes(category, origin.key()))
            return true;
    }
    return std::ranges::any_of(m_others, [&](const Other &other) {
        return (!other.kind || takes(category, *other.kind)) && other.place.parent() != target &&
               other.place != target && !target.isInside(other.place);
    });
}

bool DropEffects::importInto(const Location &folder, const Location &root) const
{
    const auto category = categoryOf(root, folder);
    return m_importsFolder ||
           std::ranges::any_of(m_imported, [&](AssetKind kind) { return takes(category, kind); });
}

JudgedDrop judgeDrop(const std::vector<Location> &items, const Location &root)
{
    DropJudge judge(root);
    for (const Location &item : items)
        judge.add(item);
    return std::move(judge.drop);
}

} // namespace cratewell

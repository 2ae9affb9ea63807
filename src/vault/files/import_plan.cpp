#include "vault/files/import_plan.h"

#include "vault/files/disk.h"
#include "vault/files/operation_progress.h"

#include <sys/stat.h>

namespace cratewell {

namespace {

// Far beyond what anybody files by hand; keeps the recursion small.
constexpr int deepestFolder = 200;

class Planner
{
public:
    Planner(const Location &root, OperationProgress &progress)
        : m_root(root), m_resolvedRoot(root.resolved()), m_monitor(progress)
    {
    }

    void place(const Location &item, const std::optional<Location> &target, int depth);

    ImportPlan plan;

private:
    void placeFolder(const Location &folder, const std::optional<Location> &target, int depth);
    void placeFile(const Location &file, qint64 size, const std::optional<Location> &target);
    Location defaultFolder(AssetKind kind) const { return categoryFolder(m_root, defaultCategory(kind)); }

    const Location m_root;
    const Location m_resolvedRoot;
    OperationProgress &m_monitor;
};

void Planner::place(const Location &item, const std::optional<Location> &target, int depth)
{
    struct stat facts;
    if (m_monitor.canceled || ::stat(item.c_str(), &facts) != 0)
        return;
    if (!S_ISDIR(facts.st_mode))
        return placeFile(item, facts.st_size, target);
    // Only a link that the user chose himself is followed to a folder.
    if (depth == 0 || (depth < deepestFolder && disk::isFolder(item)))
        placeFolder(item, target, depth);
}

void Planner::placeFolder(const Location &folder, const std::optional<Location> &target, int depth)
{
    if (depth > 0 && (folder == m_root || folder == m_resolvedRoot))
        return;
    std::vector<Location> entries;
    std::optional<Location> home = target;
    for (const QByteArray &name : disk::names(folder)) {
        if (isHiddenName(name))
            continue;
        entries.push_back(folder.child(name));
        const std::optional<AssetKind> kind = home ? std::nullopt : kindOf(name);
        struct stat facts;
        if (kind && ::stat(entries.back().c_str(), &facts) == 0 && !S_ISDIR(facts.st_mode))
            home = defaultFolder(*kind);
    }
    std::optional<Location> inner;
    if (home) {
        inner = home->child(folder.nameBytes());
        plan.steps.push_back({{}, *inner});
    }
    for (const Location &entry : entries)
        place(entry, inner, depth + 1);
}

void Planner::placeFile(const Location &file, qint64 size, const std::optional<Location> &target)
{
    const std::optional<AssetKind> kind = kindOf(file);
    if (!kind)
        return;
    Location folder = target.value_or(defaultFolder(*kind));
    if (const auto category = categoryOf(m_root, folder); category && !accepts(*category, *kind))
        folder = defaultFolder(*kind);
    plan.steps.push_back({file, folder});
    ++m_monitor.filesTotal;
    m_monitor.bytesTotal += size;
}

} // namespace

ImportPlan ImportPlan::make(const Location &root, const std::vector<Location> &items,
                            const std::optional<Location> &into, OperationProgress &progress)
{
    Planner planner(root, progress);
    for (const Location &item : items)
        planner.place(item, into, 0);
    return std::move(planner.plan);
}

} // namespace cratewell

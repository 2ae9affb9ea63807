#include "vault/files/import_plan.h"

#include "platform/posix/file_status.h"
#include "vault/files/disk.h"
#include "vault/files/operation_progress.h"

#include <QSet>

#include <cerrno>

#include <fcntl.h>

namespace cratewell {

namespace {

// Far beyond what anybody files by hand; keeps the recursion small.
constexpr int deepestFolder = 200;

using Identity = std::pair<quint64, quint64>; // device and inode

class Planner
{
public:
    Planner(const Location &root, OperationProgress &progress) : m_root(root), m_progress(progress)
    {
        if (const auto status = statusOfTarget(root))
            m_vault.insert({status->device, status->inode});
        for (const VaultCategory category : allCategories) {
            if (const auto status = statusOfTarget(categoryFolder(root, category)))
                m_vaultFolders.insert({status->device, status->inode});
        }
    }

    void place(const Location &item, const std::optional<Location> &target, int depth);

    ImportPlan plan;

private:
    static Result<FileStatus> statusOfTarget(const Location &place)
    {
        return statusAt(AT_FDCWD, place.c_str(), Links::Follow);
    }
    void placeFolder(const Location &folder, const std::optional<Location> &target, int depth);
    void placeFile(const Location &file, qint64 size, const std::optional<Location> &target);
    std::vector<QByteArray> visibleNames(const Location &folder);
    Location defaultFolder(AssetKind kind) const { return categoryFolder(m_root, defaultCategory(kind)); }

    const Location m_root;
    QSet<Identity> m_vault;
    QSet<Identity> m_vaultFolders;
    OperationProgress &m_progress;
};

void Planner::place(const Location &item, const std::optional<Location> &target, int depth)
{
    if (m_progress.canceled)
        return;
    const Result<FileStatus> status = statusOfTarget(item);
    if (!status) {
        // Not so of a link that leads nowhere, or of what another program has just taken away.
        if (!status.error().is(ENOENT))
            plan.unread = Error::fromErrno(status.error().code, item.name());
        return;
    }
    if (!status->isFolder())
        return placeFile(item, status->size, target);
    const Identity identity{status->device, status->inode};
    if (m_vault.contains(identity) || (depth > 0 && m_vaultFolders.contains(identity)))
        return;
    // Only a link that the user chose himself is followed to a folder.
    if (depth == 0 || (depth < deepestFolder && disk::isFolder(item)))
        placeFolder(item, target, depth);
}

std::vector<QByteArray> Planner::visibleNames(const Location &folder)
{
    Result<std::vector<QByteArray>> names = disk::names(folder);
    if (!names) {
        plan.unread = Error::fromErrno(names.error().code, folder.name());
        return {};
    }
    std::erase_if(*names, [](const QByteArray &name) { return isHiddenName(name); });
    return *names;
}

void Planner::placeFolder(const Location &folder, const std::optional<Location> &target, int depth)
{
    const std::vector<QByteArray> names = visibleNames(folder);
    std::optional<Location> home = target;
    for (const QByteArray &name : names) {
        const std::optional<AssetKind> kind = home ? std::nullopt : kindOf(name);
        if (!kind)
            continue;
        const Result<FileStatus> status = statusOfTarget(folder.child(name));
        if (status && !status->isFolder())
            home = defaultFolder(*kind);
    }
    std::optional<Location> inner;
    if (home) {
        inner = home->child(folder.nameBytes());
        plan.steps.push_back({{}, *inner});
    }
    for (const QByteArray &name : names)
        place(folder.child(name), inner, depth + 1);
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
    ++m_progress.filesTotal;
    m_progress.bytesTotal += size;
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

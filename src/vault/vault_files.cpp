#include "vault/vault.h"

namespace cratewell {
void Vault::createFolder(const QString &, const Location &, FolderCreated) {}
void Vault::rename(const Location &, const QString &) {}
void Vault::move(const std::vector<Location> &, const Location &) {}
std::vector<FolderChoice> Vault::flatFolders(const std::optional<QSet<AssetKind>> &) const { return {}; }
const std::vector<TrashItem> &Vault::trashItems() const { static const std::vector<TrashItem> none; return none; }
void Vault::moveToTrash(const std::vector<Location> &) {}
void Vault::restore(const std::vector<TrashItem> &) {}
void Vault::deleteForever(const std::vector<TrashItem> &) {}
void Vault::purgeExpired() {}
void Vault::importItems(const std::vector<Location> &, const std::optional<Location> &, ImportMode) {}
const std::vector<Location> &Vault::recentImports() const { static const std::vector<Location> none; return none; }
FileProgress &Vault::progress() const { static FileProgress progress; return progress; }
void Vault::drain() {}
} // namespace cratewell

#pragma once

#include "vault/asset.h"

#include <array>
#include <span>

namespace cratewell {

inline constexpr std::array allCategories{VaultCategory::Overlays, VaultCategory::Luts, VaultCategory::Sfx};

QString rawValue(VaultCategory category);   // "overlays", "luts", "sfx"
QString folderName(VaultCategory category); // on disk and on screen: "Overlays", "LUTs", "SFX"
bool accepts(VaultCategory category, AssetKind kind);
VaultCategory defaultCategory(AssetKind kind);
std::span<const char *const> starterFolders(VaultCategory category);
std::array<QString, 2> gradient(VaultCategory category); // "#RRGGBB", start then end

// Which rule a place in a vault falls under; pure path arithmetic below `root`.
Location categoryFolder(const Location &root, VaultCategory category);
std::optional<VaultCategory> categoryOf(const Location &root, const Location &place);
bool isCategoryRoot(const Location &root, const Location &place);

} // namespace cratewell

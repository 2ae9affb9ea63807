#pragma once

#include <QObject>

namespace cratewell {

// The vault's enumerations, together because one header may describe the namespace to the meta-object system.
Q_NAMESPACE

// What sort of media a file is, decided by its extension alone. Declaration order is listing order.
enum class AssetKind : quint8 { Video, Image, Lut, Audio };
Q_ENUM_NS(AssetKind)

// The three fixed top-level folders of a vault, in the order of every loop over them.
enum class VaultCategory : quint8 { Overlays, Luts, Sfx };
Q_ENUM_NS(VaultCategory)

// Sort orders a snapshot of the vault keeps ready; in the order of the sort menu.
enum class AssetOrder : quint8 { Name, Added, Kind, Size };
Q_ENUM_NS(AssetOrder)
inline constexpr int assetOrderCount = 4;

} // namespace cratewell

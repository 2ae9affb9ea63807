#pragma once

#include <QObject>

#include <array>

namespace cratewell {

// The vault's enumerations, together because one header may describe the namespace to the meta-object system.
Q_NAMESPACE

// What sort of media a file is, decided by its extension alone. Declaration order is listing order.
enum class AssetKind : quint8 { Video, Image, Lut, Audio };
Q_ENUM_NS(AssetKind)

// The three fixed top-level folders of a vault, in the order of every loop over them.
enum class VaultCategory : quint8 { Overlays, Luts, Sfx };
Q_ENUM_NS(VaultCategory)

// Sort orders a snapshot of the vault keeps ready, with their labels, in the order of the sort menu. A new
// one needs its row here and its OrderRule in snapshot/sort_orders.cpp; without the rule it does not compile.
#define CRATEWELL_ASSET_ORDERS(ROW)                                                                          \
    ROW(Name, "Name")                                                                                        \
    ROW(Added, "Added")                                                                                      \
    ROW(Kind, "Kind")                                                                                        \
    ROW(Size, "Size")

#define CRATEWELL_ENUMERATOR(order, label) order,
enum class AssetOrder : quint8 { CRATEWELL_ASSET_ORDERS(CRATEWELL_ENUMERATOR) };
#undef CRATEWELL_ENUMERATOR
Q_ENUM_NS(AssetOrder)

struct AssetOrderRow
{
    AssetOrder order;
    const char *label;
};
#define CRATEWELL_ROW(order, label) AssetOrderRow{AssetOrder::order, label},
inline constexpr std::array assetOrders{CRATEWELL_ASSET_ORDERS(CRATEWELL_ROW)};
#undef CRATEWELL_ROW

} // namespace cratewell

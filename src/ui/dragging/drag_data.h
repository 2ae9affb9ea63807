#pragma once

#include "platform/location.h"

#include <memory>
#include <optional>
#include <vector>

class QMimeData;

namespace cratewell {

// What a drag of assets carries: a plain list of files for every program, and the same list in a type of our
// own, by which our window knows at once that the drag is its own.
inline constexpr auto ownDragType = "llc.tolvan.cratewell.paths";

std::unique_ptr<QMimeData> dragData(const std::vector<Location> &items);
// The items of a drag that this process has started; nothing for data of another process, or of no drag.
std::optional<std::vector<Location>> ownDragItems(QByteArrayView data);

} // namespace cratewell

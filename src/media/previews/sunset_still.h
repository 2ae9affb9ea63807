#pragma once

#include <QImage>

namespace cratewell {

// The built-in picture under overlays and LUTs: a sunset over three ranges of hills, drawn for any size.
QImage sunsetStill(QSize size);

} // namespace cratewell

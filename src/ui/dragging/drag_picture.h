#pragma once

#include <QColor>
#include <QImage>
#include <QPixmap>

#include <vector>

namespace cratewell {

// How large one picture of it is drawn, in device-independent pixels.
inline constexpr QSize dragPictureSize{112, 70};
// More are not shown.
inline constexpr size_t dragPictureDepth = 3;

// What follows the pointer during a drag: pictures on top of each other, the first in front, and where there
// is more than one item how many. A plain rectangle: not every screen can show anything else.
QPixmap dragPicture(const std::vector<QImage> &pictures, int count, const QColor &accent, double pixelRatio);

} // namespace cratewell

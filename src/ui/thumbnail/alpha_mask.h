#pragma once

#include <QImage>
#include <QPainterPath>

namespace cratewell {

// Coverage of `path` in a bitmap of `size` pixels, 8 bits a pixel (QImage::Format_Alpha8).
QImage coverage(const QPainterPath &path, QSize size);
// A Gaussian blur of a coverage bitmap, by three box blurs; `sigma` in pixels. What lies outside is empty.
QImage blurred(const QImage &mask, double sigma);
// A premultiplied picture of one color through a coverage bitmap.
QImage tinted(const QImage &mask, const QColor &color);
// Keeps of a premultiplied picture what the coverage bitmap of the same size covers.
void keepInside(QImage &picture, const QImage &mask);

} // namespace cratewell

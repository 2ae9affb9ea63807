#include "media/previews/sunset_still.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <array>
#include <cmath>

namespace cratewell {

namespace {

QColor color(double red, double green, double blue, double alpha = 1)
{
    return QColor::fromRgbF(float(red), float(green), float(blue), float(alpha));
}

void drawSky(QPainter &painter, double width, double height)
{
    QLinearGradient sky(0, height, 0, 0.4 * height);
    sky.setInterpolationMode(QGradient::ComponentInterpolation);
    sky.setStops({{0, color(0.16, 0.18, 0.42)},
                  {0.45, color(0.62, 0.36, 0.62)},
                  {0.8, color(1, 0.62, 0.42)},
                  {1, color(1, 0.82, 0.55)}});
    painter.fillRect(QRectF(0, 0, width, height), sky);
}

void drawGlow(QPainter &painter, double width, double height)
{
    QRadialGradient glow(QPointF(0.62 * width, 0.46 * height), 0.35 * width);
    glow.setInterpolationMode(QGradient::ComponentInterpolation);
    glow.setStops({{0, color(1, 0.95, 0.8)}, {0.15, color(1, 0.75, 0.45, 0.6)}, {1, color(1, 0.6, 0.4, 0)}});
    painter.fillRect(QRectF(0, 0, width, height), glow);
}

void drawHills(QPainter &painter, double width, double height)
{
    struct Range
    {
        double base;
        double amplitude;
        QColor color;
    };
    const std::array ranges{Range{0.5, 0.06, color(0.42, 0.25, 0.45)},
                            Range{0.42, 0.09, color(0.25, 0.14, 0.3)},
                            Range{0.32, 0.12, color(0.11, 0.07, 0.15)}};
    int k = 0;
    for (const Range &range : ranges) {
        QPainterPath hills(QPointF(0, 0));
        hills.setFillRule(Qt::WindingFill);
        for (int x = 0; x <= width; x += 8) {
            const double wave = 0.6 * std::sin(2 * k + 7 * x / width) + 0.4 * std::sin(17 * x / width + k);
            hills.lineTo(x, range.base * height + range.amplitude * height * wave);
        }
        hills.lineTo(width, 0);
        hills.closeSubpath();
        painter.fillPath(hills, range.color);
        ++k;
    }
}

} // namespace

QImage sunsetStill(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    const double width = size.width(), height = size.height();

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // The drawing's origin is at the bottom left.
    painter.translate(0, height);
    painter.scale(1, -1);
    drawSky(painter, width, height);
    drawGlow(painter, width, height);
    drawHills(painter, width, height);

    QPainterPath head;
    head.addEllipse(QRectF(0.28 * width, 0.36 * height, 0.05 * width, 0.05 * width));
    painter.fillPath(head, color(0.86, 0.6, 0.48));
    painter.fillRect(QRectF(0.27 * width, 0, 0.07 * width, 0.37 * height), color(0.08, 0.08, 0.12));
    return image;
}

} // namespace cratewell

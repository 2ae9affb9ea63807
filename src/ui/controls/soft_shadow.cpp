#include "ui/controls/soft_shadow.h"

#include <algorithm>
#include <cmath>

namespace cratewell {

namespace {

// How far a point lies outside a rounded rectangle around the origin; negative inside.
float distanceToRounded(float x, float y, float halfWidth, float halfHeight, float radius)
{
    const float beyondX = std::abs(x) - halfWidth + radius;
    const float beyondY = std::abs(y) - halfHeight + radius;
    return std::hypot(std::max(beyondX, 0.f), std::max(beyondY, 0.f)) +
           std::min(std::max(beyondX, beyondY), 0.f) - radius;
}

} // namespace

QImage SoftShadow::draw(QSize pixels, qreal ratio) const
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    const float blur = std::max(1.f, float(m_blur * ratio));
    const float halfWidth = float(pixels.width()) / 2 - blur;
    const float halfHeight = float(pixels.height()) / 2 - blur;
    const float radius = std::min({float(m_radius * ratio), halfWidth, halfHeight});
    const float drop = float(m_drop * ratio);
    const float opacity = float(m_color.alphaF());
    for (int row = 0; row < pixels.height(); ++row) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(row));
        const float y = float(row) + 0.5f - float(pixels.height()) / 2;
        for (int column = 0; column < pixels.width(); ++column) {
            const float x = float(column) + 0.5f - float(pixels.width()) / 2;
            const float shadow = distanceToRounded(x, y - drop, halfWidth, halfHeight, radius);
            const float fade = std::clamp(0.5f - shadow / (2 * (blur - std::abs(drop))), 0.f, 1.f);
            const float hole =
                std::clamp(distanceToRounded(x, y, halfWidth, halfHeight, radius) + 0.5f, 0.f, 1.f);
            const int alpha = int(std::lround(255 * opacity * fade * fade * (3 - 2 * fade) * hole));
            line[column] = qPremultiply(qRgba(m_color.red(), m_color.green(), m_color.blue(), alpha));
        }
    }
    return image;
}

} // namespace cratewell

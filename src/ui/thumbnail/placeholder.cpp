#include "ui/thumbnail/placeholder.h"

#include "ui/thumbnail/alpha_mask.h"
#include "vault/category.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

namespace cratewell {

namespace {

using Sign = PlaceholderLook::Sign;

QColor mixed(const QColor &from, const QColor &to, float share)
{
    const auto channel = [share](float a, float b) { return a + (b - a) * share; };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()));
}

} // namespace

QString kindIcon(AssetKind kind)
{
    switch (kind) {
    case AssetKind::Video:
        return QStringLiteral("movie");
    case AssetKind::Image:
        return QStringLiteral("image");
    case AssetKind::Lut:
        return QStringLiteral("camera");
    case AssetKind::Audio:
        return QStringLiteral("graphic_eq");
    }
    return {};
}

QImage placeholderPicture(const PlaceholderLook &look, const ThumbnailShape &shape)
{
    const QColor dark(0x0a, 0x0b, 0x10);
    const auto colors = gradient(defaultCategory(look.kind));
    const QColor start(colors[0]);
    const QColor end(colors[1]);

    QImage tile(shape.size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&tile);
    QLinearGradient tint(QPointF(0, 0), QPointF(shape.size.width(), shape.size.height()));
    const float strength = look.sign == Sign::Kind || look.sign == Sign::Stage ? 0.26F : 0.12F;
    tint.setColorAt(0, mixed(dark, start, strength));
    tint.setColorAt(1, mixed(dark, end, strength * 0.4F));
    painter.fillRect(tile.rect(), tint);

    if (look.sign == Sign::Kind || look.sign == Sign::Broken) {
        QFont font(look.iconFamily);
        font.setPixelSize(std::max(8, shape.size.height() * 2 / 5));
        painter.setFont(font);
        QColor foreground = look.sign == Sign::Broken ? QColor(Qt::white) : mixed(start, Qt::white, 0.35F);
        foreground.setAlphaF(look.sign == Sign::Broken ? 0.28F : 0.6F);
        painter.setPen(foreground);
        painter.drawText(tile.rect(), Qt::AlignCenter,
                         look.sign == Sign::Broken ? QStringLiteral("broken_image") : kindIcon(look.kind));
    }
    painter.end();

    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(), shape.size), shape.radius, shape.radius);
    keepInside(tile, coverage(outline, shape.size));
    return tile;
}

} // namespace cratewell

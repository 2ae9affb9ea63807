#include "ui/shell/icon_renderer.h"

#include "ui/grid/star_shape.h"
#include "ui/thumbnail/alpha_mask.h"

#include <QColorSpace>
#include <QPainter>
#include <algorithm>

namespace cratewell {

namespace {

struct StarStop
{
    double location;
    QRgb color;
};
using StarGradient = std::array<StarStop, 5>;

constexpr StarGradient silver{
    {{0.0, 0xffffffff}, {0.35, 0xffc7c9d1}, {0.5, 0xff6e717c}, {0.68, 0xffe9eaee}, {1.0, 0xff8a8d97}}};
constexpr StarGradient holo{
    {{0.0, 0xffffffff}, {0.3, 0xffffb3f0}, {0.5, 0xff7b5cff}, {0.7, 0xff9befff}, {1.0, 0xffc7c9d1}}};
constexpr StarGradient gold{
    {{0.0, 0xfffff4d6}, {0.35, 0xffffd27a}, {0.5, 0xff9a6a1e}, {0.68, 0xffffe3a3}, {1.0, 0xffb8862e}}};

struct Look
{
    const char *rawValue;
    QRgb top;
    QRgb base;
    QRgb glow;
    const StarGradient *star;
};

constexpr std::array<Look, allIconStyles.size()> looks{
    {{"chrome", 0xff1c1530, 0xff07070b, 0xff7b5cff, &silver},
     {"holo", 0xff2a1250, 0xff0a0820, 0xffff4ecd, &holo},
     {"midnight", 0xff0e1a40, 0xff04060f, 0xff2fd6ff, &silver},
     {"gold", 0xff2a1c08, 0xff0b0805, 0xffffb13b, &gold},
     {"light", 0xffffffff, 0xffd9dae0, 0xff7b5cff, &silver}}};

const Look &lookOf(IconStyle style)
{
    return looks[size_t(style)];
}

QColor faded(QRgb rgb, double opacity)
{
    QColor color(rgb);
    color.setAlphaF(float(opacity));
    return color;
}

QImage emptyBitmap(QSize size)
{
    QImage bitmap(size, QImage::Format_ARGB32_Premultiplied);
    bitmap.setColorSpace(QColorSpace::SRgb);
    bitmap.fill(Qt::transparent);
    return bitmap;
}

// A shape's light or shadow: blurred by `blur` pixels in the sense of twice the standard deviation.
void drawBlurred(QPainter &painter, const QPainterPath &shape, QSize size, double blur, const QColor &color)
{
    painter.drawImage(0, 0, tinted(blurred(coverage(shape, size), blur / 2.0), color));
}

void drawGrid(QPainter &painter, const QRectF &panel, const QColor &color, double lineWidth)
{
    painter.setPen(QPen(color, lineWidth, Qt::SolidLine, Qt::FlatCap));
    const double step = panel.width() / 8.0;
    for (int i = 0; i < 8; ++i) {
        const double x = panel.left() + i * step;
        const double y = panel.bottom() - i * step;
        painter.drawLine(QPointF(x, panel.top()), QPointF(x, panel.bottom()));
        painter.drawLine(QPointF(panel.left(), y), QPointF(panel.right(), y));
    }
}

QImage panelFace(IconStyle style, int size, const QRectF &panel, const QPainterPath &outline)
{
    const Look &look = lookOf(style);
    const bool light = style == IconStyle::Light;
    QImage face = emptyBitmap({size, size});
    QPainter painter(&face);
    painter.setRenderHint(QPainter::Antialiasing);

    QLinearGradient body(panel.topLeft(), panel.bottomLeft());
    body.setColorAt(0, QColor(look.top));
    body.setColorAt(1, QColor(look.base));
    painter.fillRect(face.rect(), body);

    QRadialGradient glow(QPointF(size / 2.0, size / 2.0), panel.width() * 0.55);
    glow.setColorAt(0, faded(look.glow, 0.55));
    glow.setColorAt(1, faded(look.glow, 0));
    painter.fillRect(face.rect(), glow);

    drawGrid(painter, panel, faded(light ? 0xff000000 : 0xffffffff, 0.05), std::max(1.0, size / 512.0));

    QLinearGradient sheen(panel.topLeft(), QPointF(panel.left(), panel.center().y()));
    sheen.setColorAt(0, faded(0xffffffff, light ? 0.12 : 0.5));
    sheen.setColorAt(1, faded(0xffffffff, 0));
    painter.fillRect(face.rect(), sheen);
    painter.end();

    keepInside(face, coverage(outline, face.size()));
    return face;
}

QImage starFace(IconStyle style, QSize size, const QRectF &star)
{
    QImage face = emptyBitmap(size);
    QPainter painter(&face);
    QLinearGradient metal(star.topLeft(), star.bottomRight());
    for (const StarStop &stop : *lookOf(style).star)
        metal.setColorAt(stop.location, QColor(stop.color));
    painter.fillRect(face.rect(), metal);
    painter.end();
    keepInside(face, coverage(starShape(star), size));
    return face;
}

} // namespace

QString rawValue(IconStyle style)
{
    return QString::fromLatin1(lookOf(style).rawValue);
}

IconStyle iconStyleFromRawValue(const QString &text)
{
    const auto found =
        std::ranges::find_if(allIconStyles, [&text](IconStyle style) { return rawValue(style) == text; });
    return found == allIconStyles.end() ? IconStyle::Chrome : *found;
}

QImage renderIcon(IconStyle style, int size)
{
    if (size < 1 || size > 8192)
        return {};
    QImage icon = emptyBitmap({size, size});
    if (icon.isNull())
        return {};
    const Look &look = lookOf(style);
    const double inset = size * 0.1;
    const QRectF panel(inset, inset, size - 2 * inset, size - 2 * inset);
    QPainterPath outline;
    outline.addRoundedRect(panel, panel.width() * 0.225, panel.width() * 0.225);
    const double starInset = panel.width() * 0.17;
    const QRectF star = panel.adjusted(starInset, starInset, -starInset, -starInset);

    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBlurred(painter, outline.translated(0, size * 0.012), icon.size(), size * 0.03,
                faded(0xff000000, 0.45));
    painter.fillPath(outline, QColor(look.base));
    painter.drawImage(0, 0, panelFace(style, size, panel, outline));
    painter.strokePath(outline,
                       QPen(faded(0xffffffff, style == IconStyle::Light ? 0.12 : 0.6), size / 256.0));
    drawBlurred(painter, starShape(star), icon.size(), size * 0.05, faded(look.glow, 0.8));
    painter.fillPath(starShape(star), Qt::white);
    painter.drawImage(0, 0, starFace(style, icon.size(), star));
    return icon;
}

QImage renderStar(IconStyle style, QSize size)
{
    return size.isEmpty() ? QImage() : starFace(style, size, QRectF(QPointF(), size));
}

} // namespace cratewell

#include "ui/dragging/drag_picture.h"

#include "ui/thumbnail/thumbnail_scaler.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace cratewell {

namespace {

constexpr int margin = 6;
constexpr int step = 6; // from one picture of the stack to the next, both ways
constexpr int badgeHeight = 20;
constexpr QColor tray(0x1b, 0x1b, 0x22);
constexpr QColor edge(0x4a, 0x4a, 0x56);
constexpr QColor mat(0x0a, 0x0b, 0x10);

void drawBadge(QPainter &painter, const QString &number, int right, const QColor &accent)
{
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(12);
    font.setWeight(QFont::Bold);
    const int width = std::max(badgeHeight, QFontMetrics(font).horizontalAdvance(number) + 12);
    const QRect badge(right - width, 0, width, badgeHeight);
    painter.fillRect(badge, accent);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(badge, Qt::AlignCenter, number);
}

} // namespace

QPixmap dragPicture(const std::vector<QImage> &pictures, int count, const QColor &accent, double pixelRatio)
{
    const int depth = std::max(1, int(std::min(pictures.size(), dragPictureDepth)));
    const int around = 2 * margin + (depth - 1) * step;
    const QSize size = dragPictureSize + QSize(around, around);

    QPixmap result(size * pixelRatio);
    result.setDevicePixelRatio(pixelRatio);
    result.fill(edge);
    QPainter painter(&result);
    painter.fillRect(QRect({}, size).adjusted(1, 1, -1, -1), tray);
    for (int i = depth - 1; i >= 0; --i) {
        const QRect place(QPoint(margin + i * step, margin + i * step), dragPictureSize);
        const QRect inner = place.adjusted(1, 1, -1, -1);
        painter.fillRect(place, edge);
        painter.fillRect(inner, mat);
        if (size_t(i) < pictures.size())
            painter.drawImage(inner,
                              scaledThumbnail(pictures[size_t(i)], {.size = inner.size() * pixelRatio}));
    }
    if (count > 1)
        drawBadge(painter, QString::number(count), size.width(), accent);
    return result;
}

} // namespace cratewell

#include "ui/drag_picture.h"

#include "ui/picture_cutter.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace cratewell {

namespace {

constexpr int step = 6;         // from one picture of the stack to the next, both ways
constexpr int badgeHeight = 20; // half of it stands out of the pictures
constexpr QColor frame(255, 255, 255);
constexpr QColor mat(0x16, 0x16, 0x1c);

} // namespace

QPixmap dragPicture(const std::vector<QImage> &pictures, int count, const QColor &accent, double pixelRatio)
{
    const int depth = std::max(1, int(std::min(pictures.size(), dragPictureDepth)));
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(12);
    font.setWeight(QFont::Bold);
    const QString number = count > 1 ? QString::number(count) : QString();
    const int badgeWidth =
        number.isEmpty() ? 0 : std::max(badgeHeight, QFontMetrics(font).horizontalAdvance(number) + 12);
    const int rise = number.isEmpty() ? 0 : badgeHeight / 2;
    const int behind = (depth - 1) * step;
    const QSize size(dragPictureSize.width() + behind + badgeWidth / 2,
                     dragPictureSize.height() + behind + rise);

    QPixmap result(size * pixelRatio);
    result.setDevicePixelRatio(pixelRatio);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int i = depth - 1; i >= 0; --i) {
        const QRect place(QPoint(i * step, rise + i * step), dragPictureSize);
        painter.fillRect(place, frame);
        const QRect inner = place.adjusted(1, 1, -1, -1);
        painter.fillRect(inner, mat);
        if (size_t(i) < pictures.size())
            painter.drawImage(inner, cutPicture(pictures[size_t(i)], {.size = inner.size() * pixelRatio}));
    }
    if (!number.isEmpty()) {
        const QRect badge(dragPictureSize.width() - badgeWidth / 2, 0, badgeWidth, badgeHeight);
        painter.fillRect(badge, frame);
        painter.fillRect(badge.adjusted(1, 1, -1, -1), accent);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(badge, Qt::AlignCenter, number);
    }
    return result;
}

} // namespace cratewell

#include "ui/thumbnail/alpha_mask.h"

#include <QPainter>
#include <array>
#include <cmath>
#include <vector>

namespace cratewell {

namespace {

// Widths of three successive boxes whose variances add up to sigma squared, as near as odd widths allow.
std::array<int, 3> boxWidths(double sigma)
{
    const double ideal = std::sqrt(4.0 * sigma * sigma + 1.0);
    int lower = int(std::floor(ideal));
    if (lower % 2 == 0)
        --lower;
    const double narrow =
        (12.0 * sigma * sigma - 3.0 * lower * lower - 12.0 * lower - 9.0) / (-4.0 * lower - 4.0);
    std::array<int, 3> widths{};
    for (int i = 0; i < 3; ++i)
        widths[size_t(i)] = i < int(std::lround(narrow)) ? lower : lower + 2;
    return widths;
}

// Averages `count` values, `stride` apart, over windows of odd `width`; 16-bit values keep three passes from
// banding.
void boxBlur(const quint16 *from, quint16 *to, int count, int stride, int width)
{
    const int half = width / 2;
    quint32 sum = 0;
    for (int i = 0; i < std::min(half, count); ++i)
        sum += from[size_t(i) * size_t(stride)];
    for (int i = 0; i < count; ++i) {
        if (i + half < count)
            sum += from[size_t(i + half) * size_t(stride)];
        to[size_t(i) * size_t(stride)] = quint16((sum + quint32(half)) / quint32(width));
        if (i - half >= 0)
            sum -= from[size_t(i - half) * size_t(stride)];
    }
}

} // namespace

QImage coverage(const QPainterPath &path, QSize size)
{
    QImage mask(size, QImage::Format_Alpha8);
    if (mask.isNull())
        return mask;
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::black);
    return mask;
}

QImage blurred(const QImage &mask, double sigma)
{
    const int width = mask.width();
    const int height = mask.height();
    std::vector<quint16> values(size_t(width) * size_t(height));
    std::vector<quint16> next(values.size());
    for (int y = 0; y < height; ++y) {
        const uchar *line = mask.constScanLine(y);
        for (int x = 0; x < width; ++x)
            values[size_t(y) * size_t(width) + size_t(x)] = quint16(line[x] * 257);
    }
    for (const int box : boxWidths(std::max(sigma, 0.0))) {
        for (int y = 0; y < height; ++y)
            boxBlur(&values[size_t(y) * size_t(width)], &next[size_t(y) * size_t(width)], width, 1, box);
        for (int x = 0; x < width; ++x)
            boxBlur(&next[size_t(x)], &values[size_t(x)], height, width, box);
    }
    QImage result(mask.size(), QImage::Format_Alpha8);
    for (int y = 0; y < height; ++y) {
        uchar *line = result.scanLine(y);
        for (int x = 0; x < width; ++x)
            line[x] = uchar((values[size_t(y) * size_t(width) + size_t(x)] + 128) / 257);
    }
    return result;
}

QImage tinted(const QImage &mask, const QColor &color)
{
    QImage picture(mask.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(color);
    keepInside(picture, mask);
    return picture;
}

void keepInside(QImage &picture, const QImage &mask)
{
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, mask);
}

} // namespace cratewell

#include "ui/thumbnail/waveform_drawing.h"

#include <QPainterPath>
#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

constexpr double barWidth = 2.25;
constexpr double barPitch = 4;

// The loudest of the peaks that fall on each of `count` columns; a column between two peaks has the nearer
// one.
std::vector<double> columns(const WaveformPeaks &peaks, int count)
{
    std::vector<double> values(size_t(count), 0.0);
    for (int column = 0; column < count; ++column) {
        const qsizetype first = column * peaks.size() / count;
        const qsizetype end = std::max(first + 1, (column + 1) * peaks.size() / count);
        values[size_t(column)] = *std::max_element(peaks.begin() + first, peaks.begin() + end);
    }
    return values;
}

void drawBars(QPainter &painter, const QRectF &place, const WaveformPeaks &peaks, bool mirrored, double unit)
{
    const double width = barWidth * unit;
    const int count = std::max(1, int((place.width() + (barPitch - barWidth) * unit) / (barPitch * unit)));
    const double pitch = place.width() / count;
    const std::vector<double> values = columns(peaks, count);
    for (int i = 0; i < count; ++i) {
        const double height = std::max(width, values[size_t(i)] * place.height());
        const double top = mirrored ? place.center().y() - height / 2 : place.bottom() - height;
        painter.drawRoundedRect(QRectF(place.left() + i * pitch + (pitch - width) / 2, top, width, height),
                                width / 2, width / 2);
    }
}

void drawOutline(QPainter &painter, const QRectF &place, const WaveformPeaks &peaks, double unit)
{
    const int count = std::max(2, int(place.width() / (2 * unit)));
    const std::vector<double> values = columns(peaks, count);
    const auto pointAt = [&](int column, int side) {
        const double height = std::max(unit, values[size_t(column)] * place.height()) / 2;
        return QPointF(place.left() + place.width() * column / (count - 1),
                       place.center().y() - side * height);
    };
    QPainterPath outline(pointAt(0, 1));
    for (int i = 1; i < count; ++i)
        outline.lineTo(pointAt(i, 1));
    for (int i = count - 1; i >= 0; --i)
        outline.lineTo(pointAt(i, -1));
    outline.closeSubpath();
    const QBrush brush = painter.brush();
    painter.setOpacity(0.35);
    painter.drawPath(outline);
    painter.setOpacity(1);
    painter.strokePath(outline, QPen(brush, 1.5 * unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace

WaveStyle waveStyleFromRawValue(const QString &text)
{
    if (text == u"bars"_s)
        return WaveStyle::Bars;
    return text == u"line"_s ? WaveStyle::Line : WaveStyle::Mirror;
}

void drawWaveform(QPainter &painter, const QRectF &place, const WaveformPeaks &peaks, WaveStyle style,
                  const QBrush &brush, double unit)
{
    if (peaks.isEmpty() || place.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    if (style == WaveStyle::Line)
        drawOutline(painter, place, peaks, unit);
    else
        drawBars(painter, place, peaks, style == WaveStyle::Mirror, unit);
    painter.restore();
}

} // namespace cratewell

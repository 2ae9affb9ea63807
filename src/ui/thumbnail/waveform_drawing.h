#pragma once

#include "media/waveform_peaks.h"

#include <QBrush>
#include <QPainter>

namespace cratewell {

// Bars on both sides of a middle line, bars that stand on the lower edge, or one outline.
enum class WaveStyle : quint8 { Mirror, Bars, Line };

// The style a stored text names ("mirror", "bars", "line"); Mirror for any other text.
WaveStyle waveStyleFromRawValue(const QString &text);

// Draws all peaks over the width of `place`, the loudest over its height. `unit` is the painter's units to
// one of the screen's: bars are equally wide at every size.
void drawWaveform(QPainter &painter, const QRectF &place, const WaveformPeaks &peaks, WaveStyle style,
                  const QBrush &brush, double unit);

} // namespace cratewell

#pragma once

#include <QList>

namespace cratewell {

// The outline of a sound's first five minutes: loudness of even pieces in their order, from 0 to 1, the
// loudest of them 1 (all 0 for silence).
using WaveformPeaks = QList<float>;

} // namespace cratewell

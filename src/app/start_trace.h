#pragma once

class QQuickWindow;

namespace cratewell {

// With CRATEWELL_TRACE_START in the environment, prints the line "first-page" on the error stream when the
// first frame that shows cards has been painted. For measurements.
void traceStart(QQuickWindow &window);

} // namespace cratewell

#pragma once

namespace cratewell {

// Makes assistive tools see the views' controls as they are, beyond what Qt Quick 6.4 reports: that a
// control is disabled, that a folder is open, and that text can be typed by them. Main thread; once is
// enough.
void installAccessibleItems();

} // namespace cratewell

#pragma once

#include <QColor>
#include <QString>

namespace cratewell {

inline constexpr QLatin1StringView defaultAccentHex("#7B5CFF");

// Stored colors: an optional "#" and 3 or 6 hex digits when read; anything else is the default accent.
QColor colorFromHex(const QString &text);
// "#RRGGBB", upper case; channels truncate toward zero.
QString hexFromColor(const QColor &color);

} // namespace cratewell

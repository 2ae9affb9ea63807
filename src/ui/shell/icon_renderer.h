#pragma once

#include <QImage>
#include <QString>
#include <array>

namespace cratewell {

// The looks of the program's icon.
enum class IconStyle : quint8 { Chrome, Holo, Midnight, Gold, Light };

inline constexpr std::array allIconStyles{IconStyle::Chrome, IconStyle::Holo, IconStyle::Midnight,
                                          IconStyle::Gold, IconStyle::Light};

QString rawValue(IconStyle style); // "chrome" ...
// The style a stored text names, case-sensitive; Chrome for any other text.
IconStyle iconStyleFromRawValue(const QString &text);

// The icon as a square of `size` pixels, premultiplied sRGB; null for sizes outside 1 to 8192.
QImage renderIcon(IconStyle style, int size);
// The style's star alone, filling a bitmap of `size` pixels; null when that is empty.
QImage renderStar(IconStyle style, QSize size);

} // namespace cratewell

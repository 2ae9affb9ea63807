#include "state/colors.h"

#include <algorithm>

namespace cratewell {

namespace {

bool isHexDigit(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= u'0' && code <= u'9') || (code >= u'a' && code <= u'f') || (code >= u'A' && code <= u'F');
}

} // namespace

QColor colorFromHex(const QString &text)
{
    const QString written = text.trimmed().remove(QLatin1Char('#'));
    const int copies = written.size() == 3 ? 2 : 1;
    QString digits;
    for (const QChar character : written)
        digits.append(QString(copies, character));
    QStringView number = digits;
    if (number.startsWith(QLatin1Char('+')))
        number = number.sliced(1);

    // Checked here because the conversion also takes signs, spaces and "0x".
    bool valid = !number.isEmpty() && std::all_of(number.begin(), number.end(), isHexDigit);
    const qulonglong value = valid ? number.toULongLong(&valid, 16) : 0;
    return valid ? QColor::fromRgb(QRgb(value & 0xffffff)) : QColor(defaultAccentHex);
}

QString hexFromColor(const QColor &color)
{
    const QRgba64 wide = color.isValid() ? color.rgba64() : QRgba64::fromRgba(255, 255, 255, 255);
    const auto channel = [](quint16 value) { return uint(value) / 257; };
    return QString::asprintf("#%02X%02X%02X", channel(wide.red()), channel(wide.green()),
                             channel(wide.blue()));
}

} // namespace cratewell

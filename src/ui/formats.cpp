#include "ui/formats.h"

#include <QKeySequence>
#include <QLocale>

#include <array>

using namespace Qt::StringLiterals;

namespace cratewell {

QString byteText(qint64 bytes)
{
    if (bytes == 1)
        return u"1 byte"_s;
    if (bytes < 1000)
        return u"%1 bytes"_s.arg(std::max<qint64>(bytes, 0));

    struct Unit
    {
        QLatin1StringView name;
        int decimals;
    };
    constexpr std::array units{Unit{"KB"_L1, 0}, Unit{"MB"_L1, 1}, Unit{"GB"_L1, 2}, Unit{"TB"_L1, 2}};
    double value = double(bytes) / 1000;
    auto unit = units.begin();
    // What would round up to "1000 KB" is "1 MB" already.
    while (value >= 999.5 && std::next(unit) != units.end()) {
        value /= 1000;
        ++unit;
    }
    QString number = QLocale().toString(value, 'f', unit->decimals);
    const QString point = QLocale().decimalPoint();
    if (number.contains(point)) {
        while (number.endsWith(u'0'))
            number.chop(1);
        if (number.endsWith(point))
            number.chop(point.size());
    }
    return number + u' ' + unit->name;
}

QString Formats::keys(const QString &sequence)
{
    return QKeySequence(sequence, QKeySequence::PortableText).toString(QKeySequence::NativeText);
}

} // namespace cratewell

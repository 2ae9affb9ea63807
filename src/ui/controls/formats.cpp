#include "ui/controls/formats.h"

#include "vault/asset.h"

#include <QDateTime>
#include <QKeySequence>
#include <QLocale>
#include <QRegularExpression>

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

QString addedText(double added)
{
    if (added <= distantPast)
        return u"Unknown"_s;
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime moment = reference.addMSecs(qint64(added * 1000)).toLocalTime();
    const QLocale locale;
    // The long form without the day of the week, and with the month's short name.
    static const QRegularExpression weekday(u"\\s*dddd[,.]?\\s*|,?\\s*dddd"_s);
    QString form = locale.dateFormat(QLocale::LongFormat);
    form.remove(weekday).replace(u"MMMM"_s, u"MMM"_s);
    const QString time = locale.timeFormat(QLocale::ShortFormat).remove(u":ss"_s);
    return locale.toString(moment.date(), form) + u", "_s + locale.toString(moment.time(), time);
}

QString remainingText(int seconds)
{
    const auto about = [](int count, const QString &unit) {
        return u"About %1 %2%3 left"_s.arg(count).arg(unit, count == 1 ? QString() : u"s"_s);
    };
    if (seconds < 0)
        return {};
    if (seconds < 5)
        return u"A few seconds left"_s;
    // Steps that a person can read before they change.
    if (seconds < 55)
        return about((seconds + 4) / 5 * 5, u"second"_s);
    if (seconds < 59 * 60)
        return about((seconds + 30) / 60, u"minute"_s);
    return about((seconds + 1800) / 3600, u"hour"_s);
}

QString progressText(int filesDone, int filesTotal, qint64 bytesDone, qint64 bytesTotal)
{
    if (filesTotal <= 0)
        return u"Counting files…"_s;
    const QLocale locale;
    const QString files = u"%1 of %2 %3"_s.arg(locale.toString(filesDone), locale.toString(filesTotal),
                                               filesTotal == 1 ? u"file"_s : u"files"_s);
    if (bytesTotal <= 0)
        return files;
    return u"%1, %2 of %3"_s.arg(files, byteText(bytesDone), byteText(bytesTotal));
}

QString Formats::keys(const QString &sequence)
{
    return QKeySequence(sequence, QKeySequence::PortableText).toString(QKeySequence::NativeText);
}

} // namespace cratewell

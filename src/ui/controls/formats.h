#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

namespace cratewell {

// A number of bytes as a file browser shows it: decimal units, "988 KB", "48.2 MB", "1.28 GB".
QString byteText(qint64 bytes);

// Seconds since 2001-01-01 UTC as the day and minute here, "Nov 20, 2026, 14:12" in the system's words.
QString addedText(double added);

// How long something will still take; empty for a negative number, which stands for "unknown".
QString remainingText(int seconds);
// "3 of 12 files, 1.2 MB of 48.2 MB"; what is not known yet is left out.
QString progressText(int filesDone, int filesTotal, qint64 bytesDone, qint64 bytesTotal);

// Texts that the views make out of values.
class Formats : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    // A portable key sequence ("Ctrl+Shift+R") the way this system writes it.
    Q_INVOKABLE static QString keys(const QString &sequence);
};

} // namespace cratewell

#pragma once

#include <QObject>

namespace cratewell {

// How far the work on files has come that has taken longer than a moment. Main thread.
class FileProgress : public QObject
{
    Q_OBJECT
    // Something has been under way for more than 0.3 s.
    Q_PROPERTY(bool active READ isActive NOTIFY changed FINAL)
    // What is being done: "Importing", "Moving", "Moving to Trash", "Restoring", "Deleting".
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(int filesDone READ filesDone NOTIFY changed FINAL)
    // 0 while they are being counted.
    Q_PROPERTY(int filesTotal READ filesTotal NOTIFY changed FINAL)
    Q_PROPERTY(qint64 bytesDone READ bytesDone NOTIFY changed FINAL)
    Q_PROPERTY(qint64 bytesTotal READ bytesTotal NOTIFY changed FINAL)
    // 0 to 1, by bytes where there are any, else by files; never falls while one thing is being done.
    Q_PROPERTY(double fraction READ fraction NOTIFY changed FINAL)
    // -1 while unknown.
    Q_PROPERTY(int secondsLeft READ secondsLeft NOTIFY changed FINAL)
public:
    using QObject::QObject;

    bool isActive() const { return m_now.active; }
    QString title() const { return m_now.title; }
    int filesDone() const { return m_now.filesDone; }
    int filesTotal() const { return m_now.filesTotal; }
    qint64 bytesDone() const { return m_now.bytesDone; }
    qint64 bytesTotal() const { return m_now.bytesTotal; }
    double fraction() const { return m_now.fraction; }
    int secondsLeft() const { return m_now.secondsLeft; }

    // Ends what is under way: what is done stays, what is half done vanishes. What waits is done after it.
    Q_INVOKABLE void cancel() { Q_EMIT cancelWanted(); }

    struct Values
    {
        bool active = false;
        QString title;
        int filesDone = 0;
        int filesTotal = 0;
        qint64 bytesDone = 0;
        qint64 bytesTotal = 0;
        double fraction = 0;
        int secondsLeft = -1;
        friend bool operator==(const Values &, const Values &) = default;
    };
    // For the one who does the work.
    void show(const Values &values);

Q_SIGNALS:
    void changed();
    void cancelWanted();

private:
    Values m_now;
};

} // namespace cratewell

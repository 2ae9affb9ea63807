#pragma once

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqml.h>

namespace cratewell {

class FileProgress;

// The vault's work on files that takes its time, in words.
class OperationStatus : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(bool active READ isActive NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString detail READ detail NOTIFY changed FINAL)
    Q_PROPERTY(QString remaining READ remaining NOTIFY changed FINAL)
    // 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY changed FINAL)
public:
    // What QML does when it has made the object. The progress must outlive it.
    void follow(FileProgress &progress);

    bool isActive() const;
    QString title() const;
    QString detail() const;
    QString remaining() const;
    double fraction() const;
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    void classBegin() override {}
    void componentComplete() override;

    FileProgress *m_progress = nullptr;
};

} // namespace cratewell

#pragma once

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class FileProgress;

// The vault's work on files that takes its time, in words.
class OperationStatus : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool active READ isActive NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString detail READ detail NOTIFY changed FINAL)
    Q_PROPERTY(QString remaining READ remaining NOTIFY changed FINAL)
    // 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY changed FINAL)
public:
    explicit OperationStatus(FileProgress &progress);
    static OperationStatus *create(QQmlEngine *engine, QJSEngine *);

    bool isActive() const;
    QString title() const;
    QString detail() const;
    QString remaining() const;
    double fraction() const;
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    FileProgress &m_progress;
};

} // namespace cratewell

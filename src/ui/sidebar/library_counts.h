#pragma once

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqml.h>

namespace cratewell {

class Prefs;
class Vault;

// How much the vault and the fixed lists of the sidebar hold, kept up to date.
class LibraryCounts : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(int all READ all NOTIFY changed FINAL)
    Q_PROPERTY(int favorites READ favorites NOTIFY changed FINAL)
    Q_PROPERTY(int recent READ recent NOTIFY changed FINAL)
    Q_PROPERTY(int trash READ trash NOTIFY changed FINAL)
    Q_PROPERTY(QString size READ size NOTIFY changed FINAL)
public:
    // What QML does when it has made the object. Both must outlive it.
    void follow(Vault &vault, Prefs &prefs);

    int all() const { return m_all; }
    // Those that exist; what a setting still names but the vault no longer holds does not count.
    int favorites() const { return m_favorites; }
    int recent() const { return m_recent; }
    int trash() const { return m_trash; }
    // Of all assets together, ready to be shown.
    QString size() const { return m_size; }

Q_SIGNALS:
    void changed();

private:
    void classBegin() override {}
    void componentComplete() override;
    void count();

    Vault *m_vault = nullptr;
    Prefs *m_prefs = nullptr;
    int m_all = 0;
    int m_favorites = 0;
    int m_recent = 0;
    int m_trash = 0;
    QString m_size;
};

} // namespace cratewell

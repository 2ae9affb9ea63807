#pragma once

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class Prefs;
class Vault;

// How much the vault and the fixed lists of the sidebar hold, kept up to date.
class LibraryCounts : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(int all READ all NOTIFY changed FINAL)
    Q_PROPERTY(int favorites READ favorites NOTIFY changed FINAL)
    Q_PROPERTY(int recent READ recent NOTIFY changed FINAL)
    Q_PROPERTY(int trash READ trash NOTIFY changed FINAL)
    Q_PROPERTY(QString size READ size NOTIFY changed FINAL)
public:
    LibraryCounts(const Vault &vault, const Prefs &prefs);
    static LibraryCounts *create(QQmlEngine *engine, QJSEngine *);

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
    void count();

    const Vault &m_vault;
    const Prefs &m_prefs;
    int m_all = 0;
    int m_favorites = 0;
    int m_recent = 0;
    int m_trash = 0;
    QString m_size;
};

} // namespace cratewell

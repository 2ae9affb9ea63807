#pragma once

#include "platform/location.h"

#include <QObject>
#include <QQmlParserStatus>
#include <QStringList>
#include <QUrl>
#include <QtQml/qqml.h>
#include <vector>

namespace cratewell {

class AssetActions;
class Defaults;
class Vault;

// Where the import page puts what it is given, kept for the next start, and the ways to give it something.
class ImportController : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    // By type first, then every folder, indented by its depth.
    Q_PROPERTY(QStringList choices READ choices NOTIFY choicesChanged FINAL)
    // Which of them is chosen; 0 also for a folder that is no longer there.
    Q_PROPERTY(int current READ current NOTIFY currentChanged FINAL)
    // The chosen one without its indentation.
    Q_PROPERTY(QString label READ label NOTIFY currentChanged FINAL)
public:
    // What QML does when it has made the object. All must outlive it.
    void follow(Vault &vault, Defaults &defaults, AssetActions &actions);

    const QStringList &choices() const { return m_choices; }
    int current() const { return m_current; }
    QString label() const;

    Q_INVOKABLE void choose(int index);
    Q_INVOKABLE void chooseFiles();
    Q_INVOKABLE void chooseFolder();
    // Whether any of these lies outside the vault and so can be imported.
    Q_INVOKABLE bool takes(const QList<QUrl> &urls) const;
    Q_INVOKABLE void take(const QList<QUrl> &urls);

Q_SIGNALS:
    void choicesChanged();
    void currentChanged();

private:
    void classBegin() override {}
    void componentComplete() override;
    void refresh();
    void findCurrent();
    std::optional<Location> destination() const;
    std::vector<Location> outside(const QList<QUrl> &urls) const;

    Vault *m_vault = nullptr;
    Defaults *m_defaults = nullptr;
    AssetActions *m_actions = nullptr;
    std::vector<Location> m_folders; // as the choices after the first
    QStringList m_choices;
    int m_current = 0;
};

} // namespace cratewell

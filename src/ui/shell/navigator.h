#pragma once

#include "platform/location.h"
#include "ui/shell/ui_context.h"

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

// What the main area shows, in terms that QML can compare, and the ways to change it.
class Navigator : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(Place place READ place NOTIFY placeChanged FINAL)
    // The text of the shown folder's location; empty in other places.
    Q_PROPERTY(QString folder READ folder NOTIFY placeChanged FINAL)
    // The id of the shown plugin page; empty in other places.
    Q_PROPERTY(QString page READ page NOTIFY placeChanged FINAL)
    // An AssetOrder.
    Q_PROPERTY(int order READ order WRITE setOrder NOTIFY orderChanged FINAL)
    // Of all orders, by AssetOrder.
    Q_PROPERTY(QStringList orderLabels READ orderLabels CONSTANT FINAL)
public:
    // As Scope::Kind.
    enum Place { Plugin, Folder, All, Favorites, Recent, Importer, Trash };
    Q_ENUM(Place)

    explicit Navigator(const UiContext &context, QObject *parent = nullptr);
    static Navigator *create(QQmlEngine *engine, QJSEngine *);

    Place place() const;
    QString folder() const;
    QString page() const;
    int order() const;
    void setOrder(int order);
    QStringList orderLabels() const;

    // A place without more to say; Plugin and Folder need their own calls.
    Q_INVOKABLE void show(cratewell::Navigator::Place place);
    Q_INVOKABLE void showFolder(const cratewell::Location &folder);
    Q_INVOKABLE void showPlugin(const QString &page);

Q_SIGNALS:
    void placeChanged();
    void orderChanged();

private:
    const UiContext m_context;
};

} // namespace cratewell

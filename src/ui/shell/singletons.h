#pragma once

#include "integrations/inserter.h"
#include "media/media.h"
#include "platform/appearance.h"
#include "platform/location.h"
#include "state/app_state.h"
#include "state/notifications.h"
#include "state/prefs.h"
#include "state/scope.h"
#include "vault/vault.h"
#include "vault/vocabulary.h"

#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

// How the program's objects, values and enumerations are called in QML. The wrappers keep the core classes
// free of QML; each engine shows the objects of its own context.

struct PrefsSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Prefs)
    QML_NAMED_ELEMENT(Prefs)
    QML_SINGLETON
public:
    static Prefs *create(QQmlEngine *engine, QJSEngine *);
};

struct AppStateSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::AppState)
    QML_NAMED_ELEMENT(AppState)
    QML_SINGLETON
public:
    static AppState *create(QQmlEngine *engine, QJSEngine *);
};

struct VaultSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Vault)
    QML_NAMED_ELEMENT(Vault)
    QML_SINGLETON
public:
    static Vault *create(QQmlEngine *engine, QJSEngine *);
};

struct NotificationsSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Notifications)
    QML_NAMED_ELEMENT(Notifications)
    QML_SINGLETON
public:
    static Notifications *create(QQmlEngine *engine, QJSEngine *);
};

struct InserterSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Inserter)
    QML_NAMED_ELEMENT(Inserter)
    QML_SINGLETON
public:
    static Inserter *create(QQmlEngine *engine, QJSEngine *);
};

struct MediaSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Media)
    QML_NAMED_ELEMENT(Media)
    QML_SINGLETON
public:
    static Media *create(QQmlEngine *engine, QJSEngine *);
};

struct AppearanceSingleton
{
    Q_GADGET
    QML_FOREIGN(cratewell::Appearance)
    QML_NAMED_ELEMENT(Appearance)
    QML_SINGLETON
public:
    static Appearance *create(QQmlEngine *engine, QJSEngine *);
};

struct LocationValue
{
    Q_GADGET
    QML_FOREIGN(cratewell::Location)
    QML_VALUE_TYPE(location)
};

struct ScopeValue
{
    Q_GADGET
    QML_FOREIGN(cratewell::Scope)
    QML_VALUE_TYPE(scope)
};

// Vocabulary.AssetOrder.Name, Vocabulary.VaultCategory.Luts...
namespace Vocabulary {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(cratewell)
QML_NAMED_ELEMENT(Vocabulary)
} // namespace Vocabulary

} // namespace cratewell

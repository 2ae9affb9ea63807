#pragma once

#include "platform/location.h"
#include "vault/asset.h"

#include <QCoro/QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <chrono>
#include <memory>
#include <optional>

namespace cratewell {

class Applications;
class AppState;
class Notifications;
class Prefs;
struct SystemPaths;

enum class Target : quint8 { Resolve, Premiere };

// How one insert ended; the message is what the user is shown.
struct InsertResult
{
    bool ok = false;
    QString message;
};

// Carries one request to an editor. Main thread; never blocks; every failure becomes a result.
class EditorBridge
{
public:
    virtual ~EditorBridge() = default;
    // The asset lives until the result is there; the bridge itself may go before.
    virtual QCoro::Task<InsertResult> insert(const Asset &asset) = 0;
};

// The one way by which assets reach an editor's timeline. How each insert ended becomes a notification. Main
// thread.
class Inserter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged FINAL)
    Q_PROPERTY(bool resolveRunning READ resolveRunning NOTIFY runningChanged FINAL)
    Q_PROPERTY(bool premiereRunning READ premiereRunning NOTIFY runningChanged FINAL)
public:
    Inserter(Prefs &prefs, AppState &state, Applications &applications, Notifications &notifications,
             EditorBridge &resolve, EditorBridge &premiere);
    ~Inserter() override;

    // Looks which editors run and follows them from now on.
    void start();

    bool busy() const;
    bool resolveRunning() const;
    bool premiereRunning() const;

    enum class Refresh { No, Yes };
    // The editor an insert goes to; nothing when none is chosen and none runs.
    std::optional<Target> pick(std::optional<Target> target, Refresh refresh);
    // The sentence under the insert button.
    QString targetDescription(const Asset &asset);
    // Starts an insert and returns; a second one while busy, and any LUT, is ignored.
    void insert(const Asset &asset, std::optional<Target> target = {});
    Q_INVOKABLE void insertSelected();

Q_SIGNALS:
    void busyChanged();
    void runningChanged();
    // What targetDescription says may have changed.
    void targetChanged();

private:
    void refreshRunning();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell

#pragma once

#include "platform/location.h"
#include "vault/asset.h"

#include <QCoro/QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace cratewell {

class Applications;
class AppState;
class Prefs;
struct SystemPaths;

enum class Target : quint8 { Resolve, Premiere };

// How one insert ended; the message is the toast.
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

// How long a toast stays.
struct ToastTimes
{
    std::chrono::milliseconds ok{3500};
    std::chrono::milliseconds failed{7000};
    std::chrono::milliseconds offering{7000}; // something to do
};

// What a toast offers to do.
struct ToastAction
{
    QString text; // of its button
    std::function<void()> act;
};

// The one way by which assets reach an editor's timeline, and the owner of the program's one toast. Main
// thread.
class Inserter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged FINAL)
    Q_PROPERTY(QString toastText READ toastText NOTIFY toastChanged FINAL)
    Q_PROPERTY(bool toastOk READ toastOk NOTIFY toastChanged FINAL)
    // The text of the button that the toast offers; empty: none.
    Q_PROPERTY(QString toastAction READ toastAction NOTIFY toastChanged FINAL)
    Q_PROPERTY(bool resolveRunning READ resolveRunning NOTIFY runningChanged FINAL)
    Q_PROPERTY(bool premiereRunning READ premiereRunning NOTIFY runningChanged FINAL)
public:
    Inserter(Prefs &prefs, AppState &state, Applications &applications, EditorBridge &resolve,
             EditorBridge &premiere, ToastTimes times = {});
    ~Inserter() override;

    // Looks which editors run and follows them from now on.
    void start();

    bool busy() const;
    QString toastText() const; // empty: no toast
    bool toastOk() const;
    QString toastAction() const;
    bool resolveRunning() const;
    bool premiereRunning() const;
    std::optional<Target> lastEditor() const;

    enum class Refresh { No, Yes };
    // The editor an insert goes to; nothing when none is chosen and none runs.
    std::optional<Target> pick(std::optional<Target> target, Refresh refresh);
    // The sentence under the insert button.
    QString targetDescription(const Asset &asset);
    // Starts an insert and returns; a second one while busy, and any LUT, is ignored.
    void insert(const Asset &asset, std::optional<Target> target = {});
    Q_INVOKABLE void insertSelected();
    // Replaces the toast; it leaves by itself after its time.
    void toast(const QString &text, bool ok);
    void toast(const QString &text, bool ok, const ToastAction &action);
    // Does what the toast offers; the toast leaves.
    Q_INVOKABLE void takeToastAction();

Q_SIGNALS:
    void busyChanged();
    void toastChanged();
    void runningChanged();
    // What targetDescription says may have changed.
    void targetChanged();

private:
    void refreshRunning();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell

#pragma once

#include <QObject>
#include <chrono>
#include <functional>

namespace cratewell {

// A short message to the user.
struct Notification
{
    // Successes and warnings are shown as a toast, errors as a banner.
    enum class Severity { Success, Warning, Error };

    QString text;
    Severity severity = Severity::Success;
    // A toast's button, which does `action`; none without a text.
    QString actionText = {};
    std::function<void()> action = {};
};

// What the program has to say at the moment: one toast and one banner at most. A newer message replaces an
// older one of the same look at once and stays for its own full time. Main thread.
class Notifications : public QObject
{
    Q_OBJECT
    // Empty: no toast.
    Q_PROPERTY(QString toastText READ toastText NOTIFY toastChanged FINAL)
    Q_PROPERTY(bool toastOk READ toastOk NOTIFY toastChanged FINAL)
    // The text of the toast's button; empty: none.
    Q_PROPERTY(QString toastAction READ toastAction NOTIFY toastChanged FINAL)
    // Empty: no banner.
    Q_PROPERTY(QString bannerText READ bannerText NOTIFY bannerChanged FINAL)
public:
    // Calls the function once on the main thread when the delay is over.
    using CallLater = std::function<void(std::chrono::milliseconds delay, std::function<void()> function)>;

    // Without a function of the caller's own, time passes as it does.
    explicit Notifications(CallLater callLater = {});

    void show(const Notification &notification);

    const QString &toastText() const { return m_toast.notification.text; }
    // Also of the last toast while there is none.
    bool toastOk() const { return m_toast.notification.severity == Notification::Severity::Success; }
    const QString &toastAction() const { return m_toast.notification.actionText; }
    const QString &bannerText() const { return m_banner.notification.text; }

    // Hides the toast and does what it offers.
    Q_INVOKABLE void takeToastAction();
    Q_INVOKABLE void closeBanner();

Q_SIGNALS:
    void toastChanged();
    void bannerChanged();

private:
    struct Place
    {
        void (Notifications::*changed)();
        Notification notification = {};
        quint64 generation = 0; // of what is shown
    };
    void hide(Place &place);

    CallLater m_callLater;
    Place m_toast{&Notifications::toastChanged};
    Place m_banner{&Notifications::bannerChanged};
};

} // namespace cratewell

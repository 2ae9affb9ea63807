#include "state/notifications.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Time that passes when the test says so.
class ManualTime
{
public:
    Notifications::CallLater callLater()
    {
        return [this](std::chrono::milliseconds delay, const std::function<void()> &function) {
            m_calls.push_back({m_now + delay, function});
        };
    }
    void pass(std::chrono::milliseconds time)
    {
        m_now += time;
        for (auto &[due, function] : m_calls) {
            if (due <= m_now && function)
                std::exchange(function, {})();
        }
    }

private:
    struct Call
    {
        std::chrono::milliseconds due;
        std::function<void()> function;
    };
    std::chrono::milliseconds m_now{0};
    std::vector<Call> m_calls;
};

class NotificationsTest : public testing::Test
{
protected:
    using enum Notification::Severity;

    ManualTime time;
    Notifications notifications{time.callLater()};
};

} // namespace

TEST_F(NotificationsTest, EachMessageStaysForItsOwnFullTime)
{
    const struct
    {
        Notification notification;
        std::chrono::milliseconds lifetime;
    } cases[] = {
        {{u"Moved"_s, Success}, 3500ms},
        {{u"Moved to Trash"_s, Success, u"Undo"_s, [] {}}, 7000ms},
        {{u"No panel"_s, Warning}, 7000ms},
        {{u"Permission denied"_s, Error}, 10000ms},
    };
    const auto shown = [this](const Notification &notification) {
        return notification.severity == Error ? notifications.bannerText() : notifications.toastText();
    };
    for (const auto &[notification, lifetime] : cases) {
        // An older one's time ends while this one stands.
        notifications.show({u"Before"_s, notification.severity});
        time.pass(2s);
        notifications.show(notification);
        time.pass(lifetime - 1ms);
        EXPECT_EQ(shown(notification), notification.text);
        EXPECT_EQ(notifications.toastAction(), notification.actionText);
        time.pass(1ms);
        EXPECT_EQ(shown(notification), QString()) << qPrintable(notification.text);
        EXPECT_EQ(notifications.toastAction(), QString());
    }
}

TEST_F(NotificationsTest, AToastAndABannerStandBesideEachOther)
{
    QSignalSpy toasts(&notifications, &Notifications::toastChanged);
    QSignalSpy banners(&notifications, &Notifications::bannerChanged);
    notifications.show({u"Permission denied"_s, Error});
    notifications.show({u"Moved 1 item to Hits"_s, Success});
    EXPECT_EQ(notifications.toastText() + notifications.bannerText(),
              u"Moved 1 item to HitsPermission denied"_s);
    EXPECT_TRUE(notifications.toastOk());
    notifications.show({u"No panel"_s, Warning});
    EXPECT_FALSE(notifications.toastOk());
    notifications.closeBanner();
    EXPECT_EQ(notifications.bannerText(), QString());
    EXPECT_EQ(notifications.toastText(), u"No panel"_s);
    time.pass(20s);
    EXPECT_EQ(toasts.count(), 3);
    EXPECT_EQ(banners.count(), 2);
}

TEST_F(NotificationsTest, AToastOffersItsActionOnce)
{
    int undone = 0;
    const Notification offer{u"Moved"_s, Success, u"Undo"_s, [&] {
                                 ++undone;
                                 EXPECT_EQ(notifications.toastText(), QString()) << "it has left by then";
                             }};
    notifications.show(offer);
    notifications.takeToastAction();
    notifications.takeToastAction();
    EXPECT_EQ(undone, 1);

    notifications.show(offer);
    notifications.show({u"Inserted"_s, Success});
    notifications.takeToastAction();
    EXPECT_EQ(undone, 1) << "another toast has taken its place";
}

TEST_F(NotificationsTest, MayGoBeforeTheirTime)
{
    auto gone = std::make_unique<Notifications>(time.callLater());
    gone->show({u"Moved"_s, Success});
    gone.reset();
    time.pass(20s);
}

TEST(NotificationsOnTheRealClock, LeaveByThemselves)
{
    Notifications notifications;
    notifications.show({u"Moved"_s, Notification::Severity::Success});
    QSignalSpy hidden(&notifications, &Notifications::toastChanged);
    EXPECT_TRUE(hidden.wait(10000));
    EXPECT_EQ(notifications.toastText(), QString());
}

} // namespace cratewell

#include "state/notifications.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Time that passes when the test says so.
struct ManualTime
{
    void pass(std::chrono::milliseconds time)
    {
        now += time;
        for (auto &[due, function] : calls) {
            if (due <= now && function)
                std::exchange(function, {})();
        }
    }
    Notifications::CallLater callLater = [this](auto delay, const auto &function) {
        calls.emplace_back(now + delay, function);
    };
    std::chrono::milliseconds now{0};
    std::vector<std::pair<std::chrono::milliseconds, std::function<void()>>> calls;
};

class NotificationsTest : public testing::Test
{
protected:
    using enum Notification::Severity;

    ManualTime time;
    Notifications notifications{time.callLater};
};

} // namespace

TEST_F(NotificationsTest, EachMessageStaysForItsOwnFullTime)
{
    const struct
    {
        Notification message;
        std::chrono::milliseconds lifetime;
    } cases[] = {
        {{u"Moved"_s, Success}, 3500ms},
        {{u"Moved to Trash"_s, Success, u"Undo"_s, [] {}}, 7000ms},
        {{u"No panel"_s, Warning}, 7000ms},
        {{u"Permission denied"_s, Error}, 10000ms},
    };
    for (const auto &[message, lifetime] : cases) {
        const auto shown = [&, isError = message.severity == Error] {
            return isError ? notifications.bannerText() : notifications.toastText();
        };
        // An older one's time ends while this one stands.
        notifications.show({u"Before"_s, message.severity});
        time.pass(2s);
        notifications.show(message);
        time.pass(lifetime - 1ms);
        EXPECT_EQ(shown(), message.text);
        EXPECT_EQ(notifications.toastAction(), message.actionText);
        time.pass(1ms);
        EXPECT_EQ(shown() + notifications.toastAction(), QString()) << qPrintable(message.text);
    }
}

TEST_F(NotificationsTest, AToastAndABannerStandBesideEachOther)
{
    QSignalSpy toasts(&notifications, &Notifications::toastChanged);
    QSignalSpy banners(&notifications, &Notifications::bannerChanged);
    notifications.show({u"Permission denied"_s, Error});
    notifications.show({u"Moved"_s, Success});
    EXPECT_TRUE(notifications.toastOk());
    notifications.show({u"No panel"_s, Warning});
    EXPECT_FALSE(notifications.toastOk());
    EXPECT_EQ(notifications.bannerText(), u"Permission denied"_s);
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
    auto gone = std::make_unique<Notifications>(time.callLater);
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

#include "state/notifications.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Time passes when the test says so.
class NotificationsTest : public testing::Test
{
protected:
    using enum Notification::Severity;

    void pass(std::chrono::milliseconds time)
    {
        now += time;
        for (auto &[due, function] : calls) {
            if (due <= now && function)
                std::exchange(function, {})();
        }
    }

    std::chrono::milliseconds now{0};
    std::vector<std::pair<std::chrono::milliseconds, std::function<void()>>> calls;
    std::optional<Notifications> notifications{std::in_place, [this](auto delay, const auto &function) {
                                                   calls.emplace_back(now + delay, function);
                                               }};
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
            return isError ? notifications->bannerText() : notifications->toastText();
        };
        // An older one's time ends while this one stands.
        notifications->show({u"Before"_s, message.severity});
        pass(2s);
        notifications->show(message);
        pass(lifetime - 1ms);
        EXPECT_EQ(shown(), message.text);
        EXPECT_EQ(notifications->toastAction(), message.actionText);
        pass(1ms);
        EXPECT_EQ(shown() + notifications->toastAction(), QString()) << qPrintable(message.text);
    }
    notifications->show(cases[0].message);
    notifications.reset();
    pass(20s);
}

TEST_F(NotificationsTest, AToastAndABannerStandBesideEachOther)
{
    notifications->show({u"Permission denied"_s, Error});
    notifications->show({u"Moved"_s, Success});
    EXPECT_TRUE(notifications->toastOk());
    notifications->show({u"No panel"_s, Warning});
    EXPECT_FALSE(notifications->toastOk());
    EXPECT_EQ(notifications->bannerText(), u"Permission denied"_s);
    notifications->closeBanner();
    EXPECT_EQ(notifications->bannerText(), QString());
    EXPECT_EQ(notifications->toastText(), u"No panel"_s);
}

TEST_F(NotificationsTest, AToastOffersItsActionOnce)
{
    int undone = 0;
    const Notification offer{u"Moved"_s, Success, u"Undo"_s, [&] {
                                 ++undone;
                                 EXPECT_EQ(notifications->toastText(), QString()) << "it has left by then";
                             }};
    notifications->show(offer);
    notifications->takeToastAction();
    notifications->takeToastAction();
    EXPECT_EQ(undone, 1);
    notifications->show(offer);
    notifications->show({u"Inserted"_s, Success});
    notifications->takeToastAction();
    EXPECT_EQ(undone, 1) << "another toast has taken its place";
}

TEST(NotificationsOnTheRealClock, LeaveByThemselves)
{
    Notifications notifications;
    notifications.show({u"Moved"_s});
    QSignalSpy hidden(&notifications, &Notifications::toastChanged);
    EXPECT_TRUE(hidden.wait(10000));
    EXPECT_EQ(notifications.toastText(), QString());
}

} // namespace cratewell

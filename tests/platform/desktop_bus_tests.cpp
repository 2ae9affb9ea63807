#include "platform/linux/desktop_workspace.h"
#include "platform/linux/portal_appearance.h"
#include "platform/linux/portal_file_chooser.h"

#include "private_bus.h"
#include "support/wait.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QUrl>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using test::PrivateBus;
using test::StandInService;
using test::waitUntil;

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;
const QString fileManagerName = u"org.freedesktop.FileManager1"_s;

Location at(QByteArrayView path)
{
    return Location::fromBytes(path);
}

QVariant boxed(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

std::optional<QDBusMessage> refuse(const QDBusMessage &call)
{
    return call.createErrorReply(QDBusError::UnknownInterface, u"not here"_s);
}

// Notes what the program asks the desktop to open.
class Opened : public QObject
{
    Q_OBJECT
public:
    Opened() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~Opened() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    QList<QByteArray> urls;
public Q_SLOTS:
    void open(const QUrl &url) { urls += url.toEncoded(); }
};

class DesktopBus : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(bus.isRunning()) << "dbus-daemon does not start"; }
    PrivateBus bus;
};

TEST_F(DesktopBus, AppearanceFollowsThePortalAndItsReturn)
{
    PortalAppearance appearance(bus.connect());
    int changes = 0;
    QObject::connect(&appearance, &Appearance::changed, [&] { ++changes; });
    EXPECT_TRUE(appearance.dark());
    EXPECT_FALSE(appearance.reducedMotion());

    const auto answer = [](const QDBusMessage &call) -> std::optional<QDBusMessage> {
        const QString key = call.arguments().value(1).toString();
        if (key == u"color-scheme"_s)
            return call.createReply(boxed(boxed(2u)));
        if (key == u"enable-animations"_s)
            return call.createReply(boxed(false));
        return refuse(call);
    };
    {
        StandInService portal(bus, portalName, answer);
        ASSERT_TRUE(waitUntil([&] { return !appearance.dark() && appearance.reducedMotion(); }));
        EXPECT_EQ(changes, 2);

        const QString appearanceGroup = u"org.freedesktop.appearance"_s;
        const QString desktopGroup = u"org.gnome.desktop.interface"_s;
        const struct
        {
            QString group, key;
            QVariant value;
            bool dark, reduced;
        } all[] = {
            {appearanceGroup, u"color-scheme"_s, 1u, true, true},
            {desktopGroup, u"enable-animations"_s, true, true, false},
            {appearanceGroup, u"reduced-motion"_s, 1u, true, true},
            {appearanceGroup, u"color-scheme"_s, u"light"_s, true, true},
            {desktopGroup, u"color-scheme"_s, 2u, true, true},
            {appearanceGroup, u"reduced-motion"_s, 0u, true, false},
            {appearanceGroup, u"color-scheme"_s, 2u, false, false},
        };
        bool dark = false;
        bool reduced = true;
        for (const auto &change : all) {
            changes = 0;
            const bool darkChanges = std::exchange(dark, change.dark) != change.dark;
            const bool motionChanges = std::exchange(reduced, change.reduced) != change.reduced;
            portal.signal(portalPath, settingsInterface, u"SettingChanged"_s,
                          {change.group, change.key, boxed(change.value)});
            ASSERT_TRUE(waitUntil([&] { return changes == (darkChanges || motionChanges ? 1 : 0); }))
                << change.key.toStdString();
            EXPECT_EQ(appearance.dark(), change.dark) << change.key.toStdString();
            EXPECT_EQ(appearance.reducedMotion(), change.reduced) << change.key.toStdString();
        }
    }
    StandInService again(bus, portalName, answer);
    EXPECT_TRUE(waitUntil([&] { return !appearance.dark() && appearance.reducedMotion(); }));
}

TEST_F(DesktopBus, RevealsThroughTheFileManagerWithEscapedAddresses)
{
    StandInService manager(bus, fileManagerName, [](const QDBusMessage &call) { return call.createReply(); });
    Opened opened;
    DesktopWorkspace workspace(bus.connect());
    workspace.reveal({});
    workspace.reveal({at("/v/a b#?.wav"), at("/v/\xFF/\xC3\xA9")});
    ASSERT_TRUE(waitUntil([&] { return !manager.calls(u"ShowItems"_s).isEmpty(); }));
    const QDBusMessage call = manager.calls(u"ShowItems"_s).constFirst();
    EXPECT_EQ(call.interface(), fileManagerName);
    EXPECT_EQ(call.arguments().value(0).toStringList(),
              QStringList({u"file:///v/a%20b%23%3F.wav"_s, u"file:///v/%FF/%C3%A9"_s}));
    EXPECT_TRUE(opened.urls.isEmpty());
}

TEST_F(DesktopBus, OpensTheFoldersWhereNoFileManagerAnswers)
{
    const QList<Location> items = {at("/v/a/1"), at("/v/a/2"), at("/v/b \xFF/3")};
    const QList<QByteArray> folders = {"file:///v/a", "file:///v/b%20%FF"};
    Opened opened;
    DesktopWorkspace nobody(bus.connect());
    nobody.reveal(items);
    EXPECT_TRUE(waitUntil([&] { return opened.urls == folders; }));

    opened.urls.clear();
    DesktopWorkspace withoutBus(QDBusConnection(u"none"_s));
    withoutBus.reveal(items);
    EXPECT_EQ(opened.urls, folders);
    withoutBus.open(Location());
    withoutBus.open(at("/v"));
    EXPECT_EQ(opened.urls.last(), "file:///v");

    opened.urls.clear();
    StandInService hung(bus, fileManagerName, [](const QDBusMessage &) { return std::nullopt; });
    QElapsedTimer clock;
    clock.start();
    nobody.reveal(items);
    EXPECT_LT(clock.elapsed(), 500);
    EXPECT_TRUE(waitUntil([&] { return !hung.calls(u"ShowItems"_s).isEmpty(); }));
    EXPECT_TRUE(opened.urls.isEmpty());
}

// A portal with a file chooser.
StandInService::Answer chooserPortal(StandInService::Answer open)
{
    return [open = std::move(open)](const QDBusMessage &call) -> std::optional<QDBusMessage> {
        if (call.member() == u"Get"_s)
            return call.createReply(boxed(3u));
        return call.member() == u"OpenFile"_s ? open(call) : refuse(call);
    };
}

QVariantMap optionsOf(const QDBusMessage &call)
{
    return qdbus_cast<QVariantMap>(call.arguments().value(2));
}

QString expectedHandle(const QDBusMessage &call)
{
    QString sender = call.service().mid(1);
    sender.replace(u'.', u'_');
    return portalPath + u"/request/"_s + sender + u'/' + optionsOf(call).value(u"handle_token"_s).toString();
}

// When this returns, what `caller` got as answers before has been handled, and what it asked of the bus then
// is in force.
void settle(QDBusConnection caller)
{
    for (int round = 0; round < 2; ++round) {
        const QDBusMessage ping =
            QDBusMessage::createMethodCall(portalName, portalPath, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
        const QDBusPendingCallWatcher answer(caller.asyncCall(ping));
        bool finished = false;
        QObject::connect(&answer, &QDBusPendingCallWatcher::finished, [&] { finished = true; });
        ASSERT_TRUE(waitUntil([&] { return finished; }));
    }
}

TEST_F(DesktopBus, ThereIsNoFileChooserWithoutAPortalThatHasOne)
{
    EXPECT_EQ(PortalFileChooser::create(QDBusConnection(u"none"_s)), nullptr);
    EXPECT_EQ(PortalFileChooser::create(bus.connect()), nullptr);
    const StandInService portal(bus, portalName, refuse);
    EXPECT_EQ(PortalFileChooser::create(bus.connect()), nullptr);
}

TEST_F(DesktopBus, ChoosesThroughThePortal)
{
    // The second answers under a path of its own making, as old portals do.
    for (const QString &ownPath : {QString(), portalPath + u"/request/old/1"_s}) {
        const auto pathFor = [ownPath](const QDBusMessage &call) {
            return ownPath.isEmpty() ? expectedHandle(call) : ownPath;
        };
        StandInService portal(bus, portalName, chooserPortal([&](const QDBusMessage &call) {
                                  return call.createReply(
                                      QVariant::fromValue(QDBusObjectPath(pathFor(call))));
                              }));
        const QDBusConnection caller = bus.connect();
        const auto chooser = PortalFileChooser::create(caller);
        ASSERT_NE(chooser, nullptr);
        QList<QList<Location>> answers;
        const auto noteAnswer = [&](const QList<Location> &chosen) { answers.append(chosen); };
        const auto respond = [&](const QDBusMessage &asked, uint code, const QStringList &uris) {
            settle(caller);
            portal.signal(pathFor(asked), u"org.freedesktop.portal.Request"_s, u"Response"_s,
                          {code, QVariantMap{{u"uris"_s, uris}}});
        };

        // Asks and returns what the portal was asked.
        const auto choose = [&](const ChooseRequest &request) {
            const qsizetype before = portal.calls(u"OpenFile"_s).size();
            chooser->choose(request, noteAnswer);
            EXPECT_TRUE(answers.isEmpty());
            EXPECT_TRUE(waitUntil([&] { return portal.calls(u"OpenFile"_s).size() > before; }));
            return portal.calls(u"OpenFile"_s).last();
        };

        const QDBusMessage first = choose({ChooseRequest::What::Images, u"A still"_s, u"Use"_s, false});
        QVariantMap options = optionsOf(first);
        EXPECT_EQ(first.arguments().value(1).toString(), u"A still"_s);
        EXPECT_EQ(options.value(u"accept_label"_s), u"Use"_s);
        EXPECT_EQ(options.value(u"multiple"_s), false);
        EXPECT_EQ(options.value(u"directory"_s), false);
        EXPECT_EQ(options.value(u"filters"_s).value<QDBusArgument>().currentSignature(), u"a(sa(us))"_s);
        respond(first, 0, {u"file:///v/a%20b.png"_s});
        ASSERT_TRUE(waitUntil([&] { return answers.size() == 1; }));
        EXPECT_EQ(answers.takeFirst(), QList<Location>{at("/v/a b.png")});

        const QDBusMessage second = choose({ChooseRequest::What::Folders, u"Add"_s, {}, true});
        options = optionsOf(second);
        EXPECT_EQ(options.value(u"multiple"_s), true);
        EXPECT_EQ(options.value(u"directory"_s), true);
        EXPECT_FALSE(options.contains(u"filters"_s));
        respond(second, 0, {u"file:///v/%FF"_s, u"http://elsewhere/"_s, u"file:///v/%C3%A9"_s});
        ASSERT_TRUE(waitUntil([&] { return answers.size() == 1; }));
        EXPECT_EQ(answers.takeFirst(), (QList<Location>{at("/v/\xFF"), at("/v/\xC3\xA9")}));

        const QDBusMessage third = choose({});
        respond(third, 1, {u"file:///v/not-this"_s});
        ASSERT_TRUE(waitUntil([&] { return answers.size() == 1; }));
        respond(third, 0, {u"file:///v/nor-this"_s});
        EXPECT_EQ(answers.takeFirst(), QList<Location>());
    }
}

TEST_F(DesktopBus, CountsAsCanceledWhenThePortalRefusesOrGoesAway)
{
    QList<QList<Location>> answers;
    const auto noteAnswer = [&](const QList<Location> &chosen) { answers.append(chosen); };
    {
        StandInService refusing(bus, portalName, chooserPortal(refuse));
        const auto chooser = PortalFileChooser::create(bus.connect());
        ASSERT_NE(chooser, nullptr);
        chooser->choose({}, noteAnswer);
        EXPECT_TRUE(answers.isEmpty());
        ASSERT_TRUE(waitUntil([&] { return answers.size() == 1; }));
    }
    auto portal = std::make_unique<StandInService>(
        bus, portalName, chooserPortal([](const QDBusMessage &call) {
            return call.createReply(QVariant::fromValue(QDBusObjectPath(expectedHandle(call))));
        }));
    const auto chooser = PortalFileChooser::create(bus.connect());
    ASSERT_NE(chooser, nullptr);
    chooser->choose({}, noteAnswer);
    ASSERT_TRUE(waitUntil([&] { return portal->calls(u"OpenFile"_s).size() == 1; }));
    portal.reset();
    ASSERT_TRUE(waitUntil([&] { return answers.size() == 2; }));
    EXPECT_TRUE(answers.first().isEmpty() && answers.last().isEmpty());
}

} // namespace
} // namespace cratewell

#include "desktop_bus_tests.moc"

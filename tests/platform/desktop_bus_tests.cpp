#include "platform/linux/desktop_workspace.h"
#include "platform/linux/portal_appearance.h"
#include "platform/linux/portal_file_chooser.h"
#include "support/wait.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryFile>
#include <QThread>
#include <QUrl>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;

// Nothing: no answer, ever.
using Answer = std::function<std::optional<QDBusMessage>(const QDBusMessage &)>;

std::optional<QDBusMessage> refuse(const QDBusMessage &call)
{
    return call.createErrorReply(QDBusError::UnknownInterface, u"not here"_s);
}

QVariant boxed(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

// Something that answers every call to one service name, from a thread of its own, so that callers may wait.
class StandInService final : public QDBusVirtualObject
{
public:
    StandInService(const QDBusConnection &bus, const QString &name, Answer answer)
        : m_connection(bus), m_name(name), m_answer(std::move(answer))
    {
        // Registering gives the object a child, so it comes before the move.
        m_connection.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
        moveToThread(&m_thread);
        m_thread.start();
        m_connection.registerService(name);
    }
    ~StandInService() override
    {
        m_connection.unregisterService(m_name);
        m_connection.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
        m_thread.quit();
        m_thread.wait();
    }

    void signal(const QString &path, const QString &interface, const QString &member,
                const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        m_connection.send(message);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() != u"Get")
            QMetaObject::invokeMethod(&m_mainThread, [this, message] { calls += message; });
        if (const auto answer = m_answer(message))
            connection.send(*answer);
        return true;
    }

    // Those that ask for something to be done. Of the main thread.
    QList<QDBusMessage> calls;

private:
    QDBusConnection m_connection;
    QString m_name;
    Answer m_answer;
    QThread m_thread;
    QObject m_mainThread;
};

// A message bus of its own, with nobody on it but whom the test brings.
class DesktopBus : public testing::Test
{
protected:
    DesktopBus()
    {
        EXPECT_TRUE(m_configuration.open());
        m_configuration.write(
            "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth>"
            "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
            "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
        m_configuration.close();
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--nofork"_s, u"--print-address"_s, u"--config-file"_s, m_configuration.fileName()});
        EXPECT_TRUE(m_daemon.waitForReadyRead(10'000)) << "dbus-daemon does not start";
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }
    ~DesktopBus() override
    {
        for (const QString &name : m_connections)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    // A new connection each time; closed with the bus.
    QDBusConnection connect()
    {
        static int count = 0;
        m_connections += u"private%1"_s.arg(++count);
        return QDBusConnection::connectToBus(m_address, m_connections.last());
    }

private:
    QTemporaryFile m_configuration;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

TEST_F(DesktopBus, AppearanceFollowsThePortalAndItsReturn)
{
    PortalAppearance appearance(connect());
    bool dark = appearance.dark();
    bool reduced = appearance.reducedMotion();
    EXPECT_TRUE(dark && !reduced);
    QObject::connect(&appearance, &Appearance::changed, [&] {
        dark = appearance.dark();
        reduced = appearance.reducedMotion();
    });
    const auto answer = [](const QDBusMessage &call) -> std::optional<QDBusMessage> {
        const QString key = call.arguments().value(1).toString();
        if (key == u"color-scheme"_s)
            return call.createReply(boxed(boxed(2u)));
        return key == u"enable-animations"_s ? call.createReply(boxed(false)) : refuse(call);
    };
    const QString desktop = u"org.freedesktop.appearance"_s;
    const struct
    {
        QString group, key;
        QVariant value;
        bool dark, reduced;
    } changes[] = {
        {desktop, u"color-scheme"_s, u"dark"_s, false, true},
        {u"org.gnome.desktop.interface"_s, u"enable-animations"_s, true, false, false},
        {desktop, u"reduced-motion"_s, 1u, false, true},
        {desktop, u"color-scheme"_s, 1u, true, true},
        {desktop, u"reduced-motion"_s, 0u, true, false},
    };
    for (int start = 0; start < 2; ++start) {
        StandInService portal(connect(), portalName, answer);
        ASSERT_TRUE(waitUntil([&] { return !dark && reduced; }));
        for (const auto &change : changes) {
            portal.signal(portalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s,
                          {change.group, change.key, boxed(change.value)});
            EXPECT_TRUE(waitUntil([&] { return dark == change.dark && reduced == change.reduced; }))
                << qPrintable(change.key);
        }
    }
}

// Notes what the program asks the desktop to open.
class Opened : public QObject
{
    Q_OBJECT
public:
    Opened() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~Opened() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    QByteArrayList urls;
public Q_SLOTS:
    void open(const QUrl &url) { urls += url.toEncoded(); }
};

TEST_F(DesktopBus, RevealsThroughTheFileManagerOrOpensTheFolders)
{
    const QList<Location> items = {Location::fromBytes("/v/a/1"), Location::fromBytes("/v/a/b#?.wav"),
                                   Location::fromBytes("/v/b \xFF/\xC3\xA9")};
    const QByteArrayList folders = {"file:///v/a", "file:///v/b%20%FF"};
    Opened opened;
    DesktopWorkspace withoutBus(QDBusConnection(u"none"_s));
    withoutBus.reveal(items);
    EXPECT_EQ(opened.urls, folders);
    withoutBus.open(Location());
    withoutBus.open(Location::fromBytes("/v"));
    EXPECT_EQ(opened.urls.takeLast(), "file:///v");

    opened.urls.clear();
    DesktopWorkspace workspace(connect());
    workspace.reveal(items);
    EXPECT_TRUE(waitUntil([&] { return opened.urls == folders; })) << "nobody answers";

    opened.urls.clear();
    StandInService hung(connect(), u"org.freedesktop.FileManager1"_s,
                        [](const QDBusMessage &) { return std::nullopt; });
    QElapsedTimer clock;
    clock.start();
    workspace.reveal({});
    workspace.reveal(items);
    EXPECT_LT(clock.elapsed(), 500);
    ASSERT_TRUE(waitUntil([&] { return !hung.calls.isEmpty(); }));
    EXPECT_EQ(hung.calls.first().member(), u"ShowItems"_s);
    EXPECT_EQ(hung.calls.first().arguments().value(0).toStringList(),
              QStringList({u"file:///v/a/1"_s, u"file:///v/a/b%23%3F.wav"_s, u"file:///v/b%20%FF/%C3%A9"_s}));
    EXPECT_TRUE(opened.urls.isEmpty());
}

// Where the portal answers a call to its file chooser.
QString requestPath(const QDBusMessage &call)
{
    const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().value(2));
    return portalPath + u"/request/"_s + call.service().mid(1).replace(u'.', u'_') + u'/' +
           options.value(u"handle_token"_s).toString();
}

Answer chooserPortal(Answer open)
{
    return [open = std::move(open)](const QDBusMessage &call) {
        return call.member() == u"Get"_s ? call.createReply(boxed(3u)) : open(call);
    };
}

std::optional<QDBusMessage> acceptRequest(const QDBusMessage &call)
{
    return call.createReply(QVariant::fromValue(QDBusObjectPath(requestPath(call))));
}

TEST_F(DesktopBus, ChoosesThroughThePortal)
{
    using enum ChooseRequest::What;
    StandInService portal(connect(), portalName, chooserPortal(acceptRequest));
    const auto chooser = PortalFileChooser::create(connect());
    ASSERT_NE(chooser, nullptr);
    const std::tuple<ChooseRequest, const char *, uint> cases[] = {
        {{Images, u"A still"_s, u"Use"_s, false},
         R"-({"accept_label":"Use","directory":false,"filters":"a(sa(us))","modal":true,"multiple":false})-",
         0},
        {{Folders, u"Add"_s, {}, true}, R"({"directory":true,"modal":true,"multiple":true})", 0},
        {{Files, u"Add"_s, {}, true}, R"({"directory":false,"modal":true,"multiple":true})", 1},
    };
    for (const auto &[request, wanted, code] : cases) {
        std::optional<QList<Location>> chosen;
        portal.calls.clear();
        chooser->choose(request, [&](const QList<Location> &answer) { chosen = answer; });
        EXPECT_FALSE(chosen);
        ASSERT_TRUE(waitUntil([&] { return !portal.calls.isEmpty(); }));
        const QDBusMessage asked = portal.calls.first();
        EXPECT_EQ(asked.arguments().value(1).toString(), request.title);
        QVariantMap options = qdbus_cast<QVariantMap>(asked.arguments().value(2));
        options.remove(u"handle_token"_s);
        if (options.contains(u"filters"_s))
            options[u"filters"_s] = options[u"filters"_s].value<QDBusArgument>().currentSignature();
        EXPECT_EQ(QJsonDocument::fromVariant(options).toJson(QJsonDocument::Compact), wanted);
        const QStringList uris = {u"file:///v/a%20b.png"_s, u"http://elsewhere/"_s, u"file:///v/%FF"_s};
        portal.signal(requestPath(asked), u"org.freedesktop.portal.Request"_s, u"Response"_s,
                      {code, QVariantMap{{u"uris"_s, uris}}});
        ASSERT_TRUE(waitUntil([&] { return chosen.has_value(); }));
        const QList<Location> places = {Location::fromBytes("/v/a b.png"), Location::fromBytes("/v/\xFF")};
        EXPECT_EQ(*chosen, code == 0 ? places : QList<Location>());
    }
}

TEST_F(DesktopBus, ChoosesNothingWithoutAPortalThatAnswers)
{
    EXPECT_EQ(PortalFileChooser::create(QDBusConnection(u"none"_s)), nullptr);
    EXPECT_EQ(PortalFileChooser::create(connect()), nullptr);
    {
        const StandInService without(connect(), portalName, refuse);
        EXPECT_EQ(PortalFileChooser::create(connect()), nullptr);
    }
    // One refuses, the other goes away before it has answered.
    for (const auto &open : {refuse, acceptRequest}) {
        auto portal = std::make_unique<StandInService>(connect(), portalName, chooserPortal(open));
        const auto chooser = PortalFileChooser::create(connect());
        ASSERT_NE(chooser, nullptr);
        std::optional<QList<Location>> answer;
        chooser->choose({}, [&](const QList<Location> &chosen) { answer = chosen; });
        EXPECT_FALSE(answer);
        ASSERT_TRUE(waitUntil([&] { return portal->calls.size() == 1; }));
        if (open == acceptRequest)
            portal.reset();
        ASSERT_TRUE(waitUntil([&] { return answer.has_value(); }));
        EXPECT_TRUE(answer->isEmpty());
    }
}

} // namespace
} // namespace cratewell

#include "desktop_bus_tests.moc"

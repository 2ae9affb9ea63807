#include "platform/linux/proc_applications.h"

#include "support/wait.h"

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace cratewell {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using test::waitUntil;

const QString resolve = u"com.blackmagic-design.DaVinciResolve"_s;

TEST(ProcApplications, KnowEditorsByTheWholeNameOfTheirProgram)
{
    const QTemporaryDir folder;
    const fs::path processes = folder.path().toStdString();
    ProcApplications applications(Location::fromBytes(processes.c_str()));
    const QStringList editors = {u"/opt/resolve/bin/resolve"_s, u"/home/me/copy/bin/resolve (deleted)"_s};
    const QStringList others =
        u"/opt/resolve/bin/resolved /opt/resolve/bin/Resolve /usr/lib/systemd/systemd-resolved "
        "/opt/resolve/resolve /usr/sbin/resolve bin/resolve /opt/resolve/bin/resolve/child /usr/bin/premiere"_s
            .split(u' ');
    for (const QString &program : editors + others) {
        fs::create_directories(processes / "17");
        fs::create_symlink(program.toStdString(), processes / "17/exe");
        EXPECT_EQ(applications.running().contains(resolve), editors.contains(program)) << qPrintable(program);
        fs::remove_all(processes / "17");
    }
    for (const char *process : {"1", "2", "self", "x3"}) {
        fs::create_directories(processes / process);
        fs::create_symlink("/opt/resolve/bin/resolve", processes / process / "exe");
    }
    fs::create_directories(processes / "4");
    EXPECT_EQ(applications.running(), QStringList{resolve}) << "once, however many processes";
    EXPECT_TRUE(ProcApplications(Location::fromBytes("/no/such/place")).running().isEmpty());
}

TEST(ProcApplications, ReportWhenARealProgramStartsAndEnds)
{
    const QTemporaryDir folder;
    const fs::path program = fs::path(folder.path().toStdString()) / "bin/resolve";
    fs::create_directories(program.parent_path());
    fs::copy_file("/bin/sleep", program);
    ProcApplications applications(Location::fromBytes("/proc"));
    ASSERT_TRUE(applications.running().isEmpty()) << "an editor runs on this machine";
    QSignalSpy changed(&applications, &Applications::changed);
    QProcess process;
    process.start(QString::fromStdString(program), {u"600"_s});
    ASSERT_TRUE(process.waitForStarted());
    EXPECT_TRUE(waitUntil([&] { return changed.count() == 1; }));
    EXPECT_EQ(applications.running(), QStringList{resolve});
    process.kill();
    EXPECT_TRUE(waitUntil([&] { return changed.count() == 2; }));
    EXPECT_TRUE(applications.running().isEmpty());
}

// A window of another program, through a connection of its own.
class ForeignWindow
{
public:
    explicit ForeignWindow(QByteArray windowClass) : m_connection(xcb_connect(nullptr, nullptr))
    {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_root = screen->root;
        m_window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_root, 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        windowClass.append('\0').append(windowClass.chopped(1)).append('\0');
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, uint32_t(windowClass.size()), windowClass.constData());
        xcb_map_window(m_connection, m_window);
        xcb_flush(m_connection);
    }
    ~ForeignWindow() { xcb_disconnect(m_connection); }

    bool isActive() const { return rootProperty("_NET_ACTIVE_WINDOW") == m_window; }
    // What the window manager puts on the root once it works.
    bool hasWindowManager() const { return rootProperty("_NET_SUPPORTING_WM_CHECK") != XCB_NONE; }

private:
    xcb_window_t rootProperty(QByteArrayView name) const
    {
        auto *atom = xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, uint16_t(name.size()), name.data()), nullptr);
        if (!atom)
            return XCB_NONE;
        auto *reply = xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, m_root, atom->atom, XCB_ATOM_WINDOW, 0, 1),
            nullptr);
        xcb_window_t value = XCB_NONE;
        if (reply && xcb_get_property_value_length(reply) == sizeof(value))
            value = *static_cast<xcb_window_t *>(xcb_get_property_value(reply));
        std::free(atom);
        std::free(reply);
        return value;
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root = XCB_NONE;
    xcb_window_t m_window = XCB_NONE;
};

class OnX11 : public testing::Test
{
protected:
    void SetUp() override
    {
        m_server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"640x480x24"_s});
        ASSERT_TRUE(m_server.waitForStarted()) << "Xvfb is needed";
        ASSERT_TRUE(waitUntil([&] { return m_server.canReadLine(); }));
        qputenv("DISPLAY", ':' + m_server.readLine().trimmed());
        m_manager.start(u"openbox"_s, QStringList());
        ASSERT_TRUE(m_manager.waitForStarted()) << "openbox is needed";
    }
    void TearDown() override
    {
        m_manager.kill();
        m_manager.waitForFinished();
        endServer();
        qunsetenv("DISPLAY");
    }
    void endServer()
    {
        m_server.kill();
        m_server.waitForFinished();
    }

private:
    QProcess m_server;
    QProcess m_manager;
};

TEST_F(OnX11, EditorsAreSeenAndBroughtToTheFront)
{
    ProcApplications applications(Location::fromBytes("/proc"));
    QSignalSpy activated(&applications, &Applications::activated);
    const ForeignWindow early("early");
    ASSERT_TRUE(waitUntil([&] { return early.hasWindowManager(); }));
    const ForeignWindow other("resolver");
    ASSERT_TRUE(waitUntil([&] { return other.isActive(); }));
    EXPECT_FALSE(applications.bringToFront(resolve));
    EXPECT_FALSE(applications.bringToFront(u"com.adobe.PremierePro"_s));

    const ForeignWindow editor("Resolve");
    ASSERT_TRUE(waitUntil([&] { return activated.count() == 1; }));
    EXPECT_EQ(activated.takeFirst().constFirst(), resolve);
    ASSERT_TRUE(waitUntil([&] { return editor.isActive(); }));

    const ForeignWindow third("another");
    ASSERT_TRUE(waitUntil([&] { return third.isActive(); }));
    EXPECT_TRUE(applications.bringToFront(resolve));
    ASSERT_TRUE(waitUntil([&] { return editor.isActive() && activated.count() == 1; }));
    EXPECT_EQ(activated.constFirst().constFirst(), resolve);

    endServer();
    EXPECT_FALSE(applications.bringToFront(resolve));
}

// Qt holds a lock of the vanishing listener meanwhile; there are 131, chosen by address, so these side by
// side have all of them.
TEST(ProcApplications, LosingAListenerNeverWaitsForItself)
{
    ProcApplications applications(Location::fromBytes("/no/such/place"));
    std::array<QObject, 262> listeners;
    for (QObject &listener : listeners)
        QObject::connect(&applications, &Applications::changed, &listener, [] {});
}

TEST(ProcApplications, KnowNoWindowsWithoutAnXServer)
{
    for (const QByteArray &display : {QByteArray(), QByteArray(":54321"), QByteArray("nonsense")}) {
        qputenv("DISPLAY", display);
        ProcApplications applications(Location::fromBytes("/proc"));
        const QSignalSpy activated(&applications, &Applications::activated);
        EXPECT_FALSE(applications.bringToFront(resolve)) << display.constData();
    }
    qunsetenv("DISPLAY");
}

} // namespace
} // namespace cratewell

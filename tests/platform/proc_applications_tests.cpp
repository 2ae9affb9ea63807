#include "platform/linux/proc_applications.h"
#include "platform/linux/x11_windows.h"
#include "support/wait.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>
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
    ProcApplications applications(Location::fromText(folder.path()));
    const std::pair<const char *, bool> programs[] = {
        {"/opt/resolve/bin/resolve", true},   {"/home/me/copy/bin/resolve (deleted)", true},
        {"/opt/resolve/bin/resolved", false}, {"/usr/lib/systemd/systemd-resolved", false},
        {"/opt/resolve/resolve", false},      {"bin/resolve", false},
    };
    for (const auto &[program, isEditor] : programs) {
        fs::create_directories(processes / "17");
        fs::create_symlink(program, processes / "17/exe");
        EXPECT_EQ(applications.running().contains(resolve), isEditor) << program;
        fs::remove_all(processes / "17");
    }
    for (const char *process : {"1", "2", "self"}) {
        fs::create_directories(processes / process);
        fs::create_symlink("/opt/resolve/bin/resolve", processes / process / "exe");
    }
    EXPECT_EQ(applications.running(), QStringList{resolve}) << "once, however many processes";
}

TEST(ProcApplications, ReportWhenARealProgramStartsAndEnds)
{
    const QTemporaryDir folder;
    const fs::path program = fs::path(folder.path().toStdString()) / "bin/resolve";
    fs::create_directories(program.parent_path());
    fs::copy_file("/bin/sleep", program);
    ProcApplications applications(Location::fromBytes("/proc"));
    ASSERT_TRUE(applications.running().isEmpty()) << "an editor runs on this machine";
    const QSignalSpy changed(&applications, &Applications::changed);
    QProcess process;
    process.start(QString::fromStdString(program), {u"600"_s});
    EXPECT_TRUE(waitUntil([&] { return changed.count() == 1; }));
    EXPECT_EQ(applications.running(), QStringList{resolve});
    process.kill();
    EXPECT_TRUE(waitUntil([&] { return changed.count() == 2; }));
    EXPECT_TRUE(applications.running().isEmpty());
}

// A window of another program; it goes with the connection.
auto showWindow(const QByteArray &name)
{
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                            xcb_disconnect);
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    const xcb_window_t window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    const QByteArray windowClass = name + '\0' + name + '\0';
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                        8, uint32_t(windowClass.size()), windowClass.constData());
    xcb_map_window(connection.get(), window);
    xcb_flush(connection.get());
    return connection;
}

TEST(X11, EditorsAreSeenAndBroughtToTheFront)
{
    QProcess server;
    server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"640x480x24"_s});
    ASSERT_TRUE(server.waitForReadyRead()) << "Xvfb is needed";
    qputenv("DISPLAY", ':' + server.readLine().trimmed());
    QProcess manager;
    manager.start(u"openbox"_s, QStringList());

    ProcApplications applications(Location::fromBytes("/proc"));
    const QSignalSpy editors(&applications, &Applications::activated);
    const X11Windows windows;
    const QSignalSpy activated(&windows, &X11Windows::activated);
    const auto isActive = [&](const QString &name) {
        return !activated.isEmpty() && activated.last()[0].toStringList().contains(name);
    };
    // The window manager overlooks what is shown while it starts.
    std::vector<decltype(showWindow({}))> others;
    ASSERT_TRUE(waitUntil([&] {
        others.push_back(showWindow("resolver"));
        return isActive(u"resolver"_s);
    })) << "openbox is needed";
    EXPECT_FALSE(applications.bringToFront(resolve));
    EXPECT_FALSE(applications.bringToFront(u"com.adobe.PremierePro"_s));
    const auto editor = showWindow("Resolve");
    ASSERT_TRUE(waitUntil([&] { return isActive(u"Resolve"_s) && editors.count() == 1; }));
    EXPECT_EQ(editors[0][0], resolve);
    const auto third = showWindow("another");
    ASSERT_TRUE(waitUntil([&] { return isActive(u"another"_s); }));
    EXPECT_TRUE(applications.bringToFront(resolve));
    ASSERT_TRUE(waitUntil([&] { return isActive(u"Resolve"_s) && editors.count() == 2; }));

    for (QProcess *process : {&manager, &server}) {
        process->kill();
        process->waitForFinished();
    }
    EXPECT_FALSE(applications.bringToFront(resolve));
    for (const QByteArray &display : {QByteArray(), QByteArray(":54321"), QByteArray("nonsense")}) {
        qputenv("DISPLAY", display);
        EXPECT_FALSE(ProcApplications(Location::fromBytes("/proc")).bringToFront(resolve));
    }
    qunsetenv("DISPLAY");
}

// Qt holds a lock of the vanishing listener meanwhile; there are 131, chosen by address, so these side by
// side have all of them.
TEST(ProcApplications, LosingAListenerNeverWaitsForItself)
{
    ProcApplications applications(Location::fromBytes("/no/such/place"));
    QObject listeners[262];
    for (QObject &listener : listeners)
        QObject::connect(&applications, &Applications::changed, &listener, [] {});
}

} // namespace
} // namespace cratewell

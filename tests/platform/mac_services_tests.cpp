#include "platform/mac/default_read_appearance.h"
#include "platform/mac/finder_workspace.h"
#include "platform/mac/listed_applications.h"
#include "platform/mac/watcher_file_events.h"

#include "support/wait.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using test::waitUntil;

const QString resolve = u"com.blackmagic-design.DaVinciResolve"_s;

// A folder of shell scripts that stand in for the system's tools. Each appends its arguments to "log".
class Tools : public testing::Test
{
protected:
    void script(const QString &name, const QByteArray &body)
    {
        const fs::path temporary = folder() / (name.toStdString() + ".new");
        std::ofstream(temporary) << "#!/bin/sh\necho \"${0##*/} $*\" >> \"${0%/*}/log\"\n"
                                 << body.toStdString() << '\n';
        fs::permissions(temporary, fs::perms::owner_all);
        fs::rename(temporary, folder() / name.toStdString());
    }
    fs::path folder() const { return m_folder.path().toStdString(); }
    Location place() const { return Location::fromText(m_folder.path()); }
    QByteArray log() const
    {
        QFile file(m_folder.filePath(u"log"_s));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};

constexpr char listWithResolve[] = R"(cat << 'END'
 1) "loginwindow" ASN:0x0-0x1001:
    bundleID="com.apple.loginwindow"
    pid = 152 type="UIElement" flavor=3
 2) "DaVinci Resolve" ASN:0x0-0x1d01d: (in front)
    bundleID="com.blackmagic-design.DaVinciResolve"
    bundle path="/Applications/a bundleID=\"com.adobe.PremierePro.9\"/x.app"
 3) "helper" ASN:0x0-0x1e01e:
    bundleID=[ NULL ]
 4) "Premiere" ASN:0x0-0x2f02f:
    bundleID="com.adobe.PremierePro.24"
END
)";

TEST_F(Tools, ListRunningEditorsAndReportChanges)
{
    script(u"lsappinfo"_s, R"([ "$1" = front ] && echo ASN:0x0-0x1001: || true)");
    script(u"open"_s, {});
    ListedApplications applications(place());
    EXPECT_TRUE(applications.running().isEmpty());
    EXPECT_FALSE(applications.bringToFront(resolve));
    QSignalSpy changed(&applications, &Applications::changed);
    QSignalSpy activated(&applications, &Applications::activated);

    script(u"lsappinfo"_s,
           QByteArray(R"([ "$1" = front ] && echo ASN:0x0-0x1d01d: && exit; )") + listWithResolve);
    ASSERT_TRUE(waitUntil([&] { return changed.count() == 1 && activated.count() == 1; }));
    EXPECT_EQ(activated.constFirst().constFirst(), resolve);
    EXPECT_EQ(applications.running(), QStringList({u"com.adobe.PremierePro.24"_s, resolve}));

    script(u"lsappinfo"_s, "exit 1");
    EXPECT_EQ(applications.running().size(), 2) << "what fails says nothing";
    EXPECT_TRUE(applications.bringToFront(resolve));
    EXPECT_TRUE(waitUntil([&] { return log().contains("open -b com.blackmagic-design.DaVinciResolve\n"); }));

    script(u"lsappinfo"_s, "exec sleep 60");
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(applications.running().size(), 2);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Tools, FollowTheAppearance)
{
    EXPECT_TRUE(DefaultReadAppearance(place()).dark());
    script(u"defaults"_s, R"(case "$2" in -g) exit 1;; *) echo 1;; esac)");
    DefaultReadAppearance appearance(place());
    EXPECT_TRUE(appearance.dark());
    ASSERT_TRUE(waitUntil([&] { return !appearance.dark() && appearance.reducedMotion(); }));
    script(u"defaults"_s, R"(case "$2" in -g) echo Dark;; *) exit 1;; esac)");
    QEvent paletteChange(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(qGuiApp, &paletteChange);
    ASSERT_TRUE(waitUntil([&] { return appearance.dark() && !appearance.reducedMotion(); }));
    EXPECT_TRUE(log().contains("defaults read -g AppleInterfaceStyle\n"));
}

TEST_F(Tools, RevealAndOpenInTheFinder)
{
    script(u"open"_s, {});
    FinderWorkspace workspace(place());
    workspace.reveal({});
    workspace.open({});
    workspace.reveal({Location::fromBytes("/v/a b"), Location::fromBytes("/v/\xC3\xA9")});
    ASSERT_TRUE(waitUntil([&] { return log() == "open -R /v/a b /v/\xC3\xA9\n"; }));
    workspace.open(Location::fromBytes("/v"));
    ASSERT_TRUE(waitUntil([&] { return log().endsWith("\nopen /v\n"); }));
}

TEST(WatcherFileEvents, FollowTheTreeAndWhatTheWatcherDoesNotReport)
{
    const QTemporaryDir folder;
    const fs::path top = folder.path().toStdString();
    const auto write = [](const fs::path &file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "content";
    };
    write(top / "root/a/file");
    write(top / "linked/inner/old");
    WatcherFileEvents events;
    QSignalSpy changed(&events, &FileEvents::changed);
    const std::pair<const char *, std::function<void()>> steps[] = {
        {"a new file", [&] { write(top / "root/a/new"); }},
        {"new folders", [&] { write(top / "root/b/c/file"); }},
        {"a file in the new folder", [&] { write(top / "root/b/c/more"); }},
        {"a file overwritten in place", [&] { std::fstream(top / "root/a/file") << "other"; }},
        {"a category made a link", [&] { fs::create_directory_symlink("../linked", top / "root/category"); }},
        {"a file behind the category", [&] { write(top / "linked/inner/file"); }},
        {"the root gone", [&] { fs::remove_all(top / "root"); }},
        {"the root back", [&] { write(top / "root/a/file"); }},
    };
    // The second watch hears nothing of what happened before it.
    events.watch(Location::fromBytes((top / "elsewhere").c_str()), {}, std::chrono::system_clock::now());
    events.watch(Location::fromBytes((top / "root").c_str()), {"category"}, std::chrono::system_clock::now());
    QElapsedTimer quiet;
    for (const auto &[name, act] : steps) {
        quiet.start();
        ASSERT_TRUE(waitUntil([&] { return quiet.elapsed() > 800; }));
        changed.clear();
        act();
        EXPECT_TRUE(waitUntil([&] { return changed.count() > 0; })) << name;
    }
    events.stop();
    changed.clear();
    write(top / "root/a/late");
    quiet.start();
    ASSERT_TRUE(waitUntil([&] { return quiet.elapsed() > 600; }));
    EXPECT_EQ(changed.count(), 0);
}

} // namespace
} // namespace cratewell

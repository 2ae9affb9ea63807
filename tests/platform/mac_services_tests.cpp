#include "platform/mac/default_read_appearance.h"
#include "platform/mac/finder_workspace.h"
#include "platform/mac/listed_applications.h"

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

using namespace Qt::StringLiterals;
using test::waitUntil;

const QString resolve = u"com.blackmagic-design.DaVinciResolve"_s;

// A folder of shell scripts that stand in for the system's tools. Each appends its arguments to "log".
class Tools : public testing::Test
{
protected:
    void script(const char *name, const QByteArray &body)
    {
        const std::string temporary = m_place.child("new").c_str();
        std::ofstream(temporary) << "#!/bin/sh\necho \"${0##*/} $*\" >> \"${0%/*}/log\"\n" << body.data();
        std::filesystem::permissions(temporary, std::filesystem::perms::owner_all);
        std::filesystem::rename(temporary, m_place.child(name).c_str());
    }
    QByteArray log() const
    {
        QFile file(m_folder.filePath(u"log"_s));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QTemporaryDir m_folder;
    const Location m_place = Location::fromText(m_folder.path());
};

constexpr char listWithResolve[] = R"([ "$1" = front ] && echo ASN:0x0-0x1d01d: && exit
cat << 'END'
 1) "loginwindow" ASN:0x0-0x1001:
    bundleID="com.apple.loginwindow"
 2) "DaVinci Resolve" ASN:0x0-0x1d01d: (in front)
    bundleID="com.blackmagic-design.DaVinciResolve"
    bundle path="/Applications/a bundleID=\"com.adobe.PremierePro.9\"/x.app"
 3) "helper" ASN:0x0-0x1e01e:
    bundleID=[ NULL ]
 4) "Premiere" ASN:0x0-0x2f02f:
    bundleID="com.adobe.PremierePro.24"
END)";

TEST_F(Tools, ListRunningEditorsAndReportChanges)
{
    script("lsappinfo", R"([ "$1" = front ] && echo ASN:0x0-0x1001: || true)");
    script("open", {});
    ListedApplications applications(m_place);
    EXPECT_FALSE(applications.bringToFront(resolve));
    const QSignalSpy changed(&applications, &Applications::changed);
    const QSignalSpy activated(&applications, &Applications::activated);

    script("lsappinfo", listWithResolve);
    ASSERT_TRUE(waitUntil([&] { return changed.count() == 1 && activated.count() == 1; }));
    EXPECT_EQ(activated[0][0], resolve);
    EXPECT_EQ(applications.running(), QStringList({u"com.adobe.PremierePro.24"_s, resolve}));

    script("lsappinfo", "exit 1");
    EXPECT_EQ(applications.running().size(), 2) << "what fails says nothing";
    EXPECT_TRUE(applications.bringToFront(resolve));
    EXPECT_TRUE(waitUntil([&] { return log().contains("open -b com.blackmagic-design.DaVinciResolve\n"); }));

    script("lsappinfo", "exec sleep 60");
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(applications.running().size(), 2);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Tools, FollowTheAppearance)
{
    script("defaults", R"(case "$2" in -g) exit 1;; *) echo 1;; esac)");
    DefaultReadAppearance appearance(m_place);
    EXPECT_TRUE(appearance.dark());
    ASSERT_TRUE(waitUntil([&] { return !appearance.dark() && appearance.reducedMotion(); }));
    script("defaults", R"(case "$2" in -g) echo Dark;; *) exit 1;; esac)");
    QEvent paletteChange(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(qGuiApp, &paletteChange);
    ASSERT_TRUE(waitUntil([&] { return appearance.dark() && !appearance.reducedMotion(); }));
    EXPECT_TRUE(log().contains("defaults read -g AppleInterfaceStyle\n"));
}

TEST_F(Tools, RevealAndOpenInTheFinder)
{
    script("open", {});
    FinderWorkspace workspace(m_place);
    workspace.reveal({});
    workspace.open({});
    workspace.reveal({Location::fromBytes("/v/a b"), Location::fromBytes("/v/\xC3\xA9")});
    ASSERT_TRUE(waitUntil([&] { return log() == "open -R /v/a b /v/\xC3\xA9\n"; }));
    workspace.open(Location::fromBytes("/v"));
    ASSERT_TRUE(waitUntil([&] { return log().endsWith("\nopen /v\n"); }));
}

} // namespace
} // namespace cratewell

#include "window/app_fixture.h"

#include "state/prefs.h"
#include "support/child.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// The window still takes what a person does, and shows what comes of it.
void expectAlive(AppFixture &app, const QString &card)
{
    ASSERT_TRUE(app.controls().click(Card, card));
    app.key(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

} // namespace

TEST(FollowingTheDisk, AFileAppearsWithinASecondAndBadFilesAndAVanishedVaultNeverEndTheProgram)
{
    const QStringList cards{u"Letter"_s, u"Nothing"_s, u"Fine"_s, u"New"_s};
    AppFixture app([](const QString &vault) {
        writeFile(vault + u"/Overlays/Letter.mov"_s, "Dear editor, this is no film.");
        writeFile(vault + u"/Overlays/Nothing.png"_s, "");
        writePicture(vault + u"/Overlays/Fine.png"_s, Qt::green);
        writeFile(vault + u"/../../.config/cratewell/defaults.json"_s, "\x7f garbage {");
    });
    ASSERT_TRUE(app.showsCards(cards.first(3)));
    QElapsedTimer clock;
    clock.start();
    writePicture(app.path(u"Overlays/New.png"_s).text(), Qt::green);
    ASSERT_TRUE(app.showsCards(cards));
    EXPECT_LT(clock.elapsed(), 1000);

    const QString elsewhere = app.home() + u"/unmounted"_s;
    ASSERT_TRUE(QDir().rename(app.vaultFolder(), elsewhere));
    ASSERT_TRUE(app.showsCards({}));
    EXPECT_FALSE(app.exists(u"."_s)) << "nobody makes it again";
    ASSERT_TRUE(QDir().rename(elsewhere, app.vaultFolder()));
    EXPECT_TRUE(app.showsCards(cards));
}

TEST(DeniedDisk, IsShownAsFarAsItCanBeRead)
{
    // Permissions do not bind root, unless without the rights that make it so.
    const QStringList bound{u"setpriv"_s, u"--bounding-set=-dac_override,-dac_read_search"_s,
                            u"--inh-caps=-dac_override,-dac_read_search"_s};
    QStringList disks{u"unshare"_s, u"--mount"_s};
    if (geteuid() != 0)
        disks += {u"--user"_s, u"--map-root-user"_s};
    const auto runs = [](const QString &name, const QStringList &wrapper, const QString &trial) {
        if (isPermitted(wrapper, trial)) {
            EXPECT_TRUE(Child(u"DeniedDiskChild.DISABLED_"_s + name, {.wrapper = wrapper}).passes());
        }
    };
    runs(u"LockedFolders"_s, geteuid() == 0 ? bound : QStringList(),
         u"d=$(mktemp -d); chmod 0 $d; ls $d; denied=$?; rmdir $d; test $denied -ne 0"_s);
    runs(u"ReadOnly"_s, disks, u"mount -t tmpfs none /mnt"_s);
}

TEST(DeniedDiskChild, DISABLED_LockedFolders)
{
    AppFixture app([](const QString &vault) {
        writeSound(vault + u"/SFX/Hits/Open.wav"_s);
        writeSound(vault + u"/SFX/Shut/Secret.wav"_s);
        // Nobody can list these, whatever the rights.
        writeFile(vault + u"/LUTs"_s, "no folder");
        QFile::link(u"Overlays"_s, vault + u"/Overlays"_s);
    });
    ASSERT_TRUE(app.showsCards({u"Open"_s, u"Secret"_s}));
    const auto setMode = [](const QString &folder, mode_t mode) {
        EXPECT_EQ(chmod(QFile::encodeName(folder), mode), 0);
    };
    setMode(app.vaultFolder(), 0);
    app.restart();
    EXPECT_TRUE(app.controls().shows(Text, u"0 assets"_s));
    setMode(app.vaultFolder(), 0700);
    setMode(app.path(u"SFX/Shut"_s).text(), 0);
    app.restart();
    EXPECT_TRUE(app.showsCards({u"Open"_s}));
    writeSound(app.path(u"SFX/Hits/Second.wav"_s).text());
    EXPECT_TRUE(app.showsCards({u"Open"_s, u"Second"_s}));
    expectAlive(app, u"Open"_s);
    setMode(app.path(u"SFX/Shut"_s).text(), 0700);
    app.restart();
    EXPECT_TRUE(app.showsCards({u"Open"_s, u"Second"_s, u"Secret"_s}));
}

TEST(DeniedDiskChild, DISABLED_ReadOnly)
{
    QByteArray disk;
    AppFixture app([&](const QString &vault) {
        disk = QFile::encodeName(vault);
        ASSERT_TRUE(QDir().mkpath(vault));
        ASSERT_EQ(mount("none", disk, "tmpfs", 0, nullptr), 0);
        writeSound(vault + u"/SFX/Hits/Old.wav"_s);
        ASSERT_EQ(mount(nullptr, disk, nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    });
    const auto unmount = qScopeGuard([&] { umount2(disk, MNT_DETACH); });
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(QDir(app.vaultFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList(u"SFX"_s));
    expectAlive(app, u"Old"_s);
    app.restart();
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
}

} // namespace cratewell::test

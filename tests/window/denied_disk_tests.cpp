#include "window/app_fixture.h"

#include "state/app_state.h"
#include "state/prefs.h"
#include "support/child.h"

#include <QDir>
#include <QFile>
#include <QQuickWindow>
#include <QScopeGuard>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// Runs the case again below the wrapper; false where the system does not permit what the trial does.
bool runsBelow(const QStringList &wrapper, const QString &trial)
{
    if (!isPermitted(wrapper, trial))
        return false;
    const auto *test = testing::UnitTest::GetInstance()->current_test_info();
    const QString name =
        u"%1.%2"_s.arg(QLatin1StringView(test->test_suite_name()), QLatin1StringView(test->name()));
    EXPECT_TRUE(Child(name, {.wrapper = wrapper}).passes());
    return true;
}

// A folder whose content is gone for everybody until this ends.
class Locked
{
public:
    explicit Locked(const QString &folder) : m_folder(QFile::encodeName(folder))
    {
        EXPECT_EQ(chmod(m_folder, 0), 0);
    }
    ~Locked() { EXPECT_EQ(chmod(m_folder, 0700), 0); }
    Q_DISABLE_COPY_MOVE(Locked)

private:
    QByteArray m_folder;
};

// The window still takes what a person does, and shows what comes of it.
void expectAlive(AppFixture &app, const QString &card, const QString &folder, int inFolder)
{
    ASSERT_TRUE(app.controls().click(Card, card));
    app.key(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
    ASSERT_TRUE(app.controls().click(Folder, folder));
    EXPECT_EQ(app.program().state().visibleCount(), inFolder);
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

} // namespace

TEST(DeniedDisk, WhatCannotBeReadIsEmptyUntilItCanAndTheWindowLives)
{
    if (!isChild() && geteuid() == 0) {
        // Permissions do not bind root, unless without the rights that make it so.
        if (!runsBelow({u"setpriv"_s, u"--bounding-set=-dac_override,-dac_read_search"_s,
                        u"--inh-caps=-dac_override,-dac_read_search"_s},
                       u"d=$(mktemp -d); chmod 0 $d; ls $d 2>/dev/null; denied=$?; rmdir $d; "
                       "test $denied -ne 0"_s))
            GTEST_SKIP() << "root reads everything here";
        return;
    }
    AppFixture app([](const QString &vault) {
        writeSound(vault + u"/SFX/Hits/Open.wav"_s);
        writeSound(vault + u"/SFX/Shut/Secret.wav"_s);
        // Nobody can list these, whatever the rights.
        writeFile(vault + u"/LUTs"_s, "no folder");
        QFile::link(u"Overlays"_s, vault + u"/Overlays"_s);
    });
    ASSERT_TRUE(app.showsCards({u"Open"_s, u"Secret"_s}));
    {
        const Locked locked(app.vaultFolder());
        app.restart();
        ASSERT_TRUE(app.controls().shows(Text, u"0 assets"_s));
        app.key(Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(app.program().state().selectedCount(), 0);
    }
    {
        const Locked locked(app.path(u"SFX/Shut"_s).text());
        app.restart();
        ASSERT_TRUE(app.showsCards({u"Open"_s}));
        writeSound(app.path(u"SFX/Hits/Second.wav"_s).text());
        ASSERT_TRUE(app.showsCards({u"Open"_s, u"Second"_s}));
        expectAlive(app, u"Open"_s, u"Shut"_s, 0);
    }
    app.restart();
    EXPECT_TRUE(app.showsCards({u"Open"_s, u"Second"_s, u"Secret"_s}));
}

TEST(DeniedDisk, AVaultOnAReadOnlyDiskIsShownAndLeftAlone)
{
    if (!isChild()) {
        QStringList wrapper{u"unshare"_s, u"--mount"_s};
        if (geteuid() != 0)
            wrapper += {u"--user"_s, u"--map-root-user"_s};
        if (!runsBelow(wrapper, u"mount -t tmpfs none /mnt"_s))
            GTEST_SKIP() << "no disk can be mounted";
        return;
    }
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
    expectAlive(app, u"Old"_s, u"Hits"_s, 1);
    app.restart();
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
}

} // namespace cratewell::test

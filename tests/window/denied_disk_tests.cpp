#include "window/app_fixture.h"

#include "platform/location.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QQuickWindow>
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// Where this is set the process has been put where the disk can really deny something.
constexpr char deniedMark[] = "CRATEWELL_TEST_DENIED";

// A way to start a program where the disk can deny something, and what shows that it can.
struct Wrapper
{
    QStringList command;
    QString trial;
};

// For root, whom permissions do not bind, without the rights that make it so.
Wrapper boundByPermissions()
{
    return {{u"setpriv"_s, u"--bounding-set=-dac_override,-dac_read_search"_s,
             u"--inh-caps=-dac_override,-dac_read_search"_s},
            u"d=$(mktemp -d); chmod 0 $d; ls $d 2>/dev/null; denied=$?; rmdir $d; test $denied -ne 0"_s};
}

Wrapper withMountsOfItsOwn()
{
    QStringList command{u"unshare"_s, u"--mount"_s};
    if (geteuid() != 0)
        command += {u"--user"_s, u"--map-root-user"_s};
    return {command, u"mount -t tmpfs none /mnt"_s};
}

// Runs a case of this program again below the wrapper. False, with the reason in the test's output, where the
// system does not permit that.
bool runsBelow(const Wrapper &wrapper, const QString &name)
{
    QProcess trial;
    trial.start(wrapper.command.first(),
                wrapper.command.sliced(1) + QStringList{u"sh"_s, u"-c"_s, wrapper.trial});
    if (!trial.waitForFinished() || trial.exitStatus() != QProcess::NormalExit || trial.exitCode() != 0) {
        std::printf("[   NOTE   ] not permitted here: %s %s\n", qPrintable(wrapper.command.join(u' ')),
                    trial.readAllStandardError().constData());
        return false;
    }
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(deniedMark), u"1"_s);
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(wrapper.command.first(),
                wrapper.command.sliced(1) +
                    QStringList{QCoreApplication::applicationFilePath(), u"--gtest_filter=%1"_s.arg(name)});
    EXPECT_TRUE(waitUntil([&] { return child.state() == QProcess::NotRunning; }, std::chrono::minutes(2)));
    const QByteArray output = child.readAll();
    EXPECT_EQ(child.exitCode(), 0) << output.constData();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.constData();
    return true;
}

bool isWrapped()
{
    return qEnvironmentVariableIsSet(deniedMark);
}

// A folder whose content is gone for everybody until this ends.
class Locked
{
public:
    explicit Locked(const QString &folder) : m_folder(QFile::encodeName(folder)) { chmod(m_folder, 0); }
    ~Locked() { chmod(m_folder, 0700); }
    Q_DISABLE_COPY_MOVE(Locked)

private:
    static void chmod(const QByteArray &folder, mode_t mode) { EXPECT_EQ(::chmod(folder, mode), 0); }

    QByteArray m_folder;
};

// The vault on a disk of its own that takes no writing once `close` was called; where nothing may be mounted,
// in a folder that its owner may not change.
class ReadOnlyDisk
{
public:
    explicit ReadOnlyDisk(const QString &place) : m_place(QFile::encodeName(place))
    {
        EXPECT_TRUE(QDir().mkpath(place));
        m_mounted = mount("none", m_place, "tmpfs", 0, nullptr) == 0;
    }
    ~ReadOnlyDisk()
    {
        if (m_mounted)
            umount2(m_place, MNT_DETACH);
        else
            chmod(m_place, 0700);
    }
    Q_DISABLE_COPY_MOVE(ReadOnlyDisk)

    void close()
    {
        if (m_mounted)
            EXPECT_EQ(mount(nullptr, m_place, nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        else
            EXPECT_EQ(chmod(m_place, 0500), 0);
        EXPECT_NE(mkdir(m_place + "/new", 0700), 0);
    }

private:
    QByteArray m_place;
    bool m_mounted = false;
};

// The window still takes what a person does, and shows what comes of it.
void expectAlive(AppFixture &app, const QString &card, const QString &folder, int inFolder)
{
    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, card));
    app.key(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
    ASSERT_TRUE(app.controls().click(QAccessible::TreeItem, folder));
    EXPECT_EQ(app.program().state().scopeTitle(), folder);
    EXPECT_EQ(app.program().state().visibleCount(), inFolder);
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

void checkUnreadableFolders()
{
    AppFixture app([](const QString &vault) {
        writeSound(vault + u"/SFX/Hits/Open.wav"_s);
        writeSound(vault + u"/SFX/Shut/Secret.wav"_s);
        // Nobody can list these, whatever the rights.
        writeFile(vault + u"/LUTs"_s, "no folder");
        QFile::link(u"Overlays"_s, vault + u"/Overlays"_s);
    });
    const QString shut = app.vaultFolder() + u"/SFX/Shut"_s;
    ASSERT_TRUE(app.showsCards({u"Open"_s, u"Secret"_s}));
    if (access(QFile::encodeName(shut), R_OK) == 0) {
        const Locked locked(shut);
        if (access(QFile::encodeName(shut), R_OK) != 0) {
            writeSound(app.vaultFolder() + u"/SFX/Hits/Second.wav"_s);
            ASSERT_TRUE(app.showsCards({u"Open"_s, u"Second"_s}));
            ASSERT_TRUE(app.controls().click(QAccessible::TreeItem, u"Shut"_s));
            EXPECT_EQ(app.program().state().visibleCount(), 0);
            app.restart();
            ASSERT_TRUE(app.showsCards({u"Open"_s, u"Second"_s}));
            expectAlive(app, u"Open"_s, u"Shut"_s, 0);
            return;
        }
    }
    ASSERT_FALSE(isWrapped()) << "the folder can still be read";
    expectAlive(app, u"Open"_s, u"SFX"_s, 2);
}

} // namespace

TEST(DeniedDisk, UnreadableFoldersAreEmptyAndTheWindowLives)
{
    if (isWrapped() || geteuid() != 0 ||
        !runsBelow(boundByPermissions(), u"DeniedDisk.UnreadableFoldersAreEmptyAndTheWindowLives"_s))
        checkUnreadableFolders();
}

TEST(DeniedDisk, AnUnreadableRootIsAnEmptyVault)
{
    const auto check = [] {
        AppFixture app([](const QString &vault) { writeSound(vault + u"/SFX/Hits/Secret.wav"_s); });
        ASSERT_TRUE(app.showsCards({u"Secret"_s}));
        {
            const Locked locked(app.vaultFolder());
            app.restart();
            ASSERT_TRUE(
                waitUntil([&] { return app.controls().find(QAccessible::StaticText, u"0 assets"_s); }));
            ASSERT_TRUE(app.showsCards({}));
            app.key(Qt::Key_A, Qt::ControlModifier);
            EXPECT_EQ(app.program().state().selectedCount(), 0);
        }
        app.restart();
        ASSERT_TRUE(app.showsCards({u"Secret"_s}));
        expectAlive(app, u"Secret"_s, u"Hits"_s, 1);
    };
    if (isWrapped() || geteuid() != 0)
        check();
    else if (!runsBelow(boundByPermissions(), u"DeniedDisk.AnUnreadableRootIsAnEmptyVault"_s))
        GTEST_SKIP() << "root reads everything here";
}

TEST(DeniedDisk, AVaultOnAReadOnlyDiskIsShownAndLeftAlone)
{
    if (!isWrapped()) {
        const QString self = u"DeniedDisk.AVaultOnAReadOnlyDiskIsShownAndLeftAlone"_s;
        if (runsBelow(withMountsOfItsOwn(), self))
            return;
        if (geteuid() == 0 && runsBelow(boundByPermissions(), self))
            return;
        if (geteuid() == 0)
            GTEST_SKIP() << "no disk can be mounted, and root writes everywhere";
    }
    std::unique_ptr<ReadOnlyDisk> disk;
    AppFixture app([&](const QString &vault) {
        disk = std::make_unique<ReadOnlyDisk>(vault);
        writeSound(vault + u"/SFX/Hits/Old.wav"_s);
        disk->close();
    });
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(QDir(app.vaultFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList(u"SFX"_s));
    expectAlive(app, u"Old"_s, u"Hits"_s, 1);

    app.restart();
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);

    // A vault that would have to be made there stays empty.
    Vault &vault = app.program().vault();
    const Location root = vault.root();
    vault.changeRoot(Location::fromText(app.vaultFolder() + u"/Not there"_s));
    EXPECT_TRUE(app.showsCards({}));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    vault.changeRoot(root);
    EXPECT_TRUE(app.showsCards({u"Old"_s}));
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

} // namespace cratewell::test

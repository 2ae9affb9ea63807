#include "window/app_fixture.h"

#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QQuickWindow>

namespace cratewell::test {

using namespace Qt::StringLiterals;

TEST(FollowingTheDisk, AFileCopiedInAppearsWithinASecondAndABurstCostsAHandfulOfScans)
{
    AppFixture app([](const QString &vault) { writeSound(vault + u"/SFX/Hits/Old.wav"_s); });
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(QProcess::execute(
                  u"cp"_s, {app.path(u"SFX/Hits/Old.wav"_s).text(), app.path(u"SFX/Hits/New.wav"_s).text()}),
              0);
    ASSERT_TRUE(app.showsCards({u"New"_s, u"Old"_s}));
    EXPECT_LT(clock.elapsed(), 1000);

    int scans = 0;
    clock.restart();
    QObject::connect(&app.program().vault(), &Vault::rescanned, &app.program(), [&scans] { ++scans; });
    QProcess unpacking;
    unpacking.start(u"/bin/sh"_s,
                    {u"-c"_s,
                     u"cd \"$1\"; mkdir -p New/Pack; for i in $(seq 5000); do : > New/Pack/$i.wav; done"_s,
                     u"sh"_s, app.path(u"SFX"_s).text()});
    ASSERT_TRUE(
        waitUntil([&] { return app.program().state().visibleCount() == 5002; }, std::chrono::seconds(30)));
    EXPECT_TRUE(waitUntil([&] { return unpacking.state() == QProcess::NotRunning; }));
    EXPECT_LE(scans, 2 + clock.elapsed() / 300) << "one for each delay at most";
}

TEST(FollowingTheDisk, BadPlacesAndBadFilesNeverEndTheProgram)
{
    AppFixture app([](const QString &vault) {
        writeFile(vault + u"/Overlays/Letter.mov"_s, "Dear editor, this is no film.");
        writeFile(vault + u"/Overlays/Nothing.png"_s, "");
        writePicture(vault + u"/Overlays/Fine.png"_s, Qt::green);
        writeFile(vault + u"/../../.config/cratewell/defaults.json"_s, "\x7f garbage {");
    });
    ASSERT_TRUE(app.showsCards({u"Letter"_s, u"Nothing"_s, u"Fine"_s}));
    EXPECT_EQ(app.program().prefs().cardSize(), 200);

    // The disk goes away and comes back.
    const QString elsewhere = app.home() + u"/unmounted"_s;
    ASSERT_TRUE(QDir().rename(app.vaultFolder(), elsewhere));
    ASSERT_TRUE(app.showsCards({}));
    EXPECT_FALSE(app.exists(u"."_s)) << "nobody makes it again";
    ASSERT_TRUE(QDir().rename(elsewhere, app.vaultFolder()));
    EXPECT_TRUE(app.showsCards({u"Letter"_s, u"Nothing"_s, u"Fine"_s}));
}

} // namespace cratewell::test

#include "window/app_fixture.h"

#include "platform/defaults.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QQuickItem>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

TEST(FollowingTheDisk, AFileCopiedInByAnotherProgramAppearsWithinASecond)
{
    AppFixture app([](const QString &vault) { writeSound(vault + u"/SFX/Hits/Old.wav"_s); });
    ASSERT_TRUE(app.showsCards({u"Old"_s}));

    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(QProcess::execute(u"cp"_s, {app.vaultFolder() + u"/SFX/Hits/Old.wav"_s,
                                          app.vaultFolder() + u"/SFX/Hits/New.wav"_s}),
              0);
    ASSERT_TRUE(app.showsCards({u"New"_s, u"Old"_s}));
    EXPECT_LT(clock.elapsed(), 1000);
}

TEST(FollowingTheDisk, ABurstOfFilesCostsAHandfulOfScansAndAllAppear)
{
    AppFixture app([](const QString &vault) { writeSound(vault + u"/SFX/Hits/Old.wav"_s); });
    ASSERT_TRUE(app.showsCards({u"Old"_s}));
    int scans = 0;
    QObject::connect(&app.program().vault(), &Vault::rescanned, &app.program(), [&scans] { ++scans; });

    constexpr int files = 5000;
    QProcess unpacking;
    unpacking.start(u"/bin/sh"_s,
                    {u"-c"_s,
                     u"cd \"$1\"; mkdir -p New/Pack; for i in $(seq 5000); do : > New/Pack/$i.wav; done"_s,
                     u"sh"_s, app.vaultFolder() + u"/SFX"_s});
    ASSERT_TRUE(waitUntil([&] { return app.program().state().visibleCount() == files + 1; },
                          std::chrono::seconds(30)));
    EXPECT_TRUE(waitUntil([&] { return unpacking.state() == QProcess::NotRunning; }));
    EXPECT_LE(scans, 12);
}

TEST(FollowingTheDisk, PositionFocusAndSelectionStayWhenFilesComeAndGo)
{
    AppFixture app([](const QString &vault) {
        for (int i = 0; i < 200; ++i)
            writeSound(vault + u"/SFX/Hits/Hit %1.wav"_s.arg(i, 3, 10, QChar(u'0')));
    });
    AppState &state = app.program().state();
    state.setSort(AssetOrder::Name);
    ASSERT_TRUE(waitUntil([&] { return state.visibleCount() == 200; }));
    auto *grid = app.window().findChild<QQuickItem *>(u"assetGrid"_s);
    ASSERT_NE(grid, nullptr);
    ASSERT_TRUE(waitUntil([&] { return app.controls().find(QAccessible::ListItem, u"Hit 000"_s); }));
    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, u"Hit 000"_s));
    for (int i = 0; i < 5; ++i)
        app.key(Qt::Key_PageDown);
    const QString focused = state.selection()->url.baseName();
    // The view glides there: wait until the card rests inside the window.
    QRect before;
    int restingLooks = 0;
    ASSERT_TRUE(waitUntil([&] {
        const QAccessibleInterface *card = app.controls().find(QAccessible::ListItem, focused);
        const QRect last = std::exchange(before, card ? card->rect() : QRect());
        restingLooks = card && before == last ? restingLooks + 1 : 0;
        return restingLooks > 20 && before.bottom() < app.window().height();
    }));
    const int columns = grid->property("columns").toInt();
    ASSERT_GT(columns, 0);

    // Whole lines of the grid, so that no card has to change its column.
    for (int i = 0; i < columns * 2; ++i)
        writeSound(app.vaultFolder() + u"/SFX/Hits/A new one %1.wav"_s.arg(i));
    ASSERT_TRUE(waitUntil([&] { return state.visibleCount() == 200 + columns * 2; }));
    ASSERT_TRUE(state.hasSelection());
    EXPECT_EQ(state.selection()->url.baseName(), focused);
    EXPECT_EQ(state.selectedCount(), 1);
    QAccessibleInterface *card = nullptr;
    ASSERT_TRUE(
        waitUntil([&] { return (card = app.controls().find(QAccessible::ListItem, focused)) != nullptr; }));
    EXPECT_EQ(card->rect(), before);

    ASSERT_TRUE(QFile::remove(state.selection()->url.text()));
    EXPECT_TRUE(waitUntil([&] { return !state.hasSelection(); }));
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
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
    ASSERT_TRUE(QDir().rename(app.vaultFolder(), app.home() + u"/unmounted"_s));
    ASSERT_TRUE(app.showsCards({}));
    EXPECT_FALSE(QFile::exists(app.vaultFolder()));
    ASSERT_TRUE(QDir().rename(app.home() + u"/unmounted"_s, app.vaultFolder()));
    EXPECT_TRUE(app.showsCards({u"Letter"_s, u"Nothing"_s, u"Fine"_s}));
}

} // namespace cratewell::test

#include "window/app_fixture.h"

#include "platform/fakes/fake_workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QDir>
#include <QQuickItem>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// Twelve sounds in folders two deep, three pictures, a LUT.
void fillVault(const QString &vault)
{
    for (int i = 1; i <= 12; ++i)
        writeSound(vault + u"/SFX/Hits/Hit %1.wav"_s.arg(i));
    for (const auto name : {"Amber", "Prism", "Streak"})
        writePicture(vault + u"/Overlays/Light Leaks/Warm/%1.png"_s.arg(QLatin1StringView(name)), Qt::red);
    writeFile(vault + u"/LUTs/Noir.cube"_s, "LUT_3D_SIZE 2\n");
}

QStringList rows(const AppState &state)
{
    QStringList names;
    for (int row = 0; row < state.visibleCount(); ++row)
        names.append(state.visibleAssets().at(row).url.baseName());
    return names;
}

} // namespace

class Window : public testing::Test
{
protected:
    AppFixture app{fillVault};
    AppState &state = app.program().state();

    void SetUp() override
    {
        state.setSort(AssetOrder::Name);
        ASSERT_TRUE(waitUntil([this] { return state.visibleCount() == 16; }));
        ASSERT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::ListItem, u"Amber"_s); }));
    }
    void TearDown() override { EXPECT_EQ(AppFixture::qmlWarnings(), ""); }

    bool clickCard(const QString &name, Qt::KeyboardModifiers modifiers = {})
    {
        return app.controls().click(QAccessible::ListItem, name, modifiers);
    }
    QString focused() const { return state.selection() ? state.selection()->url.baseName() : QString(); }
    int columns()
    {
        return app.window().findChild<QQuickItem *>(u"assetGrid"_s)->property("columns").toInt();
    }
};

TEST_F(Window, OpensAtItsSizeAndNamesEveryControl)
{
    EXPECT_EQ(app.window().title(), u"Cratewell");
    EXPECT_EQ(app.window().size(), QSize(1320, 840));
    EXPECT_EQ(app.window().minimumSize(), QSize(1040, 640));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    for (const QString &name :
         {u"All Assets"_s, u"Favorites"_s, u"Recently Inserted"_s, u"Import"_s, u"Trash"_s,
          u"New folder in Overlays"_s, u"New folder in LUTs"_s, u"New folder in SFX"_s,
          u"Keep Cratewell above your editor"_s, u"Open the vault in Finder"_s, u"Customize Cratewell"_s,
          u"Show or hide the preview"_s})
        EXPECT_NE(app.controls().find(QAccessible::Button, name), nullptr) << name.toStdString();
}

TEST_F(Window, SelectsWithMouseAndKeyboardAsAFileManagerDoes)
{
    ASSERT_GE(columns(), 2);
    const QStringList order = rows(state);

    ASSERT_TRUE(clickCard(order[0]));
    EXPECT_EQ(focused(), order[0]);
    ASSERT_TRUE(clickCard(order[2], Qt::ShiftModifier));
    EXPECT_EQ(state.selectedCount(), 3);
    ASSERT_TRUE(clickCard(order[1], Qt::ControlModifier));
    EXPECT_EQ(state.selectedCount(), 2);
    EXPECT_EQ(focused(), order[1]);

    ASSERT_TRUE(clickCard(order[0]));
    app.key(Qt::Key_Right);
    EXPECT_EQ(focused(), order[1]);
    app.key(Qt::Key_Down);
    EXPECT_EQ(focused(), order[1 + columns()]);
    app.key(Qt::Key_Up);
    app.key(Qt::Key_Left);
    EXPECT_EQ(focused(), order[0]);
    app.key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(state.selectedCount(), 16);
}

TEST_F(Window, SearchTakesLettersAndKeysForItself)
{
    ASSERT_TRUE(clickCard(rows(state).first()));
    ASSERT_TRUE(app.controls().click(QAccessible::EditableText, u"Search the vault"_s));
    app.type(u"warm"_s);
    EXPECT_EQ(state.search(), u"warm");
    EXPECT_EQ(rows(state), (QStringList{u"Amber"_s, u"Prism"_s, u"Streak"_s}));
    EXPECT_TRUE(app.showsCards({u"Amber"_s, u"Prism"_s, u"Streak"_s}));
    EXPECT_NE(app.controls().find(QAccessible::StaticText, u"3 assets"_s), nullptr);

    const int selectedBefore = state.selectedCount();
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_Delete);
    EXPECT_EQ(state.search(), QString());
    EXPECT_EQ(state.selectedCount(), selectedBefore);
}

TEST_F(Window, TheSidebarLeadsThroughTheVault)
{
    ASSERT_TRUE(app.controls().click(QAccessible::TreeItem, u"SFX"_s));
    EXPECT_EQ(state.scopeTitle(), u"SFX");
    EXPECT_EQ(state.visibleCount(), 12);

    // Category folders start expanded, deeper ones collapsed; what was expanded is so after a restart.
    EXPECT_EQ(app.controls().find(QAccessible::TreeItem, u"Warm"_s), nullptr);
    ASSERT_TRUE(app.controls().click(QAccessible::Button, u"Expand Light Leaks"_s));
    ASSERT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::TreeItem, u"Warm"_s); }));
    ASSERT_TRUE(app.controls().click(QAccessible::TreeItem, u"Warm"_s));
    EXPECT_EQ(state.visibleCount(), 3);

    ASSERT_TRUE(clickCard(u"Prism"_s));
    app.key(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_TRUE(app.controls().click(QAccessible::Button, u"Favorites"_s));
    EXPECT_EQ(rows(state), QStringList(u"Prism"_s));

    app.restart();
    ASSERT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::TreeItem, u"Warm"_s); }));
    EXPECT_EQ(app.program().prefs().favorites().size(), 1);
}

TEST_F(Window, CommandsReachTheDesktopAndTheSettings)
{
    ASSERT_TRUE(clickCard(u"Amber"_s));
    app.key(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(app.workspace().revealed().size(), 1);
    EXPECT_EQ(app.workspace().revealed()[0][0].baseName(), u"Amber");
    ASSERT_TRUE(app.controls().click(QAccessible::Button, u"Open the vault in Finder"_s));
    EXPECT_EQ(app.workspace().opened().size(), 1);

    ASSERT_TRUE(app.controls().click(QAccessible::Button, u"Show or hide the preview"_s));
    EXPECT_FALSE(state.showInspector());
    app.key(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::PageTab, u"Look"_s); }));
}

TEST_F(Window, CardsAndInspectorTellWhatIsInTheFiles)
{
    // A second and a half of a loud square wave.
    writeSound(app.vaultFolder() + u"/SFX/Hits/Square.wav"_s, QByteArray("\0\x40\0\xC0", 4).repeated(36000));
    writeFile(app.vaultFolder() + u"/LUTs/Swap.cube"_s,
              "TITLE \"Plain\"\nLUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    const auto says = [this](const QString &text) {
        return waitUntil([&] { return app.controls().find(QAccessible::StaticText, text) != nullptr; });
    };
    ASSERT_TRUE(app.makesRoom());
    ASSERT_TRUE(waitUntil([this] {
        QAccessibleInterface *card = app.controls().find(QAccessible::ListItem, u"Square"_s);
        return card && card->text(QAccessible::Description) == u"Audio, 1.5s"_s;
    }));
    ASSERT_TRUE(clickCard(u"Square"_s));
    EXPECT_TRUE(says(u"Type: Audio · WAV"_s) && says(u"Sample rate: 48000 Hz"_s) &&
                says(u"Channels: Mono"_s));
    ASSERT_TRUE(clickCard(u"Swap"_s));
    EXPECT_TRUE(says(u"Lattice: 2³"_s) && says(u"Title: Plain"_s));
    EXPECT_EQ(app.controls().find(QAccessible::StaticText, u"Channels: Mono"_s), nullptr);
    ASSERT_TRUE(clickCard(u"Amber"_s));
    EXPECT_TRUE(says(u"Resolution: 64 × 36"_s));
    ASSERT_TRUE(clickCard(u"Noir"_s));
    EXPECT_TRUE(says(u"Type: LUT · CUBE"_s)) << "a file that cannot be read still has its usual details";
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
}

TEST_F(Window, ClosingLeavesTheProgramRunning)
{
    app.window().close();
    EXPECT_FALSE(app.window().isVisible());
    app.program().bringToFront();
    EXPECT_TRUE(app.window().isVisible());
    EXPECT_EQ(state.visibleCount(), 16);
}

} // namespace cratewell::test

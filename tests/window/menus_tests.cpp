#include "window/app_fixture.h"

#include "platform/fakes/fake_applications.h"
#include "platform/fakes/fake_workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QFileInfo>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

class Menus : public testing::Test
{
protected:
    AppFixture app{[](const QString &vault) {
        for (int i = 1; i <= 3; ++i)
            writeSound(vault + u"/SFX/Hits/Hit %1.wav"_s.arg(i));
        writePicture(vault + u"/Overlays/Flashes/White.png"_s, Qt::white);
        writeFile(vault + u"/LUTs/Noir.cube"_s, "LUT_3D_SIZE 2\n");
    }};
    AppState &state = app.program().state();
    QQuickWindow &window = app.window();
    const Controls controls{window};

    void SetUp() override
    {
        ASSERT_TRUE(app.makesRoom());
        state.setSort(AssetOrder::Name);
        ASSERT_TRUE(app.showsCards({u"Hit 1"_s, u"Hit 2"_s, u"Hit 3"_s, u"Noir"_s, u"White"_s}));
    }
    void TearDown() override { EXPECT_EQ(AppFixture::qmlWarnings(), ""); }

    Location inVault(const QString &name) const
    {
        return Location::fromText(app.vaultFolder() + u'/' + name);
    }
    bool rightClick(QAccessible::Role role, const QString &name)
    {
        const QAccessibleInterface *control = controls.find(role, name);
        if (!control)
            return false;
        QTest::mouseClick(&window, Qt::RightButton, {}, control->rect().center() - window.position());
        return true;
    }
    QStringList entries() const { return controls.names(QAccessible::MenuItem); }
    bool opens(const QString &entry)
    {
        return waitUntil([&] { return controls.find(QAccessible::MenuItem, entry); });
    }
    // By the action that assistive tools use.
    bool press(QAccessible::Role role, const QString &name)
    {
        QAccessibleInterface *control = controls.find(role, name);
        if (!control || !control->actionInterface())
            return false;
        control->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        return true;
    }
    bool choose(const QString &entry)
    {
        return press(QAccessible::MenuItem, entry) && waitUntil([this] { return entries().isEmpty(); });
    }
    // A sheet lies over everything until it has gone.
    bool dismissSheets()
    {
        state.setShowNewFolder(false);
        state.setRenameTarget({});
        return waitUntil([this] {
            return !controls.find(QAccessible::EditableText, u"Folder name"_s) &&
                   !controls.find(QAccessible::EditableText, u"Name"_s);
        });
    }
    bool closes()
    {
        app.key(Qt::Key_Escape);
        return waitUntil([this] { return entries().isEmpty(); });
    }
    bool select(const QStringList &cards)
    {
        for (const QString &card : cards) {
            if (!controls.click(QAccessible::ListItem, card,
                                card == cards.first() ? Qt::NoModifier : Qt::ControlModifier))
                return false;
        }
        return state.selectedCount() == cards.size();
    }
    const QStringList folderEntries{u"New Folder Inside…"_s,       u"Rename…"_s,          u"Color"_s,
                                    u"Import Into This Folder…"_s, u"Reveal in Finder"_s, u"Move to Trash"_s};
};

} // namespace

TEST_F(Menus, AFolderOffersItsCommandsInOrderAndACategoryKeepsItsOwnFolder)
{
    ASSERT_TRUE(rightClick(QAccessible::TreeItem, u"Hits"_s));
    ASSERT_TRUE(opens(u"Rename…"_s));
    EXPECT_EQ(entries(), folderEntries);
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(closes());

    ASSERT_TRUE(rightClick(QAccessible::TreeItem, u"SFX"_s));
    ASSERT_TRUE(opens(u"Reveal in Finder"_s));
    EXPECT_EQ(entries(), (QStringList{folderEntries[0], folderEntries[3], folderEntries[4]}));
    ASSERT_TRUE(closes());

    // The same from the keyboard, and its second entry.
    ASSERT_TRUE(controls.click(QAccessible::TreeItem, u"Hits"_s));
    QAccessibleInterface *tree = controls.find(QAccessible::Tree, u"Folders"_s);
    ASSERT_TRUE(tree && tree->actionInterface());
    tree->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    app.key(Qt::Key_Menu);
    ASSERT_TRUE(opens(u"Rename…"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return entries().isEmpty(); }));
    EXPECT_EQ(state.renameTarget(), inVault(u"SFX/Hits"_s));
}

TEST_F(Menus, FolderCommandsDoWhatTheySay)
{
    const auto command = [this](const QString &entry) {
        return rightClick(QAccessible::TreeItem, u"Hits"_s) && opens(entry) && choose(entry);
    };
    ASSERT_TRUE(command(folderEntries[0]));
    EXPECT_TRUE(state.showNewFolder());
    EXPECT_EQ(state.newFolderParent(), inVault(u"SFX/Hits"_s));
    ASSERT_TRUE(dismissSheets());

    ASSERT_TRUE(press(QAccessible::Button, u"New folder in LUTs"_s));
    EXPECT_TRUE(state.showNewFolder());
    EXPECT_EQ(state.newFolderParent(), inVault(u"LUTs"_s));
    ASSERT_TRUE(dismissSheets());

    ASSERT_TRUE(rightClick(QAccessible::TreeItem, u"Hits"_s) && opens(folderEntries[3]));
    ASSERT_TRUE(press(QAccessible::MenuItem, folderEntries[3]));
    EXPECT_TRUE(opens(u"Files…"_s)) << "what is to be imported";
    EXPECT_EQ(state.scope(), Scope::inFolder(inVault(u"SFX/Hits"_s)));
    ASSERT_TRUE(closes());
    ASSERT_TRUE(command(folderEntries[4]));
    EXPECT_EQ(app.workspace().revealed().value(0), QList{inVault(u"SFX/Hits"_s)});

    const auto color = [&](const QString &name) {
        return rightClick(QAccessible::TreeItem, u"Hits"_s) && opens(u"Color"_s) &&
               press(QAccessible::MenuItem, u"Color"_s) && opens(name) && choose(name);
    };
    ASSERT_TRUE(color(u"Cyan"_s));
    EXPECT_EQ(app.program().prefs().folderColors().value(inVault(u"SFX/Hits"_s)), u"#2FD6FF"_s);
    ASSERT_TRUE(color(u"Default"_s));
    EXPECT_TRUE(app.program().prefs().folderColors().isEmpty());

    ASSERT_TRUE(command(folderEntries[5]));
    EXPECT_TRUE(waitUntil([this] { return !QFileInfo::exists(inVault(u"SFX/Hits"_s).text()); }));
}

TEST_F(Menus, ACardOffersItsCommandsAndActsOnTheSelection)
{
    // A right click beside the selection makes its own.
    ASSERT_TRUE(select({u"Noir"_s, u"White"_s}));
    ASSERT_TRUE(rightClick(QAccessible::ListItem, u"Hit 1"_s));
    ASSERT_TRUE(opens(u"Rename…"_s));
    EXPECT_EQ(state.selected(), QSet{inVault(u"SFX/Hits/Hit 1.wav"_s)});
    EXPECT_EQ(entries(), (QStringList{u"DaVinci Resolve"_s, u"Premiere Pro"_s, u"Favorite"_s, u"Move to"_s,
                                      u"New Folder with Item…"_s, u"Rename…"_s, u"Reveal in Finder"_s,
                                      u"Move to Trash"_s}));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(choose(u"Rename…"_s));
    EXPECT_EQ(state.renameTarget(), inVault(u"SFX/Hits/Hit 1.wav"_s));
    ASSERT_TRUE(dismissSheets());

    // On the selection it keeps it.
    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 3"_s}));
    ASSERT_TRUE(rightClick(QAccessible::ListItem, u"Hit 1"_s));
    ASSERT_TRUE(opens(u"New Folder with Selection…"_s));
    ASSERT_TRUE(choose(u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove(),
              (std::vector{inVault(u"SFX/Hits/Hit 1.wav"_s), inVault(u"SFX/Hits/Hit 3.wav"_s)}));
    ASSERT_TRUE(dismissSheets());

    // From the keyboard, on the focused card.
    ASSERT_TRUE(controls.click(QAccessible::ListItem, u"White"_s));
    app.key(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(opens(u"Favorite"_s));
    ASSERT_TRUE(choose(u"Favorite"_s));
    EXPECT_EQ(app.program().prefs().favorites(), QSet{inVault(u"Overlays/Flashes/White.png"_s)});
}

TEST_F(Menus, MoveToListsTheFoldersThatTakeTheSelection)
{
    ASSERT_TRUE(rightClick(QAccessible::ListItem, u"White"_s));
    ASSERT_TRUE(opens(u"Move to"_s));
    ASSERT_TRUE(press(QAccessible::MenuItem, u"Move to"_s));
    ASSERT_TRUE(opens(u"Overlays"_s));
    EXPECT_TRUE(opens(u"Flashes"_s));
    EXPECT_FALSE(entries().contains(u"SFX"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(choose(u"Overlays"_s));
    EXPECT_TRUE(
        waitUntil([this] { return state.visibleAssets().row(inVault(u"Overlays/White.png"_s)) >= 0; }));

    // Back with the keyboard: from the submenu's first line to its second.
    ASSERT_TRUE(rightClick(QAccessible::ListItem, u"White"_s));
    ASSERT_TRUE(opens(u"Move to"_s));
    for (int line = 0; line < 4; ++line)
        app.key(Qt::Key_Down);
    app.key(Qt::Key_Right);
    ASSERT_TRUE(opens(u"Flashes"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(waitUntil(
        [this] { return state.visibleAssets().row(inVault(u"Overlays/Flashes/White.png"_s)) >= 0; }));
    EXPECT_TRUE(waitUntil([this] { return entries().isEmpty(); }));
}

TEST_F(Menus, TheSelectionBarActsOnAllAndLeavesWithThem)
{
    const QString clear = u"Clear Selection"_s;
    ASSERT_TRUE(select({u"Hit 1"_s}));
    EXPECT_EQ(controls.find(QAccessible::Button, clear), nullptr);
    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 2"_s, u"Hit 3"_s}));
    ASSERT_TRUE(waitUntil([&] { return controls.find(QAccessible::Button, clear); }));
    EXPECT_NE(controls.find(QAccessible::StaticText, u"3 selected"_s), nullptr);
    EXPECT_EQ(controls.accessibilityIssues(), "");

    app.key(Qt::Key_Tab);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window.activeFocusItem())->text(QAccessible::Name),
              u"Move to…"_s);
    ASSERT_TRUE(controls.click(QAccessible::Button, u"Favorite"_s));
    EXPECT_EQ(app.program().prefs().favorites().size(), 3);
    ASSERT_TRUE(controls.click(QAccessible::Button, u"Unfavorite"_s));
    EXPECT_TRUE(app.program().prefs().favorites().isEmpty());
    ASSERT_TRUE(controls.click(QAccessible::Button, u"Reveal in Finder"_s));
    ASSERT_EQ(app.workspace().revealed().size(), 1);
    EXPECT_EQ(app.workspace().revealed()[0].size(), 3);
    ASSERT_TRUE(controls.click(QAccessible::Button, u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove().size(), 3U);
    ASSERT_TRUE(dismissSheets());

    ASSERT_TRUE(controls.click(QAccessible::Button, clear));
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_TRUE(waitUntil([&] { return !controls.find(QAccessible::Button, clear); }));
    ASSERT_TRUE(select({u"Hit 1"_s, u"Noir"_s}));
    ASSERT_TRUE(waitUntil([&] { return controls.find(QAccessible::Button, u"Move to…"_s); }));
    ASSERT_TRUE(controls.click(QAccessible::Button, u"Move to…"_s));
    EXPECT_TRUE(opens(u"No folder takes all of these"_s));
    ASSERT_TRUE(closes());
    app.key(Qt::Key_Escape);
    EXPECT_EQ(state.selectedCount(), 0);

    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 2"_s}));
    ASSERT_TRUE(waitUntil([&] { return controls.find(QAccessible::Button, u"Move to Trash"_s); }));
    ASSERT_TRUE(controls.click(QAccessible::Button, u"Move to Trash"_s));
    EXPECT_TRUE(app.showsCards({u"Hit 3"_s, u"Noir"_s, u"White"_s}));
}

} // namespace cratewell::test

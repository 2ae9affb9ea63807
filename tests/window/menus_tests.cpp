#include "window/app_fixture.h"

#include "state/prefs.h"
#include "support/wait.h"

#include <QQuickItem>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Menus : public WindowTest
{
protected:
    QStringList entries() const { return controls.names(MenuItem); }
    bool opensOn(QAccessible::Role role, const QString &name)
    {
        const bool opens = controls.click(role, name, {}, Qt::RightButton) &&
                           controls.shows(MenuItem, u"Reveal in Finder"_s);
        EXPECT_EQ(controls.accessibilityIssues(), "");
        return opens;
    }
    bool chosen() const
    {
        return waitUntil([this] { return entries().isEmpty(); });
    }
    bool choose(const QString &entry) { return controls.press(MenuItem, entry) && chosen(); }
    bool closes()
    {
        app.key(Qt::Key_Escape);
        return chosen();
    }
    // A sheet lies over everything until it has gone.
    bool dismissSheets()
    {
        state.setShowNewFolder(false);
        state.setRenameTarget({});
        return controls.hides(Field, u"Folder name"_s) && controls.hides(Field, u"Name"_s);
    }

    const Location hits = app.path(u"SFX/Hits"_s);
    const Location hit1 = app.path(u"SFX/Hits/Hit 1.wav"_s);
    const Location hit2 = app.path(u"SFX/Hits/Hit 2.wav"_s);
    const QString rename = u"Rename…"_s;
    const QString reveal = u"Reveal in Finder"_s;
    const QString trash = u"Move to Trash"_s;
};

TEST_F(Menus, TheMainMenuHoldsTheCommandsAndWhatCannotBeDoneIsDisabled)
{
    ASSERT_TRUE(controls.press(Button, u"Menu"_s));
    ASSERT_TRUE(controls.shows(MenuItem, u"Quit"_s));
    EXPECT_EQ(entries(), (QStringList{u"New Folder"_s, u"Import Assets…"_s, u"Insert at Playhead"_s,
                                      u"Play / Pause Preview"_s, reveal, u"Toggle Favorite"_s,
                                      u"New Folder with Selection…"_s, trash, u"Select All"_s, u"Settings…"_s,
                                      u"Quit"_s}));
    ASSERT_TRUE(controls.press(MenuItem, u"New Folder with Selection…"_s));
    EXPECT_FALSE(state.showNewFolder()) << "nothing is selected";
    ASSERT_TRUE(choose(u"Select All"_s));
    EXPECT_EQ(state.selectedCount(), cards.size());
    // The keyboard is back where it was.
    app.key(Qt::Key_End);
    EXPECT_EQ(state.selectedCount(), 1);
}

TEST_F(Menus, AFolderOffersItsCommandsAndTheyDoWhatTheySay)
{
    const QString inside = u"New Folder Inside…"_s, import = u"Import Into This Folder…"_s;
    ASSERT_TRUE(opensOn(Folder, u"SFX"_s));
    EXPECT_EQ(entries(), (QStringList{inside, import, reveal})) << "a category keeps its own folder";
    ASSERT_TRUE(closes());
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s));
    EXPECT_EQ(entries(), (QStringList{inside, rename, u"Color"_s, import, reveal, trash}));
    ASSERT_TRUE(choose(inside));
    EXPECT_EQ(state.newFolderParent(), hits);
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(controls.press(Button, u"New folder in LUTs"_s));
    EXPECT_EQ(state.newFolderParent(), app.path(u"LUTs"_s));
    ASSERT_TRUE(dismissSheets());

    // Rename, with the keyboard.
    ASSERT_TRUE(controls.click(Folder, u"Hits"_s) && controls.focus(QAccessible::Tree, u"Folders"_s));
    app.key(Qt::Key_Menu);
    ASSERT_TRUE(controls.shows(MenuItem, rename));
    for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
        app.key(key);
    ASSERT_TRUE(chosen());
    EXPECT_EQ(state.renameTarget(), hits);
    ASSERT_TRUE(dismissSheets());

    for (const auto &[color, stored] : {std::pair{u"Cyan"_s, u"#2FD6FF"_s}, {u"Default"_s, QString()}}) {
        ASSERT_TRUE(opensOn(Folder, u"Hits"_s) && controls.press(MenuItem, u"Color"_s) && choose(color));
        EXPECT_EQ(app.program().prefs().folderColors().value(hits), stored);
    }
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s) && controls.press(MenuItem, import));
    EXPECT_TRUE(controls.shows(MenuItem, u"Files…"_s)) << "what is to be imported";
    EXPECT_EQ(state.scope(), Scope::inFolder(hits));
    ASSERT_TRUE(closes());
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s) && choose(reveal));
    EXPECT_EQ(app.workspace().revealed().value(0), QList{hits});
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s) && choose(trash));
    EXPECT_TRUE(waitUntil([this] { return !app.exists(u"SFX/Hits"_s); }));
}

TEST_F(Menus, ACardOffersItsCommandsAndActsOnTheSelection)
{
    // A right click beside the selection makes its own, one on it keeps it.
    ASSERT_TRUE(controls.click(Card, u"Noir"_s));
    ASSERT_TRUE(opensOn(Card, u"Hit 1"_s));
    EXPECT_EQ(state.selected(), QSet{hit1});
    EXPECT_EQ(entries(), (QStringList{u"DaVinci Resolve"_s, u"Premiere Pro"_s, u"Favorite"_s, u"Move to"_s,
                                      u"New Folder with Item…"_s, rename, reveal, trash}));
    ASSERT_TRUE(choose(rename));
    EXPECT_EQ(state.renameTarget(), hit1);
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(controls.click(Card, u"Hit 2"_s, Qt::ControlModifier));
    ASSERT_TRUE(opensOn(Card, u"Hit 1"_s) && choose(u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove(), (std::vector{hit1, hit2}));
    ASSERT_TRUE(dismissSheets());

    // With the keyboard, on the focused card: by its submenu into the first folder that takes it.
    ASSERT_TRUE(controls.click(Card, u"White"_s));
    app.key(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(controls.shows(MenuItem, u"Move to"_s));
    for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right})
        app.key(key);
    ASSERT_TRUE(controls.shows(MenuItem, u"Flashes"_s));
    EXPECT_FALSE(entries().contains(u"SFX"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    app.key(Qt::Key_Return);
    EXPECT_TRUE(arrives(u"Overlays/White.png"_s));
    EXPECT_TRUE(chosen());
}

TEST_F(Menus, TheSelectionBarActsOnAllAndLeavesWithThem)
{
    const QString clear = u"Clear Selection"_s;
    state.setSelected({hit1});
    EXPECT_EQ(controls.find(Button, clear), nullptr);
    state.setSelected({hit1, hit2});
    ASSERT_TRUE(controls.shows(Button, clear) && controls.shows(Text, u"2 selected"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(controls.click(Button, u"Favorite"_s));
    EXPECT_EQ(app.program().prefs().favorites().size(), 2);
    ASSERT_TRUE(controls.click(Button, u"Unfavorite"_s));
    EXPECT_TRUE(app.program().prefs().favorites().isEmpty());
    ASSERT_TRUE(controls.click(Button, reveal));
    EXPECT_EQ(app.workspace().revealed().value(0).size(), 2);
    ASSERT_TRUE(controls.click(Button, u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove().size(), 2U);
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(controls.click(Button, clear));
    EXPECT_EQ(state.selectedCount(), 0);

    state.setSelected({hit1, app.path(u"LUTs/Noir.cube"_s)});
    ASSERT_TRUE(controls.click(Button, u"Move to…"_s));
    EXPECT_TRUE(controls.shows(MenuItem, u"No folder takes all of these"_s));
    ASSERT_TRUE(closes());
    ASSERT_TRUE(controls.click(Button, trash));
    EXPECT_TRUE(app.showsCards(cards.mid(0, 2) + cards.mid(3, 2) + cards.mid(6)));
}

} // namespace cratewell::test

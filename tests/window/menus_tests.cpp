#include "window/app_fixture.h"

#include "platform/fakes/fake_workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Menus : public WindowTest
{
protected:
    QStringList entries() const { return controls.names(MenuItem); }
    bool opensOn(QAccessible::Role role, const QString &name)
    {
        return controls.click(role, name, {}, Qt::RightButton) &&
               controls.shows(MenuItem, u"Reveal in Finder"_s);
    }
    bool choose(const QString &entry)
    {
        return controls.press(MenuItem, entry) && waitUntil([this] { return entries().isEmpty(); });
    }
    bool closes()
    {
        app.key(Qt::Key_Escape);
        return waitUntil([this] { return entries().isEmpty(); });
    }
    // A sheet lies over everything until it has gone.
    bool dismissSheets()
    {
        state.setShowNewFolder(false);
        state.setRenameTarget({});
        return controls.hides(Field, u"Folder name"_s) && controls.hides(Field, u"Name"_s);
    }
    bool select(const QStringList &names)
    {
        for (const QString &name : names) {
            if (!controls.click(Card, name, name == names.first() ? Qt::NoModifier : Qt::ControlModifier))
                return false;
        }
        return state.selectedCount() == names.size();
    }
};

TEST_F(Menus, TheMainMenuHoldsTheCommandsAndWhatCannotBeDoneIsDisabled)
{
    ASSERT_TRUE(controls.press(Button, u"Menu"_s));
    ASSERT_TRUE(controls.shows(MenuItem, u"Quit"_s));
    EXPECT_EQ(entries(), (QStringList{u"New Folder"_s, u"Import Assets…"_s, u"Insert at Playhead"_s,
                                      u"Play / Pause Preview"_s, u"Reveal in Finder"_s, u"Toggle Favorite"_s,
                                      u"New Folder with Selection…"_s, u"Move to Trash"_s, u"Select All"_s,
                                      u"Settings…"_s, u"Quit"_s}));
    ASSERT_TRUE(controls.press(MenuItem, u"New Folder with Selection…"_s));
    EXPECT_FALSE(state.showNewFolder()) << "nothing is selected";
    ASSERT_TRUE(choose(u"Select All"_s));
    EXPECT_EQ(state.selectedCount(), cards.size());
    // The keyboard is back where it was.
    app.key(Qt::Key_End);
    EXPECT_EQ(state.selectedCount(), 1);
}

TEST_F(Menus, AFolderOffersItsCommandsInOrderAndACategoryKeepsItsOwnFolder)
{
    const QStringList all{u"New Folder Inside…"_s,       u"Rename…"_s,          u"Color"_s,
                          u"Import Into This Folder…"_s, u"Reveal in Finder"_s, u"Move to Trash"_s};
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s));
    EXPECT_EQ(entries(), all);
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(closes());
    ASSERT_TRUE(opensOn(Folder, u"SFX"_s));
    EXPECT_EQ(entries(), (QStringList{all[0], all[3], all[4]}));
    ASSERT_TRUE(closes());

    // The same from the keyboard, and its second entry.
    ASSERT_TRUE(controls.click(Folder, u"Hits"_s));
    ASSERT_TRUE(controls.focus(QAccessible::Tree, u"Folders"_s));
    app.key(Qt::Key_Menu);
    ASSERT_TRUE(controls.shows(MenuItem, u"Rename…"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return entries().isEmpty(); }));
    EXPECT_EQ(state.renameTarget(), app.path(u"SFX/Hits"_s));
}

TEST_F(Menus, FolderCommandsDoWhatTheySay)
{
    const Location hits = app.path(u"SFX/Hits"_s);
    const auto command = [&](const QString &entry) { return opensOn(Folder, u"Hits"_s) && choose(entry); };
    ASSERT_TRUE(command(u"New Folder Inside…"_s));
    EXPECT_EQ(state.newFolderParent(), hits);
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(controls.press(Button, u"New folder in LUTs"_s));
    EXPECT_EQ(state.newFolderParent(), app.path(u"LUTs"_s));
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(opensOn(Folder, u"Hits"_s) && controls.press(MenuItem, u"Import Into This Folder…"_s));
    EXPECT_TRUE(controls.shows(MenuItem, u"Files…"_s)) << "what is to be imported";
    EXPECT_EQ(state.scope(), Scope::inFolder(hits));
    ASSERT_TRUE(closes());
    ASSERT_TRUE(command(u"Reveal in Finder"_s));
    EXPECT_EQ(app.workspace().revealed().value(0), QList{hits});

    const auto opensColors = [&] {
        return opensOn(Folder, u"Hits"_s) && controls.press(MenuItem, u"Color"_s) &&
               controls.shows(MenuItem, u"Default"_s);
    };
    const std::pair<QString, const char *> palette[]{
        {u"Red"_s, "#FF6B6B"},    {u"Orange"_s, "#FF9F43"}, {u"Yellow"_s, "#FFD93D"},
        {u"Green"_s, "#62D991"},  {u"Cyan"_s, "#2FD6FF"},   {u"Blue"_s, "#4A5CFF"},
        {u"Purple"_s, "#B38CFF"}, {u"Pink"_s, "#FF4ECD"},   {u"Gray"_s, "#8E8E96"}};
    QStringList names;
    for (const auto &[name, hex] : palette) {
        names += name;
        ASSERT_TRUE(opensColors() && choose(name));
        EXPECT_EQ(app.program().prefs().folderColors().value(hits), QLatin1StringView(hex));
    }
    ASSERT_TRUE(opensColors());
    EXPECT_EQ(entries().sliced(entries().indexOf(names[0])), names + QStringList(u"Default"_s));
    ASSERT_TRUE(choose(u"Default"_s));
    EXPECT_TRUE(app.program().prefs().folderColors().isEmpty());

    ASSERT_TRUE(command(u"Move to Trash"_s));
    EXPECT_TRUE(waitUntil([this] { return !app.exists(u"SFX/Hits"_s); }));
}

TEST_F(Menus, ACardOffersItsCommandsAndActsOnTheSelection)
{
    // A right click beside the selection makes its own.
    ASSERT_TRUE(select({u"Noir"_s, u"White"_s}));
    ASSERT_TRUE(opensOn(Card, u"Hit 1"_s));
    EXPECT_EQ(state.selected(), QSet{app.path(u"SFX/Hits/Hit 1.wav"_s)});
    EXPECT_EQ(entries(), (QStringList{u"DaVinci Resolve"_s, u"Premiere Pro"_s, u"Favorite"_s, u"Move to"_s,
                                      u"New Folder with Item…"_s, u"Rename…"_s, u"Reveal in Finder"_s,
                                      u"Move to Trash"_s}));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(choose(u"Rename…"_s));
    EXPECT_EQ(state.renameTarget(), app.path(u"SFX/Hits/Hit 1.wav"_s));
    ASSERT_TRUE(dismissSheets());

    // On the selection it keeps it.
    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 3"_s}));
    ASSERT_TRUE(opensOn(Card, u"Hit 1"_s));
    ASSERT_TRUE(choose(u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove(),
              (std::vector{app.path(u"SFX/Hits/Hit 1.wav"_s), app.path(u"SFX/Hits/Hit 3.wav"_s)}));
    ASSERT_TRUE(dismissSheets());

    // From the keyboard, on the focused card.
    ASSERT_TRUE(controls.click(Card, u"White"_s));
    app.key(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(choose(u"Favorite"_s));
    EXPECT_EQ(app.program().prefs().favorites(), QSet{app.path(u"Overlays/Flashes/White.png"_s)});
}

TEST_F(Menus, MoveToListsTheFoldersThatTakeTheSelection)
{
    ASSERT_TRUE(opensOn(Card, u"White"_s));
    ASSERT_TRUE(controls.press(MenuItem, u"Move to"_s));
    ASSERT_TRUE(controls.shows(MenuItem, u"Flashes"_s));
    EXPECT_FALSE(entries().contains(u"SFX"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(choose(u"Overlays"_s));
    EXPECT_TRUE(
        waitUntil([this] { return state.visibleAssets().row(app.path(u"Overlays/White.png"_s)) >= 0; }));

    // Back with the keyboard: from the submenu's first line to its second.
    ASSERT_TRUE(opensOn(Card, u"White"_s));
    for (int line = 0; line < 4; ++line)
        app.key(Qt::Key_Down);
    app.key(Qt::Key_Right);
    ASSERT_TRUE(controls.shows(MenuItem, u"Flashes"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(waitUntil(
        [this] { return state.visibleAssets().row(app.path(u"Overlays/Flashes/White.png"_s)) >= 0; }));
    EXPECT_TRUE(waitUntil([this] { return entries().isEmpty(); }));
}

TEST_F(Menus, TheSelectionBarActsOnAllAndLeavesWithThem)
{
    const QString clear = u"Clear Selection"_s;
    ASSERT_TRUE(select({u"Hit 1"_s}));
    EXPECT_EQ(controls.find(Button, clear), nullptr);
    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 2"_s, u"Hit 3"_s}));
    ASSERT_TRUE(controls.shows(Button, clear));
    EXPECT_TRUE(controls.shows(Text, u"3 selected"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    app.key(Qt::Key_Tab);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window.activeFocusItem())->text(QAccessible::Name),
              u"Move to…"_s);
    ASSERT_TRUE(controls.click(Button, u"Favorite"_s));
    EXPECT_EQ(app.program().prefs().favorites().size(), 3);
    ASSERT_TRUE(controls.click(Button, u"Unfavorite"_s));
    EXPECT_TRUE(app.program().prefs().favorites().isEmpty());
    ASSERT_TRUE(controls.click(Button, u"Reveal in Finder"_s));
    EXPECT_EQ(app.workspace().revealed().value(0).size(), 3);
    ASSERT_TRUE(controls.click(Button, u"New Folder with Selection…"_s));
    EXPECT_EQ(state.pendingMove().size(), 3U);
    ASSERT_TRUE(dismissSheets());
    ASSERT_TRUE(controls.click(Button, clear));
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_TRUE(controls.hides(Button, clear));

    ASSERT_TRUE(select({u"Hit 1"_s, u"Noir"_s}));
    ASSERT_TRUE(controls.click(Button, u"Move to…"_s));
    EXPECT_TRUE(controls.shows(MenuItem, u"No folder takes all of these"_s));
    ASSERT_TRUE(closes());
    app.key(Qt::Key_Escape);
    EXPECT_EQ(state.selectedCount(), 0);
    ASSERT_TRUE(select({u"Hit 1"_s, u"Hit 2"_s}));
    ASSERT_TRUE(controls.click(Button, u"Move to Trash"_s));
    EXPECT_TRUE(
        app.showsCards({u"Amber"_s, u"Boom"_s, u"Hit 3"_s, u"Noir"_s, u"Rush"_s, u"Rush"_s, u"White"_s}));
}

} // namespace cratewell::test

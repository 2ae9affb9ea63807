#include "window/app_fixture.h"

#include "state/prefs.h"
#include "support/wait.h"
#include "vault/file_progress.h"
#include "vault/trash_item.h"
#include "vault/vault.h"

#include <QSignalSpy>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Pages : public WindowTest
{
protected:
    Vault &vault = app.program().vault();
};

TEST_F(Pages, TrashingCanBeUndoneBringsBackTwoFilesOfOneNameAndAsksBeforeItIsEmptied)
{
    const auto trash = [this] {
        state.setSelected({app.path(u"SFX/Claps/Rush.wav"_s), app.path(u"SFX/Whooshes/Soft/Rush.wav"_s)});
        app.key(Qt::Key_Delete, Qt::ControlModifier);
        return controls.shows(Toast, u"Moved 2 items to Trash. They're kept for 30 days."_s);
    };
    ASSERT_TRUE(trash());
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(controls.click(Button, u"Undo"_s));
    ASSERT_TRUE(app.showsCards(cards));
    ASSERT_TRUE(trash() && controls.click(Button, u"Trash"_s));
    EXPECT_TRUE(controls.shows(Text, u"From Soft"_s) && controls.shows(Text, u"From Claps"_s));
    EXPECT_TRUE(controls.shows(Text, u"30 days left"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(controls.click(Card, u"Rush.wav"_s));
    EXPECT_TRUE(controls.shows(Button, u"Restore 1"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Space);
    ASSERT_TRUE(controls.click(Button, u"Restore 2"_s));
    EXPECT_TRUE(controls.shows(Text, u"Trash is empty"_s));
    EXPECT_TRUE(arrives(u"SFX/Whooshes/Soft/Rush.wav"_s) && arrives(u"SFX/Claps/Rush.wav"_s));

    vault.moveToTrash({app.path(u"SFX/Hits"_s), app.path(u"SFX/Claps"_s)});
    const QString question = u"2 items will be deleted permanently. This can't be undone."_s;
    for (const auto answer : {Qt::Key_Escape, Qt::Key_Return}) {
        ASSERT_TRUE(waitUntil([&] { return vault.trashItems().size() == 2; }));
        ASSERT_TRUE(controls.click(Button, u"Empty Trash"_s));
        ASSERT_TRUE(controls.shows(Text, question));
        app.key(answer);
        ASSERT_TRUE(controls.hides(Text, question));
    }
    EXPECT_TRUE(controls.shows(Text, u"Trash is empty"_s));
    EXPECT_TRUE(vault.trashItems().empty());
}

TEST_F(Pages, ImportPageTakesFilesFromItsChooserAndKeepsItsChoices)
{
    ASSERT_TRUE(controls.click(Button, u"Import"_s));
    ASSERT_TRUE(controls.click(Button, u"Choose Files…"_s));
    ASSERT_TRUE(controls.click(MenuItem, u"Files…"_s));
    ASSERT_TRUE(waitUntil([&] { return app.chooser().requests().size() == 1; }));
    ASSERT_TRUE(app.chooser().answer({app.path(u"../Outside/Door.wav"_s)}));
    EXPECT_TRUE(controls.shows(Toast, u"Added 1 asset to the vault"_s));
    EXPECT_TRUE(app.exists(u"SFX/Door.wav"_s) && app.exists(u"../Outside/Door.wav"_s));
    ASSERT_TRUE(controls.shows(Card, u"Door"_s));

    // The destination, with the keyboard.
    ASSERT_TRUE(controls.click(QAccessible::CheckBox, u"Move instead of copy"_s));
    ASSERT_TRUE(controls.click(Button, u"Sort by type automatically"_s));
    ASSERT_TRUE(controls.shows(MenuItem, u"Overlays"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(controls.shows(Button, u"Overlays"_s));
    app.restart();
    EXPECT_TRUE(app.program().prefs().importMove());
    app.program().state().setScope(Scope::of(Scope::Kind::Importer));
    EXPECT_TRUE(app.controls().shows(Button, u"Overlays"_s));
}

TEST_F(Pages, LongWorkShowsAndCanBeCanceled)
{
    FileProgress &progress = vault.progress();
    QSignalSpy canceled(&progress, &FileProgress::cancelWanted);
    progress.show({true, u"Importing"_s, 3, 12, 1'200'000, 48'200'000, 0.25, 40});
    EXPECT_TRUE(controls.shows(Text, u"3 of 12 files, 1.2 MB of 48.2 MB"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    ASSERT_TRUE(controls.click(Button, u"Cancel"_s));
    EXPECT_EQ(canceled.count(), 1);
    progress.show({});
    EXPECT_TRUE(controls.hides(Button, u"Cancel"_s));
}

} // namespace cratewell::test

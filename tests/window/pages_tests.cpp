#include "window/app_fixture.h"

#include "platform/fakes/fake_file_chooser.h"
#include "state/app_state.h"
#include "state/notifications.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/file_progress.h"
#include "vault/trash_item.h"
#include "vault/vault.h"

#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QUrl>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

class Pages : public testing::Test
{
protected:
    AppFixture app{[](const QString &folder) {
        writeSound(folder + u"/SFX/Hits/Hit.wav"_s);
        writeSound(folder + u"/SFX/Claps/Hit.wav"_s);
        writeSound(folder + u"/../Outside/Whoosh.wav"_s);
        writeSound(folder + u"/../Outside/Riser.wav"_s);
    }};
    AppState &state = app.program().state();
    Vault &vault = app.program().vault();

    void SetUp() override { ASSERT_TRUE(app.showsCards({u"Hit"_s, u"Hit"_s})); }
    void TearDown() override
    {
        EXPECT_EQ(app.controls().accessibilityIssues(), "");
        EXPECT_EQ(AppFixture::qmlWarnings(), "");
    }

    QString path(const QString &relative) const { return app.vaultFolder() + u'/' + relative; }
    bool exists(const QString &relative) const { return QFile::exists(path(relative)); }
    bool shows(QAccessible::Role role, const QString &name)
    {
        return waitUntil([&] { return app.controls().find(role, name) != nullptr; });
    }
    bool click(QAccessible::Role role, const QString &name)
    {
        return shows(role, name) && app.controls().click(role, name);
    }
    bool hides(QAccessible::Role role, const QString &name)
    {
        return waitUntil([&] { return app.controls().find(role, name) == nullptr; });
    }
    // DragController over the middle of the heading of that name.
    bool drag(const QString &heading, const QStringList &files, Qt::DropActions *accepted, bool release)
    {
        const QAccessibleInterface *place = app.controls().find(QAccessible::StaticText, heading);
        if (!place)
            return false;
        const QPoint at = app.window().mapFromGlobal(place->rect().center());
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &file : files)
            urls.append(QUrl::fromLocalFile(file));
        data.setUrls(urls);
        QDragLeaveEvent leave; // of the drag before
        QGuiApplication::sendEvent(&app.window(), &leave);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QGuiApplication::sendEvent(&app.window(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QGuiApplication::sendEvent(&app.window(), &move);
        *accepted = move.isAccepted() ? Qt::DropActions(move.dropAction()) : Qt::DropActions();
        if (release) {
            QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
            QGuiApplication::sendEvent(&app.window(), &drop);
        }
        return true;
    }
};

} // namespace

TEST_F(Pages, TrashBringsBackTwoFilesOfOneName)
{
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(shows(QAccessible::AlertMessage, u"Moved 2 items to Trash. They're kept for 30 days."_s));
    EXPECT_TRUE(app.showsCards({}));
    QAccessibleInterface *trash = app.controls().find(QAccessible::Button, u"Trash"_s);
    ASSERT_TRUE(trash && click(QAccessible::Button, u"Trash"_s));
    EXPECT_EQ(trash->text(QAccessible::Description), u"2"_s);
    ASSERT_TRUE(waitUntil([&] { return app.controls().names(QAccessible::ListItem).size() == 2; }));
    EXPECT_TRUE(shows(QAccessible::StaticText, u"From Hits"_s) &&
                shows(QAccessible::StaticText, u"From Claps"_s));
    EXPECT_TRUE(shows(QAccessible::StaticText, u"30 days left"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");

    EXPECT_EQ(app.controls().find(QAccessible::Button, u"Restore 1"_s), nullptr);
    ASSERT_TRUE(click(QAccessible::ListItem, u"Hit.wav"_s));
    EXPECT_TRUE(shows(QAccessible::Button, u"Restore 1"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Space);
    ASSERT_TRUE(click(QAccessible::Button, u"Restore 2"_s));
    EXPECT_TRUE(shows(QAccessible::StaticText, u"Trash is empty"_s));
    EXPECT_TRUE(exists(u"SFX/Hits/Hit.wav"_s) && exists(u"SFX/Claps/Hit.wav"_s));
    EXPECT_TRUE(shows(QAccessible::AlertMessage, u"Restored 2 items"_s));
    EXPECT_EQ(app.controls().find(QAccessible::Button, u"Empty Trash"_s), nullptr);
}

TEST_F(Pages, EmptyingTheTrashAsksFirst)
{
    vault.moveToTrash({Location::fromText(path(u"SFX/Hits"_s)), Location::fromText(path(u"SFX/Claps"_s))});
    ASSERT_TRUE(waitUntil([&] { return vault.trashItems().size() == 2; }));
    state.setScope(Scope::of(Scope::Kind::Trash));
    const QString question = u"2 items will be deleted permanently. This can't be undone."_s;
    ASSERT_TRUE(click(QAccessible::Button, u"Empty Trash"_s));
    ASSERT_TRUE(shows(QAccessible::Heading, u"Empty the Trash?"_s));
    EXPECT_TRUE(shows(QAccessible::StaticText, question));
    app.key(Qt::Key_Escape);
    ASSERT_TRUE(hides(QAccessible::StaticText, question));
    EXPECT_EQ(vault.trashItems().size(), 2);

    ASSERT_TRUE(click(QAccessible::Button, u"Empty Trash"_s));
    ASSERT_TRUE(shows(QAccessible::StaticText, question));
    app.key(Qt::Key_Return);
    EXPECT_TRUE(shows(QAccessible::StaticText, u"Trash is empty"_s));
    EXPECT_TRUE(vault.trashItems().empty());
    EXPECT_FALSE(exists(u"SFX/Hits"_s));
}

TEST_F(Pages, ToastAfterTrashingOffersToUndoIt)
{
    state.setScope(Scope::inFolder(Location::fromText(path(u"SFX/Hits"_s))));
    ASSERT_TRUE(app.showsCards({u"Hit"_s}));
    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, u"Hit"_s));
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_TRUE(shows(QAccessible::Button, u"Undo"_s));
    EXPECT_FALSE(exists(u"SFX/Hits/Hit.wav"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    ASSERT_TRUE(click(QAccessible::Button, u"Undo"_s));
    EXPECT_TRUE(app.showsCards({u"Hit"_s}));
    EXPECT_TRUE(exists(u"SFX/Hits/Hit.wav"_s));
    EXPECT_TRUE(hides(QAccessible::Button, u"Undo"_s));

    // What is gone for good by then is not asked for.
    QSignalSpy toasts(&vault, &Vault::toast);
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_TRUE(shows(QAccessible::Button, u"Undo"_s));
    vault.deleteForever(vault.trashItems());
    ASSERT_TRUE(waitUntil([&] { return vault.trashItems().empty(); }));
    const auto before = toasts.count();
    app.program().notifications().takeToastAction();
    bool later = false;
    vault.createFolder(u"Later"_s, Location::fromText(path(u"SFX"_s)), [&](const auto &) { later = true; });
    ASSERT_TRUE(waitUntil([&] { return later; }));
    EXPECT_EQ(toasts.count(), before);
}

TEST_F(Pages, KeysThatTrashRestWhileTyping)
{
    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, u"Hit"_s));
    app.key(Qt::Key_F, Qt::ControlModifier);
    app.type(u"HIT"_s);
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    bool later = false;
    vault.createFolder(u"Later"_s, Location::fromText(path(u"SFX"_s)), [&](const auto &) { later = true; });
    ASSERT_TRUE(waitUntil([&] { return later; }));
    EXPECT_TRUE(vault.trashItems().empty());
}

TEST_F(Pages, ImportPageTakesFilesFromItsChooserAndByDrop)
{
    ASSERT_TRUE(click(QAccessible::Button, u"Import"_s));
    ASSERT_TRUE(shows(QAccessible::Button, u"Choose Files…"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    ASSERT_TRUE(click(QAccessible::Button, u"Choose Files…"_s));
    ASSERT_TRUE(click(QAccessible::MenuItem, u"Files…"_s));
    ASSERT_TRUE(waitUntil([&] { return app.chooser().requests().size() == 1; }));
    ASSERT_TRUE(app.chooser().answer({Location::fromText(path(u"../Outside/Whoosh.wav"_s))}));
    EXPECT_TRUE(shows(QAccessible::ListItem, u"Whoosh"_s));
    EXPECT_TRUE(shows(QAccessible::AlertMessage, u"Added 1 asset to the vault"_s));
    EXPECT_TRUE(exists(u"SFX/Whoosh.wav"_s) && exists(u"../Outside/Whoosh.wav"_s));

    // Into a folder of the user's choice, and moved.
    ASSERT_TRUE(click(QAccessible::Button, u"Sort by type automatically"_s));
    ASSERT_TRUE(shows(QAccessible::MenuItem, u"Overlays"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    app.key(Qt::Key_Escape);
    ASSERT_TRUE(hides(QAccessible::MenuItem, u"Overlays"_s));
    ASSERT_TRUE(click(QAccessible::CheckBox, u"Move instead of copy"_s));
    EXPECT_TRUE(app.program().prefs().importMove());
    const QString riser = path(u"../Outside/Riser.wav"_s);
    Qt::DropActions accepted;
    ASSERT_TRUE(drag(u"Drop files or folders here"_s, {path(u"SFX/Whoosh.wav"_s)}, &accepted, false));
    EXPECT_FALSE(accepted) << "what is in the vault already";
    ASSERT_TRUE(drag(u"Drop files or folders here"_s, {riser}, &accepted, false));
    EXPECT_TRUE(accepted & Qt::CopyAction);
    ASSERT_TRUE(shows(QAccessible::StaticText, u"Release to import"_s));
    ASSERT_TRUE(drag(u"Release to import"_s, {riser}, &accepted, true));
    EXPECT_TRUE(shows(QAccessible::ListItem, u"Riser"_s));
    EXPECT_TRUE(exists(u"SFX/Riser.wav"_s));
    EXPECT_FALSE(QFile::exists(riser));
    EXPECT_TRUE(shows(QAccessible::StaticText, u"Drop files or folders here"_s));

    ASSERT_TRUE(click(QAccessible::ListItem, u"Whoosh"_s));
    EXPECT_TRUE(
        waitUntil([&] { return state.selection() && state.selection()->url.baseName() == u"Whoosh"; }));
}

TEST_F(Pages, DestinationIsChosenWithTheKeyboardAndKept)
{
    state.setScope(Scope::of(Scope::Kind::Importer));
    ASSERT_TRUE(click(QAccessible::Button, u"Sort by type automatically"_s));
    ASSERT_TRUE(shows(QAccessible::MenuItem, u"Overlays"_s));
    app.key(Qt::Key_Down);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(shows(QAccessible::Button, u"Overlays"_s));
    app.restart();
    app.program().state().setScope(Scope::of(Scope::Kind::Importer));
    EXPECT_TRUE(shows(QAccessible::Button, u"Overlays"_s));
}

TEST_F(Pages, LongWorkShowsAndCanBeCanceled)
{
    FileProgress &progress = vault.progress();
    QSignalSpy canceled(&progress, &FileProgress::cancelWanted);
    progress.show({true, u"Importing"_s, 3, 12, 1'200'000, 48'200'000, 0.25, 40});
    EXPECT_TRUE(shows(QAccessible::StaticText, u"3 of 12 files, 1.2 MB of 48.2 MB"_s));
    EXPECT_TRUE(shows(QAccessible::StaticText, u"About 40 seconds left"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    ASSERT_TRUE(click(QAccessible::Button, u"Cancel"_s));
    EXPECT_EQ(canceled.count(), 1);
    progress.show({});
    EXPECT_TRUE(hides(QAccessible::Button, u"Cancel"_s));
}

} // namespace cratewell::test

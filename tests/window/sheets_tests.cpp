#include "window/app_fixture.h"

#include "platform/fakes/fake_file_chooser.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "ui/shell/dialog_file_chooser.h"
#include "vault/vault.h"

#include <QFile>
#include <QQmlEngine>
#include <QQuickWindow>
#include <algorithm>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

class Sheets : public testing::Test
{
protected:
    AppFixture app{[](const QString &vault) {
        writeSound(vault + u"/SFX/Hits/Hit 1.wav"_s);
        writeSound(vault + u"/SFX/Hits/Hit 2.wav"_s);
    }};
    AppState &state = app.program().state();

    void SetUp() override { ASSERT_TRUE(app.showsCards({u"Hit 1"_s, u"Hit 2"_s})); }
    void TearDown() override
    {
        EXPECT_EQ(app.controls().accessibilityIssues(), "");
        EXPECT_EQ(AppFixture::qmlWarnings(), "");
    }

    Location path(const QString &relative) const
    {
        return Location::fromText(app.vaultFolder() + u'/' + relative);
    }
    bool exists(const QString &relative) const { return QFile::exists(path(relative).text()); }
    bool shows(QAccessible::Role role, const QString &name)
    {
        return waitUntil([&] { return app.controls().find(role, name) != nullptr; });
    }
    // Waits for the sheet to be there with its field selected, and gives what is selected.
    QString selectedIn(const QString &field)
    {
        QObject *item = nullptr;
        const bool there = waitUntil([&] {
            QAccessibleInterface *found = app.controls().find(QAccessible::EditableText, field);
            item = found ? found->object() : nullptr;
            return item && item->property("activeFocus").toBool() &&
                   !item->property("selectedText").toString().isEmpty();
        });
        return there ? item->property("selectedText").toString() : QString();
    }
    bool sheetIsGone(const QString &field)
    {
        return waitUntil([&] { return !app.controls().find(QAccessible::EditableText, field); });
    }
    bool enabled(const QString &button)
    {
        const QAccessibleInterface *found = app.controls().find(QAccessible::Button, button);
        return found && !found->state().disabled;
    }
    void replaceText(const QString &field, const QString &text)
    {
        QAccessibleInterface *found = app.controls().find(QAccessible::EditableText, field);
        ASSERT_NE(found, nullptr);
        found->editableTextInterface()->replaceText(0, -1, text);
    }
};

} // namespace

TEST_F(Sheets, NewFolderIsNamedWithTheKeyboardAndOpens)
{
    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    app.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(selectedIn(u"Folder name"_s), u"New Folder"_s);
    EXPECT_TRUE(shows(QAccessible::StaticText, u"Inside Hits"_s));
    EXPECT_EQ(app.controls().accessibilityIssues(), "");

    app.key(Qt::Key_Escape);
    ASSERT_TRUE(sheetIsGone(u"Folder name"_s));
    EXPECT_FALSE(state.showNewFolder());

    app.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(selectedIn(u"Folder name"_s), u"New Folder"_s);
    app.key(Qt::Key_Backspace);
    EXPECT_TRUE(shows(QAccessible::StaticText, u"Type a name."_s));
    EXPECT_FALSE(enabled(u"Create"_s));
    app.key(Qt::Key_Return);
    EXPECT_TRUE(state.showNewFolder()) << "a name that cannot be used is not taken";
    app.type(u"DEEP"_s);
    EXPECT_TRUE(enabled(u"Create"_s));
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return state.scope().folder().name().toUpper() == u"DEEP"; }));
    EXPECT_TRUE(exists(u"SFX/Hits/"_s + state.scope().folder().name()));
    ASSERT_TRUE(sheetIsGone(u"Folder name"_s));

    // A second one is asked for while the first still leaves.
    state.newFolderHere();
    ASSERT_NE(selectedIn(u"Folder name"_s), QString());
    app.key(Qt::Key_Escape);
    state.newFolderHere();
    EXPECT_NE(selectedIn(u"Folder name"_s), QString());
    state.setShowNewFolder(false);
    EXPECT_TRUE(sheetIsGone(u"Folder name"_s));
}

TEST_F(Sheets, SelectionMovesIntoItsNewFolder)
{
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_N, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_EQ(selectedIn(u"Folder name"_s), u"New Folder"_s);
    EXPECT_TRUE(shows(QAccessible::StaticText, u"2 items will move into it, inside Hits"_s));
    ASSERT_TRUE(app.controls().click(QAccessible::Button, u"Create"_s));
    ASSERT_TRUE(waitUntil([&] { return exists(u"SFX/Hits/New Folder/Hit 2.wav"_s); }));
    EXPECT_TRUE(shows(QAccessible::AlertMessage, u"Moved 2 items to New Folder"_s));
    EXPECT_EQ(state.scope(), Scope::all());
    EXPECT_TRUE(app.showsCards({u"Hit 1"_s, u"Hit 2"_s}));
}

TEST_F(Sheets, RenameSelectsTheBaseNameAndWarnsOfAnotherExtension)
{
    state.setRenameTarget(path(u"SFX/Hits/Hit 1.wav"_s));
    EXPECT_EQ(selectedIn(u"Name"_s), u"Hit 1"_s);
    EXPECT_TRUE(shows(QAccessible::Heading, u"Rename File"_s));
    replaceText(u"Name"_s, u".."_s);
    EXPECT_FALSE(enabled(u"Rename"_s));
    replaceText(u"Name"_s, u"Boom"_s);
    EXPECT_TRUE(enabled(u"Rename"_s));
    EXPECT_TRUE(
        shows(QAccessible::StaticText, u"Without “.wav” the file no longer shows up in your vault."_s));
    replaceText(u"Name"_s, u"Boom.wav"_s);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(app.showsCards({u"Boom"_s, u"Hit 2"_s}));

    // The folder in view is followed to its new name, and keeps its color.
    app.program().prefs().setFolderColor(path(u"SFX/Hits"_s), u"#2FD6FF"_s);
    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    state.setRenameTarget(path(u"SFX/Hits"_s));
    EXPECT_EQ(selectedIn(u"Name"_s), u"Hits"_s);
    EXPECT_TRUE(shows(QAccessible::Heading, u"Rename Folder"_s));
    replaceText(u"Name"_s, u"Impacts"_s);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(waitUntil([&] { return state.scopeTitle() == u"Impacts"; }));
    EXPECT_EQ(app.program().prefs().folderColors().value(path(u"SFX/Impacts"_s)), u"#2FD6FF"_s);
    EXPECT_TRUE(app.showsCards({u"Boom"_s, u"Hit 2"_s}));

    // A taken name is the disk's affair, and its words are shown.
    state.setRenameTarget(path(u"SFX/Impacts/Boom.wav"_s));
    ASSERT_EQ(selectedIn(u"Name"_s), u"Boom"_s);
    replaceText(u"Name"_s, u"Hit 2.wav"_s);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !app.program().vault().lastError().isEmpty(); }));
    EXPECT_TRUE(shows(QAccessible::AlertMessage, app.program().vault().lastError()));
    EXPECT_TRUE(exists(u"SFX/Impacts/Boom.wav"_s));
}

TEST_F(Sheets, KeysOfTheWindowRestWhileASheetAsks)
{
    ASSERT_TRUE(app.controls().click(QAccessible::ListItem, u"Hit 1"_s));
    app.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_NE(selectedIn(u"Folder name"_s), QString());
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    app.key(Qt::Key_I, Qt::ControlModifier);
    app.key(Qt::Key_Escape);
    ASSERT_TRUE(sheetIsGone(u"Folder name"_s));
    EXPECT_TRUE(exists(u"SFX/Hits/Hit 1.wav"_s));
    EXPECT_TRUE(state.hasSelection());
    EXPECT_EQ(app.controls().find(QAccessible::MenuItem, u"Files…"_s), nullptr);

    app.key(Qt::Key_I, Qt::ControlModifier);
    ASSERT_TRUE(shows(QAccessible::MenuItem, u"Folder…"_s));
    ASSERT_TRUE(app.controls().click(QAccessible::MenuItem, u"Folder…"_s));
    ASSERT_TRUE(waitUntil([&] { return app.chooser().requests().size() == 1; }));
    EXPECT_EQ(app.chooser().requests().first().what, ChooseRequest::What::Folders);
}

TEST_F(Sheets, OwnFileDialogOpensOverTheWindowAndAnswersOnce)
{
    QQmlEngine &engine = *qmlEngine(&app.window());
    DialogFileChooser chooser(engine);
    const auto dialogShows = [&engine] {
        const QList<QObject *> objects = engine.findChildren<QObject *>();
        return std::any_of(objects.begin(), objects.end(), [](const QObject *object) {
            return object->property("acceptLabel") == u"Import"_s && object->property("visible").toBool();
        });
    };
    for (const auto what : {ChooseRequest::What::Files, ChooseRequest::What::Folders}) {
        int answers = 0;
        QList<Location> chosen{path(u"SFX"_s)};
        chooser.choose({what, u"Choose overlays"_s, u"Import"_s, true}, [&](const QList<Location> &answer) {
            ++answers;
            chosen = answer;
        });
        EXPECT_EQ(answers, 0);
        ASSERT_TRUE(waitUntil(dialogShows));
        app.key(Qt::Key_Escape);
        ASSERT_TRUE(waitUntil([&] { return answers > 0; }));
        EXPECT_TRUE(chosen.isEmpty());
        ASSERT_TRUE(waitUntil([&] { return !dialogShows(); }));
        EXPECT_EQ(answers, 1);
    }
}

} // namespace cratewell::test

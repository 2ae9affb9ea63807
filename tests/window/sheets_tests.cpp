#include "window/app_fixture.h"

#include "platform/fakes/fake_file_chooser.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "ui/shell/dialog_file_chooser.h"
#include "vault/vault.h"

#include <QQmlEngine>
#include <QQuickWindow>

#include <algorithm>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Sheets : public WindowTest
{
protected:
    // Waits for the sheet to be there with its field selected, and gives what is selected.
    QString selectedIn(const QString &field)
    {
        QObject *item = nullptr;
        const bool there = waitUntil([&] {
            QAccessibleInterface *found = controls.find(Field, field);
            item = found ? found->object() : nullptr;
            return item && item->property("activeFocus").toBool() &&
                   !item->property("selectedText").toString().isEmpty();
        });
        return there ? item->property("selectedText").toString() : QString();
    }
    bool enabled(const QString &button)
    {
        const QAccessibleInterface *found = controls.find(Button, button);
        return found && !found->state().disabled;
    }
    void replaceText(const QString &field, const QString &text)
    {
        QAccessibleInterface *found = controls.find(Field, field);
        ASSERT_NE(found, nullptr);
        found->editableTextInterface()->replaceText(0, -1, text);
    }
    void pressNewFolder() { app.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier); }

    const QString name = u"Folder name"_s;
};

TEST_F(Sheets, NewFolderIsNamedWithTheKeyboardAndOpens)
{
    state.setScope(Scope::inFolder(app.path(u"SFX/Hits"_s)));
    pressNewFolder();
    EXPECT_EQ(selectedIn(name), u"New Folder"_s);
    EXPECT_TRUE(controls.shows(Text, u"Inside Hits"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    app.key(Qt::Key_Escape);
    ASSERT_TRUE(controls.hides(Field, name));

    pressNewFolder();
    ASSERT_EQ(selectedIn(name), u"New Folder"_s);
    app.key(Qt::Key_Backspace);
    EXPECT_TRUE(controls.shows(Text, u"Type a name."_s));
    EXPECT_FALSE(enabled(u"Create"_s));
    app.key(Qt::Key_Return);
    EXPECT_TRUE(state.showNewFolder()) << "a name that cannot be used is not taken";
    app.type(u"DEEP"_s);
    EXPECT_TRUE(enabled(u"Create"_s));
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return state.scope().folder().name().toUpper() == u"DEEP"; }));
    EXPECT_TRUE(app.exists(u"SFX/Hits/"_s + state.scope().folder().name()));
    ASSERT_TRUE(controls.hides(Field, name));

    // A second one is asked for while the first still leaves.
    pressNewFolder();
    ASSERT_NE(selectedIn(name), QString());
    app.key(Qt::Key_Escape);
    state.newFolderHere();
    EXPECT_NE(selectedIn(name), QString());
    state.setShowNewFolder(false);
    EXPECT_TRUE(controls.hides(Field, name));
}

TEST_F(Sheets, SelectionMovesIntoItsNewFolder)
{
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s) && controls.click(Card, u"Hit 2"_s, Qt::ShiftModifier));
    app.key(Qt::Key_N, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_EQ(selectedIn(name), u"New Folder"_s);
    EXPECT_TRUE(controls.shows(Text, u"2 items will move into it, inside Hits"_s));
    ASSERT_TRUE(controls.click(Button, u"Create"_s));
    EXPECT_TRUE(controls.shows(Toast, u"Moved 2 items to New Folder"_s));
    EXPECT_TRUE(app.exists(u"SFX/Hits/New Folder/Hit 2.wav"_s));
    EXPECT_TRUE(app.showsCards(cards)) << "the view stays";
}

TEST_F(Sheets, RenameSelectsTheBaseNameAndWarnsOfAnotherExtension)
{
    const QString field = u"Name"_s;
    state.setRenameTarget(app.path(u"SFX/Hits/Hit 1.wav"_s));
    EXPECT_EQ(selectedIn(field), u"Hit 1"_s);
    EXPECT_TRUE(controls.shows(Heading, u"Rename File"_s));
    replaceText(field, u".."_s);
    EXPECT_FALSE(enabled(u"Rename"_s));
    replaceText(field, u"Bang"_s);
    EXPECT_TRUE(enabled(u"Rename"_s));
    EXPECT_TRUE(controls.shows(Text, u"Without “.wav” the file no longer shows up in your vault."_s));
    replaceText(field, u"Bang.wav"_s);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(controls.shows(Card, u"Bang"_s));

    // The folder in view is followed to its new name.
    state.setScope(Scope::inFolder(app.path(u"SFX/Hits"_s)));
    state.setRenameTarget(app.path(u"SFX/Hits"_s));
    EXPECT_EQ(selectedIn(field), u"Hits"_s);
    replaceText(field, u"Impacts"_s);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(controls.shows(Heading, u"Impacts"_s));
    EXPECT_TRUE(app.showsCards({u"Bang"_s, u"Boom"_s, u"Hit 2"_s, u"Hit 3"_s}));

    // A taken name is the disk's affair, and its words are shown.
    state.setRenameTarget(app.path(u"SFX/Impacts/Bang.wav"_s));
    ASSERT_EQ(selectedIn(field), u"Bang"_s);
    replaceText(field, u"Hit 2.wav"_s);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !app.program().vault().lastError().isEmpty(); }));
    EXPECT_TRUE(controls.shows(Toast, app.program().vault().lastError()));
    EXPECT_TRUE(app.exists(u"SFX/Impacts/Bang.wav"_s));
}

TEST_F(Sheets, KeysOfTheWindowRestWhileASheetAsks)
{
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s));
    pressNewFolder();
    ASSERT_NE(selectedIn(name), QString());
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    app.key(Qt::Key_I, Qt::ControlModifier);
    app.key(Qt::Key_Escape);
    ASSERT_TRUE(controls.hides(Field, name));
    EXPECT_TRUE(app.exists(u"SFX/Hits/Hit 1.wav"_s));
    EXPECT_TRUE(state.hasSelection());
    EXPECT_EQ(controls.find(MenuItem, u"Files…"_s), nullptr);

    app.key(Qt::Key_I, Qt::ControlModifier);
    ASSERT_TRUE(controls.click(MenuItem, u"Folder…"_s));
    ASSERT_TRUE(waitUntil([&] { return app.chooser().requests().size() == 1; }));
    EXPECT_EQ(app.chooser().requests().first().what, ChooseRequest::What::Folders);
}

TEST_F(Sheets, OwnFileDialogOpensOverTheWindowAndAnswersOnce)
{
    QQmlEngine &engine = *qmlEngine(&window);
    DialogFileChooser chooser(engine);
    const auto dialogShows = [&engine] {
        return std::ranges::any_of(engine.findChildren<QObject *>(), [](const QObject *object) {
            return object->property("acceptLabel") == u"Import"_s && object->property("visible").toBool();
        });
    };
    for (const auto what : {ChooseRequest::What::Files, ChooseRequest::What::Folders}) {
        int answers = 0;
        QList<Location> chosen{app.path(u"SFX"_s)};
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

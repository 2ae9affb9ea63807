#include "window/app_fixture.h"

#include "support/wait.h"
#include "ui/shell/dialog_file_chooser.h"
#include "vault/vault.h"

#include <QQmlEngine>

#include <algorithm>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Sheets : public WindowTest
{
protected:
    // Waits for the sheet to be there with just this selected in its field.
    bool selects(const QString &text, const QString &field)
    {
        return waitUntil([&] {
            QAccessibleInterface *found = controls.find(Field, field);
            return found && found->object()->property("activeFocus").toBool() &&
                   found->object()->property("selectedText") == text;
        });
    }
    bool enabled(const QString &button)
    {
        const QAccessibleInterface *found = controls.find(Button, button);
        return found && !found->state().disabled;
    }
    void rename(const QString &text)
    {
        controls.find(Field, u"Name"_s)->editableTextInterface()->replaceText(0, -1, text);
    }

    const QString name = u"Folder name"_s;
    const QString suggested = u"New Folder"_s;
};

TEST_F(Sheets, NewFolderHasTheKeyboardIsNamedAndOpens)
{
    state.setScope(Scope::inFolder(app.path(u"SFX/Hits"_s)));
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s));
    app.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(selects(suggested, name));
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(app.exists(u"SFX/Hits/Hit 1.wav"_s)) << "keys of the window rest";
    EXPECT_TRUE(controls.shows(Text, u"Inside Hits"_s));
    EXPECT_EQ(controls.accessibilityIssues(), "");
    // Asked for again while it still leaves.
    app.key(Qt::Key_Escape);
    state.newFolderHere();
    ASSERT_TRUE(selects(suggested, name));
    app.key(Qt::Key_Backspace);
    EXPECT_TRUE(controls.shows(Text, u"Type a name."_s));
    EXPECT_FALSE(enabled(u"Create"_s));
    app.key(Qt::Key_Return);
    EXPECT_TRUE(state.showNewFolder()) << "a name that cannot be used is not taken";
    app.type(u"DEEP"_s);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return state.scope().folder().name().toUpper() == u"DEEP"; }));
    EXPECT_TRUE(app.exists(u"SFX/Hits/"_s + state.scope().folder().name()));
    EXPECT_TRUE(controls.hides(Field, name));
}

TEST_F(Sheets, RenameSelectsTheBaseNameAndWarnsOfAnotherExtension)
{
    state.setRenameTarget(app.path(u"SFX/Hits/Hit 1.wav"_s));
    ASSERT_TRUE(selects(u"Hit 1"_s, u"Name"_s));
    EXPECT_TRUE(controls.shows(Heading, u"Rename File"_s));
    rename(u".."_s);
    EXPECT_FALSE(enabled(u"Rename"_s));
    rename(u"Bang"_s);
    EXPECT_TRUE(enabled(u"Rename"_s));
    EXPECT_TRUE(controls.shows(Text, u"Without “.wav” the file no longer shows up in your vault."_s));
    rename(u"Bang.wav"_s);
    app.key(Qt::Key_Return);
    EXPECT_TRUE(controls.shows(Card, u"Bang"_s));

    // A taken name is the disk's affair, and its words are shown.
    state.setRenameTarget(app.path(u"SFX/Hits/Bang.wav"_s));
    ASSERT_TRUE(selects(u"Bang"_s, u"Name"_s));
    rename(u"Hit 2.wav"_s);
    app.key(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !app.program().vault().lastError().isEmpty(); }));
    EXPECT_TRUE(controls.shows(Toast, app.program().vault().lastError()));
    EXPECT_TRUE(app.exists(u"SFX/Hits/Bang.wav"_s));
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
        std::vector<QList<Location>> answers;
        chooser.choose({what, u"Choose overlays"_s, u"Import"_s, true},
                       [&](const QList<Location> &answer) { answers.push_back(answer); });
        ASSERT_TRUE(waitUntil(dialogShows));
        app.key(Qt::Key_Escape);
        ASSERT_TRUE(waitUntil([&] { return !dialogShows(); }));
        EXPECT_EQ(answers, std::vector{QList<Location>()});
    }
}

} // namespace cratewell::test

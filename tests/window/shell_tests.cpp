#include "window/app_fixture.h"

#include "state/app_state.h"
#include "support/wait.h"

#include <QQuickWindow>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

class Shell : public testing::Test
{
protected:
    AppFixture app{[](const QString &vault) {
        for (int i = 1; i <= 3; ++i)
            writeSound(vault + u"/SFX/Hits/Hit %1.wav"_s.arg(i));
        writeSound(vault + u"/SFX/Hits/Deep/Boom.wav"_s);
    }};
    AppState &state = app.program().state();

    void SetUp() override { ASSERT_TRUE(app.showsCards({u"Boom"_s, u"Hit 1"_s, u"Hit 2"_s, u"Hit 3"_s})); }
    void TearDown() override { EXPECT_EQ(AppFixture::qmlWarnings(), ""); }

    // By the action that assistive tools use.
    bool press(QAccessible::Role role, const QString &name)
    {
        QAccessibleInterface *control = app.controls().find(role, name);
        if (!control || !control->actionInterface())
            return false;
        control->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        return true;
    }
    QRect place(QAccessible::Role role, const QString &name)
    {
        const QAccessibleInterface *control = app.controls().find(role, name);
        return control ? control->rect().translated(-app.window().position()) : QRect();
    }
};

} // namespace

TEST_F(Shell, ToolbarStaysInOrderWithoutOverlapsAtEveryWidth)
{
    // The title is the only one that may lose its end, the card size the only one that may be missing.
    const auto inOrder = [this](int rightEnd) {
        int free = 262;
        for (const QRect &next :
             {place(QAccessible::Heading, u"All Assets"_s), place(QAccessible::Button, u"New Folder"_s),
              place(QAccessible::EditableText, u"Search the vault"_s), place(QAccessible::Button, u"Added"_s),
              place(QAccessible::Slider, u"Card size"_s),
              place(QAccessible::Button, u"Show or hide the preview"_s)}) {
            if (next.isEmpty())
                continue;
            if (next.left() < free)
                return false;
            free = next.right() + 1;
        }
        return free <= rightEnd && place(QAccessible::EditableText, u"Search the vault"_s).width() >= 88;
    };
    for (const bool inspector : {true, false}) {
        state.setShowInspector(inspector);
        for (int width = 1040; width <= 1700; width += 33) {
            app.window().resize(width, 640);
            EXPECT_TRUE(waitUntil([&] { return inOrder(width - 12 - (inspector ? 412 : 0)); }))
                << "width " << width << (inspector ? " with inspector" : "");
        }
        EXPECT_TRUE(waitUntil([this] { return !place(QAccessible::Slider, u"Card size"_s).isEmpty(); }))
            << "there is room for it";
    }
}

TEST_F(Shell, MenuHoldsTheCommandsAndWhatCannotBeDoneIsDisabled)
{
    ASSERT_TRUE(press(QAccessible::Button, u"Menu"_s));
    ASSERT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::MenuItem, u"Quit"_s); }));
    EXPECT_EQ(
        app.controls().names(QAccessible::MenuItem),
        (QStringList{u"New Folder"_s, u"Import Assets…"_s, u"Insert at Playhead"_s, u"Play / Pause Preview"_s,
                     u"Reveal in Finder"_s, u"Toggle Favorite"_s, u"New Folder with Selection…"_s,
                     u"Move to Trash"_s, u"Select All"_s, u"Settings…"_s, u"Quit"_s}));
    ASSERT_TRUE(press(QAccessible::MenuItem, u"New Folder with Selection…"_s));
    EXPECT_FALSE(state.showNewFolder()) << "nothing is selected";
    ASSERT_TRUE(press(QAccessible::MenuItem, u"Select All"_s));
    EXPECT_EQ(state.selectedCount(), 4);
    EXPECT_TRUE(waitUntil([this] { return !app.controls().find(QAccessible::MenuItem, u"Quit"_s); }));

    // The keyboard is back where it was.
    app.key(Qt::Key_End);
    EXPECT_EQ(state.selectedCount(), 1);
}

TEST_F(Shell, EveryPageIsReachedByPressingItsRow)
{
    for (const auto &[row, title] : {std::pair{u"Import"_s, u"Import"_s},
                                     {u"Trash"_s, u"Trash"_s},
                                     {u"Resolve panel"_s, u"Plugins"_s}}) {
        ASSERT_TRUE(press(QAccessible::Button, row));
        EXPECT_EQ(state.scopeTitle(), title);
        EXPECT_NE(app.controls().find(QAccessible::Heading, title), nullptr) << title.toStdString();
        EXPECT_EQ(app.controls().find(QAccessible::EditableText, u"Search the vault"_s), nullptr);
    }
    ASSERT_TRUE(press(QAccessible::Button, u"All Assets"_s));
    EXPECT_NE(app.controls().find(QAccessible::EditableText, u"Search the vault"_s), nullptr);
    EXPECT_TRUE(app.controls().find(QAccessible::Button, u"All Assets"_s)->state().selected);

    ASSERT_TRUE(press(QAccessible::Button, u"Added"_s));
    ASSERT_TRUE(waitUntil([this] { return app.controls().find(QAccessible::MenuItem, u"Size"_s); }));
    ASSERT_TRUE(press(QAccessible::MenuItem, u"Size"_s));
    EXPECT_EQ(state.sort(), AssetOrder::Size);
    EXPECT_NE(app.controls().find(QAccessible::Button, u"Size"_s), nullptr);
}

TEST_F(Shell, FoldersAreWalkedWithTheKeyboard)
{
    QAccessibleInterface *folders = app.controls().find(QAccessible::Tree, u"Folders"_s);
    ASSERT_NE(folders, nullptr);
    folders->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    const auto walk = [this](std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys)
            app.key(key);
        return state.scopeTitle();
    };
    EXPECT_EQ(walk({Qt::Key_Return}), u"Overlays");
    while (state.scopeTitle() != u"Hits" && !HasFailure())
        ASSERT_NE(walk({Qt::Key_Down, Qt::Key_Space}), u"Sports") << "Hits comes before Sports";
    EXPECT_EQ(walk({Qt::Key_Right, Qt::Key_Right, Qt::Key_Return}), u"Deep");
    EXPECT_EQ(walk({Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Return}), u"SFX");
    EXPECT_EQ(walk({Qt::Key_Left, Qt::Key_Down, Qt::Key_Return}), u"SFX") << "closed, it is the last row";
}

} // namespace cratewell::test

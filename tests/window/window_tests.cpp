#include "window/app_fixture.h"

#include "platform/fakes/fake_workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

namespace cratewell::test {

using namespace Qt::StringLiterals;

class Window : public WindowTest
{
protected:
    QString focused() const { return state.selection() ? state.selection()->url.baseName() : QString(); }
    QRect place(QAccessible::Role role, const QString &name)
    {
        const QAccessibleInterface *control = controls.find(role, name);
        return control ? control->rect().translated(-window.position()) : QRect();
    }
};

TEST_F(Window, OpensAtItsSizeWithItsRowsInOrder)
{
    app.restart();
    EXPECT_EQ(app.window().title(), u"Cratewell");
    EXPECT_EQ(app.window().size(), QSize(1320, 840));
    EXPECT_EQ(app.window().minimumSize(), QSize(1040, 640));

    const QStringList buttons = app.controls().names(Button);
    const QStringList rows{u"All Assets"_s, u"Favorites"_s,      u"Recently Inserted"_s, u"Import"_s,
                           u"Trash"_s,      u"Premiere panel"_s, u"Resolve panel"_s};
    EXPECT_EQ(buttons.sliced(buttons.indexOf(rows[0]), rows.size()), rows);
    const QStringList sections{u"New folder in Overlays"_s, u"New folder in LUTs"_s, u"New folder in SFX"_s};
    const auto height = [&](const QString &name) { return app.controls().middle(Button, name).y(); };
    EXPECT_TRUE(std::ranges::is_sorted(sections, {}, height));

    // How much the first rows hold, unless nobody wants to know.
    const auto counts = [&] {
        QStringList texts;
        for (const QString &row : rows)
            texts += app.controls().find(Button, row)->text(QAccessible::Description);
        return texts.join(u'|');
    };
    ASSERT_TRUE(waitUntil([&] { return counts() == u"9|0|0||0||"; })) << counts().toStdString();
    app.program().prefs().setShowCounts(false);
    EXPECT_EQ(counts(), u"||||||");
}

TEST_F(Window, SelectsWithMouseAndKeyboard)
{
    ASSERT_TRUE(controls.click(Card, u"Amber"_s));
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s, Qt::ShiftModifier));
    EXPECT_EQ(state.selectedCount(), 3);
    ASSERT_TRUE(controls.click(Card, u"Boom"_s, Qt::ControlModifier));
    EXPECT_EQ(state.selectedCount(), 2);
    app.key(Qt::Key_Right);
    EXPECT_EQ(focused(), u"Hit 1");
    app.key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(state.selectedCount(), cards.size());
}

TEST_F(Window, SearchTakesLettersAndKeysForItself)
{
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s));
    ASSERT_TRUE(controls.click(Field, u"Search the vault"_s));
    app.type(u"warm"_s);
    EXPECT_TRUE(app.showsCards({u"Amber"_s}));
    EXPECT_TRUE(controls.shows(Text, u"1 assets"_s));

    const int selectedBefore = state.selectedCount();
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(app.exists(u"SFX/Hits/Hit 1.wav"_s));
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_Delete);
    EXPECT_EQ(state.search(), QString());
    EXPECT_EQ(state.selectedCount(), selectedBefore);
}

TEST_F(Window, CommandsReachTheDesktopTheSettingsAndTheNextStart)
{
    ASSERT_TRUE(controls.click(Card, u"Amber"_s));
    app.key(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(app.workspace().revealed().size(), 1);
    EXPECT_EQ(app.workspace().revealed()[0][0].baseName(), u"Amber");
    ASSERT_TRUE(controls.click(Button, u"Open the vault in Finder"_s));
    EXPECT_EQ(app.workspace().opened().size(), 1);
    ASSERT_TRUE(controls.click(Button, u"Expand Light Leaks"_s));
    ASSERT_TRUE(controls.click(Folder, u"Warm"_s));
    EXPECT_TRUE(app.showsCards({u"Amber"_s}));
    app.key(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_TRUE(controls.click(Button, u"Show or hide the preview"_s));
    EXPECT_FALSE(state.showInspector());
    app.key(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(controls.shows(QAccessible::PageTab, u"Look"_s));

    app.restart();
    EXPECT_TRUE(app.controls().shows(Folder, u"Warm"_s));
    ASSERT_TRUE(app.controls().click(Button, u"Favorites"_s));
    EXPECT_TRUE(app.showsCards({u"Amber"_s}));
}

TEST_F(Window, CardsAndInspectorShowWhatIsInTheFiles)
{
    // A second and a half of a loud square wave.
    writeSound(app.vaultFolder() + u"/SFX/Hits/Square.wav"_s, QByteArray("\0\x40\0\xC0", 4).repeated(36000));
    writeFile(app.vaultFolder() + u"/LUTs/Swap.cube"_s,
              "TITLE \"Plain\"\nLUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    ASSERT_TRUE(waitUntil([this] {
        const QAccessibleInterface *card = controls.find(Card, u"Square"_s);
        return card && card->text(QAccessible::Description) == u"Audio, 1.5s"_s;
    }));
    const struct
    {
        const char *card;
        QStringList lines;
    } cases[] = {
        {"Square", {u"Type: Audio · WAV"_s, u"Sample rate: 48000 Hz"_s, u"Channels: Mono"_s}},
        {"Swap", {u"Lattice: 2³"_s, u"Title: Plain"_s}},
        {"Amber", {u"Resolution: 64 × 36"_s}},
        {"Noir", {u"Type: LUT · CUBE"_s}}, // cannot be read
    };
    for (const auto &row : cases) {
        ASSERT_TRUE(controls.click(Card, QString::fromLatin1(row.card)));
        for (const QString &line : row.lines)
            EXPECT_TRUE(controls.shows(Text, line)) << line.toStdString();
    }
    EXPECT_EQ(controls.find(Text, u"Channels: Mono"_s), nullptr) << "of the one before";
}

TEST_F(Window, ClosingLeavesTheProgramRunning)
{
    window.close();
    EXPECT_FALSE(window.isVisible());
    app.program().bringToFront();
    EXPECT_TRUE(window.isVisible());
}

TEST_F(Window, ToolbarStaysInOrderWithoutOverlapsAtEveryWidth)
{
    // The title is the only one that may lose its end, the card size the only one that may be missing.
    const auto inOrder = [this](int rightEnd) {
        int free = 262;
        for (const QRect &next :
             {place(Heading, u"All Assets"_s), place(Button, u"New Folder"_s),
              place(Field, u"Search the vault"_s), place(Button, u"Name"_s),
              place(QAccessible::Slider, u"Card size"_s), place(Button, u"Show or hide the preview"_s)}) {
            if (next.isEmpty())
                continue;
            if (next.left() < free)
                return false;
            free = next.right() + 1;
        }
        return free <= rightEnd && place(Field, u"Search the vault"_s).width() >= 88;
    };
    for (const bool inspector : {true, false}) {
        state.setShowInspector(inspector);
        for (int width = 1040; width <= 1700; width += 33) {
            window.resize(width, 640);
            EXPECT_TRUE(waitUntil([&] { return inOrder(width - 12 - (inspector ? 412 : 0)); }))
                << "width " << width << (inspector ? " with inspector" : "");
        }
        EXPECT_TRUE(controls.shows(QAccessible::Slider, u"Card size"_s)) << "there is room for it";
    }
}

TEST_F(Window, EveryPageIsReachedByPressingItsRow)
{
    for (const auto &[row, title] : {std::pair{u"Import"_s, u"Import"_s},
                                     {u"Trash"_s, u"Trash"_s},
                                     {u"Resolve panel"_s, u"Plugins"_s}}) {
        ASSERT_TRUE(controls.press(Button, row));
        EXPECT_TRUE(controls.shows(Heading, title)) << title.toStdString();
        EXPECT_EQ(controls.find(Field, u"Search the vault"_s), nullptr);
    }
    ASSERT_TRUE(controls.press(Button, u"All Assets"_s));
    EXPECT_TRUE(controls.shows(Field, u"Search the vault"_s));
    EXPECT_TRUE(controls.find(Button, u"All Assets"_s)->state().selected);
    ASSERT_TRUE(controls.press(Button, u"Name"_s));
    ASSERT_TRUE(controls.press(MenuItem, u"Size"_s));
    EXPECT_TRUE(controls.shows(Button, u"Size"_s));
}

TEST_F(Window, FoldersAreWalkedWithTheKeyboard)
{
    ASSERT_TRUE(controls.focus(QAccessible::Tree, u"Folders"_s));
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

#include "window/app_fixture.h"

#include "state/prefs.h"
#include "support/wait.h"

#include <QQuickItem>

#include <algorithm>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// What can be seen of `item` and below and has lost its end.
QStringList cutTexts(const QQuickItem &item)
{
    if (!item.isVisible())
        return {};
    QStringList texts;
    const bool tooWide = item.property("contentWidth").toReal() > std::ceil(item.width());
    if (item.inherits("QQuickText") && (item.property("truncated").toBool() || tooWide))
        texts += item.property("text").toString();
    for (const QQuickItem *child : item.childItems())
        texts += cutTexts(*child);
    return texts;
}

} // namespace

class Window : public WindowTest
{
protected:
    QRect place(QAccessible::Role role, const QString &name)
    {
        const QAccessibleInterface *control = controls.find(role, name);
        return control ? control->rect().translated(-window.position()) : QRect();
    }
};

TEST(NewWindow, HasItsSizeItsRowsAndEveryTextWholeOnEveryPage)
{
    AppFixture app;
    const Controls controls = app.controls();
    const QQuickWindow &window = app.window();
    EXPECT_EQ(window.title(), u"Cratewell");
    EXPECT_EQ(window.size(), QSize(1320, 840));
    EXPECT_EQ(window.minimumSize(), QSize(1040, 640));

    const QStringList rows{u"All Assets"_s, u"Favorites"_s,      u"Recently Inserted"_s, u"Import"_s,
                           u"Trash"_s,      u"Premiere panel"_s, u"Resolve panel"_s};
    const QStringList buttons = controls.names(Button);
    EXPECT_EQ(buttons.sliced(buttons.indexOf(rows[0]), rows.size()), rows);
    const auto counts = [&] {
        QStringList texts;
        for (const QString &row : rows)
            texts += controls.find(Button, row)->text(QAccessible::Description);
        return texts.join(u'|');
    };
    EXPECT_TRUE(waitUntil([&] { return counts() == u"9|0|0||0||"; })) << counts().toStdString();
    app.program().prefs().setShowCounts(false);
    EXPECT_EQ(counts(), u"||||||");

    AppState &state = app.program().state();
    const auto whole = [&] { return cutTexts(*window.contentItem()).isEmpty(); };
    for (const QString &row : rows.first(5)) {
        for (const bool inspector : {true, false}) {
            SCOPED_TRACE(row.toStdString());
            state.setShowInspector(inspector);
            ASSERT_TRUE(controls.press(Button, row));
            EXPECT_TRUE(controls.shows(Heading, state.scopeTitle()));
            EXPECT_TRUE(waitUntil(whole)) << cutTexts(*window.contentItem()).join(u'|').toStdString();
        }
    }
    ASSERT_TRUE(controls.press(Button, rows.last()));
    EXPECT_TRUE(controls.shows(Heading, u"Plugins"_s));
    EXPECT_EQ(controls.find(Field, u"Search the vault"_s), nullptr);
    state.setScope(Scope::all());
    state.setShowInspector(true);
    state.selectAll();
    EXPECT_TRUE(controls.shows(Text, u"9 selected"_s));
    EXPECT_TRUE(waitUntil(whole)) << cutTexts(*window.contentItem()).join(u'|').toStdString();
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

TEST_F(Window, SelectsWithMouseAndKeyboardAndInsertsNothingWithoutAnEditor)
{
    ASSERT_TRUE(controls.click(Card, u"Amber"_s) && controls.click(Card, u"Hit 1"_s, Qt::ShiftModifier));
    EXPECT_EQ(state.selectedCount(), 3);
    app.key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(state.selectedCount(), cards.size());
    app.key(Qt::Key_Home);
    EXPECT_EQ(state.selected(), QSet{app.path(u"Overlays/Light Leaks/Warm/Amber.png"_s)});
    app.key(Qt::Key_Return);
    EXPECT_TRUE(controls.shows(Toast, u"Open DaVinci Resolve or Premiere Pro first. You can also drag any "
                                      "asset straight onto your timeline."_s));
}

TEST_F(Window, SearchTakesLettersAndKeysForItself)
{
    ASSERT_TRUE(controls.click(Card, u"Hit 1"_s));
    ASSERT_TRUE(controls.click(Field, u"Search the vault"_s));
    app.type(u"warm"_s);
    EXPECT_TRUE(app.showsCards({u"Amber"_s}));
    EXPECT_TRUE(controls.shows(Text, u"1 assets"_s));
    app.key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(app.exists(u"SFX/Hits/Hit 1.wav"_s));
    app.key(Qt::Key_A, Qt::ControlModifier);
    app.key(Qt::Key_Delete);
    EXPECT_EQ(state.search(), QString());
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
    window.close();
    EXPECT_FALSE(window.isVisible());
    app.program().bringToFront();
    EXPECT_TRUE(window.isVisible()) << "the program has gone on";

    app.restart();
    EXPECT_TRUE(app.controls().shows(Folder, u"Warm"_s));
    ASSERT_TRUE(app.controls().click(Button, u"Favorites"_s));
    EXPECT_TRUE(app.showsCards({u"Amber"_s}));
    app.key(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(app.controls().shows(QAccessible::PageTab, u"Look"_s));
}

TEST_F(Window, CardsAndInspectorShowWhatIsInTheFiles)
{
    // A second and a half of a loud square wave.
    writeSound(app.vaultFolder() + u"/SFX/Hits/Square.wav"_s, QByteArray("\0\x40\0\xC0", 4).repeated(36000));
    ASSERT_TRUE(waitUntil([this] {
        const QAccessibleInterface *card = controls.find(Card, u"Square"_s);
        return card && card->text(QAccessible::Description) == u"Audio, 1.5s"_s;
    }));
    const std::pair<QString, QString> cases[] = {
        {u"Square"_s, u"Channels: Mono"_s},
        {u"Amber"_s, u"Resolution: 64 × 36"_s},
        {u"Noir"_s, u"Type: LUT · CUBE"_s}, // cannot be read
    };
    for (const auto &[card, line] : cases) {
        ASSERT_TRUE(controls.click(Card, card));
        EXPECT_TRUE(controls.shows(Text, line)) << line.toStdString();
    }
    EXPECT_EQ(controls.find(Text, u"Channels: Mono"_s), nullptr) << "of the one before";
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
            if (!next.isEmpty() && next.left() < free)
                return false;
            free = next.isEmpty() ? free : next.right() + 1;
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

TEST_F(Window, FoldersAreWalkedWithTheKeyboard)
{
    ASSERT_TRUE(controls.focus(QAccessible::Tree, u"Folders"_s));
    const auto walk = [this](std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys)
            app.key(key);
        return state.scopeTitle();
    };
    EXPECT_EQ(walk({Qt::Key_Return}), u"Overlays");
    while (state.scopeTitle() != u"Hits")
        ASSERT_NE(walk({Qt::Key_Down, Qt::Key_Space}), u"Sports") << "Hits comes before Sports";
    EXPECT_EQ(walk({Qt::Key_Right, Qt::Key_Right, Qt::Key_Return}), u"Deep");
    EXPECT_EQ(walk({Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Return}), u"SFX");
    EXPECT_EQ(walk({Qt::Key_Left, Qt::Key_Down, Qt::Key_Return}), u"SFX") << "closed, it is the last row";
}

} // namespace cratewell::test

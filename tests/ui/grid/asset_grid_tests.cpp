#include "integrations/inserter.h"
#include "media/media.h"
#include "platform/fakes/fake_appearance.h"
#include "platform/fakes/fake_applications.h"
#include "platform/fakes/fake_file_chooser.h"
#include "state/notifications.h"
#include "support/small_library.h"
#include "ui/grid/selectable_item.h"
#include "ui/shell/asset_actions.h"
#include "ui/shell/ui_engine.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

struct RecordingBridge : EditorBridge
{
    QCoro::Task<InsertResult> insert(const Asset &asset) override
    {
        inserted << asset.url.baseName();
        co_return InsertResult{true, u"ok"_s};
    }
    QStringList inserted;
};

// The grid alone in a window, on a vault of 60 sounds named "Sound 01" to "Sound 60".
class AssetGridTest : public testing::Test
{
protected:
    static constexpr int fileCount = 60;

    void SetUp() override
    {
        for (int i = 1; i <= fileCount; ++i)
            library.write(u"SFX/Hits/%1.wav"_s.arg(soundName(i)));
        ASSERT_TRUE(library.scan());
        library.state.setSort(AssetOrder::Name);
        QObject::connect(&engine, &QQmlEngine::warnings,
                         [this](const QList<QQmlError> &warnings) { qmlWarnings += warnings; });
        QQmlComponent component(&engine);
        component.setData("import Cratewell\nAssetGrid { focus: true }", {});
        grid.reset(qobject_cast<QQuickItem *>(component.create()));
        ASSERT_TRUE(grid) << qPrintable(component.errorString());
        window.resize(640, 480);
        grid->setParentItem(window.contentItem());
        grid->setSize(window.size());
        window.show();
        window.requestActivate();
        ASSERT_TRUE(waitUntil([this] { return window.isActive() && grid->hasActiveFocus(); }));
        for (QQuickItem *item : grid->findChildren<QQuickItem *>()) {
            if (item->inherits("QQuickGridView"))
                view = item;
        }
        ASSERT_TRUE(view);
        columns = grid->property("columns").toInt();
        ASSERT_EQ(columns, 3);
    }

    void TearDown() override { EXPECT_EQ(qmlWarnings, QList<QQmlError>()); }

    static QString soundName(int number) { return u"Sound %1"_s.arg(number, 2, 10, QChar(u'0')); }
    int focusedRow() const
    {
        return library.state.selection() ? library.state.visibleAssets().row(library.state.selection()->url)
                                         : -1;
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&window, key, modifiers);
    }
    void focusRow(int row) { library.state.click(library.state.visibleAssets().at(row), {}); }
    // Where a card lies in the window; nothing when there is no such card.
    std::optional<double> top(const QString &name) const
    {
        for (QQuickItem *item : view->property("contentItem").value<QQuickItem *>()->childItems()) {
            if (qobject_cast<SelectableItem *>(item) && item->property("name") == name)
                return item->mapToScene({0, 0}).y();
        }
        return {};
    }
    bool sees(int row) const
    {
        const auto y = top(library.state.visibleAssets().at(row).url.baseName());
        return y && *y >= 0 && *y + view->property("cellHeight").toDouble() <= window.height() + 1;
    }
    void scrollTo(double y) { view->setProperty("contentY", y); }

    test::SmallLibrary library;
    FakeAppearance appearance;
    FakeApplications applications;
    RecordingBridge bridge;
    Media media{library.vault, library.prefs, SystemPaths::below(library.path(u"nowhere"_s))};
    Notifications notifications;
    Inserter inserter{library.prefs, library.state, applications, notifications, bridge, bridge};
    FakeFileChooser chooser;
    AssetActions actions{library.vault, library.prefs, library.state, inserter, library.workspace, chooser};
    QList<QQmlError> qmlWarnings;
    UiEngine engine{{library.prefs, library.state, library.vault, notifications, inserter, media, appearance,
                     library.defaults, library.workspace, actions}};
    QQuickWindow window;
    std::unique_ptr<QQuickItem> grid;
    QQuickItem *view = nullptr;
    int columns = 0;
};

TEST_F(AssetGridTest, KeysMoveByRowsAndColumnsAndNeverSideways)
{
    const int page = std::max(1, int(view->height() / view->property("cellHeight").toDouble()));
    // From, key, to: within a line and over its ends, at the ends of the list, by lines and by pages.
    const std::tuple<int, Qt::Key, int> cases[]{
        {0, Qt::Key_Right, 1},      {2, Qt::Key_Right, 3},
        {59, Qt::Key_Right, 59},    {3, Qt::Key_Left, 2},
        {0, Qt::Key_Left, 0},       {1, Qt::Key_Down, 4},
        {58, Qt::Key_Down, 58},     {4, Qt::Key_Up, 1},
        {2, Qt::Key_Up, 2},         {1, Qt::Key_PageDown, 1 + 3 * page},
        {55, Qt::Key_PageDown, 58}, {31, Qt::Key_PageUp, 31 - 3 * page},
        {4, Qt::Key_PageUp, 1},     {37, Qt::Key_Home, 0},
        {37, Qt::Key_End, 59}};
    for (const auto &[from, key, to] : cases) {
        SCOPED_TRACE(testing::Message() << key << " from " << from);
        focusRow(from);
        press(key);
        EXPECT_EQ(focusedRow(), to);
        EXPECT_EQ(library.state.selectedCount(), 1);
        EXPECT_TRUE(waitUntil([&, row = to] { return sees(row); }));
    }
}

TEST_F(AssetGridTest, AShortLastLineIsReachedFromAnyColumn)
{
    library.remove(u"SFX/Hits/Sound 59.wav"_s);
    library.remove(u"SFX/Hits/Sound 60.wav"_s);
    ASSERT_TRUE(library.scan());
    focusRow(56);
    press(Qt::Key_Down);
    EXPECT_EQ(focusedRow(), 57);
    press(Qt::Key_Up);
    EXPECT_EQ(focusedRow(), 54);
}

TEST_F(AssetGridTest, TheFirstKeyStartsAtAnEndAndShiftExtends)
{
    press(Qt::Key_Down);
    EXPECT_EQ(focusedRow(), 0);
    library.state.setSelection({});
    press(Qt::Key_End);
    EXPECT_EQ(focusedRow(), fileCount - 1);

    focusRow(4);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(library.state.selectedCount(), 4);
    press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(library.state.selectedCount(), 3);
    EXPECT_EQ(focusedRow(), 6);
}

TEST_F(AssetGridTest, ReturnAndDoubleClickInsertAndSpacePlays)
{
    library.prefs.setInsertTarget(u"resolve"_s);
    focusRow(3);
    press(Qt::Key_Return);
    press(Qt::Key_Enter);
    EXPECT_EQ(bridge.inserted, QStringList({soundName(4), soundName(4)}));

    ASSERT_TRUE(waitUntil([this] { return sees(1); }));
    const int cell = view->property("cellWidth").toInt();
    const QPoint second(cell + cell / 2, int(*top(soundName(2))) + 60);
    QTest::mouseDClick(&window, Qt::LeftButton, {}, second);
    EXPECT_EQ(focusedRow(), 1);
    EXPECT_EQ(bridge.inserted.last(), soundName(2));

    const int plays = library.state.playToggle();
    press(Qt::Key_Space);
    EXPECT_EQ(library.state.playToggle(), plays + 1);
}

TEST_F(AssetGridTest, TheCardUnderThePointerOffersItsStar)
{
    ASSERT_TRUE(waitUntil([this] { return sees(2); }));
    const int cell = view->property("cellWidth").toInt();
    const int y = int(*top(soundName(3)));
    QTest::mouseMove(&window, {2 * cell + cell / 2, y + 80});
    const QPoint star(3 * cell - 32, y + 20);
    QTest::mouseMove(&window, star);
    QTest::mouseClick(&window, Qt::LeftButton, {}, star);
    EXPECT_EQ(library.prefs.favorites(), LocationSet{library.path(u"SFX/Hits/Sound 03.wav"_s)});
    EXPECT_EQ(focusedRow(), -1) << "the press is the star's alone";
    QTest::mouseClick(&window, Qt::LeftButton, {}, star);
    EXPECT_TRUE(library.prefs.favorites().isEmpty());
}

TEST_F(AssetGridTest, WhatChangesAboveLeavesTheVisibleCardsInPlace)
{
    scrollTo(1000);
    const QString name = soundName(25); // its line reaches over the top edge or just below it
    ASSERT_TRUE(waitUntil([&] { return top(name).has_value(); }));
    const double before = *top(name);
    for (int i = 0; i < 6; ++i) // whole lines, so that the card keeps its column
        library.write(u"SFX/Hits/A %1.wav"_s.arg(i));
    ASSERT_TRUE(library.scan());
    ASSERT_TRUE(waitUntil([&] { return top(name) == before; }));

    for (int i = 0; i < 6; ++i)
        library.remove(u"SFX/Hits/A %1.wav"_s.arg(i));
    ASSERT_TRUE(library.scan());
    ASSERT_TRUE(waitUntil([&] { return top(name) == before; }));
}

TEST_F(AssetGridTest, AtTheBeginningWhatIsNewShows)
{
    library.write(u"SFX/Hits/A first.wav"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(waitUntil([this] { return sees(0) && top(u"A first"_s); }));
}

TEST_F(AssetGridTest, AnotherChoiceOfAssetsBeginsAtTheTop)
{
    scrollTo(1500);
    library.state.setSearch(u"sound"_s);
    EXPECT_TRUE(waitUntil([this] { return sees(0); })) << "a search that finds the same";
    scrollTo(1500);
    library.state.setSearch(u"sound 1"_s);
    EXPECT_TRUE(waitUntil([this] { return sees(0); }));
    EXPECT_EQ(library.state.visibleCount(), 10);

    library.state.setSearch({});
    scrollTo(1500);
    library.state.setScope(Scope::inFolder(library.path(u"SFX/Hits"_s)));
    EXPECT_TRUE(waitUntil([this] { return sees(0); }));
}

TEST_F(AssetGridTest, AShrinkingListNeverLeavesTheViewBeyondItsEnd)
{
    scrollTo(3000);
    for (int i = 4; i <= fileCount; ++i)
        library.remove(u"SFX/Hits/%1.wav"_s.arg(soundName(i)));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(waitUntil([this] { return sees(0) && sees(2); }));
}

TEST_F(AssetGridTest, SelectionIsToldToAssistivePrograms)
{
    static QList<QPair<QAccessible::Event, QString>> reported;
    reported.clear();
    // As when a screen reader runs; Qt has no public way to play one.
    QPlatformAccessibility *reader = QGuiApplicationPrivate::platformIntegration()->accessibility();
    reader->setActive(true);
    const auto before = QAccessible::installUpdateHandler([](QAccessibleEvent *event) {
        if (event->type() == QAccessible::SelectionAdd || event->type() == QAccessible::SelectionRemove)
            reported << std::pair(event->type(), event->object()->property("name").toString());
    });
    focusRow(0);
    focusRow(1);
    QAccessible::installUpdateHandler(before);
    reader->setActive(false);
    EXPECT_EQ(reported.count({QAccessible::SelectionAdd, soundName(1)}), 1);
    EXPECT_EQ(reported.count({QAccessible::SelectionRemove, soundName(1)}), 1);
    EXPECT_EQ(reported.count({QAccessible::SelectionAdd, soundName(2)}), 1);
}

TEST_F(AssetGridTest, ColumnsFollowTheCardSizeAndFillTheWidth)
{
    const std::pair<double, int> cases[]{{140, 640}, {200, 640},  {340, 640},
                                         {340, 200}, {200, 1900}, {200, 817}};
    for (const auto &[cardSize, width] : cases) {
        SCOPED_TRACE(testing::Message() << cardSize << " in " << width);
        library.prefs.setCardSize(cardSize);
        grid->setWidth(width);
        const int wanted = grid->property("columns").toInt();
        const double cell = view->property("cellWidth").toDouble();
        EXPECT_GE(wanted, 1);
        EXPECT_LE(wanted * cell, view->width());
        EXPECT_LT(view->width() - wanted * cell, wanted) << "less than a pixel a column is left over";
        EXPECT_EQ(int(view->width() / cell), wanted) << "as many as the view itself lays out";
        if (wanted > 1) {
            EXPECT_NEAR(cell - 12, cardSize, cardSize / 2);
        }
    }
}

} // namespace
} // namespace cratewell

#include "media/media.h"
#include "platform/fakes/fake_appearance.h"
#include "ui/actions_library.h"
#include "ui/grid/selectable_item.h"
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

// The grid alone in a window, on a vault of 59 sounds named "Sound 01" to "Sound 59": the last of its lines
// of three is one short.
class AssetGridTest : public testing::Test
{
protected:
    static constexpr int fileCount = 59;

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
        ASSERT_EQ(grid->property("columns").toInt(), 3);
    }
    void TearDown() override
    {
        grid.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // cards before their engine
        EXPECT_EQ(qmlWarnings, QList<QQmlError>());
    }

    static QString soundName(int number) { return u"Sound %1"_s.arg(number, 2, 10, QChar(u'0')); }
    int focusedRow() const
    {
        return library.state.selection() ? library.state.visibleAssets().row(library.state.selection()->url)
                                         : -1;
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

    test::ActionsLibrary library;
    FakeAppearance appearance;
    Media media{library.vault, library.prefs, SystemPaths::below(library.path(u"nowhere"_s))};
    QList<QQmlError> qmlWarnings;
    UiEngine engine{{library.prefs, library.state, library.vault, library.notifications, library.inserter,
                     media, appearance, library.defaults, library.workspace, library.actions}};
    QQuickWindow window;
    std::unique_ptr<QQuickItem> grid;
    QQuickItem *view = nullptr;
};

TEST_F(AssetGridTest, KeysMoveByRowsAndColumnsAndNeverSideways)
{
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_EQ(focusedRow(), 0) << "the first key only starts";
    library.state.setSelection({});
    QTest::keyClick(&window, Qt::Key_End);
    EXPECT_EQ(focusedRow(), 58);
    focusRow(4);
    QTest::keyClick(&window, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(library.state.selectedCount(), 4);
    QTest::keyClick(&window, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(library.state.selectedCount(), 3);
    EXPECT_EQ(focusedRow(), 6);

    const int page = std::max(1, int(view->height() / view->property("cellHeight").toDouble()));
    // From, key, to; at the end into the short last line from a column that it lacks.
    const std::tuple<int, Qt::Key, int> cases[]{
        {2, Qt::Key_Right, 3},  {58, Qt::Key_Right, 58},    {3, Qt::Key_Left, 2},
        {0, Qt::Key_Left, 0},   {1, Qt::Key_Down, 4},       {57, Qt::Key_Down, 57},
        {4, Qt::Key_Up, 1},     {2, Qt::Key_Up, 2},         {1, Qt::Key_PageDown, 1 + 3 * page},
        {4, Qt::Key_PageUp, 1}, {54, Qt::Key_PageDown, 57}, {31, Qt::Key_PageUp, 31 - 3 * page},
        {37, Qt::Key_Home, 0},  {37, Qt::Key_End, 58},      {56, Qt::Key_Down, 58},
        {58, Qt::Key_Up, 55}};
    for (const auto &[from, key, to] : cases) {
        SCOPED_TRACE(testing::Message() << key << " from " << from);
        focusRow(from);
        QTest::keyClick(&window, key);
        EXPECT_EQ(focusedRow(), to);
        EXPECT_EQ(library.state.selectedCount(), 1);
        EXPECT_TRUE(waitUntil([&, row = to] { return sees(row); }));
    }
}

TEST_F(AssetGridTest, ReturnAndDoubleClickInsertSpacePlaysAndTheStarIsACardsOwn)
{
    library.prefs.setInsertTarget(u"resolve"_s);
    const int cell = view->property("cellWidth").toInt();
    ASSERT_TRUE(waitUntil([this] { return sees(2); }));
    const int y = int(*top(soundName(3)));
    QTest::mouseMove(&window, {2 * cell + cell / 2, y + 80});
    const QPoint star(3 * cell - 32, y + 20);
    QTest::mouseMove(&window, star);
    QTest::mouseClick(&window, Qt::LeftButton, {}, star);
    EXPECT_EQ(library.prefs.favorites(), LocationSet{library.path(u"SFX/Hits/Sound 03.wav"_s)});
    EXPECT_EQ(focusedRow(), -1) << "the press is the star's alone";

    focusRow(3);
    QTest::keyClick(&window, Qt::Key_Return);
    QTest::keyClick(&window, Qt::Key_Enter);
    EXPECT_EQ(library.resolve.inserted, QStringList({soundName(4), soundName(4)}));
    QTest::mouseDClick(&window, Qt::LeftButton, {}, {cell + cell / 2, y + 60});
    EXPECT_EQ(focusedRow(), 1);
    EXPECT_EQ(library.resolve.inserted.last(), soundName(2));
    const int plays = library.state.playToggle();
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_EQ(library.state.playToggle(), plays + 1);
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

    scrollTo(3000);
    for (int i = 4; i <= fileCount; ++i)
        library.remove(u"SFX/Hits/%1.wav"_s.arg(soundName(i)));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(waitUntil([this] { return sees(0) && sees(2); })) << "never beyond the end";
}

TEST_F(AssetGridTest, AtTheBeginningWhatIsNewShowsAndAnotherChoiceBeginsThere)
{
    library.write(u"SFX/Hits/A sound.wav"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(waitUntil([this] { return sees(0) && top(u"A sound"_s); }));

    const std::function<void()> choices[] = {
        [this] { library.state.setSearch(u"sound"_s); }, // which finds the same
        [this] { library.state.setScope(Scope::inFolder(library.path(u"SFX/Hits"_s))); },
        [this] { library.state.setSearch(u"sound 1"_s); },
    };
    for (const auto &choose : choices) {
        scrollTo(1500);
        choose();
        EXPECT_TRUE(waitUntil([this] { return sees(0); })) << &choose - choices;
    }
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
    const std::pair<double, int> cases[]{{140, 640}, {340, 200}, {200, 1900}, {200, 817}};
    for (const auto &[cardSize, width] : cases) {
        SCOPED_TRACE(testing::Message() << cardSize << " in " << width);
        library.prefs.setCardSize(cardSize);
        grid->setWidth(width);
        const int wanted = grid->property("columns").toInt();
        const double cell = view->property("cellWidth").toDouble();
        EXPECT_EQ(int(view->width() / cell), wanted) << "as many as the view itself lays out";
        EXPECT_LT(view->width() - wanted * cell, wanted) << "less than a pixel a column is left over";
        EXPECT_TRUE(wanted == 1 || std::abs(cell - 12 - cardSize) <= cardSize / 2);
    }
}

} // namespace
} // namespace cratewell

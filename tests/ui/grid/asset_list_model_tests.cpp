#include "ui/grid/asset_list_model.h"

#include "support/small_library.h"
#include "ui/row_view.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

using Role = AssetListModel::Role;

class AssetListModelTest : public testing::Test
{
protected:
    void open(int count = 6)
    {
        for (int i = 0; i < count; ++i)
            library.write(QStringLiteral("SFX/Hits/hit %1.wav").arg(i), size_t(10 * count - i));
        ASSERT_TRUE(library.scan());
        state.setSort(AssetOrder::Name);
        model.setPrefs(&library.prefs);
        model.setState(&state);
        view.emplace(model, [this](int row) {
            QVariantList values;
            for (const int role :
                 {Role::UrlRole, Role::NameRole, Role::SelectedRole, Role::FocusedRole, Role::FavoriteRole})
                values.append(model.data(model.index(row), role));
            return values;
        });
    }
    bool agrees() const
    {
        bool found = view->agrees() && model.count() == model.rowCount();
        for (int row = 0; found && row < model.rowCount(); ++row)
            found = model.rowOf(model.urlAt(row)) == row;
        return found;
    }
    Location hit(int i) const { return library.path(QStringLiteral("SFX/Hits/hit %1.wav").arg(i)); }

    test::SmallLibrary library;
    AppState &state = library.state;
    AssetListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    std::optional<test::RowView<QVariantList>> view;
};

} // namespace

TEST_F(AssetListModelTest, FollowsTheDiskRowByRow)
{
    open();
    model.click(4, Qt::NoModifier);
    model.click(6, Qt::NoModifier); // past the end
    view->forgetCounts();
    library.write(u"SFX/Hits/hit 2b.wav"_s);
    library.write(u"SFX/Hits/hit 9.wav"_s);
    library.write(u"SFX/Hits/hit 3.wav"_s, 4);
    library.remove(u"SFX/Hits/hit 0.wav"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(agrees());
    EXPECT_EQ(model.rowOf(library.path(u"SFX/Hits/hit 2b.wav"_s)), 2);
    EXPECT_EQ(model.rowOf(library.path(u"SFX/Hits/hit 9.wav"_s)), 6);
    EXPECT_EQ(view->inserted, 2);
    EXPECT_EQ(view->removed, 1);
    EXPECT_EQ(view->changed, 1) << "a rewritten file is reported";
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(4));
}

TEST_F(AssetListModelTest, FollowsSearchSortAndScope)
{
    open();
    library.prefs.setFavorites({hit(1), hit(4)});
    model.click(1, Qt::NoModifier);
    model.click(3, Qt::ControlModifier);
    const std::function<void()> steps[] = {
        [this] { state.setSearch(u"4"_s); },
        [this] { state.setSearch(u"nothing like it"_s); },
        [this] { state.setSearch({}); },
        [this] { state.setSort(AssetOrder::Size); },
        [this] { state.setScope(Scope::of(Scope::Kind::Favorites)); },
        [this] { library.prefs.toggleFavorite(model.urlAt(0)); },
        [this] { state.setScope(Scope::all()); },
    };
    for (const auto &step : steps) {
        step();
        EXPECT_TRUE(agrees()) << &step - steps;
        EXPECT_EQ(model.currentRow(), model.rowOf(hit(3)));
    }
}

TEST_F(AssetListModelTest, TellsSelectionFocusAndFavoritesRowByRow)
{
    using enum AssetListModel::Role;
    open();
    QSignalSpy reported(&model, &AssetListModel::dataChanged);
    const struct
    {
        std::function<void()> act;
        std::vector<std::tuple<int, int, int>> changes; // first and last row, role
    } steps[] = {
        {[this] { model.click(1, Qt::NoModifier); }, {{1, 1, SelectedRole}, {1, 1, FocusedRole}}},
        {[this] { model.click(4, Qt::ShiftModifier); },
         {{2, 4, SelectedRole}, {1, 1, FocusedRole}, {4, 4, FocusedRole}}},
        {[this] { model.click(3, Qt::ControlModifier); },
         {{3, 3, SelectedRole}, {4, 4, FocusedRole}, {3, 3, FocusedRole}}},
        {[this] { state.selectAll(); }, {{0, 0, SelectedRole}, {3, 3, SelectedRole}, {5, 5, SelectedRole}}},
        {[this] { library.prefs.toggleFavorite(hit(2)); }, {{2, 2, FavoriteRole}}},
        {[this] {
             library.prefs.setFavorites({hit(0), hit(1)});
         },
         {{0, 2, FavoriteRole}}},
        {[this] { state.setSelection({}); }, {{3, 3, FocusedRole}}},
    };
    for (const auto &step : steps) {
        step.act();
        std::vector<std::tuple<int, int, int>> changes;
        for (const auto &arguments : std::exchange(static_cast<QList<QVariantList> &>(reported), {}))
            changes.emplace_back(arguments[0].toModelIndex().row(), arguments[1].toModelIndex().row(),
                                 arguments[2].value<QList<int>>().value(0));
        EXPECT_EQ(changes, step.changes) << &step - steps;
        EXPECT_TRUE(agrees());
    }
}

TEST_F(AssetListModelTest, LaysOutInPlaceWhenTooMuchChanges)
{
    const int count = 2 * rowRunLimit + 20;
    open(count);
    model.click(model.rowOf(hit(3)), Qt::NoModifier);
    view->forgetCounts();

    // Every second name, which is more runs than the limit.
    for (int i = 0; i < count; i += 2)
        library.remove(QStringLiteral("SFX/Hits/hit %1.wav").arg(i));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(agrees());
    EXPECT_EQ(view->layouts, 1);
    EXPECT_EQ(view->runs, 1) << "the tail goes in one run";
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(3));

    for (int i = 0; i < count; i += 2)
        library.write(QStringLiteral("SFX/Hits/hit %1.wav").arg(i), size_t(i));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(agrees());
    EXPECT_EQ(view->layouts, 2);

    const QPersistentModelIndex first = model.index(0);
    state.setSort(AssetOrder::Size);
    EXPECT_TRUE(agrees());
    EXPECT_EQ(model.urlAt(first.row()), hit(0));
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(3));
    EXPECT_EQ(view->resets, 0);
}

TEST_F(AssetListModelTest, SurvivesChangesWhileChangesAreApplied)
{
    open();
    model.click(2, Qt::NoModifier);
    const auto meddle = [this] {
        QObject::disconnect(&model, &AssetListModel::rowsRemoved, &state, nullptr);
        state.setSearch({});
        state.selectAll();
        library.prefs.toggleFavorite(hit(5));
    };
    QObject::connect(&model, &AssetListModel::rowsRemoved, &state, meddle);
    state.setSearch(u"5"_s);
    EXPECT_EQ(model.count(), 6);
    EXPECT_TRUE(agrees());
    EXPECT_TRUE(model.data(model.index(5), Role::FavoriteRole).toBool());
    EXPECT_TRUE(model.data(model.index(0), Role::SelectedRole).toBool());
}

} // namespace cratewell

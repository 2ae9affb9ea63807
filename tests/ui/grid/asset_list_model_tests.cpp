#include "ui/grid/asset_list_model.h"

#include "support/small_library.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gmock/gmock.h>

namespace cratewell {

using testing::ElementsAre;
using namespace Qt::StringLiterals;

namespace {

using Role = AssetListModel::Role;

// What a view knows of a model that it asks only for what it was reported of. It must always equal the model.
class View
{
public:
    explicit View(AssetListModel &model) : m_model(model)
    {
        QObject::connect(&model, &AssetListModel::rowsInserted, &m_context,
                         [this](const QModelIndex &, int first, int last) {
                             for (int row = first; row <= last; ++row)
                                 m_rows.insert(m_rows.begin() + row, read(row));
                             inserted += last - first + 1;
                             ++runs;
                         });
        QObject::connect(&model, &AssetListModel::rowsRemoved, &m_context,
                         [this](const QModelIndex &, int first, int last) {
                             m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
                             removed += last - first + 1;
                             ++runs;
                         });
        QObject::connect(&model, &AssetListModel::dataChanged, &m_context,
                         [this](const QModelIndex &first, const QModelIndex &last) {
                             for (int row = first.row(); row <= last.row(); ++row)
                                 m_rows[size_t(row)] = read(row);
                             changed += last.row() - first.row() + 1;
                         });
        QObject::connect(&model, &AssetListModel::layoutChanged, &m_context, [this] {
            readAll();
            ++layouts;
        });
        QObject::connect(&model, &AssetListModel::modelReset, &m_context, [this] { readAll(); });
        readAll();
    }

    bool agrees() const
    {
        bool equal = m_model.rowCount() == int(m_rows.size()) && m_model.count() == m_model.rowCount();
        for (int row = 0; equal && row < m_model.rowCount(); ++row)
            equal = m_rows[size_t(row)] == read(row) && m_model.rowOf(m_model.urlAt(row)) == row;
        return equal;
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const QVariantList &row : m_rows)
            names.push_back(row[1].toString().toStdString());
        return names;
    }
    void forgetCounts() { inserted = removed = changed = runs = layouts = 0; }

    int inserted = 0;
    int removed = 0;
    int changed = 0;
    int runs = 0;
    int layouts = 0;

private:
    QVariantList read(int row) const
    {
        QVariantList values;
        for (const int role : {int(Role::UrlRole), int(Role::NameRole), int(Role::SelectedRole),
                               int(Role::FocusedRole), int(Role::FavoriteRole)})
            values.append(m_model.data(m_model.index(row), role));
        return values;
    }
    void readAll()
    {
        m_rows.clear();
        for (int row = 0; row < m_model.rowCount(); ++row)
            m_rows.push_back(read(row));
    }

    AssetListModel &m_model;
    QObject m_context;
    std::vector<QVariantList> m_rows;
};

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
        view.emplace(model);
    }
    Location hit(int i) const { return library.path(QStringLiteral("SFX/Hits/hit %1.wav").arg(i)); }

    test::SmallLibrary library;
    AppState &state = library.state;
    AssetListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    std::optional<View> view;
};

} // namespace

TEST_F(AssetListModelTest, DescribesAnAsset)
{
    library.write(u"Overlays/Old.film.burn.MOV"_s);
    library.prefs.toggleFavorite(library.path(u"Overlays/Old.film.burn.MOV"_s));
    open(0);
    EXPECT_EQ(model.roleNames().size(), 9);
    model.click(0, Qt::NoModifier);
    const std::pair<Role, QVariant> values[] = {
        {Role::UrlRole, QVariant::fromValue(library.path(u"Overlays/Old.film.burn.MOV"_s))},
        {Role::NameRole, u"Old.film.burn"_s},
        {Role::FileNameRole, u"Old.film.burn.MOV"_s},
        {Role::KindRole, QVariant::fromValue(AssetKind::Video)},
        {Role::KindLabelRole, u"Video"_s},
        {Role::ExtensionRole, u"MOV"_s},
        {Role::SelectedRole, true},
        {Role::FocusedRole, true},
        {Role::FavoriteRole, true},
    };
    for (const auto &[role, value] : values)
        EXPECT_EQ(model.data(model.index(0), role), value) << role;
    EXPECT_EQ(model.assetAt(1), nullptr);
    EXPECT_EQ(model.assetAt(-1), nullptr);
    EXPECT_TRUE(model.urlAt(1).isEmpty());
    model.click(1, Qt::NoModifier);
    model.toggleFavorite(-1);
    EXPECT_EQ(model.currentRow(), 0);
}

TEST_F(AssetListModelTest, FollowsTheDiskRowByRow)
{
    open();
    model.click(4, Qt::NoModifier);
    view->forgetCounts();
    library.write(u"SFX/Hits/hit 2b.wav"_s);
    library.write(u"SFX/Hits/hit 9.wav"_s);
    library.remove(u"SFX/Hits/hit 0.wav"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(view->agrees());
    EXPECT_THAT(view->names(), ElementsAre("hit 1", "hit 2", "hit 2b", "hit 3", "hit 4", "hit 5", "hit 9"));
    EXPECT_EQ(view->inserted, 2);
    EXPECT_EQ(view->removed, 1);
    EXPECT_EQ(view->changed, 0);
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(4));

    view->forgetCounts();
    library.write(u"SFX/Hits/hit 3.wav"_s, 4);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(view->runs, 0);
    EXPECT_EQ(view->changed, 1) << "a rewritten file is reported";
    EXPECT_EQ(model.assetAt(model.rowOf(hit(3)))->size, 4);
}

TEST_F(AssetListModelTest, FollowsSearchSortAndScope)
{
    open();
    library.prefs.toggleFavorite(hit(1));
    library.prefs.toggleFavorite(hit(4));
    model.click(1, Qt::NoModifier);
    model.click(3, Qt::ControlModifier);
    const std::function<void()> steps[] = {
        [this] { state.setSearch(u"4"_s); },
        [this] { state.setSearch(u"nothing like it"_s); },
        [this] { state.setSearch({}); },
        [this] { state.setSort(AssetOrder::Size); },
        [this] { state.setSort(AssetOrder::Name); },
        [this] { state.setScope(Scope::of(Scope::Kind::Favorites)); },
        [this] { model.toggleFavorite(0); },
        [this] { state.setScope(Scope::of(Scope::Kind::Trash)); },
        [this] { state.setScope(Scope::all()); },
        [this] { model.setState(nullptr); },
        [this] { model.setState(&state); },
    };
    for (const auto &step : steps) {
        step();
        EXPECT_TRUE(view->agrees()) << &step - steps;
        EXPECT_EQ(model.currentRow(), model.rowOf(hit(3)));
    }
}

TEST_F(AssetListModelTest, TellsSelectionFocusAndFavoritesRowByRow)
{
    open();
    QSignalSpy reported(&model, &AssetListModel::dataChanged);
    struct Step
    {
        std::function<void()> act;
        std::vector<std::tuple<int, int, int>> changes; // first and last row, role
    };
    const Step steps[] = {
        {[this] { model.click(1, Qt::NoModifier); }, {{1, 1, Role::SelectedRole}, {1, 1, Role::FocusedRole}}},
        {[this] { model.click(4, Qt::ShiftModifier); },
         {{2, 4, Role::SelectedRole}, {1, 1, Role::FocusedRole}, {4, 4, Role::FocusedRole}}},
        {[this] { model.click(3, Qt::ControlModifier); },
         {{3, 3, Role::SelectedRole}, {4, 4, Role::FocusedRole}, {3, 3, Role::FocusedRole}}},
        {[this] { state.selectAll(); },
         {{0, 0, Role::SelectedRole},
          {3, 3, Role::SelectedRole}, //
          {5, 5, Role::SelectedRole}}},
        {[this] { model.toggleFavorite(2); }, {{2, 2, Role::FavoriteRole}}},
        {[this] {
             library.prefs.setFavorites({hit(0), hit(1)});
         },
         {{0, 2, Role::FavoriteRole}}},
        {[this] { state.setSelection({}); }, {{3, 3, Role::FocusedRole}}},
    };
    for (const Step &step : steps) {
        step.act();
        std::vector<std::tuple<int, int, int>> changes;
        for (const auto &arguments : std::exchange(static_cast<QList<QVariantList> &>(reported), {}))
            changes.emplace_back(arguments[0].toModelIndex().row(), arguments[1].toModelIndex().row(),
                              arguments[2].value<QList<int>>().value(0));
        EXPECT_EQ(changes, step.changes) << &step - steps;
        EXPECT_TRUE(view->agrees());
    }
}

TEST_F(AssetListModelTest, LaysOutInPlaceWhenTooMuchChanges)
{
    const int count = 2 * rowRunLimit + 20;
    open(count);
    const QPersistentModelIndex kept = model.index(model.rowOf(hit(count - 1)));
    model.click(model.rowOf(hit(3)), Qt::NoModifier);
    view->forgetCounts();
    QSignalSpy begun(&model, &AssetListModel::aboutToApply);
    QSignalSpy done(&model, &AssetListModel::applied);
    QSignalSpy resets(&model, &AssetListModel::modelReset);

    // Every second name, which is more runs than the limit.
    for (int i = 0; i < count; i += 2)
        library.remove(QStringLiteral("SFX/Hits/hit %1.wav").arg(i));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(view->agrees());
    EXPECT_EQ(view->layouts, 1);
    EXPECT_EQ(view->runs, 1) << "the tail goes in one run";
    EXPECT_EQ(begun.takeFirst().at(0).toInt(), count / 2);
    EXPECT_EQ(done.takeFirst().at(0).toBool(), true);
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(3));

    for (int i = 0; i < count; i += 2)
        library.write(QStringLiteral("SFX/Hits/hit %1.wav").arg(i), size_t(i));
    ASSERT_TRUE(library.scan());
    EXPECT_TRUE(view->agrees());
    EXPECT_EQ(view->layouts, 2);
    EXPECT_EQ(model.urlAt(model.currentRow()), hit(3));

    const QPersistentModelIndex first = model.index(0);
    state.setSort(AssetOrder::Size);
    EXPECT_TRUE(view->agrees());
    EXPECT_EQ(model.urlAt(first.row()), hit(0));
    EXPECT_EQ(resets.count(), 0);

    state.selectAll();
    EXPECT_TRUE(view->agrees());
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
    EXPECT_TRUE(view->agrees());
    EXPECT_TRUE(model.data(model.index(5), Role::FavoriteRole).toBool());
    EXPECT_TRUE(model.data(model.index(0), Role::SelectedRole).toBool());
}

} // namespace cratewell

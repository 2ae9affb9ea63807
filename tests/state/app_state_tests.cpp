#include "state/app_state.h"

#include "support/small_library.h"
#include "vault/trash_item.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace cratewell {

using testing::ElementsAre;
using namespace Qt::StringLiterals;

namespace {

constexpr auto ctrl = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;

// Lists of assets are compared as their names without extension, joined.
class AppStateTest : public testing::Test
{
protected:
    void SetUp() override
    {
        library.write(u"Overlays/Leaks/Flash 2.mov"_s, 40);
        library.write(u"Overlays/Leaks/Flash 10.mov"_s, 30);
        library.write(u"Overlays/Grain.png"_s, 20);
        library.write(u"LUTs/Cold.cube"_s, 10);
        library.write(u"SFX/Hits/boom.wav"_s, 50);
        ASSERT_TRUE(library.scan());
        state.setSort(AssetOrder::Name);
    }

    static std::string joined(const std::vector<Asset> &assets)
    {
        QStringList names;
        for (const Asset &asset : assets)
            names += asset.url.baseName();
        return names.join(u'|').toStdString();
    }
    std::string visible() const
    {
        std::vector<Asset> assets;
        for (int row = 0; row < state.visibleCount(); ++row)
            assets.push_back(state.visibleAssets().at(row));
        return joined(assets);
    }
    std::string selected() const { return joined(state.selectedAssets()); }
    std::string focused() const { return state.selection() ? joined({*state.selection()}) : ""; }
    void click(int row, Qt::KeyboardModifiers modifiers = {})
    {
        state.click(Asset(state.visibleAssets().at(row)), modifiers);
    }
    Location path(const QString &relative) const { return library.path(relative); }

    test::SmallLibrary library;
    AppState &state = library.state;
    const Location grain = path(u"Overlays/Grain.png"_s);
    const Location cold = path(u"LUTs/Cold.cube"_s);
    const Location gone = path(u"Overlays/gone.png"_s);
};

} // namespace

TEST_F(AppStateTest, ListsWhatTheScopeHoldsAndTheSearchFindsInTheChosenOrder)
{
    library.prefs.setFavorites({cold, grain, gone});
    library.prefs.setRecent({grain, path(u"SFX/Hits/boom.wav"_s), cold, gone});
    using enum AssetOrder;
    const Scope all = Scope::all();
    const Scope recent = Scope::of(Scope::Kind::Recent);
    const std::tuple<Scope, AssetOrder, QString, const char *> cases[] = {
        {all, Name, {}, "boom|Cold|Flash 2|Flash 10|Grain"},
        {all, Size, {}, "boom|Flash 2|Flash 10|Grain|Cold"},
        {Scope::inFolder(path(u"Overlays"_s)), Size, {}, "Flash 2|Flash 10|Grain"},
        {Scope::of(Scope::Kind::Favorites), Size, {}, "Grain|Cold"},
        {recent, Name, {}, "Grain|boom|Cold"},
        {recent, Size, u"OO"_s, "boom"},
        {Scope::of(Scope::Kind::Trash), Name, {}, ""},
        {all, Name, u"LEAKS"_s, "Flash 2|Flash 10"},
        {all, Name, u"cold"_s, "Cold"},
    };
    for (const auto &[scope, order, search, names] : cases) {
        state.setScope(scope);
        state.setSort(order);
        state.setSearch(search);
        EXPECT_EQ(visible(), names) << qPrintable(scope.title() + search);
    }
    library.write(u"LUTs/Colder.cube"_s);
    library.write(u"LUTs/Warm.cube"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(visible(), "Cold|Colder") << "a search holds for the next snapshot";
}

TEST_F(AppStateTest, ReportsTheListOnlyWhenItDiffersAndIsReady)
{
    QSignalSpy reported(&state, &AppState::visibleAssetsChanged);
    const auto expectReady = [&] { EXPECT_EQ(state.visibleCount(), 2); };
    const auto searched = QObject::connect(&state, &AppState::searchChanged, expectReady);
    state.setSearch(u"flash"_s);
    state.setSearch(u"flash "_s);
    EXPECT_EQ(reported.count(), 1) << "the same assets match";
    QObject::disconnect(searched);
    state.setSort(AssetOrder::Size);
    EXPECT_EQ(reported.count(), 1) << "both orders agree about these";
    library.prefs.toggleFavorite(cold);
    EXPECT_EQ(reported.count(), 1) << "favorites are not shown";
    state.setScope(Scope::of(Scope::Kind::Favorites));
    state.setSearch({});
    library.prefs.toggleFavorite(cold);
    EXPECT_EQ(reported.count(), 4);
}

TEST_F(AppStateTest, ClicksAndKeysSelectAsInAFileManager)
{
    const auto press = [this](int row, Qt::KeyboardModifiers keys = {}) {
        return [this, row, keys] { click(row, keys); };
    };
    const auto move = [this](int delta) { return [this, delta] { state.moveBy(delta); }; };
    const auto search = [this](const QString &text) { return [this, text] { state.setSearch(text); }; };
    const auto selectAll = [this] { state.selectAll(); };
    // What it shows, what is done, what is selected and focused then.
    const std::tuple<const char *, std::function<void()>, const char *, const char *> steps[] = {
        {"Shift without an anchor", press(3, shift), "Flash 10", "Flash 10"},
        {"a range", press(1, shift), "Cold|Flash 2|Flash 10", "Cold"},
        {"the anchor stays", press(4, shift), "Flash 10|Grain", "Grain"},
        {"one more", press(0, ctrl), "boom|Flash 10|Grain", "boom"},
        {"Ctrl wins over Shift", press(4, ctrl | shift), "boom|Flash 10", "Grain"},
        {"and moved the anchor", press(2, shift), "Flash 2|Flash 10|Grain", "Flash 2"},
        {"one", press(0), "boom", "boom"},
        {"a search", search(u"flash"_s), "", "boom"},
        {"the anchor was filtered out", press(1, shift), "Flash 10", "Flash 10"},
        {"all, a visible focus stays", selectAll, "Flash 2|Flash 10", "Flash 10"},
        {"only visible ones are listed", search(u"cold"_s), "", "Flash 10"},
        {"a focus out of sight goes", selectAll, "Cold", "Cold"},
        {"nothing in view", search(u"nothing like it"_s), "", "Cold"},
        {"no move then", move(1), "", "Cold"},
        {"all of nothing", selectAll, "", "Cold"},
        {"the focus comes back into view", search({}), "", "Cold"},
        {"up as far as can be", move(-INT_MAX), "boom", "boom"},
        {"down past the end", move(INT_MAX), "Grain", "Grain"},
        {"up two", move(-2), "Flash 2", "Flash 2"},
        {"a move sets the anchor", press(4, shift), "Flash 2|Flash 10|Grain", "Grain"},
        {"a search hides the focus", search(u"flash"_s), "Flash 2|Flash 10", "Grain"},
        {"which then counts as none", move(2), "Flash 10", "Flash 10"},
    };
    for (const auto &[what, act, names, focus] : steps) {
        act();
        EXPECT_EQ(selected(), names) << what;
        EXPECT_EQ(focused(), focus) << what;
    }
    EXPECT_EQ(state.selectedCount(), 1);
}

TEST_F(AppStateTest, AnotherScopeOrRootEmptiesTheSelectionButKeepsTheFocus)
{
    click(1);
    click(2, ctrl);
    state.setScope(Scope::inFolder(path(u"Overlays"_s)));
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_EQ(focused(), "Flash 2");
    click(2, shift);
    EXPECT_EQ(selected(), "Grain") << "the anchor is gone too";

    library.vault.changeRoot(path(u"Overlays"_s));
    EXPECT_EQ(state.scope(), Scope::all());
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_TRUE(test::waitUntil([this] { return state.visibleCount() == 0; }));
    EXPECT_FALSE(state.hasSelection()) << "what it was is not in this vault";
}

TEST_F(AppStateTest, SelectionFollowsTheDisk)
{
    QSignalSpy reported(&state, &AppState::selectedChanged);
    state.setSelected({cold, gone});
    state.setSelected({gone, cold});
    EXPECT_EQ(reported.count(), 1);
    EXPECT_EQ(state.selectedCount(), 2) << "whether they exist or not";
    EXPECT_EQ(selected(), "Cold");

    click(3);
    click(4, ctrl);
    QSignalSpy focusMoved(&state, &AppState::selectionChanged);
    library.write(u"Overlays/A new one.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(focusMoved.count(), 0) << "an equal asset stays focused";
    library.write(u"Overlays/Grain.png"_s, 77);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(focusMoved.count(), 1);
    EXPECT_EQ(state.selection()->size, 77);
    EXPECT_EQ(selected(), "Flash 10|Grain");

    library.remove(u"Overlays/Grain.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_FALSE(state.hasSelection());
    EXPECT_EQ(selected(), "Flash 10");
    EXPECT_TRUE(state.selected().contains(grain));
    library.write(u"Overlays/Grain.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(selected(), "Flash 10|Grain");
    EXPECT_EQ(state.selectedCount(), 2);
}

TEST_F(AppStateTest, ANewFolderGoesWhereTheUserIs)
{
    library.prefs.setVaultPath(path({}).text());
    click(2);
    click(4, ctrl);
    state.newFolderFromSelection();
    EXPECT_TRUE(state.showNewFolder());
    EXPECT_EQ(state.newFolderParent(), path(u"Overlays/Leaks"_s));
    EXPECT_THAT(state.pendingMove(), ElementsAre(path(u"Overlays/Leaks/Flash 2.mov"_s), grain));

    state.newFolderHere();
    EXPECT_EQ(state.newFolderParent(), path(u"Overlays"_s));
    EXPECT_THAT(state.pendingMove(), ElementsAre());
    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    state.newFolderHere();
    EXPECT_EQ(state.newFolderParent(), path(u"SFX/Hits"_s));

    state.setShowNewFolder(false);
    state.newFolderFromSelection();
    EXPECT_FALSE(state.showNewFolder()) << "nothing is selected any more";
}

TEST_F(AppStateTest, ARenamedFolderTakesItsViewAndItsColorAlong)
{
    const Location hit = path(u"SFX/Hit"_s);
    const Location hits = path(u"SFX/Hits"_s);
    const Location impacts = path(u"SFX/Impacts"_s);
    library.prefs.setFolderColors({{hit, u"#FF4ECD"_s}, {hits, u"#2FD6FF"_s}});
    state.setScope(Scope::inFolder(hit));
    Q_EMIT library.vault.itemRenamed(hit, impacts);
    EXPECT_EQ(state.scope(), Scope::inFolder(impacts));
    const FolderColors colors{{impacts, u"#FF4ECD"_s}, {hits, u"#2FD6FF"_s}};
    EXPECT_EQ(library.prefs.folderColors(), colors);
    Q_EMIT library.vault.itemRenamed(impacts, impacts);
    EXPECT_EQ(library.prefs.folderColors(), colors) << "the same name changes nothing";
    Q_EMIT library.vault.itemRenamed(hits, hit);
    EXPECT_EQ(state.scope(), Scope::inFolder(impacts)) << "another folder was renamed";
}

TEST_F(AppStateTest, TrashedPlacesLeaveTheViewAndTheSelection)
{
    const auto trash = [this](const QString &place) {
        TrashItem item;
        item.original = path(place).text();
        Q_EMIT library.vault.itemsTrashed({item});
    };
    const std::tuple<QString, QString, bool> cases[] = {{u"SFX/Hit"_s, u"SFX/Hit"_s, false},
                                                        {u"SFX/Hit/Deep"_s, u"SFX/Hit"_s, false},
                                                        {u"SFX/Hits"_s, u"SFX/Hit"_s, true},
                                                        {u"SFX/Hit"_s, u"SFX/Hit/Deep"_s, true}};
    for (const auto &[scope, trashed, stays] : cases) {
        state.setScope(Scope::inFolder(path(scope)));
        trash(trashed);
        EXPECT_EQ(state.scope() != Scope::all(), stays) << qPrintable(scope + trashed);
    }
    state.setScope(Scope::all());
    click(1);
    click(2, ctrl);
    trash(u"LUTs/Cold.cube"_s);
    EXPECT_EQ(selected(), "Flash 2");
    EXPECT_EQ(focused(), "Flash 2") << "the focused one was not among the trashed";
    trash(u"Overlays/Leaks/Flash 2.mov"_s);
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_FALSE(state.hasSelection());
}

} // namespace cratewell

#include "state/app_state.h"

#include "support/small_library.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace cratewell {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using namespace Qt::StringLiterals;

namespace {

constexpr auto ctrl = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;

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

    std::vector<std::string> visible() const
    {
        std::vector<std::string> names;
        names.reserve(size_t(state.visibleCount()));
        for (int row = 0; row < state.visibleCount(); ++row)
            names.push_back(state.visibleAssets().at(row).url.name().toStdString());
        return names;
    }
    std::vector<std::string> selected() const
    {
        std::vector<std::string> names;
        for (const Asset &asset : state.selectedAssets())
            names.push_back(asset.url.name().toStdString());
        return names;
    }
    std::string focused() const
    {
        return state.selection() ? state.selection()->url.name().toStdString() : std::string();
    }
    void click(int row, Qt::KeyboardModifiers modifiers = {})
    {
        state.click(Asset(state.visibleAssets().at(row)), modifiers);
    }

    test::SmallLibrary library;
    AppState &state = library.state;
    const std::vector<std::string> byName{"boom.wav", "Cold.cube", "Flash 2.mov", "Flash 10.mov",
                                          "Grain.png"};
};

} // namespace

TEST_F(AppStateTest, ListsWhatTheScopeHoldsInTheChosenOrder)
{
    EXPECT_EQ(visible(), byName);
    state.setSort(AssetOrder::Kind);
    EXPECT_THAT(visible(), ElementsAre("boom.wav", "Cold.cube", "Grain.png", "Flash 10.mov", "Flash 2.mov"));
    state.setSort(AssetOrder::Size);
    EXPECT_THAT(visible(), ElementsAre("boom.wav", "Flash 2.mov", "Flash 10.mov", "Grain.png", "Cold.cube"));

    state.setScope(Scope::inFolder(library.path(u"Overlays"_s)));
    EXPECT_THAT(visible(), ElementsAre("Flash 2.mov", "Flash 10.mov", "Grain.png"));
    state.setScope(Scope::inFolder(library.path(u"Overlays/Nowhere"_s)));
    EXPECT_THAT(visible(), IsEmpty());

    library.prefs.toggleFavorite(library.path(u"LUTs/Cold.cube"_s));
    library.prefs.toggleFavorite(library.path(u"Overlays/Grain.png"_s));
    library.prefs.toggleFavorite(library.path(u"Overlays/gone.png"_s));
    state.setScope(Scope::of(Scope::Kind::Favorites));
    EXPECT_THAT(visible(), ElementsAre("Grain.png", "Cold.cube"));

    library.prefs.noteInserted(library.path(u"Overlays/gone.png"_s));
    library.prefs.noteInserted(library.path(u"LUTs/Cold.cube"_s));
    library.prefs.noteInserted(library.path(u"SFX/Hits/boom.wav"_s));
    library.prefs.noteInserted(library.path(u"Overlays/Grain.png"_s));
    state.setScope(Scope::of(Scope::Kind::Recent));
    for (const AssetOrder order : {AssetOrder::Name, AssetOrder::Size}) {
        state.setSort(order);
        EXPECT_THAT(visible(), ElementsAre("Grain.png", "boom.wav", "Cold.cube"));
    }
    state.setSearch(u"OO"_s);
    EXPECT_THAT(visible(), ElementsAre("boom.wav"));

    for (const Scope &page :
         {Scope::plugin(u"resolve"_s), Scope::of(Scope::Kind::Importer), Scope::of(Scope::Kind::Trash)}) {
        state.setScope(page);
        EXPECT_THAT(visible(), IsEmpty());
    }
}

TEST_F(AppStateTest, SearchesNamesHoldingFoldersAndKinds)
{
    const std::pair<QString, std::vector<std::string>> cases[] = {
        {u"lut"_s, {"Cold.cube"}},
        {u"LEAKS"_s, {"Flash 2.mov", "Flash 10.mov"}},
        {u"overlays"_s, {"Grain.png"}}, // the holding folder only, not those above
        {u" "_s, {"Flash 2.mov", "Flash 10.mov"}},
        {u"mov"_s, {}}, // extensions are not searched
        {u"video"_s, {"Flash 2.mov", "Flash 10.mov"}},
        {u""_s, byName},
    };
    for (const auto &[text, names] : cases) {
        state.setSearch(text);
        EXPECT_EQ(visible(), names) << qPrintable(text);
    }
}

TEST_F(AppStateTest, TellsOfTheListOnlyWhenItDiffersAndIsReady)
{
    QSignalSpy reported(&state, &AppState::visibleAssetsChanged);
    std::vector<int> counts;
    QObject::connect(&state, &AppState::visibleAssetsChanged, &state,
                     [&] { counts.push_back(state.visibleCount()); });
    QObject::connect(&state, &AppState::searchChanged, &state,
                     [&] { counts.push_back(state.visibleCount()); });

    state.setSearch(u"flash"_s);
    EXPECT_THAT(counts, ElementsAre(2, 2));
    state.setSearch(u"flash "_s);
    state.setSearch(u"flash "_s);
    EXPECT_EQ(reported.count(), 1) << "the same assets match";
    state.setSort(AssetOrder::Size);
    EXPECT_EQ(reported.count(), 1) << "both orders agree about these";
    library.prefs.toggleFavorite(library.path(u"LUTs/Cold.cube"_s));
    EXPECT_EQ(reported.count(), 1) << "favorites are not shown";
    state.setScope(Scope::of(Scope::Kind::Favorites));
    EXPECT_EQ(reported.count(), 2);
    state.setSearch({});
    library.prefs.toggleFavorite(library.path(u"LUTs/Cold.cube"_s));
    EXPECT_EQ(reported.count(), 4);
}

TEST_F(AppStateTest, ClicksSelectAsAFileManagerDoes)
{
    struct Click
    {
        int row;
        Qt::KeyboardModifiers modifiers;
        std::vector<int> selected;
    };
    const Click clicks[] = {
        {3, shift, {3}},                                  // no anchor yet
        {1, shift, {1, 2, 3}}, {4, shift, {3, 4}},        // the anchor stays
        {0, ctrl, {0, 3, 4}},  {4, ctrl | shift, {0, 3}}, // Ctrl wins
        {2, shift, {2, 3, 4}},                            // and moved the anchor
        {1, {}, {1}},          {1, ctrl, {}},
    };
    for (const Click &each : clicks) {
        SCOPED_TRACE(each.row);
        click(each.row, each.modifiers);
        std::vector<std::string> expected;
        for (const int row : each.selected)
            expected.push_back(byName[size_t(row)]);
        EXPECT_EQ(selected(), expected);
        EXPECT_EQ(state.selectedCount(), int(expected.size()));
        EXPECT_EQ(focused(), byName[size_t(each.row)]);
    }

    click(0);
    state.setSearch(u"flash"_s);
    click(1, shift);
    EXPECT_THAT(selected(), ElementsAre("Flash 10.mov")) << "the anchor was filtered out";
}

TEST_F(AppStateTest, MovesWithinTheListAndSelectsWhatItReaches)
{
    const std::pair<int, int> moves[] = {{-1, 0}, {100, 4}, {-2, 2}, {-INT_MAX, 0}, {INT_MAX, 4}};
    for (const auto &[delta, row] : moves) {
        state.moveBy(delta);
        EXPECT_EQ(focused(), byName[size_t(row)]) << delta;
        EXPECT_THAT(selected(), ElementsAre(byName[size_t(row)]));
    }
    state.moveBy(-2);
    click(4, shift);
    EXPECT_EQ(selected().size(), 3u) << "a move sets the anchor";

    state.setSearch(u"nothing like it"_s);
    state.moveBy(1);
    EXPECT_EQ(focused(), byName[4]);
    state.setSearch(u"cold"_s);
    state.moveBy(1);
    EXPECT_EQ(focused(), "Cold.cube") << "a focus out of sight counts as none";
}

TEST_F(AppStateTest, SelectsAllVisible)
{
    state.setSearch(u"flash"_s);
    state.selectAll();
    EXPECT_THAT(selected(), ElementsAre("Flash 2.mov", "Flash 10.mov"));
    EXPECT_EQ(focused(), "Flash 2.mov");
    click(1);
    state.selectAll();
    EXPECT_EQ(focused(), "Flash 10.mov") << "a visible focus stays";
    state.setSearch(u"cold"_s);
    EXPECT_EQ(state.selectedCount(), 2);
    EXPECT_THAT(selected(), IsEmpty()) << "what is not visible is not acted on";

    state.setSearch(u"nothing like it"_s);
    state.selectAll();
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_EQ(focused(), "Flash 10.mov");
}

TEST_F(AppStateTest, AnotherScopeEmptiesTheSelectionButKeepsTheFocus)
{
    click(1);
    click(2, ctrl);
    state.setScope(Scope::all());
    EXPECT_EQ(state.selectedCount(), 2) << "the same scope changes nothing";
    state.setScope(Scope::inFolder(library.path(u"Overlays"_s)));
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_EQ(focused(), "Flash 2.mov");
    click(2, shift);
    EXPECT_THAT(selected(), ElementsAre("Grain.png")) << "the anchor is gone too";
}

TEST_F(AppStateTest, SelectionFollowsTheDisk)
{
    click(2);
    click(3, ctrl);
    click(4, ctrl);
    QSignalSpy focusMoved(&state, &AppState::selectionChanged);
    library.write(u"Overlays/A new one.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(focusMoved.count(), 0) << "an equal asset stays focused";
    EXPECT_THAT(selected(), ElementsAre("Flash 2.mov", "Flash 10.mov", "Grain.png"));

    library.write(u"Overlays/Grain.png"_s, 77);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(focusMoved.count(), 1);
    EXPECT_EQ(state.selection()->size, 77);

    library.remove(u"Overlays/Grain.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_FALSE(state.hasSelection());
    EXPECT_THAT(selected(), ElementsAre("Flash 2.mov", "Flash 10.mov"));
    EXPECT_TRUE(state.selected().contains(library.path(u"Overlays/Grain.png"_s)));

    library.write(u"Overlays/Grain.png"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_THAT(selected(), ElementsAre("Flash 2.mov", "Flash 10.mov", "Grain.png"));
    EXPECT_EQ(state.selectedCount(), 3);
}

TEST_F(AppStateTest, ASearchHoldsForTheNextSnapshot)
{
    state.setSearch(u"cold"_s);
    library.write(u"LUTs/Colder.cube"_s);
    library.write(u"LUTs/Warm.cube"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_THAT(visible(), ElementsAre("Cold.cube", "Colder.cube"));
}

TEST_F(AppStateTest, SelectedPlacesCanBeSetWhetherTheyExistOrNot)
{
    const Location gone = library.path(u"Overlays/gone.png"_s);
    const QSet<Location> places{library.path(u"LUTs/Cold.cube"_s), gone};
    QSignalSpy reported(&state, &AppState::selectedChanged);
    state.setSelected(places);
    state.setSelected(places);
    EXPECT_EQ(reported.count(), 1);
    EXPECT_EQ(state.selected(), places);
    EXPECT_EQ(state.selectedCount(), 2);
    state.setSelected({gone, library.path(u"Overlays/Grain.png"_s)});
    EXPECT_THAT(selected(), ElementsAre("Grain.png"));
}

TEST_F(AppStateTest, AnotherRootBeginsWithEverythingAndNothingSelected)
{
    state.setScope(Scope::inFolder(library.path(u"SFX"_s)));
    click(0);
    library.vault.changeRoot(library.path(u"Overlays"_s));
    EXPECT_EQ(state.scope(), Scope::all());
    EXPECT_EQ(state.selectedCount(), 0);
    EXPECT_TRUE(test::waitUntil([this] { return state.visibleCount() == 0; }));
    EXPECT_FALSE(state.hasSelection());
}

TEST_F(AppStateTest, ANewFolderGoesWhereTheUserIs)
{
    library.prefs.setVaultPath(library.path({}).text());
    click(2);
    click(4, ctrl);
    state.newFolderFromSelection();
    EXPECT_TRUE(state.showNewFolder());
    EXPECT_EQ(state.newFolderParent(), library.path(u"Overlays/Leaks"_s));
    EXPECT_THAT(state.pendingMove(), ElementsAre(library.path(u"Overlays/Leaks/Flash 2.mov"_s),
                                                 library.path(u"Overlays/Grain.png"_s)));

    state.requestNewFolder({});
    EXPECT_EQ(state.newFolderParent(), library.path(u"Overlays"_s));
    EXPECT_THAT(state.pendingMove(), IsEmpty());
    state.setScope(Scope::inFolder(library.path(u"SFX/Hits"_s)));
    state.requestNewFolder({});
    EXPECT_EQ(state.newFolderParent(), library.path(u"SFX/Hits"_s));
    state.requestNewFolder(library.path(u"LUTs"_s));
    EXPECT_EQ(state.newFolderParent(), library.path(u"LUTs"_s));

    state.setShowNewFolder(false);
    state.newFolderFromSelection();
    EXPECT_FALSE(state.showNewFolder()) << "nothing is selected any more";
}

TEST_F(AppStateTest, RevealsTheSelectedElseTheFocused)
{
    state.revealSelected();
    EXPECT_THAT(library.workspace.revealed(), IsEmpty());
    click(1);
    click(1, ctrl);
    state.revealSelected();
    EXPECT_THAT(library.workspace.revealed().last(), ElementsAre(library.path(u"LUTs/Cold.cube"_s)));
    click(2);
    click(0, ctrl);
    state.revealSelected();
    EXPECT_THAT(library.workspace.revealed().last(),
                UnorderedElementsAre(library.path(u"Overlays/Leaks/Flash 2.mov"_s),
                                     library.path(u"SFX/Hits/boom.wav"_s)));
}

} // namespace cratewell

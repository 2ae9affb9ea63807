#include "ui/actions_library.h"

#include "vault/trash_item.h"

#include <QFile>
#include <QSignalSpy>
#include <gmock/gmock.h>

namespace cratewell {

using test::waitUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace Qt::StringLiterals;

namespace {

class AssetActionsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const auto file : {"SFX/Hit/boom.wav"_L1, "SFX/Hit/Deep/sub.wav"_L1, "SFX/Hits/clap.wav"_L1,
                                "Overlays/grain.png"_L1, "outside/new.wav"_L1})
            library.write(file);
        ASSERT_TRUE(library.start());
        state.setSort(AssetOrder::Name);
    }

    Location path(const QString &relative) const { return library.path(relative); }
    bool exists(const QString &relative) const { return QFile::exists(path(relative).text()); }
    void select(std::initializer_list<const char *> relative)
    {
        QSet<Location> places;
        for (const char *place : relative)
            places.insert(path(QString::fromUtf8(place)));
        state.setSelected(places);
    }
    void focus(const QString &relative) { state.setSelection(library.asset(relative)); }
    // Does what makes the vault say something, and returns that.
    template<typename Act> QString reportAfter(const Act &act)
    {
        QSignalSpy reports(&vault, &Vault::toast);
        act();
        return waitUntil([&] { return reports.count() > 0; }) ? reports.first().first().toString()
                                                              : QString();
    }

    test::ActionsLibrary library;
    AppState &state = library.state;
    Vault &vault = library.vault;
    AssetActions &actions = library.actions;
};

} // namespace

TEST_F(AssetActionsTest, ANewFolderComesIntoViewUnlessTheUserHasGoneElsewhere)
{
    state.setScope(Scope::inFolder(path(u"SFX/Hit"_s)));
    state.newFolderHere();
    actions.createFolder(u" a/b "_s);
    EXPECT_FALSE(state.showNewFolder());
    ASSERT_TRUE(waitUntil([&] { return state.scope() == Scope::inFolder(path(u"SFX/Hit/a-b"_s)); }));

    state.newFolderInside(path(u"SFX"_s));
    actions.createFolder(u"Late"_s);
    state.setScope(Scope::inFolder(path(u"SFX"_s)));
    QSignalSpy scans(&vault, &Vault::rescanned);
    ASSERT_TRUE(waitUntil([&] { return scans.count() > 0 && exists(u"SFX/Late"_s); }));
    EXPECT_EQ(state.scope(), Scope::inFolder(path(u"SFX"_s)));

    select({"SFX/Hit/boom.wav", "SFX/Hits/clap.wav"});
    state.newFolderFromSelection();
    EXPECT_EQ(reportAfter([&] { actions.createFolder(u"Both"_s); }), u"Moved 2 items to Both"_s);
    EXPECT_TRUE(exists(u"SFX/Hit/Both/boom.wav"_s) && exists(u"SFX/Hit/Both/clap.wav"_s));
    EXPECT_EQ(state.scope(), Scope::inFolder(path(u"SFX"_s)));
    EXPECT_THAT(state.pendingMove(), IsEmpty());
}

TEST_F(AssetActionsTest, WhatASearchHidesIsTrashedAndRevealedByCommandAndLeftAloneByTheBar)
{
    actions.revealSelected();
    actions.moveSelectedToTrash();
    EXPECT_THAT(library.workspace.revealed(), IsEmpty()) << "there is nothing to do it with";

    select({"SFX/Hit/boom.wav", "SFX/Hits/clap.wav", "SFX/gone.wav"});
    focus(u"Overlays/grain.png"_s);
    state.setSearch(u"clap"_s);
    EXPECT_EQ(actions.countInView(), 1);
    actions.revealSelected();
    EXPECT_THAT(
        library.workspace.revealed().last(),
        ElementsAre(path(u"SFX/Hit/boom.wav"_s), path(u"SFX/Hits/clap.wav"_s), path(u"SFX/gone.wav"_s)));
    EXPECT_EQ(reportAfter([&] { actions.moveSelectedToTrash(); }),
              u"Moved 2 items to Trash. They're kept for 30 days."_s);
    EXPECT_FALSE(exists(u"SFX/Hit/boom.wav"_s) || exists(u"SFX/Hits/clap.wav"_s));

    state.setSelected({});
    actions.revealSelected();
    EXPECT_THAT(library.workspace.revealed().last(), ElementsAre(path(u"Overlays/grain.png"_s)))
        << "the focused one, without selected ones";
    select({"SFX/Hit/Deep/sub.wav", "Overlays/grain.png"});
    state.setSearch(u"grain"_s);
    reportAfter([&] { actions.moveInViewToTrash(); });
    EXPECT_TRUE(exists(u"SFX/Hit/Deep/sub.wav"_s));
    EXPECT_FALSE(exists(u"Overlays/grain.png"_s));
}

TEST_F(AssetActionsTest, UndoRestoresWhatIsStillInTheTrash)
{
    std::vector<TrashItem> trashed;
    QObject::connect(&vault, &Vault::toast, &vault,
                     [&](const QString &, bool, const std::vector<TrashItem> &items) { trashed = items; });
    select({"SFX/Hit/boom.wav", "SFX/Hits/clap.wav"});
    reportAfter([&] { actions.moveSelectedToTrash(); });
    ASSERT_EQ(trashed.size(), 2u) << "the operation's own report names what it did";
    vault.deleteForever({trashed[0]});
    ASSERT_TRUE(waitUntil([&] { return vault.trashItems().size() == 1; }));
    const std::vector<TrashItem> items = trashed;
    EXPECT_EQ(reportAfter([&] { actions.undoTrash(items); }), u"Restored 1 item"_s);
    EXPECT_THAT(trashed, IsEmpty()) << "and no other report does";
    EXPECT_NE(exists(u"SFX/Hit/boom.wav"_s), exists(u"SFX/Hits/clap.wav"_s));
}

TEST_F(AssetActionsTest, FavoritesMovesAndInsertsTakeWhatIsInViewOrFocused)
{
    const Location boom = path(u"SFX/Hit/boom.wav"_s);
    const Location clap = path(u"SFX/Hits/clap.wav"_s);
    Prefs &prefs = library.prefs;
    focus(u"SFX/Hit/boom.wav"_s);
    actions.toggleFavoriteOfFocused();
    EXPECT_EQ(prefs.favorites(), LocationSet{boom});
    select({"SFX/Hit/boom.wav", "SFX/Hits/clap.wav", "SFX/Hit/Deep/sub.wav"});
    state.setSearch(u"hit"_s);
    EXPECT_FALSE(actions.favoritesInView());
    QSignalSpy changed(&actions, &AssetActions::favoritesInViewChanged);
    actions.toggleFavoritesInView();
    EXPECT_TRUE(actions.favoritesInView());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(prefs.favorites(), (LocationSet{boom, clap})) << "sub.wav is not in view";
    actions.toggleFavoritesInView();
    EXPECT_THAT(prefs.favorites(), IsEmpty());
    state.setSelected({});
    EXPECT_FALSE(actions.favoritesInView());

    select({"SFX/Hit/boom.wav", "SFX/Hit/Deep/sub.wav"});
    state.setSearch(u"boom"_s);
    EXPECT_EQ(reportAfter([&] { actions.moveInViewTo(path(u"SFX/Hits"_s)); }), u"Moved 1 item to Hits"_s);
    EXPECT_TRUE(exists(u"SFX/Hits/boom.wav"_s) && exists(u"SFX/Hit/Deep/sub.wav"_s));
    focus(u"SFX/Hits/clap.wav"_s);
    EXPECT_TRUE(actions.isInsertable());
    actions.insertInto(AssetActions::Premiere);
    EXPECT_EQ(library.premiere.inserted, QStringList(u"clap"_s));
}

TEST_F(AssetActionsTest, ImportsHonorTheFolderInViewAndTheModeSetting)
{
    const auto importing = [&](const QString &chosen) {
        return reportAfter([&] { EXPECT_TRUE(library.chooser.answer({path(chosen)})); });
    };
    actions.importFiles();
    EXPECT_EQ(importing(u"outside/new.wav"_s), u"Added 1 asset to the vault"_s);
    EXPECT_TRUE(exists(u"SFX/new.wav"_s) && exists(u"outside/new.wav"_s));

    library.prefs.setImportMove(true);
    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    actions.importFolder();
    state.setScope(Scope::all());
    EXPECT_EQ(importing(u"outside"_s), u"Added 1 asset to the vault"_s);
    EXPECT_TRUE(exists(u"SFX/Hits/outside/new.wav"_s)) << "the folder that was in view when asked";
    EXPECT_FALSE(exists(u"outside/new.wav"_s));
    const QList<ChooseRequest> &requests = library.chooser.requests();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_EQ(requests[0].what, ChooseRequest::What::Files);
    EXPECT_EQ(requests[1].what, ChooseRequest::What::Folders);
    EXPECT_TRUE(requests[0].several);
}

TEST_F(AssetActionsTest, AnswersThatComeTooLateChangeNothing)
{
    QSignalSpy reports(&vault, &Vault::toast);
    auto gone = std::make_unique<AssetActions>(vault, library.prefs, state, library.inserter,
                                               library.workspace, library.chooser);
    gone->importFiles();
    gone.reset();
    ASSERT_TRUE(library.chooser.answer({path(u"outside/new.wav"_s)}));

    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    actions.importFiles();
    vault.changeRoot(path(u"other"_s));
    ASSERT_TRUE(library.chooser.answer({path(u"outside/new.wav"_s)}));

    // Whatever had been asked of the disk would come before this.
    vault.createFolder(u"Last"_s, path(u"other/SFX"_s));
    ASSERT_TRUE(waitUntil([&] { return exists(u"other/SFX/Last"_s); }));
    EXPECT_FALSE(exists(u"SFX/Hits/new.wav"_s) || exists(u"SFX/new.wav"_s) || exists(u"other/SFX/new.wav"_s));
    EXPECT_EQ(reports.count(), 0);
}

} // namespace cratewell

#include "platform/fakes/fake_file_chooser.h"
#include "support/small_library.h"
#include "vault/trash_item.h"

#include <QFile>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {

using test::waitUntil;
using namespace Qt::StringLiterals;

namespace {

// What the state asks of the disk, and how it follows what became of it.
class FileRequests : public testing::Test
{
protected:
    void SetUp() override
    {
        library.write(u"SFX/Hit/boom.wav"_s);
        library.write(u"SFX/Hit/Deep/sub.wav"_s);
        library.write(u"SFX/Hits/clap.wav"_s);
        library.write(u"Overlays/grain.png"_s);
        library.write(u"outside/new.wav"_s);
        ASSERT_TRUE(library.start());
        state.setSort(AssetOrder::Name);
    }

    Location path(const QString &relative) const { return library.path(relative); }
    bool exists(const QString &relative) const { return QFile::exists(path(relative).text()); }
    QSet<Location> paths(std::initializer_list<const char *> relative) const
    {
        QSet<Location> places;
        for (const char *place : relative)
            places.insert(path(QString::fromUtf8(place)));
        return places;
    }

    test::SmallLibrary library;
    FakeFileChooser chooser;
    AppState state{library.vault, library.prefs, library.workspace, &chooser};
    Vault &vault = library.vault;
};

} // namespace

TEST_F(FileRequests, NewFolderComesIntoViewUnlessTheUserHasGoneElsewhere)
{
    state.setScope(Scope::inFolder(path(u"SFX/Hit"_s)));
    state.newFolderHere();
    ASSERT_TRUE(state.showNewFolder());
    state.createNewFolder(u" a/b "_s);
    EXPECT_FALSE(state.showNewFolder());
    ASSERT_TRUE(waitUntil([&] { return state.scope() == Scope::inFolder(path(u"SFX/Hit/a-b"_s)); }));
    EXPECT_TRUE(exists(u"SFX/Hit/a-b"_s));

    state.requestNewFolder(path(u"SFX"_s));
    state.createNewFolder(u"Late"_s);
    state.setScope(Scope::of(Scope::Kind::Trash));
    QSignalSpy scans(&vault, &Vault::rescanned);
    ASSERT_TRUE(waitUntil([&] { return scans.count() > 0; }));
    EXPECT_TRUE(exists(u"SFX/Late"_s));
    EXPECT_EQ(state.scope(), Scope::of(Scope::Kind::Trash));
}

TEST_F(FileRequests, NewFolderTakesTheSelectionAndTheViewStays)
{
    state.setScope(Scope::inFolder(path(u"SFX"_s)));
    state.setSelected(paths({"SFX/Hit/boom.wav", "SFX/Hits/clap.wav"}));
    state.newFolderFromSelection();
    QSignalSpy toasts(&vault, &Vault::toast);
    state.createNewFolder(u"Both"_s);
    ASSERT_TRUE(waitUntil([&] { return toasts.count() > 0; }));

    EXPECT_EQ(toasts.first().first().toString(), u"Moved 2 items to Both");
    EXPECT_TRUE(exists(u"SFX/Hit/Both/boom.wav"_s) && exists(u"SFX/Hit/Both/clap.wav"_s));
    EXPECT_EQ(state.scope(), Scope::inFolder(path(u"SFX"_s)));
    EXPECT_TRUE(state.pendingMove().empty());
    EXPECT_EQ(state.selectedCount(), 0);
}

TEST_F(FileRequests, RenamedFolderKeepsItsViewAndItsColor)
{
    library.prefs.setFolderColor(path(u"SFX/Hit"_s), u"#FF4ECD"_s);
    library.prefs.setFolderColor(path(u"SFX/Hits"_s), u"#2FD6FF"_s);
    state.setScope(Scope::inFolder(path(u"SFX/Hit"_s)));
    state.setRenameTarget(path(u"SFX/Hit"_s));
    state.renameTo(u"Impacts"_s);
    EXPECT_FALSE(state.isRenaming());
    ASSERT_TRUE(waitUntil([&] { return state.scope() == Scope::inFolder(path(u"SFX/Impacts"_s)); }));
    const FolderColors colors{{path(u"SFX/Impacts"_s), u"#FF4ECD"_s}, {path(u"SFX/Hits"_s), u"#2FD6FF"_s}};
    EXPECT_EQ(library.prefs.folderColors(), colors);

    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    Q_EMIT vault.itemRenamed(path(u"SFX/Impacts"_s), path(u"SFX/Hit"_s));
    EXPECT_EQ(state.scope(), Scope::inFolder(path(u"SFX/Hits"_s)));
    Q_EMIT vault.itemRenamed(path(u"SFX/Hits"_s), path(u"SFX/Hits"_s));
    EXPECT_EQ(library.prefs.color(path(u"SFX/Hits"_s)), QColor(u"#2FD6FF"_s));
}

TEST_F(FileRequests, TrashedPlacesLeaveTheViewAndTheSelection)
{
    struct Case
    {
        const char *scope;
        const char *trashed;
        bool stays;
    };
    for (const auto &[scope, trashed, stays] : {Case{"SFX/Hit", "SFX/Hit", false},
                                                {"SFX/Hit/Deep", "SFX/Hit", false},
                                                {"SFX/Hits", "SFX/Hit", true},
                                                {"SFX/Hit", "SFX/Hit/Deep", true}}) {
        state.setScope(Scope::inFolder(path(QString::fromUtf8(scope))));
        TrashItem item;
        item.original = path(QString::fromUtf8(trashed)).text();
        Q_EMIT vault.itemsTrashed({item});
        EXPECT_EQ(state.scope() != Scope::all(), stays) << scope << " when " << trashed << " goes";
    }

    state.setScope(Scope::all());
    state.setSelection(library.asset(u"SFX/Hit/boom.wav"_s));
    state.trashSelected();
    ASSERT_TRUE(waitUntil([&] { return !state.hasSelection(); })) << "the focused asset, nothing else chosen";
    EXPECT_FALSE(exists(u"SFX/Hit/boom.wav"_s));

    state.setSelection(library.asset(u"Overlays/grain.png"_s));
    state.setSelected(paths({"SFX/Hits/clap.wav", "SFX/Hit/Deep/sub.wav"}));
    state.trashSelected();
    ASSERT_TRUE(waitUntil([&] { return state.selectedCount() == 0; }));
    EXPECT_TRUE(state.hasSelection()) << "the focused one was not among the chosen";
    EXPECT_FALSE(exists(u"SFX/Hits/clap.wav"_s));
    EXPECT_EQ(vault.trashItems().size(), 3);
}

TEST_F(FileRequests, ImportPanelHonoursTheFolderInViewAndTheModeSetting)
{
    const auto imported = [&](const QList<Location> &chosen) {
        QSignalSpy toasts(&vault, &Vault::toast);
        return chooser.answer(chosen) && waitUntil([&] { return toasts.count() > 0; });
    };
    state.importFiles();
    ASSERT_TRUE(imported({path(u"outside/new.wav"_s)}));
    EXPECT_TRUE(exists(u"SFX/new.wav"_s) && exists(u"outside/new.wav"_s));

    library.prefs.setImportMove(true);
    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    state.importFolder();
    state.setScope(Scope::all());
    ASSERT_TRUE(imported({path(u"outside"_s)}));
    EXPECT_TRUE(exists(u"SFX/Hits/outside/new.wav"_s)) << "the folder that was in view when asked";
    EXPECT_FALSE(exists(u"outside/new.wav"_s));

    ASSERT_EQ(chooser.requests().size(), 2);
    EXPECT_EQ(chooser.requests()[0].what, ChooseRequest::What::Files);
    EXPECT_EQ(chooser.requests()[1].what, ChooseRequest::What::Folders);
    EXPECT_EQ(chooser.requests()[0].title, u"Choose overlays, LUTs or sound effects to add to your vault."_s);
    EXPECT_EQ(chooser.requests()[0].acceptLabel, u"Import"_s);
    EXPECT_TRUE(chooser.requests()[0].several);
}

TEST_F(FileRequests, AnswersThatComeTooLateChangeNothing)
{
    QSignalSpy toasts(&vault, &Vault::toast);
    state.importFiles();
    ASSERT_TRUE(chooser.answer({}));

    auto gone = std::make_unique<AppState>(vault, library.prefs, library.workspace, &chooser);
    gone->importFiles();
    gone.reset();
    ASSERT_TRUE(chooser.answer({path(u"outside/new.wav"_s)}));

    state.setScope(Scope::inFolder(path(u"SFX/Hits"_s)));
    state.importFiles();
    vault.changeRoot(path(u"other"_s));
    ASSERT_TRUE(chooser.answer({path(u"outside/new.wav"_s)}));

    // Whatever had been asked of the disk would come before this.
    vault.createFolder(u"Last"_s, path(u"other/SFX"_s));
    ASSERT_TRUE(waitUntil([&] { return exists(u"other/SFX/Last"_s); }));
    EXPECT_FALSE(exists(u"SFX/Hits/new.wav"_s) || exists(u"SFX/new.wav"_s) || exists(u"other/SFX/new.wav"_s));
    EXPECT_EQ(toasts.count(), 0);
    library.state.importFiles();
    EXPECT_EQ(chooser.requests().size(), 3) << "without a chooser nothing is asked";
}

} // namespace cratewell

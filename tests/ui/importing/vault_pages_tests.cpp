#include "ui/actions_library.h"
#include "ui/controls/formats.h"
#include "ui/importing/import_controller.h"
#include "ui/importing/recent_imports_model.h"
#include "ui/row_view.h"
#include "ui/trash/trash_model.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <gmock/gmock.h>

namespace cratewell {
namespace {

using test::waitUntil;
using testing::ElementsAre;
using namespace Qt::StringLiterals;

struct PlainKeys : KeyedListModel
{
    using KeyedListModel::showKeys;
    QVariant data(const QModelIndex &index, int) const override { return keyAt(index.row()); }
};

TEST(KeyedList, ChangesOnlyTheRowsThatDiffer)
{
    PlainKeys model;
    const QAbstractItemModelTester tester(&model);
    test::RowView<QByteArray> view(model, [&](int row) { return model.index(row).data().toByteArray(); });
    const auto show = [&](const std::vector<QByteArray> &keys) {
        view.forgetCounts();
        model.showKeys(keys);
        EXPECT_TRUE(view.agrees());
        return std::array{view.inserted, view.removed, view.runs};
    };
    EXPECT_THAT(show({"a", "b", "c", "d", "e"}), ElementsAre(5, 0, 1));
    EXPECT_THAT(show({"x", "a", "y", "c", "e", "a"}), ElementsAre(2, 2, 4));
    EXPECT_THAT(view.rows(), ElementsAre("x", "a", "y", "c", "e"));
    EXPECT_THAT(show({"e", "x", "a", "y", "c"}), ElementsAre(1, 1, 2)) << "one that moved";
}

TEST(TrashModel, DescribesPicksRestoresAndDeletes)
{
    test::SmallLibrary library;
    for (const auto file : {"SFX/Hits/Hit.wav"_L1, "SFX/Claps/Hit.wav"_L1,
                            "Overlays/Light Leaks/inside.mov"_L1, "Overlays/notes.txt"_L1})
        library.write(file, 1200);
    ASSERT_TRUE(library.start());
    TrashModel model;
    const QAbstractItemModelTester tester(&model);
    model.setVault(&library.vault);
    for (const auto place :
         {"Overlays/notes.txt"_L1, "Overlays/Light Leaks"_L1, "SFX/Claps/Hit.wav"_L1, "SFX/Hits/Hit.wav"_L1})
        library.vault.moveToTrash({library.path(place)});
    const auto has = [&](int count) { return waitUntil([&] { return model.count() == count; }); };
    ASSERT_TRUE(has(4));
    const auto texts = [&](TrashModel::Role role) {
        QStringList rows;
        for (int row = 0; row < model.count(); ++row)
            rows += model.data(model.index(row), role).toString();
        return rows.join(u'|');
    };
    EXPECT_EQ(texts(TrashModel::NameRole), u"Hit.wav|Hit.wav|Light Leaks|notes.txt");
    EXPECT_EQ(texts(TrashModel::OriginRole), u"From Hits|From Claps|From Overlays|From Overlays");
    EXPECT_EQ(texts(TrashModel::SymbolRole), u"graphic_eq|graphic_eq|folder|insert_drive_file");
    EXPECT_EQ(texts(TrashModel::SizeRole), u"1 KB|1 KB|1 KB|1 KB");
    EXPECT_EQ(model.data(model.index(0), TrashModel::TimeLeftRole), u"30 days left"_s);
    EXPECT_EQ(timeLeftText(1), u"1 day left"_s);
    EXPECT_EQ(timeLeftText(0), u"Deletes today"_s);

    for (const int row : {0, 1, 1, 2, 4, -1})
        model.togglePick(row);
    EXPECT_EQ(model.pickedCount(), 2);
    model.deleteNow(2);
    ASSERT_TRUE(has(3));
    EXPECT_EQ(model.pickedCount(), 1) << "what is gone is not picked";
    EXPECT_EQ(texts(TrashModel::PickedRole), u"true|false|false");
    model.restorePicked();
    ASSERT_TRUE(has(2));
    EXPECT_EQ(texts(TrashModel::OriginRole), u"From Claps|From Overlays");
    EXPECT_TRUE(QFile::exists(library.path(u"SFX/Hits/Hit.wav"_s).text()));
    model.restore(5);
    model.restore(1);
    ASSERT_TRUE(has(1));
    EXPECT_EQ(texts(TrashModel::OriginRole), u"From Claps");
    model.empty();
    EXPECT_TRUE(has(0));
}

class ImportControllerTest : public testing::Test
{
protected:
    ImportControllerTest()
    {
        library.write(u"Overlays/Warm/a.mov"_s);
        library.write(u"SFX/b.wav"_s);
        library.write(u"../outside/Whoosh.wav"_s);
        EXPECT_TRUE(library.start());
    }
    QUrl url(const QString &relative) const { return QUrl::fromLocalFile(library.path(relative).text()); }
    bool exists(const QString &relative) const { return QFile::exists(library.path(relative).text()); }

    test::ActionsLibrary library;
    ImportController imports{library.vault, library.defaults, library.actions};
};

TEST_F(ImportControllerTest, KeepsItsDestination)
{
    const QString byType = u"Sort by type automatically"_s;
    const Location warm = library.path(u"Overlays/Warm"_s);
    imports.choose(warm);
    EXPECT_EQ(imports.label(), u"Warm"_s);
    EXPECT_EQ(ImportController(library.vault, library.defaults, library.actions).destination(), warm);
    library.remove(u"Overlays/Warm"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(imports.label(), byType) << "nothing is filed into a folder that is gone";
    library.write(u"Overlays/Warm/a.mov"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(imports.label(), u"Warm"_s);
    imports.choose({});
    EXPECT_EQ(imports.label(), byType);
}

TEST_F(ImportControllerTest, TakesOnlyWhatLiesOutsideAndShowsWhatCameIn)
{
    RecentImportsModel recent(library.vault, library.state);
    const QUrl whoosh = url(u"../outside/Whoosh.wav"_s);
    EXPECT_FALSE(imports.takes({url(u"SFX/b.wav"_s), QUrl(u"https://example.org/a.wav"_s)}));
    EXPECT_TRUE(imports.takes({url(u"SFX/b.wav"_s), whoosh}));
    library.prefs.setImportMove(true);
    imports.choose(library.path(u"SFX"_s));
    imports.take({url(u"Overlays/Warm/a.mov"_s), whoosh});
    const auto value = [&](RecentImportsModel::Role role) { return recent.data(recent.index(0), role); };
    ASSERT_TRUE(waitUntil([&] { return value(RecentImportsModel::PresentRole).toBool(); }));
    EXPECT_EQ(recent.count(), 1);
    EXPECT_EQ(value(RecentImportsModel::NameRole).toString(), u"Whoosh"_s);
    EXPECT_TRUE(exists(u"SFX/Whoosh.wav"_s) && exists(u"Overlays/Warm/a.mov"_s));
    EXPECT_FALSE(exists(u"../outside/Whoosh.wav"_s));
    recent.focus(7);
    EXPECT_FALSE(library.state.hasSelection());
    recent.focus(0);
    ASSERT_TRUE(library.state.hasSelection());
    EXPECT_EQ(library.state.selection()->url, library.path(u"SFX/Whoosh.wav"_s));
}

TEST(ProgressTexts, AreCalmAndInWords)
{
    const std::pair<int, QString> cases[]{{-1, u""_s},
                                          {0, u"A few seconds left"_s},
                                          {7, u"About 10 seconds left"_s},
                                          {54, u"About 55 seconds left"_s},
                                          {89, u"About 1 minute left"_s},
                                          {9000, u"About 3 hours left"_s}};
    for (const auto &[seconds, text] : cases)
        EXPECT_EQ(remainingText(seconds), text) << seconds;
    EXPECT_EQ(progressText(0, 0, 0, 0), u"Counting files…"_s);
    EXPECT_EQ(progressText(0, 1, 0, 0), u"0 of 1 file"_s);
    EXPECT_EQ(progressText(3, 12, 1'200'000, 48'200'000), u"3 of 12 files, 1.2 MB of 48.2 MB"_s);
}

} // namespace
} // namespace cratewell

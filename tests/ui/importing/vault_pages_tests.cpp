#include "platform/defaults.h"
#include "ui/actions_library.h"
#include "ui/controls/formats.h"
#include "ui/importing/import_controller.h"
#include "ui/importing/recent_imports_model.h"
#include "ui/row_view.h"
#include "ui/trash/trash_model.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <gmock/gmock.h>

namespace cratewell {
namespace {

using test::waitUntil;
using testing::ElementsAre;
using namespace Qt::StringLiterals;

class PlainKeys : public KeyedListModel
{
public:
    using KeyedListModel::keys;
    using KeyedListModel::showKeys;
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(QString::fromUtf8(keyAt(index.row()))) : QVariant();
    }
};

TEST(KeyedList, ChangesOnlyTheRowsThatDiffer)
{
    PlainKeys model;
    const QAbstractItemModelTester tester(&model);
    test::RowView<QString> view(model, [&](int row) { return model.index(row, 0).data().toString(); });
    const auto show = [&](const std::vector<QByteArray> &keys) {
        view.forgetCounts();
        model.showKeys(keys);
        EXPECT_TRUE(view.agrees());
        return std::array{view.inserted, view.removed, view.runs};
    };
    EXPECT_THAT(show({"a", "b", "c", "d", "e"}), ElementsAre(5, 0, 1));
    EXPECT_THAT(show({"x", "a", "y", "c", "e", "a"}), ElementsAre(2, 2, 4));
    EXPECT_THAT(model.keys(), ElementsAre("x", "a", "y", "c", "e"));
    EXPECT_THAT(show({"x", "a", "y", "c", "e"}), ElementsAre(0, 0, 0));
    EXPECT_THAT(show({"e", "x", "a", "y", "c"}), ElementsAre(1, 1, 2)) << "one that moved";
}

class TrashModelTest : public testing::Test
{
protected:
    // A record and its item, deleted so many days ago.
    void trash(const QString &id, const QString &original, double days, bool isFolder = false)
    {
        const QString slot = u".Cratewell Trash/"_s + id + u'/';
        const QString name = Location::fromText(u'/' + original).name();
        library.write(slot + name + (isFolder ? u"/inside.mov"_s : u""_s), 10);
        m_records.append(QJsonObject{{u"id"_s, id},
                                     {u"name"_s, name},
                                     {u"original"_s, library.path(original).text()},
                                     {u"deletedAt"_s, secondsNow() - days * 86400},
                                     {u"isFolder"_s, isFolder},
                                     {u"size"_s, 1200}});
    }
    void start()
    {
        QFile index(library.path(u".Cratewell Trash/index.json"_s).text());
        ASSERT_TRUE(index.open(QIODevice::WriteOnly));
        index.write(QJsonDocument(m_records).toJson());
        index.close();
        const auto count = size_t(m_records.size());
        library.vault.start();
        ASSERT_TRUE(waitUntil([&] { return library.vault.trashItems().size() == count; }));
        model.setVault(&library.vault);
    }
    std::vector<std::string> texts(TrashModel::Role role) const
    {
        std::vector<std::string> texts;
        texts.reserve(size_t(model.count()));
        for (int row = 0; row < model.count(); ++row)
            texts.push_back(model.data(model.index(row), role).toString().toStdString());
        return texts;
    }
    bool exists(const QString &relative) const { return QFile::exists(library.path(relative).text()); }

    test::SmallLibrary library;
    TrashModel model;
    QAbstractItemModelTester tester{&model};

private:
    QJsonArray m_records;
};

const QString idA = u"00000000-0000-4000-8000-00000000000A"_s;
const QString idB = u"00000000-0000-4000-8000-00000000000B"_s;
const QString idC = u"00000000-0000-4000-8000-00000000000C"_s;
const QString idD = u"00000000-0000-4000-8000-00000000000D"_s;

TEST_F(TrashModelTest, DescribesItsRowsNewestFirst)
{
    trash(idA, u"SFX/Hits/Hit.wav"_s, 3.2);
    trash(idB, u"Overlays/Light Leaks"_s, 26.5, true);
    trash(idC, u"Overlays/notes.txt"_s, 28.1);
    trash(idD, u"LUTs/Bleach.cube"_s, 29.99);
    start();
    EXPECT_THAT(texts(TrashModel::NameRole),
                ElementsAre("Hit.wav", "Light Leaks", "notes.txt", "Bleach.cube"));
    EXPECT_THAT(texts(TrashModel::OriginRole),
                ElementsAre("From Hits", "From Overlays", "From Overlays", "From LUTs"));
    EXPECT_THAT(texts(TrashModel::TimeLeftRole),
                ElementsAre("27 days left", "4 days left", "2 days left", "1 day left"));
    EXPECT_THAT(texts(TrashModel::UrgentRole), ElementsAre("false", "false", "true", "true"));
    EXPECT_THAT(texts(TrashModel::SymbolRole),
                ElementsAre("graphic_eq", "folder", "insert_drive_file", "camera"));
    EXPECT_THAT(texts(TrashModel::SizeRole), ElementsAre("1 KB", "1 KB", "1 KB", "1 KB"));
    EXPECT_EQ(timeLeftText(0), u"Deletes today"_s);
}

TEST_F(TrashModelTest, PicksFollowWhatIsThere)
{
    trash(idA, u"SFX/Hits/Hit.wav"_s, 1);
    trash(idB, u"SFX/Claps/Hit.wav"_s, 2);
    trash(idC, u"SFX/Gone.wav"_s, 3);
    start();
    model.togglePick(0);
    model.togglePick(1);
    model.togglePick(1);
    model.togglePick(2);
    model.togglePick(3);
    model.togglePick(-1);
    EXPECT_EQ(model.pickedCount(), 2);
    model.deleteNow(2);
    ASSERT_TRUE(waitUntil([&] { return model.count() == 2; }));
    EXPECT_EQ(model.pickedCount(), 1) << "what is gone is not picked";
    EXPECT_THAT(texts(TrashModel::PickedRole), ElementsAre("true", "false"));

    model.restorePicked();
    ASSERT_TRUE(waitUntil([&] { return model.count() == 1; }));
    EXPECT_TRUE(exists(u"SFX/Hits/Hit.wav"_s));
    EXPECT_FALSE(exists(u"SFX/Claps/Hit.wav"_s));
    EXPECT_EQ(model.pickedCount(), 0);
    model.restorePicked();
    model.deletePicked();
    model.restore(5);
    model.empty();
    ASSERT_TRUE(waitUntil([&] { return model.count() == 0; }));
    EXPECT_FALSE(exists(u".Cratewell Trash/"_s + idB));
}

class ImportControllerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        library.write(u"Overlays/Leaks/Warm/a.mov"_s);
        library.write(u"SFX/b.wav"_s);
        library.write(u"../outside/Whoosh.wav"_s);
        ASSERT_TRUE(library.start());
    }
    QUrl url(const QString &relative) const { return QUrl::fromLocalFile(library.path(relative).text()); }
    QString outside() const { return library.path(u"../outside/Whoosh.wav"_s).text(); }
    bool exists(const QString &relative) const { return QFile::exists(library.path(relative).text()); }

    test::ActionsLibrary library;
    FakeFileChooser &chooser = library.chooser;
    AppState &state = library.state;
    ImportController imports{library.vault, library.defaults, library.actions};
    RecentImportsModel recent{library.vault, state};
    QAbstractItemModelTester tester{&recent};
};

TEST_F(ImportControllerTest, KeepsItsDestination)
{
    const QString byType = u"Sort by type automatically"_s;
    const Location warm = library.path(u"Overlays/Leaks/Warm"_s);
    EXPECT_EQ(imports.label(), byType);
    imports.choose(warm);
    EXPECT_EQ(imports.label(), u"Warm"_s);
    EXPECT_EQ(library.defaults.value(u"importDestination"_s).toString(), warm.text());
    EXPECT_EQ(ImportController(library.vault, library.defaults, library.actions).destination(), warm);

    library.remove(u"Overlays/Leaks/Warm"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(imports.label(), byType) << "nothing is filed into a folder that is gone";
    library.write(u"Overlays/Leaks/Warm/a.mov"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(imports.label(), u"Warm"_s);
    imports.choose({});
    EXPECT_EQ(library.defaults.value(u"importDestination"_s), QJsonValue(QString()));
    EXPECT_EQ(imports.label(), byType);
}

TEST_F(ImportControllerTest, TakesOnlyWhatLiesOutside)
{
    const QUrl whoosh = QUrl::fromLocalFile(outside());
    EXPECT_FALSE(imports.takes({}));
    EXPECT_FALSE(imports.takes({url(u"SFX/b.wav"_s), QUrl(u"https://example.org/a.wav"_s)}));
    EXPECT_TRUE(imports.takes({url(u"SFX/b.wav"_s), whoosh}));

    library.prefs.setImportMove(true);
    imports.choose(library.path(u"SFX"_s));
    imports.take({url(u"Overlays/Leaks/Warm/a.mov"_s), whoosh});
    ASSERT_TRUE(waitUntil([&] { return recent.count() == 1; }));
    EXPECT_TRUE(exists(u"SFX/Whoosh.wav"_s) && exists(u"Overlays/Leaks/Warm/a.mov"_s));
    EXPECT_FALSE(QFile::exists(outside()));

    imports.chooseFolder();
    imports.chooseFiles();
    ASSERT_EQ(chooser.requests().size(), 2);
    EXPECT_EQ(chooser.requests()[0].what, ChooseRequest::What::Folders);
}

TEST_F(ImportControllerTest, ShowsWhatCameInAndFocusesIt)
{
    QSignalSpy changed(&recent, &RecentImportsModel::dataChanged);
    imports.take({QUrl::fromLocalFile(outside())});
    ASSERT_TRUE(waitUntil([&] { return recent.count() == 1 && changed.count() > 0; }));
    const auto value = [&](RecentImportsModel::Role role) { return recent.data(recent.index(0), role); };
    EXPECT_EQ(value(RecentImportsModel::NameRole).toString(), u"Whoosh"_s);
    EXPECT_EQ(value(RecentImportsModel::KindRole).value<AssetKind>(), AssetKind::Audio);
    EXPECT_TRUE(value(RecentImportsModel::PresentRole).toBool());
    recent.focus(7);
    EXPECT_FALSE(state.hasSelection());
    recent.focus(0);
    ASSERT_TRUE(state.hasSelection());
    EXPECT_EQ(state.selection()->url, library.path(u"SFX/Whoosh.wav"_s));
}

TEST(ProgressTexts, AreCalmAndInWords)
{
    const std::pair<int, QString> cases[]{{-1, u""_s},
                                          {0, u"A few seconds left"_s},
                                          {7, u"About 10 seconds left"_s},
                                          {54, u"About 55 seconds left"_s},
                                          {55, u"About 1 minute left"_s},
                                          {89, u"About 1 minute left"_s},
                                          {90, u"About 2 minutes left"_s},
                                          {3600, u"About 1 hour left"_s},
                                          {9000, u"About 3 hours left"_s}};
    for (const auto &[seconds, text] : cases)
        EXPECT_EQ(remainingText(seconds), text) << seconds;
    EXPECT_EQ(progressText(0, 0, 0, 0), u"Counting files…"_s);
    EXPECT_EQ(progressText(0, 1, 0, 0), u"0 of 1 file"_s);
    EXPECT_EQ(progressText(3, 12, 1'200'000, 48'200'000), u"3 of 12 files, 1.2 MB of 48.2 MB"_s);
}

} // namespace
} // namespace cratewell

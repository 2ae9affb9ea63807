#include "ui/sidebar/folder_tree_model.h"

#include "support/small_library.h"
#include "ui/row_view.h"
#include "ui/sidebar/library_counts.h"

#include <QAbstractItemModelTester>
#include <gmock/gmock.h>
#include <random>

namespace cratewell {

using testing::ElementsAre;
using namespace Qt::StringLiterals;

namespace {

std::string lineAt(const FolderTreeModel &model, int row)
{
    const auto value = [&](FolderTreeModel::Role role) { return model.data(model.index(row), role); };
    const QString mark = value(FolderTreeModel::ExpandedRole).toBool()     ? u"-"_s
                         : value(FolderTreeModel::ExpandableRole).toBool() ? u"+"_s
                                                                           : u""_s;
    return (QString(2 * value(FolderTreeModel::DepthRole).toInt(), u' ') + mark +
            value(FolderTreeModel::NameRole).toString() + u' ' + value(FolderTreeModel::CountRole).toString())
        .toStdString();
}

class FolderTree : public testing::Test
{
protected:
    FolderTree()
    {
        for (const auto file :
             {"Overlays/Light Leaks/Warm/a.mov"_L1, "Overlays/Light Leaks/b.mov"_L1,
              "Overlays/Clip 10/c.mov"_L1, "Overlays/Clip 2/d.mov"_L1, "SFX/Hits/e.wav"_L1, "LUTs/f.cube"_L1})
            library.write(file);
        EXPECT_TRUE(library.scan());
        view.forgetCounts();
    }

    void setExpanded(const QString &folder, bool expanded)
    {
        model.setExpanded(model.rowOf(library.path(folder).text()), expanded);
    }

    test::SmallLibrary library;
    FolderTreeModel model{library.vault, library.prefs, library.defaults};
    QAbstractItemModelTester tester{&model};
    test::RowView<std::string> view{model, [this](int row) { return lineAt(model, row); }};
};

} // namespace

TEST_F(FolderTree, ShowsCategoriesOpenAndDeeperFoldersClosedAndRemembersWhatWasChanged)
{
    EXPECT_THAT(view.rows(), ElementsAre("-Overlays 4", "  Clip 2 1", "  Clip 10 1", "  +Light Leaks 2",
                                         "LUTs 1", "-SFX 1", "  Hits 1"));
    setExpanded(u"Overlays/Light Leaks"_s, true);
    setExpanded(u"SFX"_s, false);
    setExpanded(u"LUTs"_s, true);
    const FolderTreeModel after(library.vault, library.prefs, library.defaults);
    EXPECT_THAT(test::RowView<std::string>(after, [&](int row) { return lineAt(after, row); }).rows(),
                ElementsAre("-Overlays 4", "  Clip 2 1", "  Clip 10 1", "  -Light Leaks 2", "    Warm 1",
                            "LUTs 1", "+SFX 1"));

    const int leaks = model.parentOf(model.rowOf(library.path(u"Overlays/Light Leaks/Warm"_s).text()));
    EXPECT_EQ(model.folderAt(leaks), library.path(u"Overlays/Light Leaks"_s));
    EXPECT_EQ(model.parentOf(model.parentOf(leaks)), -1);
    for (const int row : {-1, model.rowCount()}) {
        EXPECT_TRUE(model.folderAt(row).isEmpty());
        EXPECT_EQ(model.parentOf(row), -1);
        model.setExpanded(row, true);
    }
}

TEST_F(FolderTree, TintsAFolderWithItsOwnColorElseACategoryWithItsOwn)
{
    const auto tint = [this](const QString &folder) {
        const QModelIndex index = model.index(model.rowOf(library.path(folder).text()));
        return index.data(FolderTreeModel::TintRole).value<QColor>();
    };
    EXPECT_EQ(tint(u"LUTs"_s), QColor(0x2fd6ff));
    EXPECT_EQ(tint(u"SFX/Hits"_s), QColor());
    library.prefs.setFolderColor(library.path(u"SFX/Hits"_s), u"#FFD93D"_s);
    EXPECT_EQ(tint(u"SFX/Hits"_s), QColor(0xffd93d));
}

TEST_F(FolderTree, TellsOfExactlyTheRowsThatCameLeftOrChanged)
{
    library.write(u"SFX/Hits/Deep/g.wav"_s);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(view.inserted + view.removed + view.changed, 2) << "SFX and Hits hold one more";
    EXPECT_TRUE(view.agrees()) << "and Deep is not in view";

    std::mt19937 random(7);
    const auto folder = [&random] {
        QString path = u"Overlays"_s;
        for (unsigned depth = 1 + random() % 3; depth > 0; --depth)
            path += u"/%1"_s.arg(random() % 4);
        return path;
    };
    for (int round = 0; round < 60; ++round) {
        switch (random() % 3) {
        case 0:
            model.setExpanded(int(random() % unsigned(model.rowCount())), random() % 2 == 0);
            break;
        case 1:
            library.remove(folder());
            [[fallthrough]];
        default:
            library.write(folder() + u"/%1.mov"_s.arg(round));
            ASSERT_TRUE(library.scan());
        }
        ASSERT_TRUE(view.agrees()) << "after round " << round;
    }
    EXPECT_EQ(view.resets, 0);
}

TEST_F(FolderTree, CountsInEachListWhatStillExists)
{
    const LibraryCounts counts(library.vault, library.prefs);
    library.prefs.setFavorites({library.path(u"SFX/Hits/e.wav"_s), library.path(u"SFX/Hits/gone.wav"_s)});
    library.prefs.noteInserted(library.path(u"LUTs/f.cube"_s));
    EXPECT_EQ(counts.favorites(), 1);
    EXPECT_EQ(counts.recent(), 1);
    library.remove(u"SFX/Hits/e.wav"_s);
    library.write(u"LUTs/f.cube"_s, 1500);
    ASSERT_TRUE(library.scan());
    EXPECT_EQ(counts.all(), 5);
    EXPECT_EQ(counts.favorites(), 0);
    EXPECT_EQ(counts.size(), u"2 KB");
}

} // namespace cratewell

#include "ui/grid/folder_choice_model.h"

#include "support/small_library.h"

#include <gmock/gmock.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(FolderChoiceModel, OffersAllFoldersToImportsAndToMovesThoseThatTakeTheWholeSelection)
{
    test::SmallLibrary library;
    for (const auto file :
         {"Overlays/Flashes/White.mov"_L1, "Overlays/Still.png"_L1, "SFX/Hits/Deep/Boom.wav"_L1})
        library.write(file);
    ASSERT_TRUE(library.scan());
    const auto offered = [&](FolderChoiceModel::Purpose purpose, const QStringList &files) {
        QSet<Location> selected;
        for (const QString &file : files)
            selected.insert(library.path(file));
        library.state.setSelected(selected);
        FolderChoiceModel choices;
        choices.setProperty("purpose", purpose);
        choices.setProperty("state", QVariant::fromValue(&library.state));
        choices.setProperty("vault", QVariant::fromValue(&library.vault));
        std::vector<std::string> lines;
        for (int row = 0; row < choices.rowCount(); ++row) {
            const auto value = [&](int role) { return choices.data(choices.index(row), role); };
            lines.push_back(std::string(value(FolderChoiceModel::DepthRole).toUInt(), ' ') +
                            value(FolderChoiceModel::NameRole).toString().toStdString());
            EXPECT_EQ(choices.rowOf(value(FolderChoiceModel::FolderRole).value<Location>()), row);
        }
        return lines;
    };
    using enum FolderChoiceModel::Purpose;
    EXPECT_THAT(offered(Move, {u"SFX/Hits/Deep/Boom.wav"_s}), ElementsAre("SFX", " Hits", "  Deep"));
    EXPECT_THAT(offered(Move, {u"Overlays/Flashes/White.mov"_s, u"Overlays/Still.png"_s}),
                ElementsAre("Overlays", " Flashes"));
    EXPECT_THAT(offered(Move, {u"Overlays/Still.png"_s, u"SFX/Hits/Deep/Boom.wav"_s}), IsEmpty());
    EXPECT_THAT(offered(Import, {}), ElementsAre("Sort by type automatically", "Overlays", " Flashes", "LUTs",
                                                 "SFX", " Hits", "  Deep"));
}

} // namespace
} // namespace cratewell

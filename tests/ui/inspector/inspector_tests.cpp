#include "ui/actions_library.h"
#include "ui/controls/formats.h"
#include "ui/grid/empty_state_model.h"
#include "ui/inspector/metadata_model.h"
#include "ui/inspector/selection_info.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

// "label=value" of all rows but the first two and the last, which every asset has.
QString details(const QString &file, AssetKind kind, const std::optional<MediaInfo> &info,
                const std::optional<LUT> &lut = {})
{
    const auto rows = metadataRows({Location::fromText(file), kind, 48'200'000, 0, {}}, info, lut);
    EXPECT_GE(rows.size(), 3U);
    EXPECT_EQ(rows[0].value, kindLabel(kind) + u" · "_s + file.section(u'.', -1).toUpper());
    EXPECT_EQ(rows[1].value, u"48.2 MB"_s);
    EXPECT_EQ(rows.back().label, u"Added"_s);
    QStringList texts;
    for (size_t i = 2; i + 1 < rows.size(); ++i)
        texts << rows[i].label + u'=' + rows[i].value;
    return texts.join(u", "_s);
}

TEST(MetadataModel, SayOfEachKindWhatItsFileTells)
{
    MediaInfo film{.duration = 12.2, .frameRate = 23.976, .width = 1920, .height = 1080, .codec = 0x61703468};
    EXPECT_EQ(details(u"/v/a.mov"_s, AssetKind::Video, film),
              u"Duration=0:12, Resolution=1920 × 1080, Frame rate=24 fps, Codec=ap4h (alpha capable)"_s);
    film.codec = 0x61766331;
    EXPECT_TRUE(details(u"/v/a.mov"_s, AssetKind::Video, film).endsWith(u"Codec=avc1"_s));
    film.codec = 0;
    EXPECT_EQ(details(u"/v/a.mp4"_s, AssetKind::Video, film), u"Duration=0:12"_s);
    EXPECT_EQ(details(u"/v/a.png"_s, AssetKind::Image, MediaInfo{.width = 40, .height = 30}),
              u"Resolution=40 × 30"_s);
    for (const auto &[channels, text] : {std::pair{1, u"Mono"_s}, {2, u"Stereo"_s}, {6, u"6"_s}}) {
        const MediaInfo sound{.frames = 99840, .sampleRate = 48000, .channels = channels};
        EXPECT_EQ(details(u"/v/a.wav"_s, AssetKind::Audio, sound),
                  u"Duration=2.1s, Sample rate=48000 Hz, Channels="_s + text);
    }
    const auto lut =
        LUT::fromText("TITLE \"Warm\"\nLUT_3D_SIZE 2\n" + QByteArray("0 0 0\n").repeated(8), u"a"_s);
    ASSERT_TRUE(lut);
    EXPECT_EQ(details(u"/v/a.cube"_s, AssetKind::Lut, {}, lut), u"Lattice=2³, Title=Warm"_s);
    for (const AssetKind kind : {AssetKind::Video, AssetKind::Image, AssetKind::Lut, AssetKind::Audio})
        EXPECT_EQ(details(u"/v/a.bad"_s, kind, {}), QString()) << "what cannot be read is left out";
}

TEST(AddedText, IsADayAndAMinuteInTheSystemsWords)
{
    const QDateTime moment(QDate(2026, 11, 20), QTime(14, 12, 30));
    const double added = double(moment.toSecsSinceEpoch() - 978307200);
    const std::pair<QLocale, QString> cases[]{
        {QLocale(QLocale::English, QLocale::UnitedStates), u"Nov 20, 2026, 2:12 PM"_s},
        {QLocale(QLocale::German, QLocale::Germany), u"20. Nov. 2026, 14:12"_s}};
    for (const auto &[locale, text] : cases) {
        QLocale::setDefault(locale);
        EXPECT_EQ(addedText(added).replace(QChar(0x202f), u' '), text);
    }
    EXPECT_EQ(addedText(distantPast), u"Unknown"_s);
    QLocale::setDefault(QLocale::c());
}

TEST(SelectionInfo, FollowsTheFocusFavoritesAndTheEditorThatAnInsertGoesTo)
{
    test::ActionsLibrary library;
    library.write(u"Overlays/Light Leaks/Warm/White.mov"_s);
    ASSERT_TRUE(library.scan());
    const SelectionInfo info(library.state, library.vault, library.prefs, library.inserter);
    EXPECT_EQ(info.name() + info.place() + info.kindLabel() + info.destination(), QString());
    EXPECT_FALSE(info.isPresent() || info.isFavorite());

    const auto asset = library.asset(u"Overlays/Light Leaks/Warm/White.mov"_s);
    library.state.setSelection(asset);
    EXPECT_EQ(info.name() + u'|' + info.place() + u'|' + info.kindLabel(),
              u"White|Overlays › Light Leaks › Warm|Video"_s);
    QSignalSpy favorite(&info, &SelectionInfo::favoriteChanged);
    library.prefs.toggleFavorite(asset->url);
    EXPECT_TRUE(info.isFavorite());
    EXPECT_EQ(favorite.count(), 1);
    QSignalSpy destination(&info, &SelectionInfo::destinationChanged);
    library.prefs.setInsertTarget(u"premiere"_s);
    EXPECT_EQ(destination.count(), 1);
    EXPECT_TRUE(info.destination().contains(u"Premiere Pro"_s)) << qPrintable(info.destination());
    library.state.setSelection({});
    EXPECT_FALSE(info.isPresent());
}

TEST(EmptyStateModel, OffersWhatHelpsInEachViewAndDoesIt)
{
    test::ActionsLibrary library;
    EmptyStateModel notice(library.state, library.vault, library.actions);
    const Location hits = library.path(u"SFX/Hits"_s);
    const auto offer = [&](const Scope &scope) {
        library.state.setScope(scope);
        return notice.title() + u'|' + notice.icon();
    };
    EXPECT_FALSE(notice.isKnown()) << "nobody has looked yet";
    ASSERT_TRUE(library.start());
    EXPECT_TRUE(notice.isKnown());
    EXPECT_EQ(offer(Scope::all()), u"Your vault is empty|apps"_s);
    notice.act();
    EXPECT_EQ(offer(Scope::inFolder(hits)), u"Nothing in Hits yet|graphic_eq"_s);
    notice.act();
    EXPECT_EQ(library.workspace.opened(), (QList{library.vault.root(), hits}));
    EXPECT_EQ(offer(Scope::of(Scope::Kind::Favorites)), u"No favorites yet|star"_s);
    notice.act();
    EXPECT_EQ(library.state.scope(), Scope::all());
    library.state.setSearch(u"nothing"_s);
    EXPECT_EQ(notice.title(), u"No match"_s);
    notice.act();
    EXPECT_EQ(library.state.search(), QString());
}

} // namespace
} // namespace cratewell

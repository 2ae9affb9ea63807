#include "integrations/inserter.h"
#include "platform/fakes/fake_applications.h"
#include "state/notifications.h"
#include "support/small_library.h"
#include "ui/controls/formats.h"
#include "ui/grid/empty_state_model.h"
#include "ui/inspector/metadata_model.h"
#include "ui/inspector/selection_info.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

struct NoBridge : EditorBridge
{
    QCoro::Task<InsertResult> insert(const Asset &) override { co_return InsertResult{}; }
};

TEST(PlaceText, LeadsFromTheCategoryToTheFile)
{
    const auto text = [](const QString &file) {
        return placeText(Location::fromText(u"/home/me/Vault"_s), Location::fromText(file));
    };
    EXPECT_EQ(text(u"/home/me/Vault/Overlays/Light Leaks/Warm/a.mov"_s), u"Overlays › Light Leaks › Warm"_s);
    EXPECT_EQ(text(u"/home/me/Vault/SFX/a.wav"_s), u"SFX"_s);
    EXPECT_EQ(text(u"/elsewhere/SFX/a.wav"_s), u"SFX"_s);
    EXPECT_EQ(text(u"/home/me/Vault 2/SFX/a.wav"_s), u"SFX"_s);
}

// "label=value" of all rows but the first two and the last, which every asset has.
QStringList details(const QString &file, AssetKind kind, const std::optional<MediaInfo> &info,
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
    return texts;
}

TEST(MetadataModel, SayOfEachKindWhatItsFileTells)
{
    MediaInfo film{.duration = 12.2, .frameRate = 23.976, .width = 1920, .height = 1080, .codec = 0x61703468};
    EXPECT_EQ(details(u"/v/a.mov"_s, AssetKind::Video, film),
              (QStringList{u"Duration=0:12"_s, u"Resolution=1920 × 1080"_s, u"Frame rate=24 fps"_s,
                           u"Codec=ap4h (alpha capable)"_s}));
    film.codec = 0x61766331;
    film.frameRate = 29.97;
    EXPECT_EQ(details(u"/v/a.mov"_s, AssetKind::Video, film).sliced(2),
              (QStringList{u"Frame rate=30 fps"_s, u"Codec=avc1"_s}));
    film.codec = 0;
    MediaInfo still;
    still.width = 40;
    still.height = 30;
    EXPECT_EQ(details(u"/v/a.mp4"_s, AssetKind::Video, film), QStringList{u"Duration=0:12"_s});
    EXPECT_EQ(details(u"/v/a.png"_s, AssetKind::Image, still), QStringList{u"Resolution=40 × 30"_s});

    MediaInfo sound;
    sound.sampleRate = 48000;
    sound.channels = 2;
    sound.frames = 99840;
    EXPECT_EQ(details(u"/v/a.wav"_s, AssetKind::Audio, sound),
              (QStringList{u"Duration=2.1s"_s, u"Sample rate=48000 Hz"_s, u"Channels=Stereo"_s}));
    for (const auto &[channels, text] : {std::pair{1, u"Mono"_s}, std::pair{6, u"6"_s}}) {
        sound.channels = channels;
        EXPECT_EQ(details(u"/v/a.wav"_s, AssetKind::Audio, sound).last(), u"Channels="_s + text);
    }
    const auto lut =
        LUT::fromText("TITLE \"Warm\"\nLUT_3D_SIZE 2\n" + QByteArray("0 0 0\n").repeated(8), u"a"_s);
    ASSERT_TRUE(lut);
    EXPECT_EQ(details(u"/v/a.cube"_s, AssetKind::Lut, {}, lut),
              (QStringList{u"Lattice=2³"_s, u"Title=Warm"_s}));
    for (const AssetKind kind : {AssetKind::Video, AssetKind::Image, AssetKind::Lut, AssetKind::Audio})
        EXPECT_EQ(details(u"/v/a.bad"_s, kind, {}), QStringList()) << "what cannot be read is left out";
}

TEST(AddedText, IsADayAndAMinuteInTheSystemsWords)
{
    const QDateTime moment(QDate(2026, 11, 20), QTime(14, 12, 30));
    const double added = double(moment.toSecsSinceEpoch() - 978307200);
    const QLocale before;
    const std::pair<QLocale, QString> cases[]{
        {QLocale(QLocale::English, QLocale::UnitedStates), u"Nov 20, 2026, 2:12 PM"_s},
        {QLocale::c(), u"20 Nov 2026, 14:12"_s},
        {QLocale(QLocale::German, QLocale::Germany), u"20. Nov. 2026, 14:12"_s}};
    for (const auto &[locale, text] : cases) {
        QLocale::setDefault(locale);
        EXPECT_EQ(addedText(added).replace(QChar(0x202f), u' '), text);
    }
    EXPECT_EQ(addedText(distantPast), u"Unknown"_s);
    QLocale::setDefault(before);
}

class SelectionInfoTest : public testing::Test
{
protected:
    void SetUp() override
    {
        library.write(u"Overlays/Flashes/White.mov"_s);
        library.write(u"LUTs/Noir.cube"_s);
        ASSERT_TRUE(library.scan());
    }

    test::SmallLibrary library;
    FakeApplications applications;
    NoBridge bridge;
    Notifications notifications;
    Inserter inserter{library.prefs, library.state, applications, notifications, bridge, bridge};
    SelectionInfo info{library.state, library.vault, library.prefs, inserter};
};

TEST_F(SelectionInfoTest, SaysWhatIsFocused)
{
    EXPECT_FALSE(info.isPresent());
    EXPECT_EQ(info.name() + info.place() + info.kindLabel() + info.destination(), QString());
    EXPECT_FALSE(info.isFavorite() || info.isInsertable());

    library.state.setSelection(library.asset(u"Overlays/Flashes/White.mov"_s));
    EXPECT_EQ(info.name(), u"White"_s);
    EXPECT_EQ(info.place(), u"Overlays › Flashes"_s);
    EXPECT_EQ(info.kindLabel(), u"Video"_s);
    EXPECT_TRUE(info.isInsertable());

    library.state.setSelection(library.asset(u"LUTs/Noir.cube"_s));
    EXPECT_EQ(info.kind(), AssetKind::Lut);
    EXPECT_FALSE(info.isInsertable());

    library.state.setSelection({});
    EXPECT_FALSE(info.isPresent());
}

TEST_F(SelectionInfoTest, FollowsFavoritesAndTheEditorThatAnInsertGoesTo)
{
    const auto asset = library.asset(u"Overlays/Flashes/White.mov"_s);
    library.state.setSelection(asset);
    QSignalSpy favorite(&info, &SelectionInfo::favoriteChanged);
    library.prefs.toggleFavorite(asset->url);
    EXPECT_TRUE(info.isFavorite());
    EXPECT_EQ(favorite.count(), 1);

    QSignalSpy destination(&info, &SelectionInfo::destinationChanged);
    library.prefs.setInsertTarget(u"premiere"_s);
    EXPECT_EQ(destination.count(), 1);
    EXPECT_TRUE(info.destination().contains(u"Premiere Pro"_s)) << qPrintable(info.destination());
    library.prefs.setOverlayTrack(u"free"_s);
    EXPECT_TRUE(info.destination().contains(u"the highest free track"_s)) << qPrintable(info.destination());
}

TEST(Notice, OffersWhatHelpsInEachView)
{
    using Action = Notice::Action;
    const Location root = Location::fromText(u"/v"_s);
    const auto folder = [&root](const QString &path) {
        return Scope::inFolder(Location::fromText(root.text() + path));
    };
    const struct
    {
        Scope scope;
        QString search;
        QString title;
        Action action;
        QString icon;
    } cases[] = {
        {Scope::all(), {}, u"Your vault is empty"_s, Action::OpenFolder, u"apps"_s},
        {Scope::of(Scope::Kind::Favorites), {}, u"No favorites yet"_s, Action::ShowAll, u"star"_s},
        {Scope::of(Scope::Kind::Recent), {}, u"Nothing inserted yet"_s, Action::ShowAll, u"schedule"_s},
        {folder(u"/LUTs/Film"_s), {}, u"Nothing in Film yet"_s, Action::OpenFolder, u"camera"_s},
        {folder(u"/SFX"_s), {}, u"Nothing in SFX yet"_s, Action::OpenFolder, u"graphic_eq"_s},
        {folder(u"/SFX"_s), u"zz"_s, u"No match"_s, Action::ClearSearch, u"search"_s},
        {Scope::of(Scope::Kind::Recent), u"zz"_s, u"No match"_s, Action::ClearSearch, u"search"_s},
    };
    for (const auto &[scope, search, title, action, icon] : cases) {
        const Notice notice = noticeFor(scope, search, root);
        EXPECT_EQ(notice.title, title);
        EXPECT_EQ(notice.action, action) << qPrintable(title);
        EXPECT_EQ(notice.icon, icon) << qPrintable(title);
    }
}

TEST(EmptyStateModel, DoesWhatItOffers)
{
    test::SmallLibrary library;
    EmptyStateModel notice(library.state, library.vault, library.workspace);

    const Location hits = library.path(u"SFX/Hits"_s);
    library.state.setScope(Scope::inFolder(hits));
    notice.act();
    EXPECT_EQ(library.workspace.opened(), QList<Location>{hits});

    library.state.setSearch(u"nothing"_s);
    EXPECT_EQ(notice.title(), u"No match"_s);
    notice.act();
    EXPECT_EQ(library.state.search(), QString());

    library.state.setScope(Scope::of(Scope::Kind::Favorites));
    notice.act();
    EXPECT_EQ(library.state.scope(), Scope::all());
}

} // namespace
} // namespace cratewell

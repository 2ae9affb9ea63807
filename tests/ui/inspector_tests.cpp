#include "integrations/inserter.h"
#include "platform/fakes/fake_applications.h"
#include "support/small_library.h"
#include "ui/empty_notice.h"
#include "ui/selection_info.h"

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

class SelectionInfoTest : public testing::Test
{
protected:
    void SetUp() override
    {
        library.write(u"Overlays/Flashes/White.mov"_s);
        library.write(u"LUTs/Noir.cube"_s);
        ASSERT_TRUE(library.scan());
        info.follow(library.state, library.vault, library.prefs, inserter);
    }

    test::SmallLibrary library;
    FakeApplications applications;
    NoBridge bridge;
    Inserter inserter{library.prefs, library.state, applications, bridge, bridge};
    SelectionInfo info;
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

TEST(EmptyNotice, DoesWhatItOffers)
{
    test::SmallLibrary library;
    EmptyNotice notice;
    notice.follow(library.state, library.vault, library.workspace);

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

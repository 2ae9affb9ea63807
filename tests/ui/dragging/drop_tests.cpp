#include "ui/dragging/drop_controller.h"

#include "ui/actions_library.h"
#include "ui/dragging/drag_data.h"

#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace cratewell {

using namespace Qt::StringLiterals;
using test::waitUntil;
using enum DropController::Effect;

namespace {

// A vault and a desktop beside it.
class Dropped : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(named("desktop").c_str());
        for (const char *file :
             {"vault/SFX/Hits/a.wav", "vault/SFX/b.wav", "vault/SFX/Pack.mov/x.wav", "vault 2/c.wav"})
            make(file);
        std::filesystem::create_directories(named("vault/Overlays").c_str());
        make("desktop/d.wav");
        link("vault", "link to vault");
        link("vault/SFX/b.wav", "desktop/link to b.wav");
        link("vault/SFX", "desktop/link to SFX");
        link("desktop/d.wav", "vault/SFX/link to d.wav");
        link("vault/SFX/b.wav", "vault/SFX/Hits/link to b.wav");
        link("desktop", "vault/LUTs");
    }

    Location named(const char *name) const
    {
        const Location folder = Location::fromText(m_folder.path()).resolved();
        return Location::fromText(folder.text() + u'/' + QString::fromUtf8(name));
    }

private:
    void make(const char *name) const
    {
        const std::filesystem::path path(named(name).c_str());
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    }
    void link(const char *target, const char *name) const
    {
        std::filesystem::create_symlink(named(target).c_str(), named(name).c_str());
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Dropped, WhatLiesInTheVaultIsTakenFromTheRestThroughEveryLink)
{
    const struct
    {
        const char *what;
        Location item;
        std::optional<Location> inside; // nothing: outside
    } cases[] = {
        {"a file", named("vault/SFX/Hits/a.wav"), named("vault/SFX/Hits/a.wav")},
        {"a folder", named("vault/SFX/Hits"), named("vault/SFX/Hits")},
        {"a file that is gone", named("vault/SFX/gone.wav"), named("vault/SFX/gone.wav")},
        {"by another way to the vault", named("link to vault/SFX/b.wav"), named("link to vault/SFX/b.wav")},
        {"a link in the vault to a file of it", named("vault/SFX/Hits/link to b.wav"),
         named("vault/SFX/Hits/link to b.wav")},
        {"a link from outside", named("desktop/link to b.wav"), named("vault/SFX/b.wav")},
        {"a link in the vault to a file outside", named("vault/SFX/link to d.wav"), {}},
        {"a file outside", named("desktop/d.wav"), {}},
        {"beside the vault, with its name to begin with", named("vault 2/c.wav"), {}},
        {"the vault itself", named("vault"), {}},
    };
    for (const Location &root : {named("vault"), named("link to vault")}) {
        for (const auto &row : cases) {
            const DroppedItems dropped = judgeDrop({row.item, Location()}, root).items;
            if (row.inside)
                EXPECT_EQ(dropped, (DroppedItems{{*row.inside}, {}})) << row.what;
            else
                EXPECT_EQ(dropped, (DroppedItems{{}, {row.item}})) << row.what;
        }
        // The folder of a category is nothing to drag, by whatever way and whatever it is.
        for (const char *category :
             {"vault/SFX", "link to vault/Overlays", "vault/LUTs", "desktop/link to SFX"})
            EXPECT_EQ(judgeDrop({named(category)}, root).items, DroppedItems()) << category;
    }
}

TEST_F(Dropped, MovesAndImportsThatTakeNothingAreKnown)
{
    const Location root = named("vault");
    const struct
    {
        std::vector<const char *> items;
        const char *folder;
        bool moves;
    } cases[] = {
        {{"vault/SFX/Hits/a.wav"}, "vault/SFX", true},
        {{"vault/SFX/b.wav"}, "vault/SFX", false},
        {{"vault/SFX/b.wav"}, "vault/Overlays", false},
        {{"vault/SFX/Hits"}, "vault/Overlays", true},
        {{"vault/SFX/Hits"}, "vault/SFX/Hits", false},
        {{"vault/SFX/Hits"}, "vault/SFX/Hits/Deep", false},
        {{"vault/SFX"}, "vault/SFX/Hits", false},
        {{"vault/SFX"}, "vault/Overlays", false},
        {{"vault/SFX/Pack.mov"}, "vault/SFX/Pack.mov", false},
        {{"vault/SFX/Pack.mov"}, "vault/Overlays", true},
        {{"vault/SFX/Pack.mov"}, "vault/SFX/Hits", false},
        {{"link to vault/SFX/b.wav"}, "vault/SFX", false},
        {{"vault/SFX/b.wav", "vault/SFX/c.wav", "vault/SFX/Hits/a.wav"}, "vault/SFX", true},
        {{"vault/SFX/Hits/a.wav", "vault/SFX/b.wav"}, "vault/SFX/Hits", true},
    };
    const auto effects = [&](const std::vector<const char *> &names) {
        std::vector<Location> items;
        items.reserve(names.size());
        for (const char *name : names)
            items.push_back(named(name));
        return judgeDrop(items, root).effects;
    };
    for (const auto &row : cases)
        EXPECT_EQ(effects(row.items).moveInto(named(row.folder), root), row.moves)
            << row.items.back() << " to " << row.folder;

    EXPECT_TRUE(effects({"a.txt", "desktop/d.wav"}).import());
    EXPECT_TRUE(effects({"desktop"}).import());
    EXPECT_FALSE(effects({"a.txt", "nowhere"}).import());
    EXPECT_TRUE(effects({"a.txt", "desktop/d.wav"}).importInto(named("vault/SFX"), root));
    EXPECT_FALSE(effects({"desktop/d.wav", "e.wav"}).importInto(named("vault/Overlays"), root));
    EXPECT_TRUE(effects({"desktop/d.wav", "desktop"}).importInto(named("vault/Overlays"), root));
}

// What a drag says of itself and does depends on all of it, whether it is judged at once or on a thread.
TEST(LongDrops, AreJudgedByAllOfTheirItems)
{
    test::ActionsLibrary library;
    library.write(u"SFX/Hits/a.wav"_s);
    library.write(u"Overlays/flash.png"_s);
    library.write(u"../desktop/door.wav"_s);
    ASSERT_TRUE(library.start());
    const Location hits = library.path(u"SFX/Hits"_s);
    const Location overlays = library.path(u"Overlays"_s);
    const Location sfx = library.path(u"SFX"_s);

    for (const int fillers : {3, 3000}) {
        const auto entered = [&](DropController &drops, const QString &last) {
            QString list;
            for (int i = 0; i < fillers; ++i)
                list += u"file:///nowhere/%1.txt\r\n"_s.arg(i);
            drops.enter(list + QString::fromLatin1(library.path(last).uri()) + u"\r\n"_s, {});
            EXPECT_EQ(drops.isJudging(), fillers > 1000);
            EXPECT_EQ(drops.effectOn(sfx) == Unknown, drops.isJudging()) << "it says so while it cannot know";
            EXPECT_EQ(drops.effectOnGrid() == Unknown, drops.isJudging());
        };
        DropController drops(library.vault, library.state, library.actions);
        const auto judged = [&] { return waitUntil([&] { return !drops.isJudging(); }); };
        entered(drops, u"SFX/Hits/a.wav"_s);
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(sfx), Move);
        EXPECT_EQ(drops.effectOn(hits), Nothing);
        EXPECT_EQ(drops.effectOnGrid(), Nothing);
        entered(drops, u"../desktop/door.wav"_s);
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(hits), Copy);
        EXPECT_EQ(drops.effectOn(overlays), Sort);
        EXPECT_EQ(drops.effectOnGrid(), Sort);
        entered(drops, u"SFX/gone.txt"_s);
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(sfx), Nothing);

        // Dropped at once, and another drag comes in before it is judged.
        QSignalSpy reports(&library.vault, &Vault::toast);
        entered(drops, u"../desktop/door.wav"_s);
        drops.dropOn(hits);
        entered(drops, u"SFX/Hits/a.wav"_s);
        ASSERT_TRUE(waitUntil([&] { return reports.count() > 0; }));
        EXPECT_TRUE(std::filesystem::exists(library.path(u"SFX/Hits/door.wav"_s).c_str()));
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(sfx), Move);
        library.remove(u"SFX/Hits/door.wav"_s);
    }
}

TEST(LongDrops, OfOurOwnHoldNothingForTheGrid)
{
    test::ActionsLibrary library;
    library.write(u"SFX/a.wav"_s);
    ASSERT_TRUE(library.start());
    const std::vector<Location> items(500, library.path(u"SFX/a.wav"_s));
    const auto data = dragData(items);
    DropController drops(library.vault, library.state, library.actions);
    drops.enter(QString::fromUtf8(data->data(u"text/uri-list"_s)),
                QString::fromUtf8(data->data(DropController::ownType())));
    EXPECT_TRUE(drops.isJudging());
    EXPECT_EQ(drops.effectOnGrid(), Nothing) << "no frame flashes up";
    ASSERT_TRUE(waitUntil([&] { return !drops.isJudging(); }));
    EXPECT_EQ(drops.effectOn(library.path(u"Overlays"_s)), Nothing);
    EXPECT_EQ(drops.effectOn(library.path(u"SFX/Hits"_s)), Move);
}

} // namespace cratewell

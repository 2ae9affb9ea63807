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
    Dropped()
    {
        for (const char *file : {"vault/SFX/Hits/a.wav", "vault/SFX/b.wav", "vault/SFX/Pack.mov/x.wav",
                                 "vault/Overlays/c.mov", "vault 2/c.wav", "desktop/d.wav"}) {
            const std::filesystem::path path(named(file).c_str());
            std::filesystem::create_directories(path.parent_path());
            std::ofstream(path) << "x";
        }
        for (const auto &[target, name] : {std::pair{"vault", "link to vault"},
                                           {"vault/SFX/b.wav", "desktop/link to b.wav"},
                                           {"vault/SFX", "desktop/link to SFX"},
                                           {"desktop/d.wav", "vault/SFX/link to d.wav"},
                                           {"vault/SFX/b.wav", "vault/SFX/Hits/link to b.wav"},
                                           {"desktop", "vault/LUTs"}})
            std::filesystem::create_symlink(named(target).c_str(), named(name).c_str());
    }

    Location named(const char *name) const
    {
        const Location folder = Location::fromText(m_folder.path()).resolved();
        return Location::fromText(folder.text() + u'/' + QString::fromUtf8(name));
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Dropped, WhatLiesInTheVaultIsTakenFromTheRestThroughEveryLink)
{
    const struct
    {
        const char *item;
        const char *inside; // null: outside
    } cases[] = {
        {"vault/SFX/Hits/a.wav", "vault/SFX/Hits/a.wav"},
        {"vault/SFX/Hits", "vault/SFX/Hits"},
        {"vault/SFX/gone.wav", "vault/SFX/gone.wav"},
        {"link to vault/SFX/b.wav", "link to vault/SFX/b.wav"},
        {"vault/SFX/Hits/link to b.wav", "vault/SFX/Hits/link to b.wav"},
        {"desktop/link to b.wav", "vault/SFX/b.wav"},
        {"vault/SFX/link to d.wav", nullptr},
        {"desktop/d.wav", nullptr},
        {"vault 2/c.wav", nullptr}, // beside the vault, with its name to begin with
        {"vault", nullptr},
    };
    for (const Location &root : {named("vault"), named("link to vault")}) {
        for (const auto &row : cases) {
            const DroppedItems dropped = judgeDrop({named(row.item), Location()}, root).items;
            const DroppedItems expected =
                row.inside ? DroppedItems{{named(row.inside)}, {}} : DroppedItems{{}, {named(row.item)}};
            EXPECT_EQ(dropped, expected) << row.item;
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
        bool imports;
    } cases[] = {
        {{"vault/SFX/b.wav"}, "vault/SFX", false, false},
        {{"vault/SFX/b.wav"}, "vault/Overlays", false, false},
        {{"vault/SFX/Hits"}, "vault/Overlays", true, false},
        {{"vault/SFX/Hits"}, "vault/SFX/Hits/Deep", false, false},
        {{"vault/SFX"}, "vault/SFX/Hits", false, false},
        {{"vault/SFX/Pack.mov"}, "vault/Overlays", true, false},
        {{"vault/SFX/Pack.mov"}, "vault/SFX/Hits", false, false},
        {{"link to vault/SFX/b.wav"}, "vault/SFX", false, false},
        {{"vault/SFX/b.wav", "vault/SFX/c.wav", "vault/SFX/Hits/a.wav"}, "vault/SFX", true, false},
        {{"a.txt", "nowhere"}, "vault/SFX", false, false},
        {{"a.txt", "desktop/d.wav"}, "vault/SFX", false, true},
        {{"desktop/d.wav", "e.wav"}, "vault/Overlays", false, false},
        {{"desktop/d.wav", "desktop"}, "vault/Overlays", false, true},
    };
    for (const auto &row : cases) {
        std::vector<Location> items;
        items.reserve(row.items.size());
        for (const char *name : row.items)
            items.push_back(named(name));
        const DropEffects effects = judgeDrop(items, root).effects;
        EXPECT_EQ(effects.moveInto(named(row.folder), root), row.moves) << row.items.back();
        EXPECT_EQ(effects.importInto(named(row.folder), root), row.imports) << row.items.back();
    }
}

// What a drag says of itself and does depends on all of it, whether it is judged at once or on a thread.
TEST(LongDrops, AreJudgedByAllOfTheirItems)
{
    test::ActionsLibrary library;
    library.write(u"SFX/Hits/a.wav"_s);
    library.write(u"../desktop/door.wav"_s);
    ASSERT_TRUE(library.start());
    const Location hits = library.path(u"SFX/Hits"_s);
    const Location overlays = library.path(u"Overlays"_s);
    const Location sfx = library.path(u"SFX"_s);
    DropController drops(library.vault, library.state, library.actions);
    const auto judged = [&] { return waitUntil([&] { return !drops.isJudging(); }); };

    for (const int fillers : {3, 3000}) {
        const auto enter = [&](const QString &last) {
            QString list;
            for (int i = 0; i < fillers; ++i)
                list += u"file:///nowhere/%1.txt\r\n"_s.arg(i);
            drops.enter(list + QString::fromLatin1(library.path(last).uri()) + u"\r\n"_s, {});
            EXPECT_EQ(drops.isJudging(), fillers > 1000);
            EXPECT_EQ(drops.effectOn(sfx) == Unknown, drops.isJudging()) << "it says so while it cannot know";
            EXPECT_EQ(drops.effectOnGrid() == Unknown, drops.isJudging());
        };
        enter(u"../desktop/door.wav"_s);
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(hits), Copy);
        EXPECT_EQ(drops.effectOn(overlays), Sort);
        EXPECT_EQ(drops.effectOnGrid(), Sort);

        // Dropped at once, and another drag comes in before it is judged.
        QSignalSpy reports(&library.vault, &Vault::toast);
        enter(u"../desktop/door.wav"_s);
        drops.dropOn(hits);
        enter(u"SFX/Hits/a.wav"_s);
        ASSERT_TRUE(waitUntil([&] { return reports.count() > 0; }));
        EXPECT_TRUE(std::filesystem::exists(library.path(u"SFX/Hits/door.wav"_s).c_str()));
        ASSERT_TRUE(judged());
        EXPECT_EQ(drops.effectOn(sfx), Move);
        EXPECT_EQ(drops.effectOn(hits), Nothing);
        EXPECT_EQ(drops.effectOnGrid(), Nothing);
        library.remove(u"SFX/Hits/door.wav"_s);
    }

    const auto own = dragData(std::vector<Location>(500, library.path(u"SFX/Hits/a.wav"_s)));
    drops.enter(QString::fromUtf8(own->data(u"text/uri-list"_s)),
                QString::fromUtf8(own->data(DropController::ownType())));
    EXPECT_TRUE(drops.isJudging());
    EXPECT_EQ(drops.effectOnGrid(), Nothing) << "no frame flashes up for our own";
    ASSERT_TRUE(judged());
    EXPECT_EQ(drops.effectOn(sfx), Move);
}

} // namespace cratewell

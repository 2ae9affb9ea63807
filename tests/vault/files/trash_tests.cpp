#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/posix/file_status.h"
#include "support/wait.h"
#include "vault/files/file_operations_fixture.h"
#include "vault/vault.h"

#include <QScopeGuard>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

constexpr double day = 86400;
const QString foreignId = u"01234567-89AB-CDEF-0123-456789ABCDEF"_s;

class TrashTest : public FileOperationsTest
{
protected:
    TrashItem trashed(const std::string &path, size_t size = 0)
    {
        disk.write(path, size);
        return work.trash(at({path}), progress).trashed.at(0);
    }
    // As the next program to start finds it.
    std::vector<TrashItem> itemsAtStart(StartupMaintenance maintenance = StartupMaintenance::Run) const
    {
        FileOperations next(disk.root(), maintenance);
        next.open();
        return next.trash();
    }
    double slotChanged(const TrashItem &item) const
    {
        return referenceSeconds(
            statusAt(AT_FDCWD, trashSlot(disk.root(), item).c_str(), Links::NoFollow)->changed);
    }
    std::vector<std::string> outside() const { return listed("../outside", ""); }
};

TEST_F(TrashTest, KeepsEqualNamesApartAndPutsThemBack)
{
    disk.write("SFX/Hits/Hit.wav", 3);
    disk.write("SFX/Hit.wav", 4);
    disk.write("SFX/Old/Deep/x.wav", 10);
    const auto outcome =
        work.trash(at({"SFX/Hits/Hit.wav", "SFX/Hit.wav", "SFX/Old", "SFX/Old/Deep/x.wav", "SFX"}), progress);
    EXPECT_EQ(outcome.count, 3);
    EXPECT_EQ(outcome.error, QString());
    EXPECT_THAT(listed(), IsEmpty());
    ASSERT_EQ(work.trash().size(), 3u);
    EXPECT_EQ(work.trash().front().name, u"Old"_s) << "the newest first";
    EXPECT_TRUE(work.trash().front().isFolder);
    EXPECT_EQ(work.trash().front().size, 10);
    EXPECT_EQ(itemsAtStart(), work.trash()) << "to the part of a second";

    disk.write("SFX/Hit.wav", 5);
    EXPECT_EQ(work.restore(work.trash(), progress).count, 3);
    EXPECT_THAT(listed("SFX"), ElementsAre("Hit 2.wav", "Hit.wav", "Hits/Hit.wav", "Old/Deep/x.wav"));
    EXPECT_EQ(fs::file_size(disk.native("SFX/Hit 2.wav")), 4u);
    EXPECT_THAT(slots(), IsEmpty());
    EXPECT_THAT(decodeTrash(indexBytes()).items, IsEmpty());

    work.trash(at({"SFX/Hits/Hit.wav"}), progress);
    disk.remove("SFX/Hits");
    work.restore(work.trash(), progress);
    EXPECT_TRUE(fs::exists(disk.native("SFX/Hits/Hit.wav"))) << "its folder comes back with it";
}

TEST_F(TrashTest, ChecksRecordsBeforeTheyAreBelieved)
{
    disk.write("../victim.txt", 1);
    const TrashItem honest = trashed("SFX/Hit.wav");
    const auto altered = [&](QString TrashItem::*field, const QString &value) {
        TrashItem item = honest;
        item.*field = value;
        return item;
    };
    writeIndex(
        encodeTrash({altered(&TrashItem::id, u".."_s), altered(&TrashItem::id, u"../../SFX"_s),
                     altered(&TrashItem::name, u"../../../victim.txt"_s), altered(&TrashItem::name, u".."_s),
                     altered(&TrashItem::original, u"relative"_s), honest}));
    EXPECT_THAT(itemsAtStart(), ElementsAre(honest));
    EXPECT_TRUE(fs::exists(disk.native(".Cratewell Trash/index.json.kept"))) << "the doubtful one is kept";

    writeIndex(encodeTrash({altered(&TrashItem::original, disk.at("../elsewhere/Hit.wav").text())}));
    work.restore({honest}, progress);
    EXPECT_FALSE(fs::exists(disk.native("../elsewhere")));
    EXPECT_TRUE(fs::exists(disk.native("SFX/Hit.wav"))) << "back where its kind lives";

    for (const QByteArray &garbage :
         {QByteArray("{\"a\":"), QByteArray("[1,null,{}]"), QByteArray(1000, '[')}) {
        writeIndex(garbage);
        EXPECT_THAT(itemsAtStart(), IsEmpty());
    }
    EXPECT_TRUE(fs::exists(disk.native(".Cratewell Trash/index.json.kept-4")));
    EXPECT_TRUE(fs::exists(disk.native("../victim.txt")));
}

TEST_F(TrashTest, KeepsTheRecordsOfASecondProgram)
{
    FileOperations second(disk.root());
    second.open();
    disk.write("SFX/b.wav");
    const TrashItem a = trashed("SFX/a.wav");
    const TrashItem b = second.trash(at({"SFX/b.wav"}), progress).trashed.at(0);
    const TrashItem c = trashed("SFX/c.wav");
    EXPECT_THAT(itemsAtStart(), ElementsAre(c, b, a));
    EXPECT_EQ(second.restore({c}, progress).count, 1) << "it sees what the first one has done";
    work.removeForever({a}, progress);
    EXPECT_THAT(itemsAtStart(), ElementsAre(b));
}

TEST_F(TrashTest, KeepsTheRecordsOfADiskThatComesAndGoes)
{
    const TrashItem before = trashed("SFX/a.wav");
    const auto unmounted = [this] { disk.rename(".Cratewell Trash", "../disk"); };
    const auto mounted = [this] {
        disk.remove(".Cratewell Trash");
        disk.rename("../disk", ".Cratewell Trash");
    };
    unmounted();
    FileOperations early(disk.root());
    early.open();
    mounted();
    disk.write("SFX/b.wav");
    const TrashItem after = early.trash(at({"SFX/b.wav"}), progress).trashed.at(0);
    EXPECT_THAT(itemsAtStart(), ElementsAre(after, before));

    unmounted();
    early.removeForever({before}, progress);
    work.purge(secondsNow() + 31 * day, progress);
    mounted();
    EXPECT_THAT(itemsAtStart(), ElementsAre(after, before)) << "not there is not gone";
    work.removeForever({before}, progress);
    EXPECT_THAT(itemsAtStart(), ElementsAre(after));
}

TEST_F(TrashTest, AdoptsItemsWithoutARecord)
{
    const TrashItem hit = trashed("SFX/Hits/Hit.wav", 3);
    const TrashItem pack = trashed("SFX/Pack/x.wav", 7);
    disk.makeFolder(".Cratewell Trash/" + foreignId.toStdString()); // empty
    disk.makeFolder(".Cratewell Trash/no slot/Folder");
    disk.write(".Cratewell Trash/" + hit.id.toStdString() + "/.DS_Store");
    disk.remove(".Cratewell Trash/index.json");

    std::vector<TrashItem> adopted = itemsAtStart();
    ASSERT_EQ(adopted.size(), 2u);
    std::ranges::sort(adopted, {}, &TrashItem::size);
    EXPECT_EQ(adopted[0],
              (TrashItem{hit.id, u"Hit.wav"_s, disk.at("SFX/Hit.wav").text(), slotChanged(hit), false, 3}));
    EXPECT_EQ(adopted[1].original, disk.at("SFX/x.wav").text());
    EXPECT_THAT(decodeTrash(indexBytes()).items, UnorderedElementsAre(adopted[0], adopted[1]));

    disk.remove(".Cratewell Trash/index.json");
    EXPECT_EQ(work.restore({hit}, progress).count, 1);
    EXPECT_THAT(listed("SFX"), ElementsAre("Hits/Hit.wav")) << "who knew its place still does";
    EXPECT_THAT(work.trash(), ElementsAre(pack));
}

TEST_F(TrashTest, ReadErrorsThatPassHarmNothing)
{
    const TrashItem item = trashed("SFX/a.wav");
    const QByteArray before = indexBytes();
    disk.write("SFX/b.wav");
    FileOperations next(disk.root());
    {
        rlimit limit;
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        const auto restored = qScopeGuard([limit] { ::setrlimit(RLIMIT_NOFILE, &limit); });
        rlimit none = limit;
        none.rlim_cur = 0;
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
        next.open();
        const auto outcome = next.trash(at({"SFX/b.wav"}), progress);
        EXPECT_EQ(outcome.count, 0);
        EXPECT_FALSE(outcome.error.isEmpty());
    }
    EXPECT_EQ(indexBytes(), before);
    EXPECT_TRUE(fs::exists(disk.native("SFX/b.wav")));
    EXPECT_EQ(next.trash(at({"SFX/b.wav"}), progress).count, 1);
    EXPECT_EQ(itemsAtStart().size(), 2u);
}

TEST_F(TrashTest, WhatStandsInPlaceOfTheIndexIsNeitherReadNorWritten)
{
    const fs::path index = disk.native(".Cratewell Trash/index.json");
    const TrashItem foreign{foreignId, u"x.wav"_s, disk.at("SFX/x.wav").text(), secondsNow(), false, 0};
    const std::string content = encodeTrash({foreign}).toStdString();
    disk.write("../outside/index.json");
    std::ofstream(disk.native("../outside/index.json")) << content;
    disk.makeFolder(".Cratewell Trash");
    const std::vector<std::function<void()>> intruders{
        [&] { fs::create_symlink(disk.native("../outside/index.json"), index); },
        [&] { ASSERT_EQ(::mkfifo(index.c_str(), 0600), 0); },
        [&] { fs::create_directory(index); },
    };
    for (const auto &intrude : intruders) {
        fs::remove(index);
        intrude();
        FileOperations next(disk.root());
        next.open();
        EXPECT_THAT(next.trash(), IsEmpty());
        disk.write("SFX/a.wav");
        EXPECT_EQ(next.trash(at({"SFX/a.wav"}), progress).count, 1);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(index)));
        next.removeForever(next.trash(), progress);
    }
    EXPECT_EQ(fs::file_size(disk.native("../outside/index.json")), content.size());
}

TEST_F(TrashTest, ATrashThatIsALinkIsNotUsed)
{
    const TrashItem item = trashed("SFX/a.wav");
    disk.rename(".Cratewell Trash", "../outside");
    disk.link(".Cratewell Trash", disk.native("../outside"));
    const std::vector<std::string> before = outside();
    disk.write("SFX/b.wav");
    EXPECT_THAT(itemsAtStart(), IsEmpty());
    const auto outcome = work.trash(at({"SFX/b.wav"}), progress);
    EXPECT_EQ(outcome.count, 0);
    EXPECT_TRUE(outcome.error.contains(u"symbolic link"_s)) << outcome.error.toStdString();
    EXPECT_EQ(work.restore({item}, progress).count, 0);
    work.removeForever({item}, progress);
    work.purge(secondsNow() + 31 * day, progress);
    EXPECT_THAT(listed(), ElementsAre("SFX/b.wav"));
    EXPECT_EQ(outside(), before);
}

TEST_F(TrashTest, ASlotThatIsALinkGivesNothingAway)
{
    disk.write("../outside/Hit.wav");
    const TrashItem foreign{foreignId, u"Hit.wav"_s, disk.at("SFX/Hit.wav").text(), 0, false, 0};
    const std::string slot = ".Cratewell Trash/" + foreignId.toStdString();
    disk.link(slot, disk.native("../outside"));
    EXPECT_THAT(itemsAtStart(), IsEmpty()) << "a link without a record is not adopted";
    writeIndex(encodeTrash({foreign}));
    work.open();
    const auto outcome = work.restore({foreign}, progress);
    EXPECT_EQ(outcome.count, 0);
    EXPECT_FALSE(outcome.error.isEmpty());
    work.removeForever({foreign}, progress);
    EXPECT_FALSE(fs::is_symlink(fs::symlink_status(disk.native(slot))));
    EXPECT_THAT(outside(), ElementsAre("Hit.wav"));
}

TEST_F(TrashTest, ALinkBelowACategoryLeadsNothingOutAndNothingIn)
{
    disk.write("../outside/theirs.wav");
    disk.write("../in/Out/new.wav");
    disk.write("SFX/mine.wav");
    disk.write("SFX/Hits/later.wav");
    const TrashItem item = work.trash(at({"SFX/Hits/later.wav"}), progress).trashed.at(0);
    disk.remove("SFX/Hits");
    disk.link("SFX/Hits", disk.native("../outside"));
    disk.link("SFX/Out", disk.native("../outside"));
    disk.makeFolder("../outside/Deep");
    const auto move = [&](const char *source, const char *folder) {
        return work.move(at({source}), disk.at(folder), progress);
    };
    const auto import = [&](const char *source, const char *folder, ImportMode mode) {
        return work.import(at({source}), disk.at(folder), mode, progress);
    };
    const std::vector<std::pair<const char *, std::function<FileOperations::Outcome()>>> operations{
        {"trash", [&] { return work.trash(at({"SFX/Out/theirs.wav"}), progress); }},
        {"move from", [&] { return move("SFX/Out/theirs.wav", "SFX"); }},
        {"move to", [&] { return move("SFX/mine.wav", "SFX/Out"); }},
        {"move below", [&] { return move("SFX/mine.wav", "SFX/Out/Deep"); }},
        {"rename", [&] { return work.rename(disk.at("SFX/Out/theirs.wav"), disk.at("SFX/Out/mine.wav")); }},
        {"create in", [&] { return work.createFolder(disk.at("SFX/Out"), u"New"_s); }},
        {"create below", [&] { return work.createFolder(disk.at("SFX/Out/Deep/More"), u"New"_s); }},
        {"copy into", [&] { return import("../in/Out/new.wav", "SFX/Out", ImportMode::Copy); }},
        {"copy as folder", [&] { return import("../in/Out", "SFX", ImportMode::Copy); }},
        {"move as folder", [&] { return import("../in/Out", "SFX", ImportMode::Move); }},
        {"import from", [&] { return import("SFX/Out/theirs.wav", "SFX", ImportMode::Move); }},
    };
    for (const auto &[name, operation] : operations) {
        const auto outcome = operation();
        EXPECT_EQ(outcome.count, 0) << name;
        EXPECT_THAT(outcome.placed, IsEmpty()) << name;
        EXPECT_TRUE(outcome.error.contains(u"symbolic link"_s)) << name << outcome.error.toStdString();
        EXPECT_THAT(outside(), ElementsAre("theirs.wav")) << name;
        EXPECT_FALSE(fs::exists(disk.native("../outside/Deep/More")) ||
                     fs::exists(disk.native("../outside/New")))
            << name;
    }
    EXPECT_TRUE(fs::exists(disk.native("../in/Out/new.wav")));
    EXPECT_EQ(work.restore({item}, progress).count, 1);
    EXPECT_TRUE(fs::exists(disk.native("SFX/later.wav"))) << "not through the link that is its home now";
    EXPECT_EQ(work.trash(at({"SFX/Out"}), progress).count, 1) << "the link itself may go";
    EXPECT_THAT(outside(), ElementsAre("theirs.wav"));
}

TEST_F(TrashTest, PurgesOnlyWhatRecordAndSlotBothCallOld)
{
    const double now = secondsNow();
    const TrashItem honest = trashed("SFX/a.wav");
    const auto afterPurge = [&](double deletedAt, double when) {
        TrashItem item = honest;
        item.deletedAt = deletedAt;
        writeIndex(encodeTrash({item}));
        work.purge(when, progress);
        return slots().size();
    };
    EXPECT_EQ(afterPurge(now - 4000 * day, now), 1u) << "the slot was changed just now";
    EXPECT_EQ(afterPurge(now + 2 * day, now + 31 * day), 1u) << "the record is younger";
    EXPECT_EQ(afterPurge(now, now + 29.9 * day), 1u);
    EXPECT_EQ(work.trash().size(), 1u);
    EXPECT_EQ(afterPurge(now, now + 30.1 * day), 0u);
    EXPECT_THAT(itemsAtStart(), IsEmpty());

    TrashItem item;
    for (const auto &[age, left] :
         {std::pair{0.0, 30}, {29.9, 1}, {30.0, 0}, {4000.0, 0}, {-5.0, 30}, {1e300, 0}}) {
        item.deletedAt = now - age * day;
        EXPECT_EQ(item.daysLeft(now), left) << age;
    }
}

// What an unattended start leaves as it is, a usual one tidies.
TEST(TrashAtStart, DeletesNothingWithoutMaintenance)
{
    for (const StartupMaintenance maintenance : {StartupMaintenance::Skip, StartupMaintenance::Run}) {
        const TemporaryVault disk;
        const std::string part = "SFX/.cratewell-00112233445566778899aabbccddeeff.part";
        const QByteArray expired = encodeTrash({{foreignId, u"a.wav"_s, u"/a.wav"_s, 0, false, 0}});
        disk.write(part);
        disk.makeFolder(".Cratewell Trash");
        std::ofstream(disk.native(".Cratewell Trash/journal")) << disk.native(part).string() << '\0';
        std::ofstream(disk.native(".Cratewell Trash/index.json")) << expired.chopped(1).toStdString() + ",1]";
        MemoryDefaults defaults;
        Vault vault(disk.root(), defaults, std::make_unique<FakeFileEvents>());
        vault.start(maintenance);
        bool done = false;
        vault.createFolder(u"last"_s, disk.at("SFX"), [&](const auto &) { done = true; });
        ASSERT_TRUE(waitUntil([&] { return done; }));
        const bool tidied = maintenance == StartupMaintenance::Run;
        EXPECT_EQ(vault.trashItems().empty(), tidied) << "purged";
        EXPECT_EQ(!fs::exists(disk.native(part)), tidied) << "cleaned up";
        EXPECT_EQ(fs::exists(disk.native(".Cratewell Trash/index.json.kept")), tidied) << "put aside";
    }
}

} // namespace
} // namespace cratewell

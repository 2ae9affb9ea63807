#include "platform/posix/file_status.h"
#include "vault/files/file_operations_fixture.h"
#include "vault/files/system_calls.h"
#include "vault/files/temporaries.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr double day = 86400;

class TrashTest : public FileOperationsTest
{
protected:
    TrashItem trashed(const std::string &path, size_t size = 0)
    {
        disk.write(path, size);
        return work.trash(at({path}), progress).trashed.at(0);
    }
    // As the next program to start finds it.
    std::vector<TrashItem> itemsAtStart() const
    {
        FileOperations next(disk.root());
        next.open();
        return next.trash();
    }
    void writeIndex(const std::vector<TrashItem> &items) const
    {
        std::ofstream(index) << encodeTrash(items).toStdString();
    }
    std::vector<std::string> outside() const { return filesBelow(disk.native("../outside")); }

    const fs::path index = disk.native(".Cratewell Trash/index.json");
    const TrashItem foreign{
        u"01234567-89AB-CDEF-0123-456789ABCDEF"_s, u"Hit.wav"_s, disk.at("SFX/Hit.wav").text(), 0, false, 0};
    const std::string foreignSlot = ".Cratewell Trash/" + foreign.id.toStdString();
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

    disk.remove("SFX/Hits");
    disk.write("SFX/Hit.wav", 5);
    EXPECT_EQ(work.restore(work.trash(), progress).count, 3);
    EXPECT_THAT(listed("SFX"), ElementsAre("Hit 2.wav", "Hit.wav", "Hits/Hit.wav", "Old/Deep/x.wav"));
    EXPECT_EQ(fs::file_size(disk.native("SFX/Hit 2.wav")), 4u);
    EXPECT_THAT(itemsAtStart(), IsEmpty());
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
    writeIndex({altered(&TrashItem::id, u"../../SFX"_s), altered(&TrashItem::name, u"../../../victim.txt"_s),
                altered(&TrashItem::original, u"relative"_s), honest});
    EXPECT_THAT(itemsAtStart(), ElementsAre(honest));
    EXPECT_TRUE(fs::exists(index.string() + ".kept")) << "the doubtful one is kept";

    writeIndex({altered(&TrashItem::original, disk.at("../elsewhere/Hit.wav").text())});
    work.restore({honest}, progress);
    EXPECT_FALSE(fs::exists(disk.native("../elsewhere")));
    EXPECT_TRUE(fs::exists(disk.native("SFX/Hit.wav"))) << "back where its kind lives";

    for (const char *garbage : {"{\"a\":", "[1,null,{}]"}) {
        std::ofstream(index) << garbage;
        EXPECT_THAT(itemsAtStart(), IsEmpty());
    }
    EXPECT_TRUE(fs::exists(index.string() + ".kept-3"));
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
}

TEST_F(TrashTest, KeepsTheRecordOfWhatAnotherProgramIsJustMoving)
{
    disk.write("SFX/Hit.wav");
    {
        Temporaries atWork(disk.root());
        ASSERT_TRUE(atWork.name(disk.at("SFX")));
        writeIndex({foreign});
        EXPECT_THAT(itemsAtStart(), ElementsAre(foreign));
    }
    EXPECT_THAT(itemsAtStart(), IsEmpty()) << "nobody moves it any more";
}

TEST_F(TrashTest, DeletesReadOnlyFoldersAndReportsWhatItCannotDelete)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give files to somebody else";
    disk.write("SFX/Mine/Deep/x.wav");
    disk.write("SFX/Theirs/x.wav");
    const std::vector<TrashItem> items = work.trash(at({"SFX/Mine", "SFX/Theirs"}), progress).trashed;
    ASSERT_EQ(items.size(), 2u);
    const std::string mine = trashedItem(disk.root(), items[0]).bytes().toStdString();
    const std::string theirs = trashedItem(disk.root(), items[1]).bytes().toStdString();
    const std::string command = "chown -R 65534 '" + disk.native("..").string() + "' && chmod -R a-w '" +
                                mine + "' && chown -R 0 '" + theirs + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    ::setfsuid(65534);
    const auto outcome = work.removeForever(items, progress);
    ::setfsuid(0);
    EXPECT_THAT(work.trash(), ElementsAre(items[1]));
    EXPECT_TRUE(outcome.error.contains(u"Theirs"_s)) << outcome.error.toStdString();
    EXPECT_FALSE(fs::exists(mine));
}

TEST_F(TrashTest, AdoptsItemsWithoutARecord)
{
    const TrashItem hit = trashed("SFX/Hits/Hit.wav", 3);
    const TrashItem pack = trashed("SFX/Pack/x.wav", 7);
    disk.makeFolder(foreignSlot); // empty
    disk.makeFolder(".Cratewell Trash/no slot/Folder");
    disk.write(".Cratewell Trash/" + hit.id.toStdString() + "/.DS_Store");
    fs::remove(index);

    const auto slot = statusAt(AT_FDCWD, trashSlot(disk.root(), hit).c_str(), Links::NoFollow);
    const TrashItem adopted{hit.id, hit.name, disk.at("SFX/Hit.wav").text(), referenceSeconds(slot->changed),
                            false,  3};
    const std::vector<TrashItem> items = itemsAtStart();
    EXPECT_THAT(items, testing::UnorderedElementsAre(adopted, testing::Field(&TrashItem::id, pack.id)));
    EXPECT_EQ(decodeTrash(QByteArray::fromStdString(readFile(index))).items, items);

    fs::remove(index);
    EXPECT_EQ(work.restore({hit}, progress).count, 1);
    EXPECT_THAT(listed("SFX"), ElementsAre("Hits/Hit.wav")) << "who knew its place still does";
    EXPECT_THAT(work.trash(), ElementsAre(pack));
}

TEST_F(TrashTest, ReadErrorsThatPassHarmNothing)
{
    trashed("SFX/a.wav");
    const std::string before = readFile(index);
    disk.write("SFX/b.wav");
    FileOperations next(disk.root());
    {
        const WatchedCalls watched(
            [](std::string_view call, std::string &) { return call.starts_with("open") ? EMFILE : 0; });
        next.open();
        const auto outcome = next.trash(at({"SFX/b.wav"}), progress);
        EXPECT_EQ(outcome.count, 0);
        EXPECT_FALSE(outcome.error.isEmpty());
    }
    EXPECT_EQ(readFile(index), before);
    EXPECT_EQ(next.trash(at({"SFX/b.wav"}), progress).count, 1);
    EXPECT_EQ(itemsAtStart().size(), 2u);
}

TEST_F(TrashTest, WhatStandsInPlaceOfTheIndexIsNeitherReadNorWritten)
{
    const std::string theirs = encodeTrash({foreign}).toStdString();
    disk.write("../outside/index.json");
    std::ofstream(disk.native("../outside/index.json")) << theirs;
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
    EXPECT_EQ(readFile(disk.native("../outside/index.json")), theirs);
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
    disk.link(foreignSlot, disk.native("../outside"));
    EXPECT_THAT(itemsAtStart(), IsEmpty()) << "a link without a record is not adopted";
    writeIndex({foreign});
    const auto outcome = work.restore({foreign}, progress);
    EXPECT_EQ(outcome.count, 0);
    EXPECT_FALSE(outcome.error.isEmpty());
    work.removeForever({foreign}, progress);
    EXPECT_FALSE(fs::is_symlink(disk.native(foreignSlot)));
    EXPECT_THAT(outside(), ElementsAre("Hit.wav"));
}

TEST_F(TrashTest, ALinkBelowACategoryLeadsNothingOutAndNothingIn)
{
    disk.write("../outside/theirs.wav");
    disk.write("../in/Out/new.wav");
    disk.write("SFX/mine.wav");
    const TrashItem item = trashed("SFX/Hits/later.wav");
    disk.remove("SFX/Hits");
    disk.link("SFX/Hits", disk.native("../outside"));
    disk.link("SFX/Out", disk.native("../outside"));
    const auto move = [&](const char *source, const char *folder) {
        return work.move(at({source}), disk.at(folder), progress);
    };
    const auto import = [&](const char *source, const char *folder, ImportMode mode) {
        return work.import(at({source}), disk.at(folder), mode, progress);
    };
    const std::pair<const char *, std::function<FileOperations::Outcome()>> operations[] = {
        {"trash", [&] { return work.trash(at({"SFX/Out/theirs.wav"}), progress); }},
        {"move from", [&] { return move("SFX/Out/theirs.wav", "SFX"); }},
        {"move to", [&] { return move("SFX/mine.wav", "SFX/Out"); }},
        {"rename", [&] { return work.rename(disk.at("SFX/Out/theirs.wav"), disk.at("SFX/Out/mine.wav")); }},
        {"create below", [&] { return work.createFolder(disk.at("SFX/Out/Deep"), u"New"_s); }},
        {"copy into", [&] { return import("../in/Out/new.wav", "SFX/Out", ImportMode::Copy); }},
        {"move as folder", [&] { return import("../in/Out", "SFX", ImportMode::Move); }},
        {"import from", [&] { return import("SFX/Out/theirs.wav", "SFX", ImportMode::Move); }},
    };
    for (const auto &[name, operation] : operations) {
        const auto outcome = operation();
        EXPECT_EQ(outcome.count, 0) << name;
        EXPECT_THAT(outcome.placed, IsEmpty()) << name;
        EXPECT_TRUE(outcome.error.contains(u"symbolic link"_s)) << name << outcome.error.toStdString();
        EXPECT_THAT(outside(), ElementsAre("theirs.wav")) << name;
    }
    EXPECT_FALSE(fs::exists(disk.native("../outside/Deep")));
    EXPECT_TRUE(fs::exists(disk.native("../in/Out/new.wav")));
    EXPECT_EQ(work.restore({item}, progress).count, 1);
    EXPECT_TRUE(fs::exists(disk.native("SFX/later.wav"))) << "not through the link that is its home now";
    EXPECT_EQ(work.trash(at({"SFX/Out"}), progress).count, 1) << "the link itself may go";
    EXPECT_THAT(outside(), ElementsAre("theirs.wav"));
}

TEST_F(TrashTest, PurgesOnlyWhatRecordAndSlotBothCallOld)
{
    const double now = secondsNow();
    TrashItem item = trashed("SFX/a.wav");
    const struct
    {
        const char *what;
        double deleted;
        double purged;
        int left;
    } cases[] = {{"the slot was changed just now", -4000, 0, 1},
                 {"the record is younger", 2, 31, 1},
                 {"both are too young", 0, 29.9, 1},
                 {"both are old", 0, 30.1, 0}};
    for (const auto &[what, deleted, purged, left] : cases) {
        item.deletedAt = now + deleted * day;
        writeIndex({item});
        FileOperations next(disk.root());
        next.purge(now + purged * day, progress);
        EXPECT_EQ(disk::exists(trashedItem(disk.root(), item)), left == 1) << what;
        EXPECT_EQ(next.trash().size(), size_t(left)) << what;
    }
    for (const auto &[age, left] : {std::pair{29.9, 1}, {30.0, 0}, {-5.0, 30}, {1e300, 0}}) {
        item.deletedAt = now - age * day;
        EXPECT_EQ(item.daysLeft(now), left) << age;
    }
}

} // namespace
} // namespace cratewell

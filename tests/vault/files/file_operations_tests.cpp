#include "support/child.h"
#include "vault/files/file_operations_fixture.h"
#include "vault/files/unique_names.h"
#include "vault/item_name.h"

#include <thread>

#include <sys/stat.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
namespace fs = std::filesystem;

TEST(Names, AreCleanedAndNumbered)
{
    EXPECT_EQ(cleanedName(u" \n a/b\t"_s), u"a-b"_s);
    for (const char *bad : {"", ".", "..", "a/b"})
        EXPECT_FALSE(isPlainName(bad)) << bad;
    using enum UniqueNames::Naming;
    EXPECT_EQ(UniqueNames::numbered("Flash.final.mov", 2, File), "Flash.final 2.mov");
    EXPECT_EQ(UniqueNames::numbered(".hidden", 2, File), ".hidden 2");
    EXPECT_EQ(UniqueNames::numbered("v1.2", 2, Folder), "v1.2 2");
    const QByteArray accents = QByteArray("\xc3\xa9").repeated(125);
    for (const QByteArray &longest : {accents + "a.wav", accents + "aaaaa", "a." + accents + "aaa"}) {
        const QByteArray next = UniqueNames::numbered(longest, 12, File);
        EXPECT_TRUE(isPlainName(next) && next.contains(" 12")) << next.constData();
        EXPECT_EQ(next.endsWith(".wav"), longest.endsWith(".wav"));
        EXPECT_TRUE(next.isValidUtf8()) << "half a character";
    }
}

TEST_F(FileOperationsTest, NothingIsEverReplaced)
{
    disk.write("SFX/Hits/a.wav", 1);
    disk.write("SFX/Hits/b.wav", 2);
    disk.write("SFX/a.wav", 3);
    const auto taken = work.rename(disk.at("SFX/Hits/a.wav"), disk.at("SFX/Hits/b.wav"));
    EXPECT_EQ(taken.count, 0);
    EXPECT_TRUE(taken.error.contains(u"exists"_s)) << taken.error.toStdString();
    EXPECT_EQ(work.rename(disk.at("SFX/Hits"), disk.at("SFX/Thuds")).count, 1);
    const auto partly = work.move(at({"SFX/gone.wav", "SFX/a.wav"}), disk.at("SFX/Thuds"), progress);
    EXPECT_EQ(partly.count, 1);
    EXPECT_TRUE(partly.error.contains(u"gone"_s)) << partly.error.toStdString();
    EXPECT_EQ(contentsBelow(disk.native("SFX")),
              (Contents{{"Thuds/a.wav", "x"}, {"Thuds/a 2.wav", "xxx"}, {"Thuds/b.wav", "xx"}}));

    for (const char *name : {"SFX/New", "SFX/New 2", "SFX/New 3"})
        EXPECT_THAT(work.createFolder(disk.at("SFX"), u"New"_s).placed, ElementsAre(disk.at(name)));
    disk.remove("");
    EXPECT_FALSE(work.createFolder(disk.at("SFX"), u"Late"_s).error.isEmpty());
    EXPECT_FALSE(fs::exists(disk.native(""))) << "a vanished vault is not made anew";
}

TEST_F(FileOperationsTest, RepairsWhatAKillLeftBehind)
{
    disk.write("SFX/Hit.wav");
    disk.write("SFX/Gone.wav");
    work.trash(at({"SFX/Hit.wav", "SFX/Gone.wav"}), progress);
    const TrashItem unmoved = work.trash().back();
    fs::rename(trashedItem(disk.root(), unmoved).c_str(), disk.native("SFX/Hit.wav"));
    const std::string part = ".cratewell-00112233445566778899aabbccddeeff.part";
    const std::string cutShort = ".cratewell-ffffffffffffffffffffffffffffffff.part";
    for (const std::string &file : {"SFX/" + part, "SFX/" + cutShort, "../" + part})
        disk.write(file);
    std::ofstream journal(disk.native(".Cratewell Trash/journal"));
    for (const std::string &file : {"SFX/" + part, "SFX/../../" + part, std::string("SFX/Hit.wav")})
        journal << disk.native(file).string() << '\0';
    journal << disk.native("SFX/" + cutShort).string() << std::flush;
    work.open();
    EXPECT_EQ(work.trash().size(), 1u);
    EXPECT_THAT(listed("SFX"), ElementsAre(cutShort, "Hit.wav"));
    EXPECT_FALSE(fs::exists(disk.native("../" + part))) << "an import may go to a folder outside the vault";
}

TEST_F(FileOperationsTest, ImportFilesByTypeAndKeepsStructure)
{
    for (const char *file : {"Pack/a.mov", "Pack/b.wav", "Pack/notes.txt", "Pack/.hidden.mov",
                             "Pack/More/c.png", "Mixed/Sounds/d.mp3", "Mixed/Looks/e.cube"})
        disk.write(std::string("../in/") + file, 1);
    disk.link("../in/Pack/loop", "..");
    ::mkfifo(disk.native("../in/Pack/pipe.mov").c_str(), 0600);
    const auto first =
        work.import(at({"../in/Pack", "../in/Mixed", "../in/none"}), {}, ImportMode::Copy, progress);
    EXPECT_EQ(first.count, 5);
    EXPECT_FALSE(first.error.isEmpty()) << "a pipe cannot be copied, and nothing waits for it";
    EXPECT_THAT(listed(), ElementsAre("LUTs/Looks/e.cube", "Overlays/Pack/More/c.png", "Overlays/Pack/a.mov",
                                      "SFX/Sounds/d.mp3", "SFX/b.wav"));

    disk.write("SFX/Hits/d.mp3", 9);
    const auto merged = work.import(at({"../in/Mixed/Sounds/d.mp3", "../in/Pack/a.mov"}), disk.at("SFX/Hits"),
                                    ImportMode::Move, progress);
    EXPECT_THAT(merged.placed, ElementsAre(disk.at("SFX/Hits/d 2.mp3"), disk.at("Overlays/a.mov")))
        << "each where its kind may lie";
    EXPECT_FALSE(fs::exists(disk.native("../in/Pack/a.mov")));
    EXPECT_EQ(fs::file_size(disk.native("SFX/Hits/d.mp3")), 9u);

    disk.write("../whole.mov");
    const auto around = work.import({disk.root().parent()}, {}, ImportMode::Copy, progress);
    EXPECT_EQ(around.count, 4) << "what is in the vault is not imported along with a folder around it";
    disk.link("../again", disk.root().parent().bytes().toStdString());
    const size_t before = listed().size();
    work.import(at({"../again", "../again/vault"}), {}, ImportMode::Copy, progress);
    EXPECT_EQ(listed().size(), before + 4) << "nor along another path";
}

TEST_F(FileOperationsTest, ImportReportsWhatItCannotReadWhole)
{
    disk.write("../in/a.wav");
    disk.link("../in/loop.wav", disk.native("../in/loop.wav"));
    disk.link("../in/nowhere.wav", disk.native("../in/none.wav"));
    const auto outcome = work.import(at({"../in"}), {}, ImportMode::Copy, progress);
    EXPECT_EQ(outcome.count, 1);
    EXPECT_TRUE(outcome.error.contains(u"loop.wav"_s)) << outcome.error.toStdString();

    // A file that ends before the size it says it has.
    disk.link("../in/b.wav", "/sys/kernel/uevent_seqnum");
    EXPECT_EQ(work.import(at({"../in/b.wav"}), {}, ImportMode::Copy, progress).count, 0);
    EXPECT_THAT(listed(), ElementsAre("SFX/in/a.wav"));
}

TEST_F(FileOperationsTest, ImportKeepsDatesAndPermissionsAndCanBeBrokenOff)
{
    disk.write("../in/a.mov", 5 << 20);
    ::chmod(disk.native("../in/a.mov").c_str(), 0640);
    const auto date = fs::last_write_time(disk.native("../in/a.mov")) - std::chrono::hours(1000);
    fs::last_write_time(disk.native("../in/a.mov"), date);
    work.import(at({"../in/a.mov"}), {}, ImportMode::Copy, progress);
    EXPECT_EQ(fs::last_write_time(disk.native("Overlays/a.mov")), date);
    EXPECT_EQ(fs::status(disk.native("Overlays/a.mov")).permissions(), fs::perms(0640));
    EXPECT_EQ(progress.bytesDone, 5 << 20);
    EXPECT_EQ(progress.filesDone, progress.filesTotal);

    for (int i = 0; i < 40; ++i)
        disk.write("../many/" + std::to_string(i) + ".mov", 16 << 20);
    OperationProgress halfway;
    std::jthread person([&] {
        while (halfway.bytesDone < 24 << 20)
            std::this_thread::yield();
        halfway.canceled = true;
    });
    const auto some = work.import(at({"../many"}), {}, ImportMode::Copy, halfway);
    EXPECT_LT(some.count, 40);
    EXPECT_EQ(some.error, QString());
    EXPECT_EQ(listed("Overlays/many").size(), size_t(some.count));
    for (const std::string &name : listed("Overlays/many"))
        EXPECT_EQ(fs::file_size(disk.native("Overlays/many/" + name)), 16u << 20) << "half a file";
}

TEST_F(FileOperationsTest, FoldersMoveWholeBetweenFileSystems)
{
    TemporaryVault other("/dev/shm");
    other.makeFolder("sounds");
    disk.remove("SFX");
    disk.link("SFX", other.native("sounds"));
    disk.write("SFX/Pack/Deep/a.wav", 7);
    disk.link("SFX/Pack/same.wav", "Deep/a.wav");
    ASSERT_EQ(work.trash(at({"SFX/Pack"}), progress).count, 1);
    EXPECT_FALSE(fs::exists(disk.native("SFX/Pack")));
    ASSERT_EQ(work.restore(work.trash(), progress).count, 1);
    EXPECT_EQ(fs::file_size(disk.native("SFX/Pack/Deep/a.wav")), 7u);
    EXPECT_TRUE(fs::is_symlink(disk.native("SFX/Pack/same.wav")));
    EXPECT_EQ(work.trash().size(), 0u);
}

// Runs with the vault on a file system of 16 MiB, whose folder is in the environment.
TEST(FullDiskChild, DISABLED_LeavesBothSidesAsTheyWere)
{
    const TemporaryVault small(qgetenv("CRATEWELL_SMALL_DISK").toStdString());
    const TemporaryVault large;
    small.makeFolder("Overlays");
    for (int i = 0; i < 8; ++i)
        large.write("in/" + std::to_string(i) + ".mov", 3 << 20);
    FileOperations work(small.root());
    work.open();
    for (const ImportMode mode : {ImportMode::Copy, ImportMode::Move}) {
        OperationProgress progress;
        const auto outcome = work.import({large.at("in")}, {}, mode, progress);
        EXPECT_TRUE(outcome.error.contains(u"No space"_s)) << outcome.error.toStdString();
        EXPECT_LT(outcome.count, 8);
        EXPECT_GT(outcome.count, 0);
        int left = 0;
        for (int i = 0; i < 8; ++i) {
            const std::string name = "in/" + std::to_string(i) + ".mov";
            const bool here = fs::exists(small.native("Overlays/" + name));
            const bool there = fs::exists(large.native(name));
            EXPECT_TRUE(there || (mode == ImportMode::Move && here)) << name;
            EXPECT_TRUE(!here || fs::file_size(small.native("Overlays/" + name)) == 3u << 20) << name;
            left += here ? 1 : 0;
        }
        EXPECT_EQ(left, outcome.count);
        EXPECT_EQ(partsBelow(small.native("")), 0);
        small.remove("Overlays/in");
    }
}

TEST(FullDisk, LeavesBothSidesAsTheyWere)
{
    const TemporaryVault place;
    place.makeFolder("disk");
    const QStringList rootlike{u"unshare"_s, u"--user"_s, u"--map-root-user"_s, u"--mount"_s};
    const QString mount = u"mount -t tmpfs -o size=16m tmpfs '%1'"_s.arg(place.at("disk").text());
    if (!isPermitted(rootlike, mount))
        GTEST_SKIP() << "no file system may be mounted here";
    Child child(u"FullDiskChild.*"_s,
                {.environment = {{u"CRATEWELL_SMALL_DISK"_s, place.at("disk").text()}},
                 .wrapper = rootlike + QStringList{u"sh"_s, u"-c"_s, mount + u" && exec \"$0\" \"$@\""_s}});
    EXPECT_TRUE(child.passes());
}

} // namespace
} // namespace cratewell

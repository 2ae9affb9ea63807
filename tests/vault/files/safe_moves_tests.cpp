// Moves between file systems while the power, a disk or another program interferes.

#include "support/child.h"
#include "vault/files/file_operations_fixture.h"
#include "vault/files/rename.h"
#include "vault/files/system_calls.h"
#include "vault/files/temporaries.h"

#include <cerrno>
#include <cstdlib>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
namespace fs = std::filesystem;

// The last is another name of the one before.
const Contents packFiles{{"a.mov", std::string(5000, 'a')},
                         {"b.mov", std::string(5000, 'b')},
                         {"Deep/c.mov", std::string(5000, 'c')},
                         {"Deep/same.mov", std::string(5000, 'c')}};

void append(const fs::path &file, const std::string &content)
{
    std::ofstream(file, std::ios::binary | std::ios::app) << content;
}

bool isWhole(const Contents::value_type &file, const Contents &where)
{
    const auto found = where.find(file.first);
    return found != where.end() && *found == file;
}

// A folder of files, to be moved or copied to a vault elsewhere.
class Pack
{
public:
    explicit Pack(const fs::path &vault) : root(Location::fromBytes(vault.c_str()))
    {
        fs::create_directories(vault / "Overlays");
        m_outside.makeFolder("Pack/Deep");
        for (const char *file : {"a.mov", "b.mov", "Deep/c.mov"})
            append(source(file), packFiles.at(file));
        fs::create_hard_link(source("Deep/c.mov"), source("Deep/same.mov"));
        m_outside.link("Pack/link.mov", "a.mov");
        work.open();
    }
    fs::path source(const std::string &path = "") const { return m_outside.native("Pack/" + path); }
    fs::path target() const { return fs::path(root.c_str()) / "Overlays/Pack"; }
    FileOperations::Outcome move()
    {
        return work.move({m_outside.at("Pack")}, root.child("Overlays"), progress);
    }
    FileOperations::Outcome copy()
    {
        return work.import({m_outside.at("Pack")}, root.child("Overlays"), ImportMode::Copy, progress);
    }

    const Location root;
    FileOperations work{root};
    OperationProgress progress;

private:
    TemporaryVault m_outside;
};

// How the disk of a vault is saved when something is flushed to it, and how the vault is brought back.
using Save = std::function<void(std::string_view flush, const fs::path &flushed, const fs::path &before,
                                const fs::path &saved)>;
using Restore = std::function<fs::path(const fs::path &saved)>;

void expectNothingLostInPowerCuts(const fs::path &vault, const Save &save, const Restore &restore)
{
    for (const bool copying : {false, true}) {
        fs::remove_all(vault);
        Pack pack(vault);
        const TemporaryVault saves;
        saves.makeFolder("");
        const auto saved = [&](size_t flush) { return saves.native(std::to_string(flush)); };
        std::vector<Contents> sources; // what was left of them when the next flush began
        save("syncfs", vault, {}, saved(0));
        {
            const WatchedCalls watched([&](std::string_view call, std::string &path) {
                if (call == "syncfs" || call == "fsync") {
                    sources.push_back(contentsBelow(pack.source()));
                    save(call, path, saved(sources.size() - 1), saved(sources.size()));
                }
                return 0;
            });
            EXPECT_EQ((copying ? pack.copy() : pack.move()).error, QString());
        }
        // People wipe the card after a copy.
        sources.push_back(copying ? Contents() : contentsBelow(pack.source()));
        EXPECT_GE(sources.size(), copying ? 2u : 5u);
        for (size_t flush = 0; flush < sources.size(); ++flush) {
            const fs::path restored = restore(saved(flush));
            FileOperations(Location::fromBytes(restored.c_str())).open();
            const Contents arrived = contentsBelow(restored / "Overlays/Pack");
            for (const auto &file : packFiles)
                EXPECT_TRUE(isWhole(file, arrived) || isWhole(file, sources[flush]))
                    << file.first << " is lost by a power cut after flush " << flush;
            EXPECT_EQ(partsBelow(restored), 0);
        }
    }
}

void run(const std::string &command)
{
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

// Of what was written since the last flush nothing is kept; a flushed file alone is kept alone.
TEST(PowerCut, LosesNothingThatWasFlushed)
{
    const TemporaryVault place("/dev/shm");
    const fs::path vault = place.native("");
    const auto save = [&](std::string_view flush, const fs::path &flushed, const fs::path &before,
                          const fs::path &saved) {
        const bool whole = flush == "syncfs";
        fs::copy(whole ? vault : before, saved,
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        if (!whole && fs::is_regular_file(flushed))
            fs::copy_file(flushed, saved / fs::relative(flushed, vault),
                          fs::copy_options::overwrite_existing);
    };
    expectNothingLostInPowerCuts(vault, save, std::identity());
}

// The vault lies on a file system of its own, in the image beside where it is mounted.
TEST(PowerCutChild, DISABLED_LosesNothingOnABlockDevice)
{
    const fs::path place = qgetenv("CRATEWELL_LOOP_DISK").toStdString();
    const std::string restored = place / "restored";
    const auto save = [&](std::string_view flush, const fs::path &flushed, const fs::path &,
                          const fs::path &saved) {
        run("sync " + std::string(flush == "syncfs" ? "-f '" : "'") + flushed.string() + "'");
        fs::copy_file(place / "image", saved);
    };
    const auto restore = [&](const fs::path &saved) {
        run("! mountpoint -q '" + restored + "' || umount '" + restored + "'");
        run("mount -o loop '" + saved.string() + "' '" + restored + "'");
        return restored + "/vault";
    };
    expectNothingLostInPowerCuts(place / "disk/vault", save, restore);
    run("umount '" + restored + "'");
}

TEST(PowerCut, LosesNothingOnABlockDevice)
{
    const TemporaryVault place;
    place.makeFolder("disk");
    place.makeFolder("restored");
    const QStringList namespaceOfItsOwn{u"unshare"_s, u"--mount"_s};
    // Nothing but flushes reaches the image within the five minutes between two commits.
    const QString mount = u"cd '%1' && PATH=$PATH:/sbin:/usr/sbin && "
                          "{ [ -e image ] || { truncate -s 16M image && mkfs.ext4 -qF image; }; } && "
                          "mount -o loop,commit=300 image disk"_s.arg(place.root().text());
    if (!isPermitted(namespaceOfItsOwn, mount))
        GTEST_SKIP() << "no block device may be mounted here; the recorded flushes stand in for it";
    Child child(
        u"PowerCutChild.DISABLED_LosesNothingOnABlockDevice"_s,
        {.environment = {{u"CRATEWELL_LOOP_DISK"_s, place.root().text()}},
         .wrapper = namespaceOfItsOwn + QStringList{u"sh"_s, u"-c"_s, mount + u" && exec \"$0\" \"$@\""_s}});
    EXPECT_TRUE(child.passes());
}

TEST(SafeMoves, AFailingCallLosesNothingAndIsNoSuccess)
{
    const std::vector<std::vector<std::string_view>> kinds{
        {"open", "openat", "opendir"},
        {"read"},
        {"write"},
        {"renameat2", "rename", "link"},
        {"readdir"},
        {"syncfs", "fsync"},
        {"mkdir"},
        {"unlink", "rmdir"},
    };
    for (const auto &calls : kinds) {
        for (const int error : {EIO, EMFILE, ENOSPC}) {
            bool met = true;
            for (int nth = 0; met && !testing::Test::HasFailure(); ++nth) {
                SCOPED_TRACE(std::string(calls[0]) + " " + std::to_string(nth) + std::strerror(error));
                const TemporaryVault place("/dev/shm");
                Pack pack(place.native(""));
                FileOperations::Outcome outcome;
                {
                    int seen = 0;
                    const WatchedCalls watched([&](std::string_view call, std::string &) {
                        return std::ranges::count(calls, call) && seen++ == nth ? error : 0;
                    });
                    outcome = pack.move();
                    met = seen > nth;
                }
                EXPECT_TRUE(met || nth > 0) << "there is no such call";
                FileOperations(pack.root).open();
                const Contents sources = contentsBelow(pack.source());
                const Contents arrived = contentsBelow(pack.target());
                for (const auto &file : packFiles) {
                    EXPECT_TRUE(isWhole(file, outcome.count ? arrived : sources)) << file.first;
                    EXPECT_TRUE(!arrived.contains(file.first) || isWhole(file, arrived)) << file.first;
                }
                EXPECT_TRUE(outcome.count == 0 || fs::is_symlink(pack.target() / "link.mov"));
                EXPECT_EQ(outcome.error.isEmpty(), outcome.count == 1 && !fs::exists(pack.source()))
                    << outcome.error.toStdString();
                EXPECT_EQ(partsBelow(pack.root.c_str()), 0);
            }
        }
    }
}

TEST(SafeMoves, WhatIsAddedOrChangedMeanwhileStays)
{
    const TemporaryVault place("/dev/shm");
    Pack pack(place.native(""));
    const WatchedCalls watched([&](std::string_view call, std::string &) {
        if (call == "syncfs") {
            append(pack.source("Deep/new.wav"), "new");
            append(pack.source("b.mov"), "more");
        }
        return 0;
    });
    const auto outcome = pack.move();
    EXPECT_EQ(outcome.count, 1);
    EXPECT_TRUE(outcome.error.contains(u"b.mov"_s) || outcome.error.contains(u"new.wav"_s))
        << outcome.error.toStdString();
    EXPECT_THAT(filesBelow(pack.source()), ElementsAre("Deep/new.wav", "b.mov"));
    const Contents arrived = contentsBelow(pack.target());
    for (const auto &file : packFiles)
        EXPECT_TRUE(isWhole(file, arrived)) << file.first;
}

TEST(SafeMoves, HolesAndAttributesAreKept)
{
    for (const char *parent : {"/tmp", "/dev/shm"}) {
        SCOPED_TRACE(parent);
        const TemporaryVault place(parent);
        Pack pack(place.native(""));
        const fs::path file = pack.source("sparse.mov");
        append(file, "head");
        fs::resize_file(file, 32 << 20);
        append(file, "tail");
        fs::resize_file(file, 64 << 20);
        const bool attributes = ::setxattr(file.c_str(), "user.note", "kept", 4, 0) == 0 &&
                                ::setxattr(pack.root.c_str(), "user.note", "kept", 4, 0) == 0;
        ASSERT_EQ(pack.copy().error, QString());
        const fs::path copy = pack.target() / "sparse.mov";
        EXPECT_TRUE(readFile(copy) == readFile(file));
        struct stat facts = {};
        ASSERT_EQ(::stat(copy.c_str(), &facts), 0);
        EXPECT_LT(facts.st_blocks * 512, 1 << 20);
        char value[8] = {};
        EXPECT_TRUE(!attributes || ::getxattr(copy.c_str(), "user.note", value, sizeof value) == 4);
    }
}

TEST(SafeMoves, AFolderThatCannotBeListedIsReported)
{
    const TemporaryVault place("/dev/shm");
    Pack pack(place.native(""));
    const WatchedCalls watched([](std::string_view call, std::string &path) {
        return call == "readdir" && path.ends_with("Deep") ? EIO : 0;
    });
    const auto outcome = pack.copy();
    EXPECT_TRUE(outcome.error.contains(u"Deep"_s)) << outcome.error.toStdString();
    EXPECT_EQ(outcome.count, 3) << "the rest is imported";
}

TEST(Rename, IsWholeWhereTheSystemCannotRefuseToReplace)
{
    const TemporaryVault disk;
    disk.write("hit.wav", 3);
    disk.write("Pack/a.wav", 1);
    disk.makeFolder("Empty");
    const struct
    {
        const char *from;
        const char *to;
        std::map<std::string_view, int> failing;
        int error;
    } cases[] = {
        {"hit.wav", "b.wav", {{"renameat2", EINVAL}, {"unlink", EIO}}, EIO},
        {"hit.wav", "b.wav", {{"renameat2", EINVAL}, {"link", EPERM}, {"rename", EIO}}, EIO},
        {"hit.wav", "b.wav", {{"renameat2", EINVAL}, {"link", EPERM}}, 0},
        {"Pack", "Empty", {{"renameat2", EINVAL}}, EEXIST},
        {"Pack", "Pack/Pack", {{"renameat2", EINVAL}}, EINVAL},
        {"Pack", "Full", {{"renameat2", ENOSYS}}, 0},
    };
    for (const auto &one : cases) {
        const WatchedCalls watched([&](std::string_view call, std::string &path) {
            const auto found = one.failing.find(call);
            return found == one.failing.end() || path != disk.native(one.from) ? 0 : found->second;
        });
        const Result<void> renamed = disk::renameWithoutReplacing(disk.at(one.from), disk.at(one.to));
        EXPECT_EQ(renamed ? 0 : renamed.error().code, one.error) << one.from << " to " << one.to;
    }
    EXPECT_EQ(contentsBelow(disk.native("")), (Contents{{"b.wav", "xxx"}, {"Full/a.wav", "x"}}));
}

TEST(Rename, ChangesTheCaseOfANameOnADiskThatIgnoresIt)
{
    const TemporaryVault disk;
    disk.write("hit.wav", 3);
    // Such a disk finds the file under the new name, and calls that taken.
    const WatchedCalls watched([&](std::string_view call, std::string &path) {
        if (call == "lstat" && path.ends_with("HIT.wav"))
            path = disk.native("hit.wav");
        return call == "renameat2" ? EEXIST : 0;
    });
    EXPECT_TRUE(disk::renameWithoutReplacing(disk.at("hit.wav"), disk.at("HIT.wav")));
    EXPECT_EQ(contentsBelow(disk.native("")), (Contents{{"HIT.wav", "xxx"}}));
}

TEST(Temporaries, BelongToTheProgramThatLives)
{
    const TemporaryVault disk;
    disk.makeFolder("SFX");
    const auto openAgain = [&] {
        FileOperations(disk.root()).open();
        std::vector<std::string> names = filesBelow(disk.native("SFX"));
        std::erase_if(names, [](const std::string &name) { return name.ends_with(".part"); });
        return names;
    };
    {
        Temporaries alive(disk.root());
        std::vector<Location> copies;
        for (const char *content : {"half", "whole", "what was not removed yet"}) {
            copies.push_back(alive.name(disk.at("SFX")).value());
            append(copies.back().c_str(), content);
        }
        ASSERT_TRUE(alive.markComplete({{copies[2], "Refused.wav"}, {copies[1], "Hit.wav"}}));
        alive.discard(copies[2]);
        append(copies[2].c_str(), "what was not removed yet");
        EXPECT_THAT(openAgain(), ElementsAre());
        EXPECT_EQ(partsBelow(disk.native("SFX")), 3);
    }
    disk.rename("SFX", "Away");
    openAgain();
    disk.rename("Away", "SFX");
    EXPECT_EQ(partsBelow(disk.native("SFX")), 3) << "the folder could not be reached";
    disk.write("SFX/Hit.wav", 1);
    EXPECT_THAT(openAgain(), ElementsAre("Hit 2.wav", "Hit.wav"));
    EXPECT_EQ(readFile(disk.native("SFX/Hit 2.wav")), "whole");
    EXPECT_EQ(partsBelow(disk.native("SFX")), 0);
    EXPECT_THAT(filesBelow(disk.native(".Cratewell Trash")), ElementsAre()) << "the journal is done with";
}

} // namespace
} // namespace cratewell

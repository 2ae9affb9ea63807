// Moves between file systems while the power, a disk or another program interferes.

#include "support/child.h"
#include "vault/files/file_operations_fixture.h"
#include "vault/files/rename.h"
#include "vault/files/system_calls.h"
#include "vault/files/temporaries.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <set>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>; // path below a folder, content

const std::set<std::string> packFiles{"a.mov", "b.wav", "Deep/c.mov", "Deep/same.mov"};

std::string contentOf(const std::string &file)
{
    std::string content;
    while (content.size() < 5000)
        content += file == "Deep/same.mov" ? "Deep/c.mov" : file;
    return content;
}

void writeFile(const fs::path &file, const std::string &content)
{
    std::ofstream(file, std::ios::binary | std::ios::app) << content;
}

Files filesBelow(const fs::path &folder)
{
    Files files;
    if (!fs::exists(folder))
        return files;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), folder)] = readFile(entry.path());
    }
    return files;
}

bool isComplete(const Files &files, const std::string &file)
{
    const auto found = files.find(file);
    return found != files.end() && found->second == contentOf(file);
}

// A folder of files, one of them with two names, to be moved to a vault elsewhere.
class Pack
{
public:
    explicit Pack(const fs::path &vault) : root(Location::fromBytes(vault.c_str()))
    {
        for (const char *category : {"Overlays", "LUTs", "SFX"})
            fs::create_directories(vault / category);
        m_outside.makeFolder("Pack/Deep");
        for (const std::string &file : packFiles) {
            if (file != "Deep/same.mov")
                writeFile(m_outside.native("Pack/" + file), contentOf(file));
        }
        fs::create_hard_link(m_outside.native("Pack/Deep/c.mov"), m_outside.native("Pack/Deep/same.mov"));
        m_outside.link("Pack/link.mov", "a.mov");
        work.open();
    }
    fs::path source(const std::string &path = "") const { return m_outside.native("Pack/" + path); }
    fs::path target() const { return fs::path(root.c_str()) / "SFX/Pack"; }
    Location folder() const { return root.child("SFX"); }
    FileOperations::Outcome move() { return work.move({m_outside.at("Pack")}, folder(), progress); }
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

// What a disk holds after a power cut at some point, and what was left of the sources by then.
struct AfterPowerCut
{
    fs::path saved;
    Files sources;
};

// How a disk is saved each time something is flushed to it, and brought back.
struct Disk
{
    fs::path vault;
    std::function<void(std::string_view flush, const fs::path &flushed, const fs::path &before,
                       const fs::path &saved)>
        save;
    std::function<fs::path(const fs::path &saved)> restore; // the vault
};

void expectNothingLostInPowerCuts(const Disk &disk, bool copying)
{
    Pack pack(disk.vault);
    const TemporaryVault saves;
    saves.makeFolder("");
    std::vector<AfterPowerCut> points;
    const auto save = [&](std::string_view flush, const fs::path &flushed) {
        const fs::path before = points.empty() ? fs::path() : points.back().saved;
        points.push_back({saves.native(std::to_string(points.size())), {}});
        disk.save(flush, flushed, before, points.back().saved);
    };
    save("syncfs", disk.vault);
    {
        const WatchedCalls watched([&](std::string_view call, std::string &path) {
            if (call == "syncfs" || call == "fsync") {
                points.back().sources = filesBelow(pack.source());
                save(call, path);
            }
            return 0;
        });
        EXPECT_EQ((copying ? pack.copy() : pack.move()).error, QString());
    }
    // People wipe the card after a copy.
    points.back().sources = copying ? Files() : filesBelow(pack.source());
    EXPECT_GE(points.size(), copying ? 2u : 4u);
    for (size_t i = 0; i < points.size(); ++i) {
        const fs::path vault = disk.restore(points[i].saved);
        FileOperations(Location::fromBytes(vault.c_str())).open();
        const Files arrived = filesBelow(vault / (copying ? "Overlays/Pack" : "SFX/Pack"));
        for (const std::string &file : packFiles) {
            const bool filed = copying && file == "b.wav" && isComplete(filesBelow(vault / "SFX"), file);
            EXPECT_TRUE(filed || isComplete(arrived, file) || isComplete(points[i].sources, file))
                << file << " is lost by a power cut after flush " << i;
        }
        EXPECT_EQ(partsBelow(vault), 0);
    }
}

void run(const std::string &command)
{
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

// Of what was written since the last flush nothing is kept; a flushed file alone is kept alone.
TEST(PowerCut, LosesNothingThatWasFlushed)
{
    for (const bool copying : {false, true}) {
        const TemporaryVault place("/dev/shm");
        place.makeFolder("");
        const auto save = [&](std::string_view flush, const fs::path &flushed, const fs::path &before,
                              const fs::path &saved) {
            const bool whole = flush == "syncfs";
            fs::copy(whole ? place.native("") : before, saved,
                     fs::copy_options::recursive | fs::copy_options::copy_symlinks);
            if (!whole && fs::is_regular_file(flushed))
                fs::copy_file(flushed, saved / fs::relative(flushed, place.native("")),
                              fs::copy_options::overwrite_existing);
        };
        expectNothingLostInPowerCuts({place.native(""), save, [](const fs::path &saved) { return saved; }},
                                     copying);
    }
}

// The vault lies on a file system of its own, in the image beside where it is mounted.
TEST(PowerCutChild, DISABLED_LosesNothingOnABlockDevice)
{
    const fs::path place = qgetenv("CRATEWELL_LOOP_DISK").toStdString();
    const auto save = [&](std::string_view flush, const fs::path &flushed, const fs::path &,
                          const fs::path &saved) {
        run("sync " + std::string(flush == "syncfs" ? "-f '" : "'") + flushed.string() + "'");
        fs::copy_file(place / "image", saved);
    };
    bool mounted = false;
    const auto restore = [&](const fs::path &saved) {
        if (std::exchange(mounted, true))
            run("umount '" + (place / "restored").string() + "'");
        run("mount -o loop '" + saved.string() + "' '" + (place / "restored").string() + "'");
        return place / "restored/vault";
    };
    for (const bool copying : {false, true}) {
        fs::remove_all(place / "disk/vault");
        expectNothingLostInPowerCuts({place / "disk/vault", save, restore}, copying);
    }
    run("umount '" + (place / "restored").string() + "'");
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
    const std::map<std::string, std::set<std::string_view>> kinds{
        {"open", {"open", "openat", "opendir"}},
        {"read", {"read"}},
        {"write", {"write"}},
        {"rename", {"renameat2", "rename", "link"}},
        {"list", {"readdir"}},
        {"flush", {"syncfs", "fsync"}},
        {"make", {"mkdir"}},
        {"remove", {"unlink", "rmdir"}},
    };
    for (const auto &[kind, calls] : kinds) {
        for (const int error : {EIO, EMFILE, ENOSPC}) {
            bool met = true;
            for (int nth = 0; met && !testing::Test::HasFailure(); ++nth) {
                SCOPED_TRACE(kind + " number " + std::to_string(nth) + ": " + std::strerror(error));
                const TemporaryVault place("/dev/shm");
                Pack pack(place.native(""));
                FileOperations::Outcome outcome;
                {
                    int seen = 0;
                    const WatchedCalls watched([&, &failing = calls](std::string_view call, std::string &) {
                        return failing.contains(call) && seen++ == nth ? error : 0;
                    });
                    outcome = pack.move();
                    met = seen > nth;
                }
                EXPECT_TRUE(met || nth > 0) << "there is no such call";
                FileOperations(pack.root).open();
                const Files sources = filesBelow(pack.source());
                const Files arrived = filesBelow(pack.target());
                for (const std::string &file : packFiles) {
                    EXPECT_TRUE(isComplete(outcome.count ? arrived : sources, file)) << file;
                    EXPECT_TRUE(!arrived.contains(file) || isComplete(arrived, file)) << file;
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
    FileOperations::Outcome outcome;
    {
        const WatchedCalls watched([&](std::string_view call, std::string &) {
            if (call == "syncfs") {
                writeFile(pack.source("Deep/new.wav"), "new");
                writeFile(pack.source("b.wav"), "more");
            }
            return 0;
        });
        outcome = pack.move();
    }
    EXPECT_EQ(outcome.count, 1);
    EXPECT_TRUE(outcome.error.contains(u"b.wav"_s) || outcome.error.contains(u"new.wav"_s))
        << outcome.error.toStdString();
    const Files left = filesBelow(pack.source());
    EXPECT_EQ(left.size(), 2u);
    EXPECT_TRUE(left.contains("Deep/new.wav"));
    EXPECT_TRUE(left.contains("b.wav"));
    const Files arrived = filesBelow(pack.target());
    for (const std::string &file : packFiles)
        EXPECT_TRUE(isComplete(arrived, file)) << file;
}

TEST(SafeMoves, HolesAndAttributesAreKept)
{
    for (const char *parent : {"/tmp", "/dev/shm"}) {
        const TemporaryVault place(parent);
        Pack pack(place.native(""));
        const fs::path file = pack.source("sparse.mov");
        writeFile(file, "head");
        fs::resize_file(file, 32 << 20);
        writeFile(file, "tail");
        fs::resize_file(file, 64 << 20);
        const bool attributes = ::setxattr(file.c_str(), "user.note", "kept", 4, 0) == 0 &&
                                ::setxattr(place.native("").c_str(), "user.note", "kept", 4, 0) == 0;
        ASSERT_EQ(pack.copy().error, QString());
        const fs::path copy = fs::path(pack.root.c_str()) / "Overlays/Pack/sparse.mov";
        EXPECT_TRUE(readFile(copy) == readFile(file)) << parent;
        struct stat facts = {};
        ASSERT_EQ(::stat(copy.c_str(), &facts), 0);
        EXPECT_LT(facts.st_blocks * 512, 1 << 20) << parent;
        char value[8] = {};
        EXPECT_TRUE(!attributes || ::getxattr(copy.c_str(), "user.note", value, sizeof value) == 4) << parent;
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

class RenameTest : public testing::Test
{
protected:
    RenameTest()
    {
        disk.write("hit.wav", 3);
        disk.write("Pack/a.wav", 1);
    }
    // The code of the error, or 0.
    int rename(const char *from, const char *to, const std::map<std::string_view, int> &failing)
    {
        const WatchedCalls watched([&](std::string_view call, std::string &path) {
            const auto found = failing.find(call);
            return found == failing.end() || path != disk.native(from) ? 0 : found->second;
        });
        const Result<void> renamed = disk::renameWithoutReplacing(disk.at(from), disk.at(to));
        return renamed ? 0 : renamed.error().code;
    }
    TemporaryVault disk;
};

TEST_F(RenameTest, IsWholeWhereTheSystemCannotRefuseToReplace)
{
    EXPECT_EQ(rename("hit.wav", "b.wav", {{"renameat2", EINVAL}, {"unlink", EIO}}), EIO);
    EXPECT_FALSE(disk::exists(disk.at("b.wav")));
    EXPECT_EQ(rename("hit.wav", "b.wav", {{"renameat2", EINVAL}, {"link", EPERM}, {"rename", EIO}}), EIO);
    EXPECT_FALSE(disk::exists(disk.at("b.wav")));
    EXPECT_EQ(rename("hit.wav", "b.wav", {{"renameat2", EINVAL}, {"link", EPERM}}), 0);
    EXPECT_EQ(fs::file_size(disk.native("b.wav")), 3u);
    disk.makeFolder("Empty");
    EXPECT_EQ(rename("Pack", "Empty", {{"renameat2", EINVAL}}), EEXIST);
    EXPECT_EQ(rename("Pack", "Pack/Pack", {{"renameat2", EINVAL}}), EINVAL);
    EXPECT_EQ(rename("Pack", "Full", {{"renameat2", ENOSYS}}), 0);
    EXPECT_TRUE(disk::exists(disk.at("Full/a.wav")));
}

TEST_F(RenameTest, ChangesTheCaseOfANameOnADiskThatIgnoresIt)
{
    // Such a disk finds the file under the new name, and calls that taken.
    const WatchedCalls watched([&](std::string_view call, std::string &path) {
        if (call == "lstat" && path.ends_with("HIT.wav"))
            path = disk.native("hit.wav");
        return call == "renameat2" ? EEXIST : 0;
    });
    EXPECT_TRUE(disk::renameWithoutReplacing(disk.at("hit.wav"), disk.at("HIT.wav")));
    EXPECT_EQ(fs::file_size(disk.native("HIT.wav")), 3u);
}

TEST(Temporaries, BelongToTheProgramThatLives)
{
    const TemporaryVault disk;
    for (const char *category : {"Overlays", "LUTs", "SFX"})
        disk.makeFolder(category);
    disk.write("SFX/Hit.wav", 1);
    const auto left = [&] {
        std::set<std::string> names;
        for (const auto &[file, content] : filesBelow(disk.native("")))
            names.insert(file.ends_with(".part") ? "hidden" : file);
        std::erase_if(names, [](const std::string &name) { return name.starts_with(".Cratewell Trash/"); });
        return names;
    };
    {
        Temporaries alive(disk.root());
        const Location half = alive.name(disk.at("SFX")).value();
        const Location whole = alive.name(disk.at("SFX")).value();
        const Location refused = alive.name(disk.at("SFX")).value();
        writeFile(half.c_str(), "half");
        writeFile(whole.c_str(), "whole");
        ASSERT_TRUE(alive.markComplete({{refused, "Refused.wav"}, {whole, "Hit.wav"}}));
        alive.discard(refused);
        writeFile(refused.c_str(), "what was not removed yet");
        FileOperations(disk.root()).open();
        EXPECT_THAT(left(), ElementsAre("SFX/Hit.wav", "hidden"));
    }
    disk.rename("SFX", "Away");
    FileOperations(disk.root()).open();
    disk.rename("Away", "SFX");
    EXPECT_THAT(left(), ElementsAre("SFX/Hit.wav", "hidden")) << "the folder could not be reached";
    FileOperations(disk.root()).open();
    EXPECT_THAT(left(), ElementsAre("SFX/Hit 2.wav", "SFX/Hit.wav"));
    EXPECT_EQ(readFile(disk.native("SFX/Hit 2.wav")), "whole");
    EXPECT_TRUE(filesBelow(disk.native(".Cratewell Trash")).empty()) << "the journal is done with";
}

} // namespace
} // namespace cratewell

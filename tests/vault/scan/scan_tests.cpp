#include "platform/posix/file_status.h"
#include "vault/snapshot/snapshot_reference.h"
#include "vault/temporary_vault.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <thread>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::vector<std::string> pathsIn(const TemporaryVault &vault, const VaultSnapshot &snapshot)
{
    std::vector<std::string> paths;
    for (AssetIndex i = 0; i < snapshot.size(); ++i)
        paths.push_back(snapshot.asset(i).url.bytes().sliced(vault.root().bytes().size() + 1).toStdString());
    return paths;
}

TEST(VaultScan, ListsWhatEachCategoryAccepts)
{
    const TemporaryVault vault;
    for (const char *path : {"Overlays/a.mov", "Overlays/a.cube", "Overlays/Light/b.PNG", "LUTs/c.cube",
                             "LUTs/d.wav", "LUTs/k.png", "SFX/e.wav", "SFX/.hidden.wav", "SFX/.folder/f.wav",
                             "SFX/notes.txt", "SFX/Pack.wav/g.wav", "Other/h.wav", "i.wav",
                             ".Cratewell Trash/SFX/j.wav", "SFX/.wav", "SFX/noextension"})
        vault.write(path, 3);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot),
                UnorderedElementsAre("Overlays/a.mov", "Overlays/Light/b.PNG", "LUTs/c.cube", "SFX/e.wav",
                                     "SFX/Pack.wav/g.wav"));
    EXPECT_EQ(snapshot->totalSize(), 15);
    EXPECT_EQ(snapshot->node(vault.at("SFX/.folder")), nullptr);
    EXPECT_TRUE(keepsItsPromises(*snapshot));
}

TEST(VaultScan, NamesOfEveryKindSurvive)
{
    const TemporaryVault vault;
    std::vector<std::string> paths{"SFX/" + std::string(251, 'n') + ".wav"};
    for (const char *name :
         {"Hit.final v2.wav", "  spaces .wav", "\xf0\x9f\x92\xa5 boom.wav", "hit.wav", "HIT.wav", "Hit.WAV",
          "stray \xff\xc3.wav", "\xed\xb2\x80.wav", "new\nline.wav", "na\xc3\xafve.wav", "nai\xcc\x88ve.wav",
          "100% %20#?;.wav", "\xff\xfe folder/\xe2\x82.wav", "\xe6\x97\xa5\xe6\x9c\xac/\xe9\x9f\xb3 10.wav",
          "\xe6\x97\xa5\xe6\x9c\xac/\xe9\x9f\xb3 9.wav", "\xc3\x89T\xc3\x89.wav", "\xef\xbf\xbd.wav"})
        paths.push_back(std::string("SFX/") + name);
    for (const std::string &path : paths)
        vault.write(path);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot), testing::UnorderedElementsAreArray(paths));
    EXPECT_TRUE(keepsItsPromises(*snapshot));
    EXPECT_EQ(std::ranges::count(snapshot->matching(u"\u00e9t\u00e9"_s), true), 1);
}

TEST(VaultScan, LinksLeadToFilesOnlyExceptInPlaceOfACategory)
{
    const TemporaryVault vault;
    vault.write("outside/sound.bin", 7);
    vault.write("outside/folder/x.wav", 7);
    vault.link("SFX/linked.wav", "../outside/sound.bin");
    vault.link("SFX/linked.txt", "../outside/folder/x.wav");
    vault.link("SFX/Folder", "../outside/folder");
    vault.link("SFX/Folder.wav", "../outside/folder");
    vault.link("SFX/Up", "..");
    vault.link("SFX/gone.wav", "nowhere");
    vault.link("LUTs", "elsewhere");
    vault.write("elsewhere/Film/a.cube");
    ASSERT_EQ(mkfifo(vault.native("SFX/pipe.wav").c_str(), 0600), 0);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot),
                UnorderedElementsAre("LUTs/Film/a.cube", "SFX/linked.wav", "SFX/gone.wav"));
    EXPECT_TRUE(snapshot->tree(VaultCategory::Sfx)->children.empty());
    EXPECT_EQ(snapshot->under(vault.at("SFX/Folder")).count(), 0u);
    EXPECT_EQ(snapshot->find(vault.at("SFX/Folder/x.wav")), std::nullopt);
    const Asset &linked = snapshot->asset(*snapshot->find(vault.at("SFX/linked.wav")));
    EXPECT_EQ(linked.size, 7);
    EXPECT_NE(linked.added, distantPast);
    EXPECT_EQ(snapshot->asset(*snapshot->find(vault.at("SFX/gone.wav"))).version, FileVersion());
}

TEST(VaultScan, WhatCannotBeReadIsEmpty)
{
    const TemporaryVault vault;
    const auto missing = vault.scan();
    EXPECT_EQ(missing->size(), 0u);
    EXPECT_EQ(missing->tree(VaultCategory::Luts)->count, 0);
    EXPECT_EQ(missing->tree(VaultCategory::Luts)->url, vault.at("LUTs"));
    EXPECT_EQ(VaultSnapshot().tree(VaultCategory::Luts), nullptr);
    const ScanResult nowhere = VaultScan::run({}, {});
    EXPECT_EQ(nowhere.snapshot->size(), 0u);
    EXPECT_EQ(nowhere.snapshot->node({}), nullptr);
    EXPECT_TRUE(nowhere.complete) << "there is nothing to wait for";

    vault.write("SFX/a.wav");
    vault.write("LUTs", 5);
    EXPECT_THAT(pathsIn(vault, *vault.scan()), ElementsAre("SFX/a.wav"));
    vault.write("SFX/Locked/b.wav");
    std::filesystem::permissions(vault.native("SFX/Locked"), std::filesystem::perms::none);
    const auto snapshot = vault.scan();
    const size_t readable = geteuid() == 0 ? 2 : 1;
    EXPECT_EQ(snapshot->size(), readable);
    EXPECT_NE(snapshot->node(vault.at("SFX/Locked")), nullptr);
    std::filesystem::permissions(vault.native("SFX/Locked"), std::filesystem::perms::owner_all);
}

// Does the work on a thread where a system call fails whenever its third argument has one of `bits`; threads
// that the work starts inherit that.
void withFailingCall(long call, unsigned bits, int error, const std::function<void()> &work)
{
    std::jthread([&] {
        const quint32 third = offsetof(seccomp_data, args) + 2 * sizeof(quint64);
        sock_filter filter[] = {
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, quint32(call), 0, 3),
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, third),
            BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 0, 1),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | quint32(error)),
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        };
        const sock_fprog program{std::size(filter), filter};
        ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
        ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
        work();
    });
}

TEST(VaultScan, KeepsWhatItCannotReadForTheMoment)
{
    const TemporaryVault vault;
    for (const char *path : {"SFX/Hits/a.wav", "SFX/Hits/Deep/b.wav", "LUTs/c.cube"})
        vault.write(path, 2);
    std::shared_ptr<const VaultSnapshot> before = vault.scan();
    struct Failure
    {
        long call;
        unsigned bits;
        int error;
    };
    size_t size = 2;
    for (const auto &[call, bits, error] :
         {Failure{SYS_openat, O_DIRECTORY, EMFILE}, Failure{SYS_openat, O_NOFOLLOW, EIO},
          Failure{SYS_getdents64, ~0u, EIO}, Failure{SYS_statx, AT_EMPTY_PATH, ESTALE},
          Failure{SYS_statx, AT_SYMLINK_NOFOLLOW, EIO}}) {
        vault.write("SFX/Hits/a.wav", ++size);
        ScanResult now;
        withFailingCall(call, bits, error, [&] { now = VaultScan::run(vault.root(), before); });
        EXPECT_FALSE(now.complete) << call << " " << error;
        EXPECT_TRUE(areEqual(*before, *now.snapshot)) << call << " " << error;
        const ScanResult later = VaultScan::run(vault.root(), now.snapshot);
        EXPECT_TRUE(later.complete);
        EXPECT_TRUE(areEqual(*vault.scan(), *later.snapshot)) << call << " " << error;
        before = later.snapshot;
    }
}

TEST(VaultScan, DetailsAreThoseOfTheFile)
{
    const TemporaryVault vault;
    vault.write("SFX/a.wav", 12);
    const auto status = statusAt(AT_FDCWD, vault.native("SFX/a.wav").c_str(), Links::Follow);
    ASSERT_TRUE(status);
    const auto snapshot = vault.scan();
    const Asset &asset = snapshot->asset(0);
    EXPECT_EQ(asset.kind, AssetKind::Audio);
    EXPECT_EQ(asset.version,
              (FileVersion{status->inode, 12, status->modified.count(), status->changed.count()}));
    if (status->created)
        EXPECT_NEAR((asset.added + 978307200.0) * 1e9, double(status->created->count()), 1e6);
    else
        EXPECT_EQ(asset.added, distantPast);
}

TEST(VaultScan, BoundsDepthAndCanBeCanceled)
{
    const TemporaryVault vault;
    std::string path = "SFX";
    for (int i = 0; i < 300; ++i)
        path += "/d";
    vault.write(path + "/deepest.wav");
    vault.write("SFX/a.wav");
    EXPECT_THAT(pathsIn(vault, *vault.scan()), ElementsAre("SFX/a.wav"));
    EXPECT_EQ(VaultScan::run(vault.root(), {}, [] { return true; }).snapshot, nullptr);
    int asked = 0;
    EXPECT_NE(VaultScan::run(vault.root(), {}, [&] { return ++asked < 0; }).snapshot, nullptr);
    EXPECT_GT(asked, 1);
}

// Large folders are read in parts, by several threads.
TEST(VaultScan, AFolderOfThousandsOfFilesIsReadWhole)
{
    const TemporaryVault vault;
    vault.makeFolder("SFX/Big");
    for (int i = 0; i < 3000; ++i)
        vault.write("SFX/Big/hit " + std::to_string(i) + ".wav", size_t(i));
    vault.write("SFX/Big/Inner/x.wav", 5);
    vault.write("SFX/Big/h\xc3\xaft 7.wav");
    vault.write("SFX/Big/HIT 0050.wav");
    const auto snapshot = vault.scan();
    ASSERT_EQ(snapshot->size(), 3003u);
    for (int i = 0; i < 3000; ++i) {
        const auto found = snapshot->find(vault.at("SFX/Big/hit " + std::to_string(i) + ".wav"));
        ASSERT_TRUE(found);
        EXPECT_EQ(snapshot->asset(*found).size, i);
    }
    EXPECT_TRUE(keepsItsPromises(*snapshot));
}

} // namespace
} // namespace cratewell

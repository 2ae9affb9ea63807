#include "platform/posix/file_status.h"
#include "vault/snapshot/snapshot_reference.h"
#include "vault/temporary_vault.h"
#include "vault/trash_item.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <random>
#include <thread>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;
using Paths = std::vector<std::string>;

Paths pathsIn(const TemporaryVault &vault, const VaultSnapshot &snapshot)
{
    Paths paths;
    for (AssetIndex i = 0; i < snapshot.size(); ++i)
        paths.push_back(snapshot.asset(i).url.bytes().sliced(vault.root().bytes().size() + 1).toStdString());
    return paths;
}

TEST(VaultScan, ListsWhatEachCategoryAcceptsAndFollowsLinksToFilesOnly)
{
    const TemporaryVault vault;
    for (const char *path : {"Overlays/a.mov", "Overlays/a.cube", "Overlays/Light/b.PNG", "SFX/e.wav",
                             "SFX/.hidden.wav", "SFX/.folder/f.wav", "SFX/notes.txt", "SFX/Pack.wav/g.wav",
                             "Other/h.wav", "i.wav", ".Cratewell Trash/SFX/j.wav", "SFX/.wav"})
        vault.write(path, 3);
    vault.write("outside/sound.bin", 7);
    vault.write("outside/folder/x.wav", 7);
    vault.link("SFX/linked.wav", "../outside/sound.bin");
    vault.link("SFX/linked.txt", "../outside/folder/x.wav");
    vault.link("SFX/Folder", "../outside/folder");
    vault.link("SFX/Folder.wav", "../outside/folder");
    vault.link("SFX/gone.wav", "nowhere");
    vault.link("LUTs", "elsewhere");
    vault.write("elsewhere/Film/c.cube", 3);
    ASSERT_EQ(mkfifo(vault.native("SFX/pipe.wav").c_str(), 0600), 0);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot),
                UnorderedElementsAre("Overlays/a.mov", "Overlays/Light/b.PNG", "LUTs/Film/c.cube",
                                     "SFX/e.wav", "SFX/Pack.wav/g.wav", "SFX/linked.wav", "SFX/gone.wav"));
    EXPECT_EQ(snapshot->totalSize(), 5 * 3 + 7);
    EXPECT_EQ(snapshot->tree(VaultCategory::Sfx)->children.size(), 1u);
    const Asset &linked = snapshot->asset(*snapshot->find(vault.at("SFX/linked.wav")));
    EXPECT_NE(linked.added, distantPast);
    EXPECT_EQ(snapshot->asset(*snapshot->find(vault.at("SFX/gone.wav"))).version, FileVersion());
    expectPromisesKept(*snapshot);
}

TEST(VaultScan, NamesOfEveryKindSurvive)
{
    const TemporaryVault vault;
    Paths paths{"SFX/" + std::string(251, 'n') + ".wav"};
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
    expectPromisesKept(*snapshot);
}

TEST(VaultScan, WhatCannotBeReadIsEmpty)
{
    const TemporaryVault vault;
    const ScanResult nowhere = VaultScan::run({}, {});
    EXPECT_EQ(nowhere.snapshot->size(), 0u);
    EXPECT_TRUE(nowhere.complete) << "there is nothing to wait for";

    std::string deep = "SFX";
    for (int i = 0; i < 300; ++i)
        deep += "/d";
    vault.write(deep + "/deepest.wav");
    vault.write("SFX/a.wav");
    vault.write("LUTs", 5);
    EXPECT_THAT(pathsIn(vault, *vault.scan()), ElementsAre("SFX/a.wav"));
    EXPECT_EQ(VaultScan::run(vault.root(), {}, [] { return true; }).snapshot, nullptr) << "canceled";
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
    const std::tuple<long, unsigned, int> failures[] = {{SYS_openat, O_DIRECTORY, EMFILE},
                                                        {SYS_openat, O_NOFOLLOW, EIO},
                                                        {SYS_getdents64, ~0u, EIO},
                                                        {SYS_statx, AT_EMPTY_PATH, ESTALE},
                                                        {SYS_statx, AT_SYMLINK_NOFOLLOW, EIO}};
    size_t size = 2;
    for (const auto &[call, bits, error] : failures) {
        SCOPED_TRACE(call);
        vault.write("SFX/Hits/a.wav", ++size);
        ScanResult now;
        withFailingCall(call, bits, error, [&] { now = VaultScan::run(vault.root(), before); });
        EXPECT_FALSE(now.complete);
        expectEqual(*before, *now.snapshot);
        const ScanResult later = VaultScan::run(vault.root(), now.snapshot);
        EXPECT_TRUE(later.complete);
        expectEqual(*vault.scan(), *later.snapshot);
        before = later.snapshot;
    }
}

// Large folders are read in parts, by several threads.
TEST(VaultScan, AFolderOfThousandsOfFilesIsReadWhole)
{
    const TemporaryVault vault;
    qint64 total = 0;
    for (int i = 0; i < 3000; total += i++)
        vault.write("SFX/Big/hit " + std::to_string(i) + ".wav", size_t(i));
    for (const char *name : {"Inner/x.wav", "h\xc3\xaft 7.wav", "HIT 0050.wav"})
        vault.write(std::string("SFX/Big/") + name);
    const auto snapshot = vault.scan();
    EXPECT_EQ(snapshot->size(), 3003u);
    EXPECT_EQ(snapshot->totalSize(), total);
    expectPromisesKept(*snapshot);
}

TEST(VaultScan, ANewSnapshotIsMadeOnlyForAChange)
{
    const TemporaryVault vault;
    vault.write("SFX/Hits/a.wav", 4);
    const auto before = vault.scan();
    EXPECT_THAT(VaultScan::compare(nullptr, before).previous, ElementsAre(noAsset));
    const Asset &asset = before->asset(0);
    const auto status = statusAt(AT_FDCWD, asset.url.c_str(), Links::Follow);
    EXPECT_EQ(asset.version,
              (FileVersion{status->inode, 4, status->modified.count(), status->changed.count()}));
    EXPECT_NEAR(asset.added, status->created ? referenceSeconds(*status->created) : distantPast, 1e-3);

    vault.write("SFX/Hits/.new", 4);
    vault.write("SFX/Hits/readme.txt");
    EXPECT_EQ(vault.scan(before), before);
    vault.rename("SFX/Hits/.new", "SFX/Hits/a.wav");
    EXPECT_THAT(VaultScan::compare(before, vault.scan(before)).altered, ElementsAre(0u)) << "another file";
    const auto after = vault.scan();
    vault.makeFolder("SFX/Hits/Empty");
    EXPECT_NE(vault.scan(after), after);

    const TemporaryVault other;
    other.write("SFX/Hits/a.wav");
    const auto elsewhere = other.scan(before);
    EXPECT_EQ(elsewhere->root(), other.root());
    expectLeadsFromBeforeToAfter(VaultScan::compare(before, elsewhere));
}

// Changes a vault at random, keeping in mind nothing but what lies on disk.
class RandomHand
{
public:
    RandomHand(const TemporaryVault &vault, unsigned seed) : m_vault(vault), m_random(seed) {}

    void changeSomething()
    {
        Paths files;
        Paths folders;
        for (const char *category : {"Overlays", "LUTs", "SFX"}) {
            m_vault.makeFolder(category);
            folders.push_back(category);
            for (const auto &entry : fs::recursive_directory_iterator(m_vault.native(category)))
                (entry.is_directory() ? folders : files)
                    .push_back(entry.path().lexically_relative(m_vault.native("")));
        }
        const std::string folder = any(folders);
        const std::string target = folder + "x" + std::to_string(m_random() % 3);
        const bool isCategory = folder.find('/') == std::string::npos;
        const unsigned choice = files.empty() ? 0 : m_random() % 10;
        if (choice < 4)
            m_vault.write(folder + '/' + name(), m_random() % 50);
        else if (choice < 5)
            m_vault.makeFolder(folder + "/Folder " + std::to_string(m_random() % 12));
        else if (choice < 6)
            m_vault.remove(any(files));
        else if (choice < 7)
            m_vault.write(any(files), m_random() % 50);
        else if (choice < 8)
            m_vault.rename(any(files), folder + '/' + name());
        else if (choice < 9 && !isCategory && !fs::exists(m_vault.native(target)))
            m_vault.rename(folder, target);
        else if (choice == 9 && !isCategory && m_random() % 4 == 0)
            m_vault.remove(folder);
    }

private:
    const std::string &any(const Paths &choices) { return choices[m_random() % choices.size()]; }
    std::string name()
    {
        static const Paths stems{"Hit", "hit", "HIT", "Hit ", "\xc3\xa9t\xc3\xa9", "\xff", "zz"};
        static const Paths extensions{".wav", ".mov", ".png", ".cube", ".txt"};
        return any(stems) + std::to_string(m_random() % 30) + any(extensions);
    }

    const TemporaryVault &m_vault;
    std::mt19937 m_random;
};

TEST(RandomEdits, ASnapshotFromTheOneBeforeEqualsOneFromScratch)
{
    for (const unsigned seed : {1, 2, 3, 4}) {
        const TemporaryVault vault;
        RandomHand hand(vault, seed);
        for (int i = 0; i < 300; ++i)
            hand.changeSomething();
        std::shared_ptr<const VaultSnapshot> snapshot = vault.scan();
        std::mt19937 random(seed);
        for (int round = 0; round < 40 && !testing::Test::HasFailure(); ++round) {
            SCOPED_TRACE(std::to_string(seed) + " round " + std::to_string(round));
            for (unsigned i = random() % 12; i > 0; --i)
                hand.changeSomething();
            const auto scratch = vault.scan();
            const auto next = vault.scan(snapshot);
            expectEqual(*scratch, *next);
            expectLeadsFromBeforeToAfter(VaultScan::compare(snapshot, next));
            expectLeadsFromBeforeToAfter(VaultScan::compare(snapshot, scratch));
            snapshot = next;
        }
        expectPromisesKept(*snapshot);
    }
}

// Scans while another thread keeps changing the disk, and reads one snapshot from several threads.
TEST(RandomEdits, AreScannedAndReadBesideEachOther)
{
    const TemporaryVault vault;
    RandomHand hand(vault, 99);
    for (int i = 0; i < 200; ++i)
        hand.changeSomething();
    std::shared_ptr<const VaultSnapshot> snapshot = vault.scan();
    {
        const std::jthread writer([&](const std::stop_token &stop) {
            while (!stop.stop_requested())
                hand.changeSomething();
        });
        for (int round = 0; round < 30; ++round) {
            const auto next = vault.scan(snapshot);
            const std::jthread reader([&] { expectPromisesKept(*next); });
            expectPromisesKept(*next);
            expectLeadsFromBeforeToAfter(VaultScan::compare(snapshot, next));
            snapshot = next;
        }
    }
    expectEqual(*vault.scan(snapshot), *vault.scan());
}

} // namespace
} // namespace cratewell

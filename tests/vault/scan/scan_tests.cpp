#include "vault/snapshot/snapshot_reference.h"
#include "vault/temporary_vault.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
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
    for (const char *path :
         {"Overlays/a.mov", "Overlays/a.cube", "Overlays/Light/b.PNG", "LUTs/c.cube", "LUTs/d.wav",
          "SFX/e.wav", "SFX/.hidden.wav", "SFX/.folder/f.wav", "SFX/notes.txt", "SFX/Pack.wav/g.wav",
          "Other/h.wav", "i.wav", ".Cratewell Trash/SFX/j.wav", "SFX/.wav", "SFX/noextension"})
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
    const std::vector<std::string> paths{
        "SFX/Hit.final v2.wav",
        "SFX/  spaces .wav",
        "SFX/\xf0\x9f\x92\xa5 boom.wav",
        "SFX/hit.wav",
        "SFX/HIT.wav",
        "SFX/Hit.WAV",
        "SFX/" + std::string(251, 'n') + ".wav",
        "SFX/stray \xff\xc3.wav",
        "SFX/\xed\xb2\x80.wav",
        "SFX/new\nline.wav",
        "SFX/na\xc3\xafve.wav",
        "SFX/nai\xcc\x88ve.wav",
        "SFX/100% %20#?;.wav",
        "SFX/\xff\xfe folder/\xe2\x82.wav",
        "SFX/\xe6\x97\xa5\xe6\x9c\xac/\xe9\x9f\xb3 10.wav",
        "SFX/\xe6\x97\xa5\xe6\x9c\xac/\xe9\x9f\xb3 9.wav",
        "SFX/\xc3\x89T\xc3\x89.wav",
        "SFX/\xef\xbf\xbd.wav",
    };
    for (const std::string &path : paths)
        vault.write(path);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot), testing::UnorderedElementsAreArray(paths));
    EXPECT_TRUE(keepsItsPromises(*snapshot));
    EXPECT_EQ(std::ranges::count(snapshot->matching(u"\u00e9t\u00e9"_s), true), 1);
}

TEST(VaultScan, LinksLeadToFilesOnly)
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
    ASSERT_EQ(mkfifo(vault.native("SFX/pipe.wav").c_str(), 0600), 0);
    const auto snapshot = vault.scan();
    EXPECT_THAT(pathsIn(vault, *snapshot), UnorderedElementsAre("SFX/linked.wav", "SFX/gone.wav"));
    EXPECT_TRUE(snapshot->tree(VaultCategory::Sfx)->children.empty());
    const Asset &linked = snapshot->asset(*snapshot->find(vault.at("SFX/linked.wav")));
    EXPECT_EQ(linked.size, 7);
    EXPECT_NE(linked.added, distantPast);
    EXPECT_EQ(snapshot->asset(*snapshot->find(vault.at("SFX/gone.wav"))).version, FileVersion());
}

TEST(VaultScan, ACategoryMayItselfBeALink)
{
    const TemporaryVault vault;
    vault.write("elsewhere/Hits/a.wav");
    vault.link("SFX", "elsewhere");
    EXPECT_THAT(pathsIn(vault, *vault.scan()), ElementsAre("SFX/Hits/a.wav"));
}

TEST(VaultScan, FoldersStandInFileManagerOrderWithTheirCounts)
{
    const TemporaryVault vault;
    for (const char *path :
         {"SFX/Clip 10/a.wav", "SFX/clip 2/a.wav", "SFX/clip 2/deep/b.wav", "SFX/Alpha/x.txt"})
        vault.write(path);
    const auto snapshot = vault.scan();
    const FolderNode &tree = *snapshot->tree(VaultCategory::Sfx);
    std::vector<std::pair<QString, int>> children;
    for (const FolderNode &child : tree.children)
        children.emplace_back(child.url.name(), child.count);
    EXPECT_THAT(children,
                ElementsAre(std::pair(u"Alpha"_s, 0), std::pair(u"clip 2"_s, 2), std::pair(u"Clip 10"_s, 1)));
    EXPECT_EQ(tree.count, 3);
    EXPECT_EQ(snapshot->node(vault.at("SFX/clip 2/deep"))->count, 1);
    EXPECT_EQ(snapshot->node(vault.at("SFX/nowhere")), nullptr);
    EXPECT_EQ(snapshot->under(vault.at("SFX/nowhere")).count(), 0u);
    EXPECT_EQ(snapshot->find(vault.at("SFX/clip 2/none.wav")), std::nullopt);
    EXPECT_TRUE(keepsItsPromises(*snapshot));
}

TEST(VaultScan, WhatCannotBeReadIsEmpty)
{
    const TemporaryVault vault;
    const auto missing = vault.scan();
    EXPECT_EQ(missing->size(), 0u);
    EXPECT_EQ(missing->tree(VaultCategory::Luts)->count, 0);
    EXPECT_EQ(missing->tree(VaultCategory::Luts)->url, vault.at("LUTs"));
    EXPECT_EQ(VaultSnapshot().tree(VaultCategory::Luts), nullptr);
    const auto nowhere = VaultScan::run({}, {});
    EXPECT_EQ(nowhere->size(), 0u);
    EXPECT_EQ(nowhere->node({}), nullptr);

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

TEST(VaultScan, InfoIsThoseOfTheFile)
{
    const TemporaryVault vault;
    vault.write("SFX/a.wav", 12);
    struct statx info;
    ASSERT_EQ(statx(AT_FDCWD, vault.native("SFX/a.wav").c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &info),
              0);
    const auto snapshot = vault.scan();
    const Asset &asset = snapshot->asset(0);
    EXPECT_EQ(asset.kind, AssetKind::Audio);
    EXPECT_EQ(asset.size, 12);
    EXPECT_EQ(asset.version,
              (FileVersion{info.stx_ino, 12, info.stx_mtime.tv_sec * 1'000'000'000 + info.stx_mtime.tv_nsec,
                           info.stx_ctime.tv_sec * 1'000'000'000 + info.stx_ctime.tv_nsec}));
    if (info.stx_mask & STATX_BTIME)
        EXPECT_NEAR(asset.added + 978307200.0, double(info.stx_btime.tv_sec), 1.0);
    else
        EXPECT_EQ(asset.added, distantPast);
}

TEST(VaultScan, BoundsDepthAndTellsWhenCanceled)
{
    const TemporaryVault vault;
    std::string path = "SFX";
    for (int i = 0; i < 300; ++i)
        path += "/d";
    vault.write(path + "/deepest.wav");
    vault.write("SFX/a.wav");
    EXPECT_THAT(pathsIn(vault, *vault.scan()), ElementsAre("SFX/a.wav"));
    EXPECT_EQ(VaultScan::run(vault.root(), {}, [] { return true; }), nullptr);
    int asked = 0;
    EXPECT_NE(VaultScan::run(vault.root(), {}, [&] { return ++asked < 0; }), nullptr);
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
    EXPECT_EQ(
        namesIn(*snapshot, snapshot->order(AssetOrder::Name).subspan(7, 5)),
        (std::vector{u"hit 7.wav"_s, u"h\u00eft 7.wav"_s, u"hit 8.wav"_s, u"hit 9.wav"_s, u"hit 10.wav"_s}));
    EXPECT_TRUE(keepsItsPromises(*snapshot));
}

} // namespace
} // namespace cratewell

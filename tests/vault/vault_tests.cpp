#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "support/wait.h"
#include "vault/temporary_vault.h"
#include "vault/vault.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
namespace fs = std::filesystem;

class VaultTest : public testing::Test
{
protected:
    // The first snapshot of a vault that was just started.
    void start()
    {
        vault.start();
        ASSERT_TRUE(waitUntil([this] { return rescanned.count() == 1; }));
    }
    bool shows(const std::string &path) const { return vault.snapshot()->find(disk.at(path)).has_value(); }

    TemporaryVault disk;
    MemoryDefaults defaults;
    FakeFileEvents *events = new FakeFileEvents;
    Vault vault{disk.root(), defaults, std::unique_ptr<FileEvents>(events)};
    QSignalSpy rescanned{&vault, &Vault::rescanned};
};

TEST_F(VaultTest, MakesTheStructureOfANewVaultOnce)
{
    EXPECT_FALSE(fs::exists(disk.native(""))) << "only start() makes the root";
    EXPECT_EQ(vault.snapshot()->size(), 0u);
    start();
    EXPECT_EQ(vault.snapshot()->tree(VaultCategory::Sfx)->children.size(), 8u);
    EXPECT_EQ(vault.snapshot()->tree(VaultCategory::Overlays)->children.size(), 5u);
    EXPECT_TRUE(vault.snapshot()->tree(VaultCategory::Luts)->children.empty());
    for (const char *category : {"overlays", "luts", "sfx"}) {
        const QString key = u"seeded."_s + disk.root().text() + u'.' + QLatin1StringView(category);
        EXPECT_EQ(defaults.boolean(key), true) << category;
    }

    disk.remove("SFX/Whooshes");
    vault.start();
    EXPECT_FALSE(fs::exists(disk.native("SFX/Whooshes")));
    disk.remove("");
    vault.rescan();
    ASSERT_TRUE(waitUntil([this] { return vault.snapshot()->tree(VaultCategory::Sfx)->children.empty(); }));
    EXPECT_FALSE(fs::exists(disk.native(""))) << "scanning makes nothing";
    vault.start();
    EXPECT_TRUE(fs::exists(disk.native("SFX/Whooshes"))) << "a new root is seeded whatever the key says";
}

TEST_F(VaultTest, FollowsTheDiskCoalescesAndIsSilentWhenNothingChanged)
{
    start();
    const auto first = vault.snapshot();
    vault.rescan();
    disk.write("SFX/.hidden.wav");
    vault.rescan();
    EXPECT_EQ(events->root(), disk.root());
    disk.write("SFX/Hits/a.wav", 3);
    for (int i = 0; i < 500; ++i)
        events->notifyChanged();
    ASSERT_TRUE(waitUntil([this] { return shows("SFX/Hits/a.wav"); }));
    EXPECT_EQ(rescanned.count(), 2);
    EXPECT_EQ(vault.totalSize(), 3);

    const auto diff = rescanned.at(1).at(0).value<SnapshotDiff>();
    EXPECT_EQ(diff.before, first);
    EXPECT_EQ(diff.after, vault.snapshot());
    EXPECT_EQ(diff.previous, std::vector{noAsset});
}

// Every published snapshot must follow from the one published before, whatever is asked meanwhile.
TEST_F(VaultTest, ConstantRescansNeitherStarveNorReorder)
{
    start();
    int written = 0;
    std::shared_ptr<const VaultSnapshot> last = vault.snapshot();
    QObject::connect(&vault, &Vault::rescanned, &vault, [&](const SnapshotDiff &diff) {
        EXPECT_EQ(diff.before, last);
        EXPECT_GE(diff.after->size(), last->size());
        last = diff.after;
    });
    const bool published = waitUntil([&] {
        disk.write("SFX/" + std::to_string(written++) + ".wav");
        vault.rescan();
        vault.rescan();
        return rescanned.count() > 10;
    });
    EXPECT_TRUE(published);
    EXPECT_TRUE(waitUntil([&] { return int(vault.snapshot()->size()) == written; }));
}

TEST_F(VaultTest, AChangeOfRootDropsTheScanOfTheOldOne)
{
    TemporaryVault other;
    other.write("LUTs/only here.cube");
    disk.write("SFX/old.wav");
    std::vector<QString> reported;
    QObject::connect(&vault, &Vault::rootChanged, &vault, [&](const Location &root) {
        EXPECT_EQ(fs::exists(other.native("SFX")), !reported.empty())
            << "reported before anything is done there";
        EXPECT_EQ(vault.root(), root);
        reported.push_back(u"root"_s);
    });
    QObject::connect(&vault, &Vault::opened, &vault, [&] { reported.push_back(u"opened"_s); });
    QObject::connect(&vault, &Vault::rescanned, &vault, [&](const SnapshotDiff &diff) {
        EXPECT_EQ(diff.after->root(), other.root());
        reported.push_back(u"rescanned"_s);
    });
    vault.start();
    vault.changeRoot(other.root());
    ASSERT_TRUE(waitUntil([&] { return !reported.empty() && reported.back() == u"rescanned"_s; }));
    EXPECT_THAT(reported, testing::ElementsAre(u"root"_s, u"opened"_s, u"rescanned"_s));
    EXPECT_THAT(events->watched(), testing::ElementsAre(other.root()))
        << "the old one has no snapshot to keep";
    EXPECT_TRUE(vault.snapshot()->find(other.at("LUTs/only here.cube")));
    EXPECT_TRUE(fs::exists(other.native("SFX/Hits")));

    vault.changeRoot(other.root());
    EXPECT_TRUE(waitUntil([&] { return reported.size() == 6; }))
        << "the first scan of a root is always reported";
}

TEST_F(VaultTest, ScansAgainWhatCouldNotBeRead)
{
#if defined(CRATEWELL_SANITIZED)
    GTEST_SKIP() << "the sanitizer opens files itself";
#endif
    disk.write("SFX/a.wav");
    rlimit files;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    const int next = open("/", O_RDONLY | O_CLOEXEC);
    close(next);
    const rlimit none{rlim_t(next), files.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    start();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    EXPECT_FALSE(shows("SFX/a.wav"));
    EXPECT_TRUE(waitUntil([this] { return shows("SFX/a.wav"); })) << "without any report of a change";
}

TEST_F(VaultTest, ReportsOnceThatTheSystemFollowsNoMoreFolders)
{
    QSignalSpy toasts(&vault, &Vault::toast);
    events->notifyLimitReached();
    events->notifyLimitReached();
    EXPECT_EQ(toasts.count(), 1);
}

TEST_F(VaultTest, GoesAwayInTheMiddleOfAScan)
{
    for (int i = 0; i < 2000; ++i)
        disk.write("SFX/" + std::to_string(i % 40) + "/" + std::to_string(i) + ".wav");
    auto shortLived = std::make_unique<Vault>(disk.root(), defaults, std::make_unique<FakeFileEvents>());
    shortLived->start();
    shortLived->rescan();
    shortLived.reset();
}

TEST_F(VaultTest, ARootThatCannotBeMadeIsAnEmptyVault)
{
    disk.write("file");
    Vault impossible(disk.at("file/vault"), defaults, std::make_unique<FakeFileEvents>());
    QSignalSpy scans(&impossible, &Vault::rescanned);
    impossible.start();
    ASSERT_TRUE(waitUntil([&] { return scans.count() == 1; }));
    EXPECT_EQ(impossible.snapshot()->size(), 0u);
    EXPECT_EQ(impossible.lastError(), QString());
}

} // namespace
} // namespace cratewell

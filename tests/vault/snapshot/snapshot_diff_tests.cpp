#include "vault/snapshot/snapshot_reference.h"
#include "vault/temporary_vault.h"

#include <gmock/gmock.h>

#include <random>
#include <thread>

namespace cratewell {
namespace {

using namespace test;
namespace fs = std::filesystem;
using testing::ElementsAre;

// The assets of `before` with the changes made to it: what each index of `after` must show.
testing::AssertionResult leadFromBeforeToAfter(const SnapshotDiff &diff)
{
    const VaultSnapshot &before = *diff.before;
    const VaultSnapshot &after = *diff.after;
    std::vector<bool> gone(before.size(), true);
    for (AssetIndex i = 0; i < after.size(); ++i) {
        const AssetIndex earlier = diff.previous.at(i);
        if (before.find(after.asset(i).url).value_or(noAsset) != earlier)
            return testing::AssertionFailure() << "previous of " << i;
        if (earlier == noAsset)
            continue;
        gone[earlier] = false;
        const bool same = before.asset(earlier) == after.asset(i) &&
                          before.asset(earlier).version == after.asset(i).version;
        if (same == std::ranges::binary_search(diff.altered, i))
            return testing::AssertionFailure() << "altered " << i;
    }
    std::vector<AssetIndex> removed;
    for (AssetIndex i = 0; i < gone.size(); ++i) {
        if (gone[i])
            removed.push_back(i);
    }
    if (removed != diff.removed || diff.previous.size() != after.size())
        return testing::AssertionFailure() << "removed";
    return testing::AssertionSuccess();
}

TEST(SnapshotDiff, AFileIsAddedAndThenReplacedByOneOfTheSameSize)
{
    const TemporaryVault vault;
    vault.write("SFX/a.wav", 4);
    const auto before = vault.scan();
    EXPECT_THAT(VaultScan::compare(nullptr, before).previous, ElementsAre(noAsset));
    vault.write("SFX/.new", 4);
    vault.rename("SFX/.new", "SFX/a.wav");
    EXPECT_THAT(VaultScan::compare(before, vault.scan(before)).altered, ElementsAre(0u));
}

TEST(SnapshotDiff, AnUnchangedVaultKeepsItsSnapshot)
{
    const TemporaryVault vault;
    vault.write("SFX/Hits/a.wav");
    const auto before = vault.scan();
    vault.write("SFX/Hits/.hidden");
    vault.write("SFX/readme.txt");
    EXPECT_EQ(vault.scan(before), before);
    vault.makeFolder("SFX/Hits/Empty");
    EXPECT_NE(vault.scan(before), before);

    const TemporaryVault other;
    other.write("SFX/Hits/a.wav");
    const auto elsewhere = other.scan(before);
    EXPECT_EQ(elsewhere->root(), other.root());
    EXPECT_TRUE(leadFromBeforeToAfter(VaultScan::compare(before, elsewhere)));
}

// Changes a vault at random, keeping in mind nothing but what lies on disk.
class RandomHand
{
public:
    RandomHand(const TemporaryVault &vault, unsigned seed) : m_vault(vault), m_random(seed) {}

    void changeSomething()
    {
        const auto [files, folders] = everything();
        const std::string folder = any(folders);
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
        else if (const std::string target = folder + "x" + std::to_string(m_random() % 3);
                 choice < 9 && !isCategory && !fs::exists(m_vault.native(target)))
            m_vault.rename(folder, target);
        else if (choice == 9 && !isCategory && m_random() % 4 == 0)
            m_vault.remove(folder);
    }

private:
    using Paths = std::vector<std::string>;

    std::pair<Paths, Paths> everything() const
    {
        std::pair<Paths, Paths> found;
        for (const char *category : {"Overlays", "LUTs", "SFX"}) {
            m_vault.makeFolder(category);
            found.second.push_back(category);
            for (const auto &entry : fs::recursive_directory_iterator(m_vault.native(category)))
                (entry.is_directory() ? found.second : found.first)
                    .push_back(entry.path().lexically_relative(m_vault.native("")).string());
        }
        return found;
    }
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
        SCOPED_TRACE(seed);
        const TemporaryVault vault;
        RandomHand hand(vault, seed);
        for (int i = 0; i < 300; ++i)
            hand.changeSomething();
        std::shared_ptr<const VaultSnapshot> snapshot = vault.scan();
        std::mt19937 random(seed);
        for (int round = 0; round < 40; ++round) {
            for (unsigned i = random() % 12; i > 0; --i)
                hand.changeSomething();
            const auto scratch = vault.scan();
            const auto next = vault.scan(snapshot);
            ASSERT_TRUE(areEqual(*scratch, *next)) << "round " << round;
            ASSERT_TRUE(leadFromBeforeToAfter(VaultScan::compare(snapshot, next))) << "round " << round;
            ASSERT_TRUE(leadFromBeforeToAfter(VaultScan::compare(snapshot, scratch))) << "round " << round;
            snapshot = next;
        }
        EXPECT_TRUE(keepsItsPromises(*snapshot));
    }
}

// Scans while another thread keeps changing the disk, and reads one snapshot from several threads.
TEST(VaultScan, WorksBesideChangesAndReaders)
{
    const TemporaryVault vault;
    RandomHand prepare(vault, 99);
    for (int i = 0; i < 200; ++i)
        prepare.changeSomething();
    std::atomic<bool> finished = false;
    std::jthread writer([&] {
        RandomHand hand(vault, 5);
        while (!finished)
            hand.changeSomething();
    });
    std::shared_ptr<const VaultSnapshot> snapshot = vault.scan();
    for (int round = 0; round < 30; ++round) {
        const auto next = vault.scan(snapshot);
        const auto read = [&] { EXPECT_TRUE(keepsItsPromises(*next)); };
        const std::jthread reader(read);
        read();
        EXPECT_TRUE(leadFromBeforeToAfter(VaultScan::compare(snapshot, next)));
        snapshot = next;
    }
    finished = true;
    writer.join();
    EXPECT_TRUE(areEqual(*vault.scan(snapshot), *vault.scan()));
}

} // namespace
} // namespace cratewell

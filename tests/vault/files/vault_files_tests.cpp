#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "support/wait.h"
#include "vault/files/file_queue.h"
#include "vault/temporary_vault.h"
#include "vault/vault.h"

#include <future>
#include <gmock/gmock.h>
#include <thread>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
namespace fs = std::filesystem;

class VaultFilesTest : public testing::Test
{
protected:
    VaultFilesTest()
    {
        const auto report = [this](const QString &what) { reported.push_back(what); };
        QObject::connect(&vault, &Vault::toast, &vault,
                         [=](const QString &text, bool ok) { report(ok ? text : u"!"_s + text); });
        QObject::connect(&vault, &Vault::itemRenamed, &vault, [=](const Location &from, const Location &to) {
            report(u"renamed %1 to %2"_s.arg(from.name(), to.name()));
        });
        QObject::connect(&vault, &Vault::itemsMoved, &vault, [=] { report(u"moved"_s); });
        QObject::connect(&vault, &Vault::itemsTrashed, &vault, [=](const std::vector<TrashItem> &items) {
            report(u"trashed %1"_s.arg(items.size()));
        });
        QObject::connect(&vault, &Vault::recentImportsChanged, &vault, [=] { report(u"recent"_s); });
        QObject::connect(&vault, &Vault::lastErrorChanged, &vault, [=, this] {
            if (!vault.lastError().isEmpty())
                report(u"error"_s);
        });
    }
    void SetUp() override
    {
        vault.start();
        ASSERT_TRUE(waitUntil([this] { return vault.snapshot()->tree(VaultCategory::Sfx) != nullptr; }));
    }
    // What was reported until this was among it, in order.
    std::vector<QString> until(const QString &last)
    {
        EXPECT_TRUE(waitUntil([&] { return std::ranges::find(reported, last) != reported.end(); }))
            << last.toStdString();
        return std::exchange(reported, {});
    }
    bool shows(const std::string &path) const { return vault.snapshot()->find(disk.at(path)).has_value(); }

    TemporaryVault disk;
    MemoryDefaults defaults;
    Vault vault{disk.root(), defaults, std::make_unique<FakeFileEvents>()};
    std::vector<QString> reported;
};

TEST_F(VaultFilesTest, EffectsFollowInTheOrderOfTheCalls)
{
    disk.write("../in/Hit.wav");
    disk.write("../in/Boom.wav");
    vault.importItems({disk.at("../in/Hit.wav"), disk.at("../in/Boom.wav")}, {}, ImportMode::Copy);
    std::optional<Location> made;
    vault.createFolder(u" Thuds "_s, disk.at("SFX"), [&](const auto &folder) {
        made = folder;
        reported.push_back(u"made"_s);
    });
    vault.move({disk.at("SFX/Hit.wav")}, disk.at("SFX/Thuds"));
    vault.rename(disk.at("SFX/Thuds/Hit.wav"), u"Thud.wav"_s);
    vault.rename(disk.at("SFX"), u"Sounds"_s);
    vault.rename(disk.at("SFX/none.wav"), u"some.wav"_s);
    vault.moveToTrash({disk.at("SFX/Thuds")});
    EXPECT_TRUE(reported.empty()) << "nothing is done before the call returns";
    EXPECT_THAT(until(u"Moved 1 item to Trash. They're kept for 30 days."_s),
                ElementsAre(u"recent"_s, u"Added 2 assets to the vault"_s, u"made"_s, u"moved"_s,
                            u"Moved 1 item to Thuds"_s, u"renamed Hit.wav to Thud.wav"_s, u"error"_s,
                            u"trashed 1"_s, u"Moved 1 item to Trash. They're kept for 30 days."_s));
    EXPECT_EQ(made, disk.at("SFX/Thuds"));
    EXPECT_THAT(vault.recentImports(), ElementsAre(disk.at("SFX/Boom.wav"), disk.at("SFX/Hit.wav")));
    ASSERT_EQ(vault.trashItems().size(), 1u);

    vault.restore(vault.trashItems());
    EXPECT_THAT(until(u"Restored 1 item"_s), ElementsAre(u"Restored 1 item"_s));
    EXPECT_TRUE(vault.trashItems().empty());
    EXPECT_TRUE(waitUntil([this] { return shows("SFX/Thuds/Thud.wav") && shows("SFX/Boom.wav"); }));
}

TEST_F(VaultFilesTest, NothingDoneSaysNothing)
{
    disk.write("SFX/a.wav");
    vault.move({disk.at("SFX/a.wav"), disk.at("SFX")}, disk.at("LUTs"));
    vault.rename(disk.at("SFX/a.wav"), u" a.wav "_s);
    vault.moveToTrash({disk.at("SFX"), disk.at("SFX/none.wav")});
    vault.importItems({disk.at("../none")}, {}, ImportMode::Copy);
    bool asked = false;
    vault.createFolder(u"  "_s, disk.at("SFX"), [&](const auto &folder) { asked = !folder; });
    EXPECT_TRUE(asked);
    vault.createFolder(u"last"_s, disk.at("SFX"), [this](const auto &) { reported.push_back(u"last"_s); });
    EXPECT_THAT(until(u"last"_s), ElementsAre(u"moved"_s, u"last"_s));
}

TEST_F(VaultFilesTest, TheTrashBelongsToTheVaultThatIsOpen)
{
    disk.write("SFX/a.wav");
    vault.moveToTrash({disk.at("SFX/a.wav")});
    until(u"trashed 1"_s);
    TemporaryVault other;
    other.makeFolder("SFX");
    vault.changeRoot(other.root());
    EXPECT_TRUE(waitUntil([this] { return vault.trashItems().empty(); }));
    EXPECT_FALSE(fs::exists(other.native(".Cratewell Trash"))) << "nothing to write there";
    vault.changeRoot(disk.root());
    EXPECT_TRUE(waitUntil([this] { return vault.trashItems().size() == 1; }));
}

TEST_F(VaultFilesTest, ListsTheFoldersThatAcceptAllKinds)
{
    disk.makeFolder("LUTs/Film/Warm");
    vault.rescan();
    ASSERT_TRUE(waitUntil([this] { return vault.flatFolders(QSet{AssetKind::Lut}).size() == 3; }));
    const auto luts = vault.flatFolders(QSet{AssetKind::Lut});
    EXPECT_EQ(luts.back(), (FolderChoice{disk.at("LUTs/Film/Warm"), 2, VaultCategory::Luts}));
    EXPECT_TRUE(vault.flatFolders(QSet{AssetKind::Lut, AssetKind::Audio}).empty());
    EXPECT_EQ(vault.flatFolders().size(), vault.flatFolders(QSet<AssetKind>()).size());
    EXPECT_EQ(vault.flatFolders().front().url, disk.at("Overlays"));
}

TEST_F(VaultFilesTest, NothingIsBegunAfterTheEnd)
{
    disk.write("SFX/a.wav");
    vault.drain();
    vault.moveToTrash({disk.at("SFX/a.wav")});
    EXPECT_TRUE(fs::exists(disk.native("SFX/a.wav")));
}

class FileQueueTest : public testing::Test
{
protected:
    static void waitForCancel(const OperationProgress &monitor)
    {
        while (!monitor.canceled)
            std::this_thread::yield();
    }

    FileProgress progress;
    std::vector<QString> done;
    FileQueue queue{progress};
};

TEST_F(FileQueueTest, ShowsLongWorkAndCancelsIt)
{
    queue.add(u"Importing"_s, [&](OperationProgress &monitor) -> FileQueue::Effects {
        monitor.filesTotal = 60;
        monitor.filesDone = 15;
        waitForCancel(monitor);
        return [&] { done.push_back(u"first"_s); };
    });
    queue.add(u"Moving"_s, [&](OperationProgress &monitor) -> FileQueue::Effects {
        return [&, canceled = monitor.canceled.load()] {
            done.push_back(canceled ? u"canceled"_s : u"second"_s);
        };
    });
    ASSERT_TRUE(waitUntil([&] { return progress.secondsLeft() >= 0; }));
    EXPECT_TRUE(progress.isActive());
    EXPECT_EQ(progress.title(), u"Importing"_s);
    EXPECT_EQ(progress.fraction(), 0.25);
    EXPECT_TRUE(done.empty());
    progress.cancel();
    ASSERT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_THAT(done, ElementsAre(u"first"_s, u"second"_s)) << "what waits is done after it";
    EXPECT_FALSE(progress.isActive());
}

TEST_F(FileQueueTest, TheEffectsOfWhatWasDoneAreHadAtTheEnd)
{
    std::promise<void> underWay;
    for (const QString &name : {u"first"_s, u"second"_s, u"third"_s}) {
        queue.add(name, [&, name](OperationProgress &monitor) -> FileQueue::Effects {
            if (name == u"second"_s) {
                underWay.set_value();
                waitForCancel(monitor);
            }
            return [&, name] { done.push_back(name); };
        });
    }
    underWay.get_future().wait();
    queue.drain();
    EXPECT_THAT(done, ElementsAre(u"first"_s, u"second"_s)) << "what waits is dropped";
}

TEST_F(FileQueueTest, EndsWhatFillsAFolderThatGoes)
{
    std::vector<bool> canceled;
    const auto fill = [&](const char *folder, bool waits) {
        queue.add(
            u"Importing"_s,
            [&, waits](OperationProgress &monitor) -> FileQueue::Effects {
                if (waits)
                    waitForCancel(monitor);
                return [&, was = monitor.canceled.load()] { canceled.push_back(was); };
            },
            Location::fromText(QString::fromLatin1(folder)));
    };
    fill("/vault/SFX/Hits", true);
    fill("/vault/SFX", false);
    fill("/vault/SFX More", false);
    fill("", false);
    queue.cancelFilling(Location::fromText(u"/vault/SFX"_s));
    ASSERT_TRUE(waitUntil([&] { return canceled.size() == 4; }));
    EXPECT_THAT(canceled, ElementsAre(true, true, false, false));
}

} // namespace
} // namespace cratewell

#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "support/wait.h"
#include "vault/files/file_queue.h"
#include "vault/temporary_vault.h"
#include "vault/vault.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
using testing::ElementsAre;
namespace fs = std::filesystem;

class VaultTest : public testing::Test
{
protected:
    VaultTest()
    {
        const auto note = [this](const QString &what) { reported.push_back(what); };
        QObject::connect(&vault, &Vault::toast, note);
        QObject::connect(&vault, &Vault::itemRenamed, [=](const Location &from, const Location &to) {
            note(u"renamed %1 to %2"_s.arg(from.name(), to.name()));
        });
        QObject::connect(&vault, &Vault::itemsMoved, [=] { note(u"moved"_s); });
        QObject::connect(&vault, &Vault::itemsTrashed, [=](const std::vector<TrashItem> &items) {
            note(u"trashed %1"_s.arg(items.size()));
        });
        QObject::connect(&vault, &Vault::recentImportsChanged, [=] { note(u"recent"_s); });
        QObject::connect(&vault, &Vault::lastErrorChanged, [=] { note(u"error"_s); });
        QObject::connect(&vault, &Vault::rootChanged, [=] { note(u"root"_s); });
        QObject::connect(&vault, &Vault::opened, [=] { note(u"opened"_s); });
    }
    // Waits for the first snapshot.
    void start()
    {
        vault.start();
        ASSERT_TRUE(waitUntil([this] { return rescanned.count() == 1; }));
    }
    // What was reported until all operations so far are done, in order.
    std::vector<QString> reports()
    {
        bool done = false;
        vault.createFolder(u"last"_s, disk.at("SFX"), [&](const auto &) { done = true; });
        EXPECT_TRUE(waitUntil([&] { return done; }));
        return std::exchange(reported, {});
    }
    bool shows(const std::string &path) const { return vault.snapshot()->find(disk.at(path)).has_value(); }

    TemporaryVault disk;
    MemoryDefaults defaults;
    FakeFileEvents *events = new FakeFileEvents;
    Vault vault{disk.root(), defaults, std::unique_ptr<FileEvents>(events)};
    QSignalSpy rescanned{&vault, &Vault::rescanned};
    std::vector<QString> reported;
};

TEST_F(VaultTest, MakesTheStructureOfANewVaultOnce)
{
    EXPECT_FALSE(fs::exists(disk.native(""))) << "only start() makes the root";
    start();
    EXPECT_EQ(vault.snapshot()->tree(VaultCategory::Sfx)->children.size(), 8u);

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
    vault.rescan();
    disk.write("SFX/.hidden.wav");
    vault.rescan();
    disk.write("SFX/Hits/a.wav", 3);
    for (int i = 0; i < 500; ++i)
        events->notifyChanged();
    ASSERT_TRUE(waitUntil([this] { return shows("SFX/Hits/a.wav"); }));
    EXPECT_EQ(rescanned.count(), 2);

    events->notifyLimitReached();
    events->notifyLimitReached();
    EXPECT_EQ(reported.size(), 1u) << "said once";
}

// Every published snapshot must follow from the one published before, whatever is asked meanwhile.
TEST_F(VaultTest, ConstantRescansNeitherStarveNorReorder)
{
    start();
    int written = 0;
    std::shared_ptr<const VaultSnapshot> last = vault.snapshot();
    QObject::connect(&vault, &Vault::rescanned, [&](const SnapshotDiff &diff) {
        EXPECT_EQ(diff.before, last);
        EXPECT_GE(diff.after->size(), last->size());
        last = diff.after;
    });
    EXPECT_TRUE(waitUntil([&] {
        disk.write("SFX/" + std::to_string(written++) + ".wav");
        vault.rescan();
        vault.rescan();
        return rescanned.count() > 10;
    }));
    EXPECT_TRUE(waitUntil([&] { return int(vault.snapshot()->size()) == written; }));
}

TEST_F(VaultTest, AChangeOfRootDropsTheScanOfTheOldOne)
{
    TemporaryVault other;
    other.write("LUTs/only here.cube");
    disk.write("SFX/old.wav");
    QObject::connect(&vault, &Vault::rootChanged, [&] {
        EXPECT_EQ(fs::exists(other.native("SFX")), rescanned.count() > 0) << "reported before it is done";
    });
    QObject::connect(&vault, &Vault::rescanned,
                     [&](const SnapshotDiff &diff) { EXPECT_EQ(diff.after->root(), other.root()); });
    vault.start();
    vault.changeRoot(other.root());
    ASSERT_TRUE(waitUntil([&] { return rescanned.count() == 1; }));
    EXPECT_THAT(reported, ElementsAre(u"root"_s, u"opened"_s));
    EXPECT_THAT(events->watched(), ElementsAre(other.root())) << "the old one has no snapshot to keep";
    EXPECT_TRUE(vault.snapshot()->find(other.at("LUTs/only here.cube")));
    vault.changeRoot(other.root());
    EXPECT_TRUE(waitUntil([this] { return rescanned.count() == 2; })) << "the first scan is always reported";
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

TEST_F(VaultTest, GoesAwayInTheMiddleOfAScan)
{
    for (int i = 0; i < 2000; ++i)
        disk.write("SFX/" + std::to_string(i % 40) + "/" + std::to_string(i) + ".wav");
    Vault shortLived(disk.root(), defaults, std::make_unique<FakeFileEvents>());
    shortLived.start();
    shortLived.rescan();
}

TEST_F(VaultTest, ARootThatCannotBeMadeIsAnEmptyVault)
{
    disk.write("file");
    vault.changeRoot(disk.at("file/vault"));
    ASSERT_TRUE(waitUntil([&] { return rescanned.count() == 1; }));
    EXPECT_EQ(vault.snapshot()->size(), 0u);
    EXPECT_EQ(vault.lastError(), QString());
}

TEST_F(VaultTest, EffectsFollowInTheOrderOfTheCalls)
{
    start();
    disk.write("../in/Hit.wav");
    disk.write("../in/Boom.wav");
    vault.importItems({disk.at("../in/Hit.wav"), disk.at("../in/Boom.wav")}, {}, ImportMode::Copy);
    vault.createFolder(u" Thuds "_s, disk.at("SFX"),
                       [this](const auto &folder) { reported.push_back(folder.value().name()); });
    vault.move({disk.at("SFX/Hit.wav")}, disk.at("SFX/Thuds"));
    vault.rename(disk.at("SFX/Thuds/Hit.wav"), u"Thud.wav"_s);
    vault.rename(disk.at("SFX"), u"Sounds"_s);
    vault.rename(disk.at("SFX/none.wav"), u"some.wav"_s);
    vault.moveToTrash({disk.at("SFX/Thuds")});
    EXPECT_TRUE(reported.empty()) << "nothing is done before the call returns";
    EXPECT_THAT(reports(),
                ElementsAre(u"recent"_s, u"Added 2 assets to the vault"_s, u"Thuds"_s, u"moved"_s,
                            u"Moved 1 item to Thuds"_s, u"renamed Hit.wav to Thud.wav"_s, u"error"_s,
                            u"trashed 1"_s, u"Moved 1 item to Trash. They're kept for 30 days."_s));
    EXPECT_THAT(vault.recentImports(), ElementsAre(disk.at("SFX/Boom.wav"), disk.at("SFX/Hit.wav")));
    ASSERT_EQ(vault.trashItems().size(), 1u);

    vault.restore(vault.trashItems());
    EXPECT_THAT(reports(), ElementsAre(u"Restored 1 item"_s));
    EXPECT_TRUE(vault.trashItems().empty());
    EXPECT_TRUE(waitUntil([this] { return shows("SFX/Thuds/Thud.wav") && shows("SFX/Boom.wav"); }));

    vault.move({disk.at("SFX/Boom.wav"), disk.at("SFX")}, disk.at("LUTs"));
    vault.rename(disk.at("SFX/Boom.wav"), u" Boom.wav "_s);
    vault.moveToTrash({disk.at("SFX"), disk.at("SFX/none.wav")});
    vault.importItems({disk.at("../none")}, {}, ImportMode::Copy);
    vault.createFolder(u"  "_s, disk.at("SFX"), [](const auto &folder) { EXPECT_FALSE(folder); });
    EXPECT_THAT(reports(), ElementsAre(u"moved"_s)) << "nothing done says nothing";
}

TEST_F(VaultTest, TheTrashBelongsToTheVaultThatIsOpen)
{
    disk.write("SFX/a.wav");
    vault.moveToTrash({disk.at("SFX/a.wav")});
    reports();
    TemporaryVault other;
    vault.createFolder(u"late"_s, disk.at("SFX"), [](const auto &) { ADD_FAILURE() << "too late"; });
    vault.changeRoot(other.root());
    EXPECT_TRUE(waitUntil([this] { return vault.trashItems().empty(); }));
    EXPECT_FALSE(fs::exists(other.native(".Cratewell Trash"))) << "nothing to write there";
    vault.changeRoot(disk.root());
    EXPECT_TRUE(waitUntil([this] { return vault.trashItems().size() == 1; }));

    vault.drain();
    disk.write("SFX/b.wav");
    vault.moveToTrash({disk.at("SFX/b.wav")});
    EXPECT_TRUE(fs::exists(disk.native("SFX/b.wav"))) << "nothing is begun after the end";
}

// What an unattended start leaves as it is, a usual one tidies.
TEST_F(VaultTest, DeletesNothingWithoutMaintenance)
{
    const std::string part = "SFX/.cratewell-00112233445566778899aabbccddeeff.part";
    disk.write(part);
    disk.makeFolder(".Cratewell Trash");
    std::ofstream(disk.native(".Cratewell Trash/journal")) << disk.native(part).string() << '\0';
    std::ofstream(disk.native(".Cratewell Trash/index.json"))
        << R"([{"id": "01234567-89AB-CDEF-0123-456789ABCDEF", "name": "a", "original": "/a", "deletedAt": 0}, 1])";
    for (const bool tidied : {false, true}) {
        vault.start(tidied ? StartupMaintenance::Run : StartupMaintenance::Skip);
        reports();
        EXPECT_EQ(vault.trashItems().empty(), tidied) << "purged";
        EXPECT_EQ(!fs::exists(disk.native(part)), tidied) << "cleaned up";
        EXPECT_EQ(fs::exists(disk.native(".Cratewell Trash/index.json.kept")), tidied) << "put aside";
    }
}

class FileQueueTest : public testing::Test
{
protected:
    enum class Length { Short, UntilCanceled };
    void add(const QString &title, Length length, QByteArrayView destination = "")
    {
        const auto work = [=, this](OperationProgress &monitor) -> FileQueue::Effects {
            monitor.filesTotal = 60;
            monitor.filesDone = 15;
            ++begun;
            while (length == Length::UntilCanceled && !monitor.canceled)
                std::this_thread::yield();
            return [=, this, canceled = monitor.canceled.load()] {
                done.push_back(canceled ? title + u" canceled"_s : title);
            };
        };
        queue.add(title, work, Location::fromBytes(destination));
    }

    FileProgress progress;
    std::vector<QString> done;
    std::atomic<int> begun = 0;
    FileQueue queue{progress};
};

TEST_F(FileQueueTest, ShowsLongWorkAndCancelsIt)
{
    add(u"Importing"_s, Length::UntilCanceled);
    add(u"Moving"_s, Length::Short);
    ASSERT_TRUE(waitUntil([&] { return progress.secondsLeft() >= 0; }));
    EXPECT_TRUE(progress.isActive());
    EXPECT_EQ(progress.title(), u"Importing"_s);
    EXPECT_EQ(progress.fraction(), 0.25);
    progress.cancel();
    ASSERT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_THAT(done, ElementsAre(u"Importing canceled"_s, u"Moving"_s)) << "what waits is done after it";
    EXPECT_FALSE(progress.isActive());
}

TEST_F(FileQueueTest, TheEffectsOfWhatWasDoneAreHadAtTheEnd)
{
    add(u"first"_s, Length::Short);
    add(u"second"_s, Length::UntilCanceled);
    add(u"third"_s, Length::Short);
    while (begun < 2)
        std::this_thread::yield();
    queue.drain();
    EXPECT_THAT(done, ElementsAre(u"first"_s, u"second canceled"_s)) << "what waits is dropped";
}

TEST_F(FileQueueTest, EndsWhatFillsAFolderThatGoes)
{
    add(u"inside"_s, Length::UntilCanceled, "/vault/SFX/Hits");
    add(u"itself"_s, Length::Short, "/vault/SFX");
    add(u"beside"_s, Length::Short, "/vault/SFX More");
    add(u"nowhere"_s, Length::Short);
    queue.cancelFilling(Location::fromBytes("/vault/SFX"));
    ASSERT_TRUE(waitUntil([&] { return done.size() == 4; }));
    EXPECT_THAT(done, ElementsAre(u"inside canceled"_s, u"itself canceled"_s, u"beside"_s, u"nowhere"_s));
}

} // namespace
} // namespace cratewell

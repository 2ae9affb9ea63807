// A program that changes files in a vault is killed at random instants; after each time the vault must hold
// every file, complete, and a trash without gaps.

#include "support/child.h"
#include "vault/files/file_operations_fixture.h"

#include <map>
#include <random>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;
using namespace test;
namespace fs = std::filesystem;

constexpr int assets = 24;
constexpr int kills = 220;
constexpr size_t assetSize = 200'000; // large enough to be caught half copied
constexpr const char *rootVariable = "CRATEWELL_KILL_ROOT";
const std::vector<std::string> folders{"Overlays/Grains", "Overlays/Flashes", "Overlays/Elsewhere/Deep"};

// Content that says whose it is at every place, so that half a file is not taken for a whole one.
const std::string &contentOf(int asset)
{
    static std::map<int, std::string> contents;
    std::string &content = contents[asset];
    while (content.size() < assetSize)
        content += "asset " + std::to_string(asset) + " at " + std::to_string(content.size()) + '\n';
    return content;
}

std::vector<Location> filesBelow(const Location &root, const std::string &folder)
{
    std::vector<Location> files;
    std::error_code ignored;
    for (const auto &entry : fs::recursive_directory_iterator(fs::path(root.c_str()) / folder, ignored)) {
        if (entry.is_regular_file() && entry.path().extension() == ".mov")
            files.push_back(Location::fromBytes(entry.path().c_str()));
    }
    return files;
}

template<typename T> std::vector<T> some(const std::vector<T> &all, std::mt19937 &random)
{
    std::vector<T> chosen;
    std::ranges::copy_if(all, std::back_inserter(chosen), [&](const T &) { return random() % 3 == 0; });
    return chosen;
}

// What stands beside the vault, on another file system where there is one: the import's source.
Location outside(const Location &root)
{
    return root.parent().child("outside");
}

// Works on the vault named in the environment until it is killed.
TEST(FileKillChild, DISABLED_ChangesFilesForEver)
{
    const Location root = Location::fromBytes(qgetenv(rootVariable));
    std::mt19937 random(std::random_device{}());
    FileOperations work(root);
    work.open();
    for (int operation = 0;; ++operation) {
        report("operation " + QByteArray::number(operation));
        OperationProgress progress;
        const std::vector<Location> files = filesBelow(root, "Overlays");
        const Location folder =
            Location::fromBytes(root.bytes() + '/' + folders[random() % folders.size()].c_str());
        switch (random() % 5) {
        case 0:
            work.move(some(files, random), folder, progress);
            break;
        case 1:
            work.trash(random() % 6 == 0 ? std::vector{folder} : some(files, random), progress);
            break;
        case 2:
            work.restore(work.trash(), progress);
            break;
        case 3:
            work.import({outside(root)}, folder, ImportMode::Move, progress);
            break;
        case 4:
            if (!files.empty())
                work.import({files[random() % files.size()]}, folder, ImportMode::Copy, progress);
            // Copies would fill the vault.
            for (const Location &file : filesBelow(root, "Overlays")) {
                if (file.baseName().contains(u' ') && random() % 2)
                    work.rename(
                        file, root.child("Overlays").child(file.baseName().section(u' ', 0, 0) + u".mov"_s));
            }
            break;
        }
    }
}

// Every asset that is somewhere in the vault or in front of it, by its content; anything else is a failure.
std::map<int, int> completeAssets(const Location &root)
{
    std::map<int, int> found;
    for (const char *top : {"Overlays", "LUTs", "SFX", ".Cratewell Trash", "../outside"}) {
        for (const Location &file : filesBelow(root, top)) {
            const std::string content = readFile(file.c_str());
            const int asset = std::atoi(content.c_str() + std::string_view("asset ").size());
            if (content == contentOf(asset))
                ++found[asset];
            else
                ADD_FAILURE() << "half a file: " << file.c_str();
        }
    }
    return found;
}

void expectTidyTrash(const Location &root, const FileOperations &work)
{
    std::set<std::string> listed;
    for (const TrashItem &item : work.trash()) {
        listed.insert(item.id.toStdString());
        EXPECT_TRUE(disk::exists(trashedItem(root, item))) << item.original.toStdString();
    }
    for (const QByteArray &name : disk::names(trashFolder(root)).value_or(std::vector<QByteArray>())) {
        const bool slot = disk::isFolder(trashFolder(root).child(name));
        EXPECT_TRUE(!slot || listed.contains(name.toStdString()) ||
                    disk::names(trashFolder(root).child(name))->empty())
            << "no record of " << name.toStdString();
    }
}

class FileKill : public testing::TestWithParam<const char *>
{
};

TEST_P(FileKill, LosesNothingAtAnyInstant)
{
    TemporaryVault disk;
    const Location root = disk.root();
    for (const char *category : {"LUTs", "SFX", "Overlays"})
        disk.makeFolder(category);
    // One of the folders lies on another file system.
    TemporaryVault other(GetParam());
    disk.makeFolder("Overlays/Grains");
    other.makeFolder("here");
    disk.remove("Overlays");
    disk.link("Overlays", other.native("here"));
    for (const std::string &folder : folders)
        disk.makeFolder(folder);
    fs::create_directories(outside(root).c_str());
    for (int asset = 0; asset < assets; ++asset)
        std::ofstream(fs::path(outside(root).c_str()) / (std::to_string(asset) + ".mov")) << contentOf(asset);

    const auto unfinished = [&] { return partsBelow(root.c_str()) + partsBelow(other.native("here")); };
    int caughtCopying = 0;
    int caughtTrashing = 0;
    std::mt19937 random(7);
    for (int i = 0; i < kills / 2 && !HasFailure(); ++i) {
        Child victim(u"FileKillChild.*"_s, {.environment = {{QLatin1StringView(rootVariable), root.text()}}});
        // Counted in operations first, so that a slow machine gets as far as a fast one.
        const QByteArray begun = "operation " + QByteArray::number(uint(random() % 6)) + '\n';
        ASSERT_TRUE(victim.prints(begun)) << victim.output().constData();
        ASSERT_FALSE(victim.endsWithin(std::chrono::milliseconds(random() % 15)))
            << victim.output().constData();
        victim.kill();
        caughtCopying += unfinished() > 0 ? 1 : 0;
        FileOperations work(root);
        work.open();
        caughtTrashing += work.trash().empty() ? 0 : 1;
        expectTidyTrash(root, work);
        const std::map<int, int> found = completeAssets(root);
        for (int asset = 0; asset < assets; ++asset)
            EXPECT_GE(found.count(asset), 1u) << "asset " << asset << " is gone after kill " << i;
        EXPECT_EQ(unfinished(), 0);
    }
    const bool copies = std::string_view(GetParam()) != "/tmp";
    EXPECT_EQ(copies && caughtCopying == 0, false) << "no kill met a copy";
    EXPECT_GT(caughtTrashing, 0) << "no kill met something in the trash";
    std::printf("caught %d times copying, %d times with something in the trash\n", caughtCopying,
                caughtTrashing);
}

INSTANTIATE_TEST_SUITE_P(OnOneAndOnTwoFileSystems, FileKill, testing::Values("/tmp", "/dev/shm"));

} // namespace
} // namespace cratewell

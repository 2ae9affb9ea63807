// A program that changes files in a vault is killed at random instants; after each time the vault must hold
// every file, complete, and a trash without gaps.

#include "support/child.h"
#include "vault/files/file_operations_fixture.h"

#include <random>
#include <set>

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

std::vector<Location> assetsBelow(const fs::path &folder)
{
    std::vector<Location> found;
    for (const std::string &file : filesBelow(folder)) {
        if (file.ends_with(".mov"))
            found.push_back(Location::fromBytes((folder / file).c_str()));
    }
    return found;
}

template<typename T> std::vector<T> some(const std::vector<T> &all, std::mt19937 &random)
{
    std::vector<T> chosen;
    std::ranges::copy_if(all, std::back_inserter(chosen), [&](const T &) { return random() % 3 == 0; });
    return chosen;
}

// Works on the vault named in the environment until it is killed.
TEST(FileKillChild, DISABLED_ChangesFilesForEver)
{
    const Location root = Location::fromBytes(qgetenv(rootVariable));
    const Location overlays = root.child("Overlays");
    std::mt19937 random(std::random_device{}());
    FileOperations work(root);
    work.open();
    for (int operation = 0;; ++operation) {
        report("operation " + QByteArray::number(operation));
        OperationProgress progress;
        const std::vector<Location> files = assetsBelow(overlays.c_str());
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
            work.import({root.parent().child("outside")}, folder, ImportMode::Move, progress);
            break;
        case 4:
            if (!files.empty())
                work.import({files[random() % files.size()]}, folder, ImportMode::Copy, progress);
            // Copies would fill the vault.
            for (const Location &file : assetsBelow(overlays.c_str())) {
                if (file.baseName().contains(u' ') && random() % 2)
                    work.rename(file, overlays.child(file.baseName().section(u' ', 0, 0) + u".mov"_s));
            }
            break;
        }
    }
}

// Every asset is somewhere in the vault or in front of it, by its content; anything else is a failure.
void expectCompleteAssets(const fs::path &root)
{
    std::set<int> found;
    for (const char *top : {"Overlays", "LUTs", "SFX", ".Cratewell Trash", "../outside"}) {
        for (const Location &file : assetsBelow(root / top)) {
            const std::string content = readFile(file.c_str());
            const int asset = std::atoi(content.c_str() + std::string_view("asset ").size());
            found.insert(asset);
            EXPECT_TRUE(content == contentOf(asset)) << "half a file: " << file.c_str();
        }
    }
    EXPECT_EQ(found.size(), size_t(assets));
}

void expectTidyTrash(const Location &root, const FileOperations &work)
{
    std::set<std::string> recorded;
    for (const TrashItem &item : work.trash()) {
        recorded.insert(item.id.toStdString());
        EXPECT_TRUE(disk::exists(trashedItem(root, item))) << item.original.toStdString();
    }
    std::error_code missing;
    for (const auto &entry : fs::directory_iterator(trashFolder(root).c_str(), missing)) {
        const bool holdsSomething = entry.is_directory() && !fs::is_empty(entry);
        EXPECT_TRUE(!holdsSomething || recorded.contains(entry.path().filename())) << entry.path();
    }
}

// With one of its folders on this file system.
void expectNothingLostInKills(const char *otherFileSystem)
{
    const TemporaryVault disk;
    const TemporaryVault other(otherFileSystem);
    const Location root = disk.root();
    for (const char *category : {"LUTs", "SFX", "../outside"})
        disk.makeFolder(category);
    other.makeFolder("here");
    disk.link("Overlays", other.native("here"));
    for (const std::string &folder : folders)
        disk.makeFolder(folder);
    for (int asset = 0; asset < assets; ++asset)
        std::ofstream(disk.native("../outside/" + std::to_string(asset) + ".mov")) << contentOf(asset);

    const auto unfinished = [&] { return partsBelow(root.c_str()) + partsBelow(other.native("here")); };
    int caughtCopying = 0;
    int caughtTrashing = 0;
    std::mt19937 random(7);
    for (int i = 0; i < kills / 2 && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
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
        expectCompleteAssets(root.c_str());
        EXPECT_EQ(unfinished(), 0);
    }
    EXPECT_TRUE(caughtCopying > 0 || otherFileSystem == std::string_view("/tmp")) << "no kill met a copy";
    EXPECT_GT(caughtTrashing, 0) << "no kill met something in the trash";
}

TEST(FileKill, LosesNothingAtAnyInstant)
{
    expectNothingLostInKills("/tmp");
    expectNothingLostInKills("/dev/shm");
}

} // namespace
} // namespace cratewell

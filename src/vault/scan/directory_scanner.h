#pragma once

#include "vault/scan/folder_reader.h"
#include "vault/snapshot/snapshot_data.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace cratewell {

// One folder of a scan. Its contents are those of the snapshot before when nothing in the folder itself
// changed, or when it could not be read.
struct ScannedFolder
{
    const ScannedFolder *parent = nullptr;
    Location url;
    VaultCategory category = VaultCategory::Overlays;
    int depth = 0;
    FolderReader::Identity identity;
    std::shared_ptr<const FolderContents> contents;
    std::vector<std::unique_ptr<ScannedFolder>> children; // in listing order, one for each of the contents'

    std::unique_ptr<FolderReader> reader; // until the contents are made
    std::atomic<size_t> unreadParts = 0;
};

// Reads the folders of a vault from disk with a few threads that share a list of what is to be done: folders
// to list, and parts of large folders whose files are to be looked at.
class DirectoryScanner
{
public:
    DirectoryScanner(const Location &root, const SnapshotData *before, const std::function<bool()> &canceled);
    ~DirectoryScanner();

    // False when canceled. `canceled` is asked by the calling thread only.
    bool run();

    const ScannedFolder &category(VaultCategory category) const { return m_categories[size_t(category)]; }
    size_t folderCount() const { return m_folders; }
    size_t assetCount() const { return m_assets; }
    // No folder has come, gone or changed since the snapshot before.
    bool changedNothing() const;
    // Everything that is there could be read; if not, a later scan may see more.
    bool isComplete() const { return m_complete; }

private:
    struct Job
    {
        ScannedFolder *folder = nullptr;
        size_t first = 0;
        size_t last = 0; // 0: list the folder
    };
    enum class Role { Caller, Helper };

    void work(Role role);
    std::optional<Job> takeJob(Role role);
    void addJobs(const std::vector<Job> &jobs);
    void finishJob();
    void perform(const Job &job);
    void list(ScannedFolder &folder);
    static void addChild(ScannedFolder &folder, Location url, std::vector<Job> &jobs);
    void keepEarlier(ScannedFolder &folder);
    void readPart(ScannedFolder &folder, size_t first, size_t last);
    void makeContents(ScannedFolder &folder);

    const SnapshotData *m_before = nullptr;
    const std::function<bool()> &m_canceled;
    std::array<ScannedFolder, allCategories.size()> m_categories;
    std::atomic<size_t> m_folders = 0;
    std::atomic<size_t> m_assets = 0;
    std::atomic<size_t> m_keptFolders = 0;
    std::atomic<bool> m_complete = true;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Job> m_jobs; // the last is done first
    size_t m_unfinished = 0; // waiting or being done
    std::atomic<bool> m_stopped = false;
};

} // namespace cratewell

#include "vault/scan/directory_scanner.h"

#include <algorithm>
#include <cstring>
#include <thread>

namespace cratewell {

namespace {

// Deeper folders are shown empty. Far beyond what anybody files by hand; keeps recursion over trees small.
constexpr int deepestFolder = 200;
constexpr size_t filesPerPart = 512;
constexpr int mostThreads = 8;
constexpr std::chrono::milliseconds pollInterval{20};

bool liesInItself(const ScannedFolder &folder)
{
    for (const ScannedFolder *above = folder.parent; above; above = above->parent) {
        if (above->identity == folder.identity)
            return true;
    }
    return false;
}

Location childUrl(const Location &folder, QByteArrayView name)
{
    const QByteArray &path = folder.bytes();
    QByteArray joined(path.size() + 1 + name.size(), Qt::Uninitialized);
    char *out = joined.data();
    std::memcpy(out, path.data(), size_t(path.size()));
    out[path.size()] = '/';
    std::memcpy(out + path.size() + 1, name.data(), size_t(name.size()));
    return Location::fromStandardized(std::move(joined));
}

bool sameInfo(const Asset &asset, const ListedEntry &entry)
{
    return asset.added == entry.added && asset.version == entry.version && asset.kind == entry.kind;
}

// Whether the contents would come out exactly like `contents`.
bool holdsSame(const FolderReader &reader, const FolderContents &contents)
{
    size_t position = 0;
    size_t child = 0;
    for (const ListedEntry &entry : reader.entries()) {
        if (entry.type == ListedEntry::Type::Folder) {
            if (child == contents.children.size() || contents.children[child].position != position ||
                contents.children[child].url.nameBytes() != reader.name(entry))
                return false;
            ++child;
        } else if (entry.type == ListedEntry::Type::File) {
            if (position == contents.assets.size() || !sameInfo(contents.assets[position], entry) ||
                contents.name(position) != reader.name(entry))
                return false;
            ++position;
        }
    }
    return position == contents.assets.size() && child == contents.children.size();
}

} // namespace

DirectoryScanner::DirectoryScanner(const Location &root, const SnapshotData *before,
                                   const std::function<bool()> &canceled)
    : m_before(before), m_canceled(canceled)
{
    for (const VaultCategory category : allCategories) {
        ScannedFolder &folder = m_categories[size_t(category)];
        folder.url = categoryFolder(root, category);
        folder.category = category;
    }
}

DirectoryScanner::~DirectoryScanner() = default;

bool DirectoryScanner::run()
{
    std::vector<Job> jobs;
    for (ScannedFolder &folder : m_categories)
        jobs.push_back({&folder});
    addJobs(jobs);
    {
        std::vector<std::jthread> helpers;
        const int threads = std::clamp(int(std::thread::hardware_concurrency()), 1, mostThreads);
        for (int i = 1; i < threads; ++i)
            helpers.emplace_back([this] { work(Role::Helper); });
        work(Role::Caller);
    }
    return !m_stopped;
}

bool DirectoryScanner::changedNothing() const
{
    return m_before && m_before->scanned && m_keptFolders == m_folders &&
           m_folders == m_before->folders.size();
}

void DirectoryScanner::work(Role role)
{
    while (const std::optional<Job> job = takeJob(role)) {
        perform(*job);
        finishJob();
    }
}

// Waits for something to do; nothing when all is done or the scanner was stopped.
std::optional<DirectoryScanner::Job> DirectoryScanner::takeJob(Role role)
{
    const auto stop = [&] { return role == Role::Caller && m_canceled && m_canceled(); };
    if (stop())
        m_stopped = true;
    std::unique_lock lock(m_mutex);
    while (m_jobs.empty() && m_unfinished > 0 && !m_stopped) {
        m_changed.wait_for(lock, pollInterval);
        if (stop())
            m_stopped = true;
    }
    if (m_jobs.empty() || m_stopped) {
        m_changed.notify_all();
        return std::nullopt;
    }
    const Job job = m_jobs.back();
    m_jobs.pop_back();
    return job;
}

void DirectoryScanner::addJobs(const std::vector<Job> &jobs)
{
    if (jobs.empty())
        return;
    const std::scoped_lock lock(m_mutex);
    m_jobs.insert(m_jobs.end(), jobs.rbegin(), jobs.rend());
    m_unfinished += jobs.size();
    m_changed.notify_all();
}

void DirectoryScanner::finishJob()
{
    const std::scoped_lock lock(m_mutex);
    if (--m_unfinished == 0)
        m_changed.notify_all();
}

void DirectoryScanner::perform(const Job &job)
{
    if (job.last == 0)
        list(*job.folder);
    else
        readPart(*job.folder, job.first, job.last);
}

void DirectoryScanner::list(ScannedFolder &folder)
{
    // A category may be kept on another disk through a link; below it links to folders are not followed.
    const Links links = folder.parent ? Links::NoFollow : Links::Follow;
    Result<std::unique_ptr<FolderReader>> reader = FolderReader::open(folder.url, folder.category, links);
    if (!reader)
        return keepEarlier(folder);
    folder.reader = *std::move(reader);
    folder.identity = folder.reader->identity();
    if (folder.depth > deepestFolder || liesInItself(folder))
        folder.reader->clear();

    std::vector<Job> jobs;
    for (const ListedEntry &entry : folder.reader->entries()) {
        if (entry.type == ListedEntry::Type::Folder)
            addChild(folder, childUrl(folder.url, folder.reader->name(entry)), jobs);
    }
    const size_t entries = folder.reader->entries().size();
    const size_t parts = std::max<size_t>(1, entries / filesPerPart);
    folder.unreadParts = parts;
    for (size_t part = 1; part < parts; ++part)
        jobs.push_back({&folder, entries * part / parts, entries * (part + 1) / parts});
    addJobs(jobs);
    readPart(folder, 0, entries / parts);
}

void DirectoryScanner::addChild(ScannedFolder &folder, Location url, std::vector<Job> &jobs)
{
    auto child = std::make_unique<ScannedFolder>();
    child->parent = &folder;
    child->url = std::move(url);
    child->category = folder.category;
    child->depth = folder.depth + 1;
    jobs.push_back({child.get()});
    folder.children.push_back(std::move(child));
}

// What could not be listed shows what it held before; its subfolders may still be readable.
void DirectoryScanner::keepEarlier(ScannedFolder &folder)
{
    m_complete = false;
    ++m_folders;
    if (const SnapshotFolder *earlier = m_before ? m_before->folder(folder.url) : nullptr) {
        ++m_keptFolders;
        folder.contents = earlier->contents;
    } else {
        folder.contents = std::make_shared<const FolderContents>(folder.url, std::vector<Asset>(),
                                                                 std::vector<ChildFolder>());
    }
    m_assets += folder.contents->assets.size();
    std::vector<Job> jobs;
    for (const ChildFolder &child : folder.contents->children)
        addChild(folder, child.url, jobs);
    addJobs(jobs);
}

void DirectoryScanner::readPart(ScannedFolder &folder, size_t first, size_t last)
{
    const SnapshotFolder *earlier = m_before ? m_before->folder(folder.url) : nullptr;
    if (!folder.reader->readDetails(first, last, earlier ? earlier->contents.get() : nullptr))
        m_complete = false;
    if (--folder.unreadParts == 0)
        makeContents(folder);
}

void DirectoryScanner::makeContents(ScannedFolder &folder)
{
    const FolderReader &reader = *folder.reader;
    const SnapshotFolder *earlier = m_before ? m_before->folder(folder.url) : nullptr;
    ++m_folders;
    if (earlier && holdsSame(reader, *earlier->contents)) {
        ++m_keptFolders;
        folder.contents = earlier->contents;
        m_assets += folder.contents->assets.size();
        folder.reader.reset();
        return;
    }
    std::vector<Asset> assets;
    std::vector<ChildFolder> children;
    assets.reserve(size_t(std::ranges::count(reader.entries(), ListedEntry::Type::File, &ListedEntry::type)));
    children.reserve(folder.children.size());
    for (const ListedEntry &entry : reader.entries()) {
        if (entry.type == ListedEntry::Type::Folder) {
            children.push_back({folder.children[children.size()]->url, quint32(assets.size())});
        } else if (entry.type == ListedEntry::Type::File) {
            const QByteArrayView name = reader.name(entry);
            const std::optional<quint32> known = earlier ? earlier->contents->find(name) : std::nullopt;
            Location url = known ? earlier->contents->assets[*known].url : childUrl(folder.url, name);
            assets.push_back({std::move(url), entry.kind, entry.version.size, entry.added, entry.version});
        }
    }
    m_assets += assets.size();
    folder.contents =
        std::make_shared<const FolderContents>(folder.url, std::move(assets), std::move(children));
    folder.reader.reset();
}

} // namespace cratewell

#include "platform/linux/inotify_tree.h"

#include <algorithm>
#include <cerrno>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr size_t bufferSize = 256 << 10;
constexpr quint32 entryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr quint32 treeEvents =
    entryEvents | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_EXCL_UNLINK;

QByteArray childPath(const QByteArray &folder, QByteArrayView name)
{
    return QByteArray(folder).append(folder.endsWith('/') ? "" : "/").append(name);
}

} // namespace

InotifyTree::InotifyTree(const std::atomic<bool> &interrupted)
    : m_interrupted(interrupted), m_buffer(std::make_unique<char[]>(bufferSize))
{
}

InotifyTree::~InotifyTree()
{
    close();
}

bool InotifyTree::follow(const Location &root, const std::vector<QByteArray> &entries, Time since)
{
    m_root = root;
    m_entrances.clear();
    if (!root.isEmpty())
        m_entrances[root.bytes()] = {};
    for (const QByteArray &name : entries)
        m_entrances[childPath(root.bytes(), name)] = {};
    m_newestChange = {};
    restart();
    return m_newestChange >= since - FolderListing::clockSlack;
}

InotifyTree::Identity InotifyTree::identityOf(const QByteArray &path)
{
    struct stat facts = {};
    if (::stat(path.constData(), &facts) != 0 || !S_ISDIR(facts.st_mode))
        return {};
    return {facts.st_dev, facts.st_ino};
}

void InotifyTree::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    m_folders.clear();
    m_paths.clear();
    m_ancestors.clear();
    m_mustRestart = false;
}

// True when there was or is a root that may show a change.
bool InotifyTree::restart()
{
    close();
    if (m_root.isEmpty())
        return false;
    const Identity before = m_entrances.at(m_root.bytes());
    m_descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    m_limitReached |= m_descriptor < 0;
    watchAncestors();
    addTree(m_root.bytes());
    return before.exists() || m_entrances.at(m_root.bytes()).exists();
}

void InotifyTree::watchAncestors()
{
    // From the top: whatever changes after a folder has its watch is reported there.
    std::vector<Location> way;
    for (Location place = m_root; place != place.parent(); place = place.parent())
        way.push_back(place);
    std::reverse(way.begin(), way.end());
    for (const Location &place : way) {
        const int watch = addWatch(place.parent().bytes(), entryEvents | IN_ONLYDIR);
        if (watch >= 0)
            m_ancestors.emplace(watch, place.nameBytes().toByteArray());
        else if (errno == ENOENT || errno == ENOTDIR)
            return;
    }
}

int InotifyTree::addWatch(const QByteArray &path, quint32 mask)
{
    if (m_descriptor < 0) {
        errno = ENOSPC;
        return -1;
    }
    const int watch = ::inotify_add_watch(m_descriptor, path.constData(), mask | IN_MASK_ADD);
    m_limitReached |= watch < 0 && (errno == ENOSPC || errno == ENOMEM);
    return watch;
}

bool InotifyTree::addFolder(const QByteArray &path)
{
    const quint32 keepLinks = mayBeLink(path) ? 0 : IN_DONT_FOLLOW;
    const int watch = addWatch(path, treeEvents | IN_ONLYDIR | keepLinks);
    if (watch < 0 && errno != ENOSPC && errno != ENOMEM)
        return false;
    if (watch >= 0) {
        // The same folder under another path (a bind mount, a rename not yet read): the newest path holds.
        const auto known = m_paths.find(watch);
        if (known != m_paths.end() && known->second != path)
            m_folders.erase(known->second);
        m_paths[watch] = path;
    }
    m_folders[path] = {watch, 0};
    return true;
}

// A link in the place of the root or of a category is the user's choice; those below are not followed.
Result<FolderListing> InotifyTree::list(const QByteArray &path, FolderListing::Detail detail) const
{
    return FolderListing::read(path, detail, mayBeLink(path) ? Links::Follow : Links::NoFollow);
}

void InotifyTree::addTree(const QByteArray &top)
{
    std::vector<QByteArray> waiting;
    // Links stand in no listing of folders.
    for (const auto &[path, identity] : m_entrances) {
        if (top == m_root.bytes() && path != top)
            waiting.push_back(path);
    }
    waiting.push_back(top);
    while (!waiting.empty() && !m_interrupted) {
        const QByteArray path = std::move(waiting.back());
        waiting.pop_back();
        if (const auto entrance = m_entrances.find(path); entrance != m_entrances.end())
            entrance->second = identityOf(path);
        // The watch comes before the listing, so that what comes into being between the two is not missed.
        if (!addFolder(path))
            continue;
        Folder &folder = m_folders[path];
        const Result<FolderListing> listing =
            list(path, folder.watch < 0 ? FolderListing::Detail::Digest : FolderListing::Detail::Names);
        if (!listing) {
            if (folder.watch < 0)
                m_folders.erase(path);
            continue;
        }
        folder.listing = listing->digest;
        m_newestChange = std::max(m_newestChange, listing->changed);
        for (const QByteArray &name : listing->folders) {
            if (QByteArray child = childPath(path, name); !mayBeLink(child))
                waiting.push_back(std::move(child));
        }
    }
}

void InotifyTree::removeTree(const QByteArray &top)
{
    const auto drop = [this](Folders::iterator folder) {
        if (folder->second.watch >= 0) {
            m_paths.erase(folder->second.watch);
            ::inotify_rm_watch(m_descriptor, folder->second.watch);
        }
        return m_folders.erase(folder);
    };
    if (const auto folder = m_folders.find(top); folder != m_folders.end())
        drop(folder);
    const QByteArray below = childPath(top, {});
    for (auto folder = m_folders.lower_bound(below);
         folder != m_folders.end() && folder->first.startsWith(below);)
        folder = drop(folder);
}

// Watches know inodes, not names: after any change of a folder's name its tree is watched afresh, if there is
// still one under that name.
void InotifyTree::renewTree(const QByteArray &top)
{
    removeTree(top);
    addTree(top);
}

void InotifyTree::forgetWatch(int watch)
{
    const auto path = m_paths.find(watch);
    if (path == m_paths.end())
        return;
    const auto folder = m_folders.find(path->second);
    if (folder != m_folders.end() && folder->second.watch == watch)
        m_folders.erase(folder);
    m_paths.erase(path);
}

bool InotifyTree::read()
{
    const ssize_t size = ::read(m_descriptor, m_buffer.get(), bufferSize);
    bool changed = false;
    for (ssize_t at = 0; at < size;) {
        const auto &event = *reinterpret_cast<const inotify_event *>(m_buffer.get() + at);
        changed |= handle(event, event.len > 0 ? QByteArrayView(event.name, qstrnlen(event.name, event.len))
                                               : QByteArrayView());
        at += ssize_t(sizeof(inotify_event) + event.len);
    }
    if (m_mustRestart)
        changed |= restart();
    return changed;
}

bool InotifyTree::handle(const inotify_event &event, QByteArrayView name)
{
    if (event.mask & (IN_Q_OVERFLOW | IN_UNMOUNT)) {
        m_mustRestart = true;
        return false;
    }
    const auto [first, last] = m_ancestors.equal_range(event.wd);
    m_mustRestart |= std::any_of(first, last, [name](const auto &entry) { return name == entry.second; });

    const auto found = m_paths.find(event.wd);
    if (found == m_paths.end())
        return false;
    const QByteArray path = found->second;
    if (event.mask & IN_IGNORED)
        forgetWatch(event.wd);
    else if (name.isEmpty() && (event.mask & (IN_MOVE_SELF | IN_DELETE_SELF)) && path == m_root.bytes())
        m_mustRestart = true;
    else if (name.isEmpty() && (event.mask & IN_MOVE_SELF))
        renewTree(path);
    else if (name.isEmpty() || isHiddenName(name))
        return true;
    else if (event.mask & IN_ISDIR)
        handleFolder(event, childPath(path, name));
    else if ((event.mask & entryEvents) && mayBeLink(childPath(path, name)))
        m_mustRestart = true; // other links may lead to the same folder, which has one watch
    return true;
}

void InotifyTree::handleFolder(const inotify_event &event, const QByteArray &path)
{
    if (event.mask & entryEvents)
        renewTree(path);
    else if ((event.mask & IN_ATTRIB) && !m_folders.contains(path))
        addTree(path);
}

bool InotifyTree::check()
{
    if (m_root.isEmpty())
        return false;
    for (const auto &[path, identity] : m_entrances) {
        if (identityOf(path) != identity)
            return restart();
    }
    std::vector<QByteArray> unwatched;
    for (const auto &[path, folder] : m_folders) {
        if (folder.watch < 0)
            unwatched.push_back(path);
    }
    bool changed = false;
    for (const QByteArray &path : unwatched)
        changed |= !m_interrupted && checkUnwatched(path);
    return changed;
}

bool InotifyTree::checkUnwatched(const QByteArray &path)
{
    const auto folder = m_folders.find(path);
    if (folder == m_folders.end())
        return false;
    const quint64 before = folder->second.listing;
    // Other programs may have freed watches.
    if (!addFolder(path)) {
        removeTree(path);
        return true;
    }
    const Result<FolderListing> now = list(path, FolderListing::Detail::Digest);
    if (!now) {
        removeTree(path);
        return true;
    }
    m_folders[path].listing = now->digest;
    if (now->digest == before)
        return false;
    for (const QByteArray &name : now->folders) {
        if (const QByteArray inner = childPath(path, name); !m_folders.contains(inner))
            addTree(inner);
    }
    return true;
}

} // namespace cratewell

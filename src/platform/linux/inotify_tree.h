#pragma once

#include "platform/file_events.h"
#include "platform/internal/folder_listing.h"

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <unordered_map>

struct inotify_event;

namespace cratewell {

// inotify watches on every folder below a root, except hidden ones and those behind links, and on the folders
// that lead to it, so that a root which vanishes, moves or appears is noticed. Entries of the root that were
// asked for are followed also when they are links. Folders that the system refuses to watch are compared by
// check(). Confined to one thread.
class InotifyTree
{
public:
    using Time = FileEvents::Time;

    // While `interrupted` is true walks end early; the tree is then good for nothing but a new start.
    explicit InotifyTree(const std::atomic<bool> &interrupted);
    ~InotifyTree();
    Q_DISABLE_COPY_MOVE(InotifyTree)

    // Replaces what was followed; nowhere follows nothing. True when a folder shows a change after `since`,
    // for which the watches may have come too late.
    bool follow(const Location &root, const std::vector<QByteArray> &entries, Time since);

    // To be polled for input; -1 while nothing is followed or the system gave none.
    int descriptor() const { return m_descriptor; }
    // Takes the system's events. True when something below the root changed; every watch that the
    // change makes necessary is set by then.
    bool read();
    // Looks whether the root and its entries are still the same folders, and at those that have no watch.
    // True when something changed.
    bool check();
    bool limitReached() const { return m_limitReached; }

private:
    struct Folder
    {
        int watch = -1;
        // Of a folder without a watch: a digest of its listing.
        quint64 listing = 0;
    };
    using Folders = std::map<QByteArray, Folder>;
    struct Identity
    {
        quint64 device = 0;
        quint64 inode = 0;
        bool operator==(const Identity &) const = default;
        bool exists() const { return inode != 0; }
    };

    // That of the folder a path leads to; none when there is none.
    static Identity identityOf(const QByteArray &path);
    // The root and the entries that were asked for, which may be links.
    bool mayBeLink(const QByteArray &path) const { return m_entrances.contains(path); }
    bool restart();
    void close();
    void watchAncestors();
    // The watch, or -1 with errno set.
    int addWatch(const QByteArray &path, quint32 mask);
    Result<FolderListing> list(const QByteArray &path, FolderListing::Detail detail) const;
    bool addFolder(const QByteArray &path);
    void addTree(const QByteArray &top);
    void removeTree(const QByteArray &top);
    void renewTree(const QByteArray &top);
    void forgetWatch(int watch);
    bool checkUnwatched(const QByteArray &path);
    bool handle(const inotify_event &event, QByteArrayView name);
    void handleFolder(const inotify_event &event, const QByteArray &path);

    const std::atomic<bool> &m_interrupted;
    Location m_root;
    // By path, as they were when they were last walked.
    std::map<QByteArray, Identity> m_entrances;
    int m_descriptor = -1;
    bool m_limitReached = false;
    bool m_mustRestart = false;
    Time m_newestChange;
    Folders m_folders;
    std::unordered_map<int, QByteArray> m_paths;
    // Watches on the folders that lead to the root, with the names that matter there.
    std::unordered_multimap<int, QByteArray> m_ancestors;
    std::unique_ptr<char[]> m_buffer;
};

} // namespace cratewell

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

// inotify watches on every folder below a root, hidden ones and those behind links excepted, and on the
// folders that lead to it, so that a root which vanishes, moves or appears is noticed. Folders that the
// system refuses to watch are compared by check(). Confined to one thread.
class InotifyTree
{
public:
    using Time = FileEvents::Time;

    // While `interrupted` is true walks end early; the tree is then good for nothing but a new start.
    explicit InotifyTree(const std::atomic<bool> &interrupted);
    ~InotifyTree();
    Q_DISABLE_COPY_MOVE(InotifyTree)

    // Replaces what was followed; nowhere follows nothing. True when a folder shows a change after `since`,
    // which the watches may have come too late to tell.
    bool follow(const Location &root, Time since);

    // To be polled for input; -1 while nothing is followed or the system gave none.
    int descriptor() const { return m_descriptor; }
    // Takes what the system has to tell. True when something below the root changed; every watch that the
    // change makes necessary is set by then.
    bool read();
    // Looks whether the root is still the same folder, and at the folders that have no watch. True when
    // something changed.
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

    Identity rootIdentity() const;
    bool restart();
    void close();
    void watchAncestors();
    // The watch, or -1 with errno set.
    int addWatch(const QByteArray &path, quint32 mask);
    FolderListing list(const QByteArray &path, FolderListing::Detail detail) const;
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
    Identity m_identity;
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

#pragma once

#include "platform/location.h"
#include "platform/posix/file_descriptor.h"

#include <vector>

namespace cratewell {

// Hidden names for copies that are not complete yet, beside their targets. Each is written to a journal in
// the vault's trash folder before it is handed out, so that a later start finds what a killed program left
// behind; nothing else is ever touched. The journal is this object's own and locked while it lives: programs
// that share a vault leave each other's copies alone. File thread.
class Temporaries
{
public:
    explicit Temporaries(Location root) : m_root(std::move(root)) {}
    // The journal goes unless a copy still has its hidden name.
    ~Temporaries();
    Q_DISABLE_COPY_MOVE(Temporaries)

    // A free name in `folder`.
    [[nodiscard]] Result<Location> name(const Location &folder);

    struct Completed
    {
        Location copy;
        QByteArray name;
    };
    // From now on a clean-up gives these copies their names, or the next free ones, instead of removing them.
    // That has reached the disk when it returns.
    [[nodiscard]] Result<void> markComplete(const std::vector<Completed> &copies);
    // Removes a copy, complete or not.
    void discard(const Location &copy);

    // Finishes or removes what programs that have ended left in the vault at `root`. A journal stays when a
    // folder it names cannot be reached, as on a disk that is not mounted. Returns whether another program
    // that lives has copies under way.
    static bool cleanUp(const Location &root);

private:
    Result<void> open();
    Result<void> append(const QByteArray &entries);

    const Location m_root;
    FileDescriptor m_folder;
    FileDescriptor m_journal;
    QByteArray m_journalName;
    std::vector<Location> m_copies;
};

} // namespace cratewell

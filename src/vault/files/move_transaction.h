#pragma once

#include "vault/files/temporaries.h"
#include "vault/files/unique_names.h"

#include <functional>
#include <vector>

namespace cratewell {

struct OperationProgress;

// Moves items to free names in other folders. On one file system that is a rename. Between file systems
// everything is copied under hidden names first; finish() then flushes once, gives the copies their names and
// only then removes the sources, so that an item is always complete at its old place or at its new one.
class MoveTransaction
{
public:
    MoveTransaction(const Location &root, OperationProgress &progress);
    // Without finish(), copies vanish and their sources stay.
    ~MoveTransaction();
    Q_DISABLE_COPY_MOVE(MoveTransaction)

    // Called once for each item that add() took: with 0 and where it is now, or with an errno value.
    using Moved = std::function<void(int error, const Location &place)>;
    // Moves `item` into `folder` under `name` or the next free one; at once, or in finish().
    void add(const Location &item, const Location &folder, const QByteArray &name, Moved moved);
    void finish();

private:
    struct Staged
    {
        Location item;
        Location copy;
        Location folder;
        QByteArray name;
        Moved moved;
    };

    void stage(const Location &item, const Location &folder, const QByteArray &name, Moved moved);
    void unpack(Staged &staged);

    OperationProgress &m_monitor;
    Temporaries m_temporaries;
    UniqueNames m_names;
    std::vector<Staged> m_staged;
};

} // namespace cratewell

#pragma once

#include "vault/files/copying.h"
#include "vault/files/temporaries.h"
#include "vault/files/unique_names.h"
#include "vault/files/write_barrier.h"

#include <functional>
#include <optional>
#include <vector>

namespace cratewell {

// Moves items to free names in other folders. On one file system that is a rename. Between file systems
// everything is copied under hidden names first; finish() then flushes, gives the copies their names, flushes
// again and only then removes the sources. So an item is always complete at its old place or at its new one,
// whatever of the writing since the last flush a power cut takes away.
class MoveTransaction
{
public:
    MoveTransaction(const Location &root, OperationProgress &progress);
    // Without finish(), copies vanish and their sources stay.
    ~MoveTransaction();
    Q_DISABLE_COPY_MOVE(MoveTransaction)

    struct Moved
    {
        Location place;
        // Why something stayed at the old place, too: what was changed there meanwhile, or cannot be removed.
        std::optional<Error> leftBehind;
    };
    // Called once for each item that add() took.
    using Report = std::function<void(const Result<Moved> &)>;
    // Moves `item` into `folder` under `name` or the next free one; at once, or in finish().
    void add(const Location &item, const Location &folder, const QByteArray &name, Report report);
    void finish();

private:
    struct Staged
    {
        std::vector<CopiedEntry> sources;
        Location copy;
        QByteArray name;
        Report report;
        Location place;
    };

    void stage(const Location &item, const Location &folder, const QByteArray &name, Report report);
    Result<void> completeCopies();
    bool nameCopy(Staged &staged);

    OperationProgress &m_progress;
    Temporaries m_temporaries;
    UniqueNames m_names;
    WriteBarrier m_barrier;
    std::vector<Staged> m_staged;
};

} // namespace cratewell

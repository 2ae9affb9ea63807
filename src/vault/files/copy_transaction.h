#pragma once

#include "vault/files/temporaries.h"
#include "vault/files/unique_names.h"
#include "vault/files/write_barrier.h"

namespace cratewell {

struct OperationProgress;

// Copies files to free names in other folders. Each stands there complete or not at all; after finish() no
// power cut takes them away.
class CopyTransaction
{
public:
    CopyTransaction(const Location &root, OperationProgress &progress)
        : m_progress(progress), m_temporaries(root)
    {
    }

    // Where the copy is.
    [[nodiscard]] Result<Location> add(const Location &file, const Location &folder);
    [[nodiscard]] Result<void> finish() { return m_barrier.flush(); }

private:
    OperationProgress &m_progress;
    Temporaries m_temporaries;
    UniqueNames m_names;
    WriteBarrier m_barrier;
};

} // namespace cratewell

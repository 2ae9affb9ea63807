#include "vault/files/move_transaction.h"

#include "vault/files/operation_progress.h"
#include "vault/files/rename.h"

#include <cerrno>
#include <utility>

namespace cratewell {

MoveTransaction::MoveTransaction(const Location &root, OperationProgress &progress)
    : m_progress(progress), m_temporaries(root)
{
}

MoveTransaction::~MoveTransaction()
{
    for (const Staged &staged : m_staged)
        m_temporaries.discard(staged.copy);
}

void MoveTransaction::add(const Location &item, const Location &folder, const QByteArray &name, Report report)
{
    const Result<Location> place =
        m_names.claim(folder, name, UniqueNames::Naming::File,
                      [&](const Location &to) { return disk::renameWithoutReplacing(item, to); });
    if (!place && place.error().is(EXDEV))
        stage(item, folder, name, std::move(report));
    else
        report(place.map([](const Location &now) { return Moved{now, {}}; }));
}

void MoveTransaction::stage(const Location &item, const Location &folder, const QByteArray &name,
                            Report report)
{
    Location copy;
    Result<std::vector<CopiedEntry>> sources = m_barrier.include(folder)
                                                   .and_then([&] { return m_temporaries.name(folder); })
                                                   .and_then([&](const Location &hidden) {
                                                       copy = hidden;
                                                       return disk::copyTree(item, copy, m_progress);
                                                   });
    if (sources)
        m_staged.push_back({std::move(*sources), copy, name, std::move(report), {}});
    else
        report(tl::unexpected(sources.error()));
}

void MoveTransaction::finish()
{
    if (m_staged.empty())
        return;
    const Result<void> complete = completeCopies();
    std::vector<Staged> staged = std::exchange(m_staged, {});
    if (!complete) {
        for (const Staged &one : staged) {
            m_temporaries.discard(one.copy);
            one.report(tl::unexpected(complete.error()));
        }
        return;
    }
    std::erase_if(staged, [this](Staged &one) { return !nameCopy(one); });
    const Result<void> named = m_barrier.flush();
    for (const Staged &one : staged) {
        if (!named) {
            one.report(tl::unexpected(named.error()));
            continue;
        }
        Moved moved{one.place, {}};
        if (const Result<void> removed = disk::removeCopied(one.sources); !removed)
            moved.leftBehind = removed.error();
        one.report(moved);
    }
}

// What the copies are is on the disk, and that they are complete.
Result<void> MoveTransaction::completeCopies()
{
    if (m_progress.canceled)
        return systemFailure(ECANCELED);
    std::vector<Temporaries::Completed> copies;
    for (const Staged &one : m_staged)
        copies.push_back({one.copy, one.name});
    return m_barrier.flush().and_then([&] { return m_temporaries.markComplete(copies); });
}

bool MoveTransaction::nameCopy(Staged &staged)
{
    const Result<Location> place =
        m_names.claim(staged.copy.parent(), staged.name, UniqueNames::Naming::File,
                      [&](const Location &to) { return disk::renameWithoutReplacing(staged.copy, to); });
    if (place) {
        staged.place = *place;
        return true;
    }
    m_temporaries.discard(staged.copy);
    staged.report(tl::unexpected(place.error()));
    return false;
}

} // namespace cratewell

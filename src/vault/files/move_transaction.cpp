#include "vault/files/move_transaction.h"

#include "vault/files/disk.h"
#include "vault/files/operation_progress.h"

#include <cerrno>
#include <utility>

namespace cratewell {

MoveTransaction::MoveTransaction(const Location &root, OperationProgress &progress)
    : m_monitor(progress), m_temporaries(root)
{
}

MoveTransaction::~MoveTransaction()
{
    for (const Staged &staged : m_staged)
        disk::remove(staged.copy);
}

void MoveTransaction::add(const Location &item, const Location &folder, const QByteArray &name, Moved moved)
{
    Location place;
    const int error = m_names.claim(folder, name, UniqueNames::Naming::File, place, [&](const Location &to) {
        return disk::renameWithoutReplacing(item, to);
    });
    if (error == EXDEV)
        stage(item, folder, name, std::move(moved));
    else
        moved(error, place);
}

void MoveTransaction::stage(const Location &item, const Location &folder, const QByteArray &name, Moved moved)
{
    Location copy;
    int error = m_temporaries.name(folder, copy);
    if (!error)
        error = disk::copyTree(item, copy, m_monitor);
    if (error)
        moved(error, {});
    else
        m_staged.push_back({item, copy, folder, name, std::move(moved)});
}

void MoveTransaction::finish()
{
    // All copies are on the disk before the first source goes; one flush serves those on one file system.
    int error = m_monitor.canceled ? ECANCELED : 0;
    for (size_t i = 0; i < m_staged.size() && !error; ++i) {
        if (i == 0 || m_staged[i].folder != m_staged[i - 1].folder)
            error = disk::flush(m_staged[i].folder);
    }
    std::vector<Staged> staged = std::exchange(m_staged, {});
    for (Staged &one : staged) {
        if (!error) {
            unpack(one);
            continue;
        }
        disk::remove(one.copy);
        one.moved(error, {});
    }
}

void MoveTransaction::unpack(Staged &staged)
{
    Location place;
    const int error =
        m_names.claim(staged.folder, staged.name, UniqueNames::Naming::File, place,
                      [&](const Location &to) { return disk::renameWithoutReplacing(staged.copy, to); });
    if (error)
        disk::remove(staged.copy);
    else
        disk::remove(staged.item);
    staged.moved(error, place);
}

} // namespace cratewell

#include "vault/files/copy_transaction.h"

#include "vault/files/copying.h"
#include "vault/files/rename.h"

namespace cratewell {

Result<Location> CopyTransaction::add(const Location &file, const Location &folder)
{
    if (const Result<void> included = m_barrier.include(folder); !included)
        return tl::unexpected(included.error());
    const Result<Location> copy = m_temporaries.name(folder);
    if (!copy)
        return copy;
    const Result<Location> place =
        disk::copyFile(file, *copy, m_progress).and_then([&]() -> Result<Location> {
            return m_names.claim(folder, file.nameBytes().toByteArray(), UniqueNames::Naming::File,
                                 [&](const Location &to) { return disk::renameWithoutReplacing(*copy, to); });
        });
    if (!place)
        m_temporaries.discard(*copy);
    return place;
}

} // namespace cratewell

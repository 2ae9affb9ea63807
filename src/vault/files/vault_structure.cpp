#include "vault/files/vault_structure.h"

#include "platform/defaults.h"
#include "platform/posix/file_status.h"
#include "vault/category.h"
#include "vault/files/disk.h"

#include <tuple>

#include <fcntl.h>

namespace cratewell {

using namespace Qt::StringLiterals;

void ensureVaultStructure(const Location &root, Defaults &defaults)
{
    if (root.isEmpty())
        return;
    const bool existed = statusAt(AT_FDCWD, root.c_str(), Links::Follow).has_value();
    for (const VaultCategory category : allCategories) {
        const Location folder = categoryFolder(root, category);
        std::ignore = disk::makeFolders(folder);
        const QString key = u"seeded."_s + root.text() + u'.' + rawValue(category);
        if (existed && defaults.boolean(key).value_or(false))
            continue;
        for (const char *starter : starterFolders(category))
            std::ignore = disk::makeFolders(folder.child(QByteArrayView(starter)));
        defaults.setValue(key, true);
    }
}

} // namespace cratewell

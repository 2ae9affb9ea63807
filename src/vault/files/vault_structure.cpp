#include "vault/files/vault_structure.h"

#include "platform/defaults.h"
#include "vault/category.h"

#include <filesystem>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

std::filesystem::path nativePath(const Location &place)
{
    return {place.bytes().constData(), place.bytes().constData() + place.bytes().size()};
}

void makeFolder(const Location &folder)
{
    std::error_code ignored;
    std::filesystem::create_directories(nativePath(folder), ignored);
}

} // namespace

void ensureVaultStructure(const Location &root, Defaults &defaults)
{
    if (root.isEmpty())
        return;
    std::error_code ignored;
    const bool existed = std::filesystem::exists(nativePath(root), ignored);
    for (const VaultCategory category : allCategories) {
        const Location folder = categoryFolder(root, category);
        makeFolder(folder);
        const QString key = u"seeded."_s + root.text() + u'.' + rawValue(category);
        if (existed && defaults.boolean(key).value_or(false))
            continue;
        for (const char *starter : starterFolders(category))
            makeFolder(folder.child(QByteArrayView(starter)));
        defaults.setValue(key, true);
    }
}

} // namespace cratewell

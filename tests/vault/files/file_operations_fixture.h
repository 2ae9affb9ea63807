#pragma once

#include "vault/files/disk.h"
#include "vault/files/file_operations.h"
#include "vault/files/trash_index.h"
#include "vault/temporary_vault.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace cratewell::test {

inline std::string readFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The copies that are not finished, below a folder.
inline int partsBelow(const std::filesystem::path &folder)
{
    int parts = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        parts += entry.path().extension() == ".part" ? 1 : 0;
    return parts;
}

class FileOperationsTest : public testing::Test
{
protected:
    FileOperationsTest()
    {
        for (const char *category : {"Overlays/Grains", "LUTs", "SFX/Hits"})
            disk.makeFolder(category);
        work.open();
    }

    // Files and empty folders below a folder of the vault, with sizes where they tell files apart.
    std::vector<std::string> listed(const std::string &folder = "",
                                    const std::string &skip = ".Cratewell Trash") const
    {
        std::vector<std::string> found;
        const std::filesystem::path top = disk.native(folder);
        for (std::filesystem::recursive_directory_iterator entry(top), end; entry != end; ++entry) {
            if (entry->path().filename() == skip)
                entry.disable_recursion_pending();
            else if (!entry->is_directory())
                found.push_back(std::filesystem::relative(entry->path(), top));
        }
        std::ranges::sort(found);
        return found;
    }
    std::vector<Location> at(const std::vector<std::string> &paths) const
    {
        std::vector<Location> places(paths.size());
        std::ranges::transform(paths, places.begin(),
                               [this](const std::string &path) { return disk.at(path); });
        return places;
    }
    std::vector<std::string> slots() const
    {
        std::vector<std::string> found;
        for (const QByteArray &name :
             disk::names(trashFolder(disk.root())).value_or(std::vector<QByteArray>())) {
            if (disk::isFolder(trashFolder(disk.root()).child(name)))
                found.push_back(name.toStdString());
        }
        return found;
    }
    QByteArray indexBytes() const
    {
        return QByteArray::fromStdString(readFile(trashIndexFile(disk.root()).c_str()));
    }
    void writeIndex(const QByteArray &json) const
    {
        std::filesystem::create_directories(trashFolder(disk.root()).c_str());
        std::ofstream(trashIndexFile(disk.root()).c_str(), std::ios::binary) << json.toStdString();
    }

    TemporaryVault disk;
    FileOperations work{disk.root()};
    OperationProgress progress;
};

} // namespace cratewell::test

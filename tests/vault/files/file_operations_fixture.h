#pragma once

#include "vault/files/disk.h"
#include "vault/files/file_operations.h"
#include "vault/files/trash_index.h"
#include "vault/temporary_vault.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace cratewell::test {

inline std::string readFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// What is no folder below `folder`, by sorted paths from there; nothing of folders named `skip`.
inline std::vector<std::string> filesBelow(const std::filesystem::path &folder, const std::string &skip = {})
{
    std::vector<std::string> found;
    std::error_code missing;
    for (std::filesystem::recursive_directory_iterator entry(folder, missing), end; entry != end; ++entry) {
        if (entry->path().filename() == skip)
            entry.disable_recursion_pending();
        else if (!entry->is_directory())
            found.push_back(entry->path().lexically_relative(folder));
    }
    std::ranges::sort(found);
    return found;
}

using Contents = std::map<std::string, std::string>; // by path

inline Contents contentsBelow(const std::filesystem::path &folder)
{
    Contents contents;
    for (const std::string &file : filesBelow(folder))
        contents[file] = readFile(folder / file);
    return contents;
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

    std::vector<std::string> listed(const std::string &folder = "") const
    {
        return filesBelow(disk.native(folder), ".Cratewell Trash");
    }
    std::vector<Location> at(const std::vector<std::string> &paths) const
    {
        std::vector<Location> places;
        for (const std::string &path : paths)
            places.push_back(disk.at(path));
        return places;
    }

    TemporaryVault disk;
    FileOperations work{disk.root()};
    OperationProgress progress;
};

} // namespace cratewell::test

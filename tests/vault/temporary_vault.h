#pragma once

#include "vault/vault_scan.h"

#include <filesystem>
#include <fstream>

#include <stdlib.h>

namespace cratewell::test {

// A vault folder of its own for one test. Paths are relative to the root, in file-system bytes.
class TemporaryVault
{
public:
    // In a folder of its own below `parent`.
    explicit TemporaryVault(const std::filesystem::path &parent = std::filesystem::temp_directory_path())
    {
        std::string pattern = parent / "cratewell-vault-XXXXXX";
        m_folder = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TemporaryVault()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Q_DISABLE_COPY_MOVE(TemporaryVault)

    Location root() const { return Location::fromBytes(QByteArray::fromStdString(m_folder + "/vault")); }
    Location at(const std::string &path) const
    {
        return Location::fromBytes(root().bytes() + '/' + QByteArray::fromStdString(path));
    }
    std::filesystem::path native(const std::string &path) const { return at(path).bytes().toStdString(); }

    void makeFolder(const std::string &path) const { std::filesystem::create_directories(native(path)); }
    // Makes the folders above, too. Truncates what is there.
    void write(const std::string &path, size_t size = 0) const
    {
        std::filesystem::create_directories(native(path).parent_path());
        std::ofstream(native(path), std::ios::binary) << std::string(size, 'x');
    }
    void link(const std::string &path, const std::string &target) const
    {
        std::filesystem::create_directories(native(path).parent_path());
        std::filesystem::create_symlink(target, native(path));
    }
    void rename(const std::string &from, const std::string &to) const
    {
        std::filesystem::rename(native(from), native(to));
    }
    void remove(const std::string &path) const { std::filesystem::remove_all(native(path)); }

    std::shared_ptr<const VaultSnapshot> scan(const std::shared_ptr<const VaultSnapshot> &before = {}) const
    {
        return VaultScan::run(root(), before).snapshot;
    }

private:
    std::string m_folder;
};

} // namespace cratewell::test

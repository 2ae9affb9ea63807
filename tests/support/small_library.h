#pragma once

#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/fake_workspace.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

namespace cratewell::test {

// A vault of a few files in a temporary folder, with the objects of the state room on it.
class SmallLibrary
{
    QTemporaryDir m_folder;

public:
    Location path(const QString &relative) const
    {
        return Location::fromText(m_folder.path() + QStringLiteral("/vault/") + relative);
    }
    void write(const QString &relative, size_t size = 1)
    {
        const std::filesystem::path file(path(relative).c_str());
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << std::string(size, 'x');
    }
    void remove(const QString &relative) { std::filesystem::remove_all(path(relative).c_str()); }
    // Waits until the state shows what the disk holds.
    [[nodiscard]] bool scan()
    {
        QSignalSpy scans(&vault, &Vault::rescanned);
        vault.rescan();
        return waitUntil([&scans] { return !scans.isEmpty(); });
    }
    // The same for a vault that opens, with the folders it has and no others, so that its files can be
    // changed.
    [[nodiscard]] bool start()
    {
        for (const VaultCategory category : allCategories)
            defaults.setValue(QStringLiteral("seeded.%1.%2").arg(vault.root().text(), rawValue(category)),
                              true);
        QSignalSpy scans(&vault, &Vault::rescanned);
        vault.start();
        return waitUntil([&scans] { return !scans.isEmpty(); });
    }
    std::optional<Asset> asset(const QString &relative) const
    {
        const auto index = vault.snapshot()->find(path(relative));
        return index ? std::optional(vault.snapshot()->asset(*index)) : std::nullopt;
    }

    MemoryDefaults defaults;
    FakeWorkspace workspace;
    Prefs prefs{defaults, SystemPaths::below(Location::fromText(m_folder.path()))};
    Vault vault{path({}), defaults, std::make_unique<FakeFileEvents>()};
    AppState state{vault, prefs};
};

} // namespace cratewell::test

#include "ui/sidebar/library_counts.h"

#include "state/prefs.h"
#include "ui/controls/formats.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <algorithm>

namespace cratewell {

LibraryCounts::LibraryCounts(const Vault &vault, const Prefs &prefs) : m_vault(vault), m_prefs(prefs)
{
    connect(&vault, &Vault::rescanned, this, &LibraryCounts::count);
    connect(&vault, &Vault::trashItemsChanged, this, &LibraryCounts::count);
    connect(&prefs, &Prefs::favoritesChanged, this, &LibraryCounts::count);
    connect(&prefs, &Prefs::recentChanged, this, &LibraryCounts::count);
    count();
}

LibraryCounts *LibraryCounts::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new LibraryCounts(context.vault, context.prefs);
}

void LibraryCounts::count()
{
    const VaultSnapshot &snapshot = *m_vault.snapshot();
    const auto existing = [&snapshot](const auto &places) {
        return int(std::ranges::count_if(
            places, [&](const Location &place) { return snapshot.find(place).has_value(); }));
    };
    m_all = int(snapshot.size());
    m_favorites = existing(m_prefs.favorites());
    m_recent = existing(m_prefs.recent());
    m_trash = int(m_vault.trashItems().size());
    m_size = byteText(snapshot.totalSize());
    Q_EMIT changed();
}

} // namespace cratewell

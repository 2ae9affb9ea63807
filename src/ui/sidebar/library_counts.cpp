#include "ui/sidebar/library_counts.h"

#include "state/prefs.h"
#include "ui/controls/formats.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <algorithm>

namespace cratewell {

void LibraryCounts::componentComplete()
{
    const UiContext &objects = uiContext(*this);
    follow(objects.vault, objects.prefs);
}

void LibraryCounts::follow(Vault &vault, Prefs &prefs)
{
    m_vault = &vault;
    m_prefs = &prefs;
    connect(&vault, &Vault::rescanned, this, &LibraryCounts::count);
    connect(&vault, &Vault::trashItemsChanged, this, &LibraryCounts::count);
    connect(&prefs, &Prefs::favoritesChanged, this, &LibraryCounts::count);
    connect(&prefs, &Prefs::recentChanged, this, &LibraryCounts::count);
    count();
}

void LibraryCounts::count()
{
    const VaultSnapshot &snapshot = *m_vault->snapshot();
    const auto existing = [&snapshot](const auto &places) {
        return int(std::ranges::count_if(
            places, [&](const Location &place) { return snapshot.find(place).has_value(); }));
    };
    m_all = int(snapshot.size());
    m_favorites = existing(m_prefs->favorites());
    m_recent = existing(m_prefs->recent());
    m_trash = int(m_vault->trashItems().size());
    m_size = byteText(snapshot.totalSize());
    Q_EMIT changed();
}

} // namespace cratewell

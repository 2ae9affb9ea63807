#pragma once

#include "vault/vault_snapshot.h"

#include <QSet>

namespace cratewell {

// A set of places, held as one flag per asset of a snapshot, so that choosing all of 100,000 or asking for
// one costs nothing. Places the snapshot does not hold are kept beside and count again when they come back.
class AssetSelection
{
public:
    explicit AssetSelection(std::shared_ptr<const VaultSnapshot> snapshot);

    // What `diff` leads to becomes the snapshot.
    void follow(const SnapshotDiff &diff);

    bool contains(AssetIndex index) const { return m_flags[index]; }
    // Elements, those outside the snapshot included.
    int count() const { return m_count + int(m_outside.size()); }
    QSet<Location> places() const;
    bool holdsExactly(const QSet<Location> &places) const;

    void clear();
    void insert(AssetIndex index) { set(index, true); }
    void toggle(AssetIndex index) { set(index, !m_flags[index]); }
    void insert(const Location &place);
    void toggle(const Location &place);

private:
    void set(AssetIndex index, bool selected);

    std::shared_ptr<const VaultSnapshot> m_snapshot;
    std::vector<bool> m_flags;
    int m_count = 0;
    QSet<Location> m_outside;
};

} // namespace cratewell

#pragma once

#include "vault/asset.h"

#include <QHash>
#include <QImage>
#include <list>

namespace cratewell {

// What is known of the thumbnails of files, each for one version of its file: a picture, or that there can be
// none. Pictures beyond the budget are let go, the one shown longest ago first; failures cost nothing and
// stay.
class ThumbnailStore
{
public:
    enum class State { Missing, Ready, Failed };

    explicit ThumbnailStore(qint64 budget) : m_budget(budget) {}

    State state(const Location &url, const FileVersion &version) const;
    // Null unless ready; counts as shown now.
    QImage show(const Location &url, const FileVersion &version);
    // A null image is a failure. False, and nothing is done, when a result with a higher turn is there
    // already.
    bool put(const Location &url, const FileVersion &version, quint64 turn, const QImage &image);
    // False when nothing was known of another version than this.
    bool forgetOthers(const Location &url, const FileVersion &version);
    bool forget(const Location &url);

    qint64 bytes() const { return m_bytes; }

private:
    struct Entry
    {
        FileVersion version;
        quint64 turn = 0;
        QImage image;
        std::list<Location>::iterator shown; // valid while there is an image
    };
    using Entries = QHash<Location, Entry>;

    void remove(Entries::iterator entry);
    void keepToBudget();

    qint64 m_budget;
    qint64 m_bytes = 0;
    Entries m_entries;
    std::list<Location> m_shown; // of the pictures, latest first
};

} // namespace cratewell

#include "media/internal/thumbnail_store.h"

namespace cratewell {

ThumbnailStore::State ThumbnailStore::state(const Location &url, const FileVersion &version) const
{
    const auto found = m_entries.constFind(url);
    if (found == m_entries.constEnd() || found->version != version)
        return State::Missing;
    return found->image.isNull() ? State::Failed : State::Ready;
}

QImage ThumbnailStore::show(const Location &url, const FileVersion &version)
{
    if (state(url, version) != State::Ready)
        return {};
    const Entry &entry = *m_entries.constFind(url);
    m_shown.splice(m_shown.begin(), m_shown, entry.shown);
    return entry.image;
}

bool ThumbnailStore::put(const Location &url, const FileVersion &version, quint64 turn, const QImage &image)
{
    if (const auto before = m_entries.find(url); before != m_entries.end()) {
        if (before->turn > turn)
            return false;
        remove(before);
    }
    Entry entry{.version = version, .turn = turn, .image = image, .shown = {}};
    if (!image.isNull()) {
        m_shown.push_front(url);
        entry.shown = m_shown.begin();
        m_bytes += image.sizeInBytes();
    }
    m_entries.insert(url, entry);
    keepToBudget();
    return true;
}

bool ThumbnailStore::forgetOthers(const Location &url, const FileVersion &version)
{
    const auto found = m_entries.find(url);
    if (found == m_entries.end() || found->version == version)
        return false;
    remove(found);
    return true;
}

bool ThumbnailStore::forget(const Location &url)
{
    const auto found = m_entries.find(url);
    if (found == m_entries.end())
        return false;
    remove(found);
    return true;
}

void ThumbnailStore::remove(Entries::iterator entry)
{
    if (!entry->image.isNull()) {
        m_bytes -= entry->image.sizeInBytes();
        m_shown.erase(entry->shown);
    }
    m_entries.erase(entry);
}

// The newest picture stays, however large it is.
void ThumbnailStore::keepToBudget()
{
    while (m_bytes > m_budget && m_shown.size() > 1)
        remove(m_entries.find(m_shown.back()));
}

} // namespace cratewell

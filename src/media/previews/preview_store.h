#pragma once

#include "media/preview_state.h"
#include "vault/asset.h"

#include <QHash>
#include <QList>
#include <list>
#include <optional>

namespace cratewell {

// Names one preview: of which file, in which version, and of those a file has several of, which.
struct PreviewKey
{
    Location url;
    FileVersion version;
    int part = 0;
};

// What is known of the previews of files, each for one version of its file: a value, or that there can be
// none. Values beyond the budget are let go, the one shown longest ago first; failures cost nothing and stay.
// `Cost` tells the bytes of a value. Main thread.
template<typename Value, typename Cost> class PreviewStore
{
public:
    explicit PreviewStore(qint64 budget) : m_budget(budget) {}

    PreviewState state(const PreviewKey &key) const
    {
        const Entry *entry = find(key);
        if (!entry)
            return PreviewState::Missing;
        return entry->value ? PreviewState::Ready : PreviewState::Failed;
    }

    // Null unless ready; counts as shown now. Valid until the store changes.
    const Value *show(const PreviewKey &key)
    {
        const Entry *entry = find(key);
        if (!entry || !entry->value)
            return nullptr;
        m_shown.splice(m_shown.begin(), m_shown, entry->shown);
        return &*entry->value;
    }

    // No value is a failure. Results come in any order: the one whose work was asked for last stays, and
    // false tells that this was not it.
    bool put(const PreviewKey &key, quint64 turn, std::optional<Value> value)
    {
        File &file = m_files[key.url];
        const bool older = file.version != key.version && turn < file.turn;
        if (older)
            return false;
        if (file.version != key.version)
            removeParts(file);
        file.version = key.version;
        file.turn = std::max(file.turn, turn);
        if (const auto before = file.parts.find(key.part); before != file.parts.end()) {
            if (before->turn > turn)
                return false;
            removePart(file, before);
        }
        Entry entry{.turn = turn, .value = std::move(value), .shown = {}};
        if (entry.value) {
            m_shown.push_front({key.url, key.part});
            entry.shown = m_shown.begin();
            m_bytes += Cost()(*entry.value);
        }
        file.parts.insert(key.part, std::move(entry));
        keepToBudget();
        return true;
    }

    // What is known of versions other than this; false when nothing was.
    bool forgetOthers(const Location &url, const FileVersion &version)
    {
        const auto found = m_files.constFind(url);
        return found != m_files.constEnd() && found->version != version && forget(url);
    }
    bool forget(const Location &url)
    {
        const auto found = m_files.find(url);
        if (found == m_files.end())
            return false;
        removeParts(*found);
        m_files.erase(found);
        return true;
    }
    // The files that something is known of.
    QList<Location> files() const { return m_files.keys(); }
    qsizetype fileCount() const { return m_files.size(); }
    // Everything; gives the files that something was known of.
    QList<Location> clear()
    {
        const QList<Location> known = m_files.keys();
        m_files.clear();
        m_shown.clear();
        m_bytes = 0;
        return known;
    }

    qint64 bytes() const { return m_bytes; }

private:
    struct Shown
    {
        Location url;
        int part;
    };
    struct Entry
    {
        quint64 turn = 0;
        std::optional<Value> value;
        typename std::list<Shown>::iterator shown; // valid while there is a value
    };
    using Parts = QHash<int, Entry>;
    struct File
    {
        FileVersion version;
        quint64 turn = 0; // of the newest result
        Parts parts;
    };

    const Entry *find(const PreviewKey &key) const
    {
        const auto file = m_files.constFind(key.url);
        if (file == m_files.constEnd() || file->version != key.version)
            return nullptr;
        const auto part = file->parts.constFind(key.part);
        return part == file->parts.constEnd() ? nullptr : &*part;
    }
    void removePart(File &file, typename Parts::iterator part)
    {
        if (part->value) {
            m_bytes -= Cost()(*part->value);
            m_shown.erase(part->shown);
        }
        file.parts.erase(part);
    }
    void removeParts(File &file)
    {
        while (!file.parts.isEmpty())
            removePart(file, file.parts.begin());
    }
    // The newest value stays, however large it is.
    void keepToBudget()
    {
        while (m_bytes > m_budget && m_shown.size() > 1) {
            const Shown oldest = m_shown.back();
            const auto file = m_files.find(oldest.url);
            removePart(*file, file->parts.find(oldest.part));
            if (file->parts.isEmpty())
                m_files.erase(file);
        }
    }

    qint64 m_budget;
    qint64 m_bytes = 0;
    QHash<Location, File> m_files;
    std::list<Shown> m_shown; // of the values, latest first
};

} // namespace cratewell

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

// What is known of the previews of files: a value for the file's content, or that there can be none for this
// very version. Values beyond the budget are let go, the one shown longest ago first; failures cost nothing
// and stay. `Cost` gives the bytes of a value. Main thread.
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

    // No value is a failure. Results come in any order: the one that was requested last stays, and false
    // means that this was not it. `turn` is the number of its request.
    bool put(const PreviewKey &key, quint64 turn, std::optional<Value> value)
    {
        File &file = m_files[key.url];
        if (file.version != key.version) {
            if (turn < file.turn)
                return false;
            removeOutdated(file, key.version);
        }
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

    // What is no longer true of a file that has this version now; false when nothing was.
    bool forgetOutdated(const Location &url, const FileVersion &version)
    {
        const auto found = m_files.find(url);
        if (found == m_files.end() || found->version == version)
            return false;
        const bool removed = removeOutdated(*found, version);
        if (found->parts.isEmpty())
            m_files.erase(found);
        return removed;
    }
    bool forget(const Location &url)
    {
        const auto found = m_files.find(url);
        if (found == m_files.end())
            return false;
        for (auto part = found->parts.begin(); part != found->parts.end();)
            part = removePart(*found, part);
        m_files.erase(found);
        return true;
    }
    // The files that something is known of.
    QList<Location> files() const { return m_files.keys(); }
    qsizetype fileCount() const { return m_files.size(); }
    // Everything; returns the files that something was known of.
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
        if (file == m_files.constEnd() || !haveSameContent(file->version, key.version))
            return nullptr;
        const auto part = file->parts.constFind(key.part);
        if (part == file->parts.constEnd() || (!part->value && file->version != key.version))
            return nullptr;
        return &*part;
    }
    // The file has another version now. Values stay with the content; a failure may have been one of
    // permissions.
    bool removeOutdated(File &file, const FileVersion &version)
    {
        const bool keepValues = haveSameContent(file.version, version);
        file.version = version;
        bool removed = false;
        for (auto part = file.parts.begin(); part != file.parts.end();) {
            const bool keep = keepValues && part->value;
            part = keep ? std::next(part) : removePart(file, part);
            removed = removed || !keep;
        }
        return removed;
    }
    typename Parts::iterator removePart(File &file, typename Parts::iterator part)
    {
        if (part->value) {
            m_bytes -= Cost()(*part->value);
            m_shown.erase(part->shown);
        }
        return file.parts.erase(part);
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

#pragma once

#include "media/decoding/decode_request.h"

#include <atomic>
#include <optional>

namespace cratewell {

// Pictures and peaks on disk, each with its file's info, so that the next start need not decode again. Any
// thread; blocks on the disk. What cannot be written is not kept, what is damaged is not there. Several
// programs may share the folder.
class PreviewCache
{
public:
    PreviewCache(Location folder, qint64 budget) : m_folder(std::move(folder)), m_budget(budget) {}

    // A preview that is found counts as used now.
    std::optional<DecodedFile> load(const QByteArray &key) const;
    void save(const QByteArray &key, const DecodedFile &preview) const;
    // Removes what was used longest ago until four fifths of the budget are left; nothing below the budget,
    // and nothing but files of its own. Leaves off when `ending` becomes true.
    void prune(const std::atomic<bool> &ending) const;

private:
    Location file(const QByteArray &key) const;

    Location m_folder;
    qint64 m_budget; // bytes
};

} // namespace cratewell

#pragma once

#include "media/decoding/decode_request.h"

#include <atomic>
#include <optional>
#include <variant>

namespace cratewell {

// Pictures and peaks on disk, so that the next start need not decode again. Any thread; blocks on the disk.
// What cannot be written is not kept, what is damaged is not there. Several programs may share the folder.
//
// One file for each preview, named by the hash of its key: "CWP1", the SHA-1 of what follows, and then a Qt
// data stream of key, duration, colors as JPEG, alpha as compressed bytes (empty when opaque), and peaks.
class PreviewCache
{
public:
    using Preview = std::variant<DecodedPicture, DecodedAudio>;

    PreviewCache(Location folder, qint64 budget) : m_folder(std::move(folder)), m_budget(budget) {}

    // A preview that is given out counts as used now.
    std::optional<Preview> load(const QByteArray &key) const;
    void save(const QByteArray &key, const Preview &preview) const;
    // Removes what was used longest ago until four fifths of the budget are left; nothing below the budget.
    // Leaves off when `ending` becomes true.
    void prune(const std::atomic<bool> &ending) const;

private:
    Location file(const QByteArray &key) const;

    Location m_folder;
    qint64 m_budget; // bytes
};

} // namespace cratewell

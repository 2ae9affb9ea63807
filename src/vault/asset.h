#pragma once

#include "platform/location.h"
#include "vault/vocabulary.h"

#include <QMetaType>
#include <optional>

namespace cratewell {

// By the lower-cased extension of the name; nothing when the file is not an asset.
std::optional<AssetKind> kindOf(QByteArrayView name);
inline std::optional<AssetKind> kindOf(const Location &location)
{
    return kindOf(location.nameBytes());
}
// "video", "image", "lut", "audio".
QString rawValue(AssetKind kind);
// "Video", "Still", "LUT", "Audio".
QString kindLabel(AssetKind kind);

// Distinguishes the states of a file, so that previews know when they are out of date.
struct FileVersion
{
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modified = 0; // nanoseconds since 1970
    qint64 changed = 0;  // the same, of anything about the file: its permissions, too

    friend bool operator==(const FileVersion &, const FileVersion &) = default;
};

// Whether both have the same bytes, as far as the system says.
inline bool haveSameContent(const FileVersion &a, const FileVersion &b)
{
    return a.inode == b.inode && a.size == b.size && a.modified == b.modified;
}

// The `added` of a file whose file system knows no birth time: older than everything.
inline constexpr double distantPast = -63114076800.0;

// One usable media file; its location is its identity. Equality is over the four fields of meaning: a
// replaced file of another size is a different asset at the same place. The version stands outside equality.
struct Asset
{
    Location url;
    AssetKind kind = AssetKind::Video;
    qint64 size = 0;            // bytes; 0 when unknown
    double added = distantPast; // seconds since 2001-01-01 UTC
    FileVersion version;

    friend bool operator==(const Asset &a, const Asset &b)
    {
        return a.kind == b.kind && a.size == b.size && a.added == b.added && a.url == b.url;
    }
};

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::Asset)

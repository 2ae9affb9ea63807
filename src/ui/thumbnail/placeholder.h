#pragma once

#include "ui/thumbnail/thumbnail_scaler.h"
#include "vault/vocabulary.h"

namespace cratewell {

// The sign of a kind in the icon font.
QString kindIcon(AssetKind kind);

// What stands in for the picture of a file: a dark tile in the colors of its category. While the picture is
// under way it carries no sign; where there is none, the sign of the kind; where something else is drawn on
// it, none either, but it shines like that; where the file could not be read, a broken picture.
struct PlaceholderLook
{
    enum class Sign : quint8 { None, Kind, Stage, Broken };

    AssetKind kind = AssetKind::Video;
    Sign sign = Sign::None;
    QString iconFamily; // a font of icon ligatures

    friend bool operator==(const PlaceholderLook &, const PlaceholderLook &) = default;
};

// Main thread.
QImage placeholderPicture(const PlaceholderLook &look, const ThumbnailShape &shape);

} // namespace cratewell

#pragma once

#include "platform/error.h"
#include "platform/location.h"
#include "worker/protocol.h"

#include <QImage>

namespace cratewell {

struct DecodeWish
{
    Location file;
    worker::JobKind kind = worker::JobKind::StillImage;
    int maxSide = 0;     // pixels
    double fraction = 0; // of the duration; video only
};

struct DecodedPicture
{
    QImage image;        // never null; premultiplied ARGB
    double duration = 0; // seconds; 0 for a still or when unknown
};

using DecodeResult = Result<DecodedPicture>;

} // namespace cratewell

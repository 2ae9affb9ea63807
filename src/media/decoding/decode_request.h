#pragma once

#include "media/decoding/decode_failure.h"
#include "media/media_info.h"
#include "media/waveform_peaks.h"
#include "platform/location.h"
#include "worker/protocol.h"

#include <QImage>
#include <variant>

namespace cratewell {

struct DecodeRequest
{
    Location file;
    worker::JobKind kind = worker::JobKind::StillImage;
    int maxSide = 0;     // pixels; pictures only
    double fraction = 0; // of the duration; video only
    int count = 240;     // peaks only
};

struct DecodedPicture
{
    QImage image;        // never null; opaque ones are RGB32, others premultiplied ARGB
    double duration = 0; // seconds; 0 for a still or when unknown
};

struct DecodedAudio
{
    WaveformPeaks peaks; // as many as were wished for
    double duration = 0; // seconds; 0 when unknown
};

// A frame or a still is answered by a picture, peaks by a sound, info by info.
using DecodeResult = tl::expected<std::variant<DecodedPicture, DecodedAudio, MediaInfo>, DecodeFailure>;

} // namespace cratewell

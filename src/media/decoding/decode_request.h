#pragma once

#include "media/decoding/decode_failure.h"
#include "media/media_info.h"
#include "media/waveform_peaks.h"
#include "platform/location.h"
#include "worker/protocol.h"

#include <QImage>

namespace cratewell {

// Says all of what is to be made of a file: equal requests for one version of it have equal results.
struct DecodeRequest
{
    Location file;
    worker::JobKind kind = worker::JobKind::StillImage;
    int maxSide = 0;     // pixels; pictures only
    double fraction = 0; // of the duration; video only
    int count = 0;       // peaks only
};

// What a request yields: the picture or the peaks it was for, and always the file's info.
struct DecodedFile
{
    MediaInfo info;
    QImage image; // opaque ones are RGB32, others premultiplied ARGB; null unless a picture was requested
    WaveformPeaks peaks; // none unless they were requested
};

using DecodeResult = tl::expected<DecodedFile, DecodeFailure>;

} // namespace cratewell

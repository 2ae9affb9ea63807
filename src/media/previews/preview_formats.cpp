#include "media/previews/preview_formats.h"

namespace cratewell {

using worker::JobKind;

DecodeRequest videoThumbnail(const Location &file)
{
    return singleFrame(file, 0.35, thumbnailSide);
}

DecodeRequest stillThumbnail(const Location &file)
{
    return {.file = file, .kind = JobKind::StillImage, .maxSide = thumbnailSide};
}

DecodeRequest scrubFrame(const Location &file, double fraction)
{
    return singleFrame(file, fraction, 480);
}

DecodeRequest waveformPeaks(const Location &file)
{
    return {.file = file, .kind = JobKind::AudioPeaks, .count = 240};
}

DecodeRequest fileInfo(const Location &file)
{
    return {.file = file, .kind = JobKind::Info};
}

DecodeRequest largeStill(const Location &file)
{
    return {.file = file, .kind = JobKind::StillImage, .maxSide = 2560};
}

DecodeRequest singleFrame(const Location &file, double fraction, int maxSide)
{
    return {.file = file, .kind = JobKind::VideoFrame, .maxSide = maxSide, .fraction = fraction};
}

QByteArray markerOf(const DecodeRequest &request)
{
    const QByteArrayList parts{QByteArray::number(int(request.kind)), QByteArray::number(request.maxSide),
                               QByteArray::number(request.fraction), QByteArray::number(request.count)};
    return parts.join(',');
}

} // namespace cratewell

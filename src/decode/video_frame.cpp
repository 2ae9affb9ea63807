#include "decode/video_frame.h"

#include "decode/internal/frame_picture.h"
#include "decode/internal/video_reader.h"

#include <algorithm>

namespace cratewell::decode {

Decoded<Picture> videoFrame(int descriptor, double fraction, int maxSide)
{
    auto reader = VideoReader::open(descriptor);
    if (!reader)
        return failed(reader.error());
    const MediaInfo info = (*reader)->info();
    const double latest = 0.98; // decoders often have no frame at the very end
    const double time = fraction > 0 ? std::min(fraction, latest) * info.duration : 0;
    const auto frame = (*reader)->frameNear(time);
    if (!frame)
        return failed(frame.error());
    auto picture =
        framePicture(**frame, (*reader)->pixelAspect(frame->get()), (*reader)->orientation(), maxSide);
    if (picture)
        picture->info = info;
    return picture;
}

} // namespace cratewell::decode

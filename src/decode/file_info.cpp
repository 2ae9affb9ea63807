#include "decode/file_info.h"

#include "decode/audio_reader.h"
#include "decode/internal/film_info.h"
#include "decode/still_image.h"

namespace cratewell::decode {

Decoded<MediaInfo> fileInfo(int descriptor)
{
    if (const auto size = stillImageSize(descriptor))
        return MediaInfo{.width = size->width, .height = size->height};
    const auto container = MediaContainer::open(descriptor, MediaContainer::Purpose::Film);
    if (!container)
        return failed(container.error());
    if (const AVStream *video = (*container)->firstVideo())
        return filmInfo(**container, *video);
    const auto sound = AudioReader::open(descriptor);
    if (!sound)
        return failed(sound.error());
    const int64_t frames = (*sound)->length();
    const int rate = (*sound)->sampleRate();
    return MediaInfo{.duration = double(frames) / rate,
                     .frames = frames,
                     .sampleRate = rate,
                     .channels = (*sound)->channels()};
}

} // namespace cratewell::decode

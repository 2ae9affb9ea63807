#include "decode/file_info.h"

#include "decode/audio_reader.h"
#include "decode/internal/media_container.h"
#include "decode/still_image.h"

#include <algorithm>
#include <array>

namespace cratewell::decode {

namespace {

// FFmpeg keeps the first character of a code in the lowest byte.
uint32_t firstHighest(uint32_t tag)
{
    return tag >> 24 | (tag >> 8 & 0xff00) | (tag << 8 & 0xff0000) | tag << 24;
}

bool isPrintable(uint32_t tag)
{
    const std::array<uint32_t, 4> characters{tag & 0xff, tag >> 8 & 0xff, tag >> 16 & 0xff, tag >> 24};
    return std::all_of(characters.begin(), characters.end(), [](uint32_t c) { return c >= ' ' && c <= '~'; });
}

// Not every container names codecs by four characters; QuickTime's name stands in.
uint32_t codecOf(const AVCodecParameters &parameters)
{
    if (isPrintable(parameters.codec_tag))
        return firstHighest(parameters.codec_tag);
    const std::array<const AVCodecTag *, 2> tables{avformat_get_mov_video_tags(), nullptr};
    return firstHighest(av_codec_get_tag(tables.data(), parameters.codec_id));
}

double frameRateOf(const AVStream &stream)
{
    constexpr int highest = 10'000;
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate}) {
        if (rate.num > 0 && rate.den > 0 && rate.num / rate.den < highest)
            return av_q2d(rate);
    }
    return 0;
}

// The sound of a film, as its header tells it.
void addSoundBeside(const MediaContainer &container, FileInfo &info)
{
    const AVStream *audio = container.firstAudio();
    if (!audio || !isPossibleAudio(*audio))
        return;
    info.hasAudio = true;
    info.sampleRate = audio->codecpar->sample_rate;
    info.channels = audio->codecpar->ch_layout.nb_channels;
    if (audio->duration > 0)
        info.frames = av_rescale_q(audio->duration, audio->time_base, {1, info.sampleRate});
}

} // namespace

Decoded<FileInfo> fileInfo(int descriptor)
{
    FileInfo info;
    if (const auto size = stillImageSize(descriptor)) {
        info.width = size->width;
        info.height = size->height;
        return info;
    }
    const auto container = MediaContainer::open(descriptor, MediaContainer::Purpose::Info);
    if (!container)
        return failed(container.error());
    if (const AVStream *video = (*container)->firstVideo()) {
        info.hasVideo = true;
        info.duration = (*container)->duration();
        info.width = std::max(video->codecpar->width, 0);
        info.height = std::max(video->codecpar->height, 0);
        info.frameRate = frameRateOf(*video);
        info.codec = codecOf(*video->codecpar);
        addSoundBeside(**container, info);
        return info;
    }
    const auto sound = AudioReader::open(descriptor);
    if (!sound)
        return failed(sound.error());
    info.hasAudio = true;
    info.sampleRate = (*sound)->sampleRate();
    info.channels = (*sound)->channels();
    info.frames = (*sound)->length();
    info.duration = double(info.frames) / info.sampleRate;
    return info;
}

} // namespace cratewell::decode

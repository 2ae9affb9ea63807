#include "decode/internal/film_info.h"

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

// Not every container names codecs by four characters; QuickTime's name stands in, or "?".
uint32_t codecOf(const AVCodecParameters &parameters)
{
    const std::array<const AVCodecTag *, 2> tables{avformat_get_mov_video_tags(), nullptr};
    for (const uint32_t tag : {parameters.codec_tag, av_codec_get_tag(tables.data(), parameters.codec_id)}) {
        if (isPrintable(tag))
            return firstHighest(tag);
    }
    return firstHighest(MKTAG('?', ' ', ' ', ' '));
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

// The sound of a film, as its header describes it.
void addSoundBeside(const MediaContainer &container, MediaInfo &info)
{
    const AVStream *audio = container.firstAudio();
    if (!audio || !isPossibleAudio(*audio))
        return;
    info.sampleRate = audio->codecpar->sample_rate;
    info.channels = audio->codecpar->ch_layout.nb_channels;
    if (audio->duration > 0)
        info.frames = av_rescale_q(audio->duration, audio->time_base, {1, info.sampleRate});
}

} // namespace

MediaInfo filmInfo(const MediaContainer &container, const AVStream &video)
{
    MediaInfo info{.duration = container.duration(),
                   .frameRate = frameRateOf(video),
                   .width = std::max(video.codecpar->width, 0),
                   .height = std::max(video.codecpar->height, 0),
                   .codec = codecOf(*video.codecpar)};
    addSoundBeside(container, info);
    return info;
}

} // namespace cratewell::decode

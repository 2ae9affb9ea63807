#include "decode/internal/media_container.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <mutex>

namespace cratewell::decode {

namespace {

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EPERM);
}

AVStream *firstOf(const AVFormatContext &format, AVMediaType type)
{
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        AVStream *stream = format.streams[i];
        if (stream->codecpar->codec_type == type && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
            return stream;
    }
    return nullptr;
}

bool isPcm(AVCodecID codec)
{
    return codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT;
}

} // namespace

Decoded<std::unique_ptr<MediaContainer>> MediaContainer::open(int descriptor, Purpose purpose)
{
    static std::once_flag quietOnce;
    std::call_once(quietOnce, [] { av_log_set_level(AV_LOG_QUIET); });

    std::unique_ptr<MediaContainer> container(new MediaContainer(descriptor));
    AVFormatContext *format = avformat_alloc_context();
    if (!format || !container->m_input.context()) {
        avformat_free_context(format);
        return failed("out of memory");
    }
    format->pb = container->m_input.context();
    format->io_open = &refuseToOpen;
    format->flags |= AVFMT_FLAG_CUSTOM_IO;
    if (const int code = avformat_open_input(&format, "", nullptr, nullptr); code < 0)
        return failed("not a readable media file: " + errorText(code));
    container->m_format.reset(format);

    if (!container->headerKnows(purpose)) {
        if (const int code = avformat_find_stream_info(format, nullptr); code < 0)
            return failed("not a readable media file: " + errorText(code));
    }
    return container;
}

bool MediaContainer::isNamed(const char *name) const
{
    return av_match_name(name, m_format->iformat->name) != 0;
}

// QuickTime and Matroska headers say everything that finding a frame needs. What a sound is like is certain
// for PCM only: other headers may leave out the rate, or give half of it.
bool MediaContainer::headerKnows(Purpose purpose) const
{
    const AVStream *video = firstVideo(), *audio = firstAudio();
    const bool audioKnown = audio && isPcm(audio->codecpar->codec_id) && audio->codecpar->sample_rate > 0 &&
                            audio->codecpar->ch_layout.nb_channels > 0;
    if (purpose == Purpose::Sound || !video)
        return audioKnown;
    return (isNamed("mov") || isNamed("matroska")) && video->codecpar->width > 0 &&
           video->codecpar->codec_id != AV_CODEC_ID_NONE && m_format->duration != AV_NOPTS_VALUE &&
           video->avg_frame_rate.num > 0;
}

AVStream *MediaContainer::firstVideo() const
{
    return firstOf(*m_format, AVMEDIA_TYPE_VIDEO);
}

AVStream *MediaContainer::firstAudio() const
{
    return firstOf(*m_format, AVMEDIA_TYPE_AUDIO);
}

double MediaContainer::duration() const
{
    constexpr double longest = 1e9;
    double seconds = 0;
    if (m_format->duration != AV_NOPTS_VALUE)
        seconds = double(m_format->duration) / AV_TIME_BASE;
    for (const AVStream *stream : {firstVideo(), firstAudio()}) {
        if (seconds <= 0 && stream && stream->duration != AV_NOPTS_VALUE)
            seconds = double(stream->duration) * av_q2d(stream->time_base);
    }
    return seconds > 0 && seconds <= longest ? seconds : 0;
}

bool isPossibleAudio(const AVStream &stream)
{
    constexpr int mostChannels = 256, highestRate = 10'000'000;
    const int channels = stream.codecpar->ch_layout.nb_channels, rate = stream.codecpar->sample_rate;
    return channels > 0 && channels <= mostChannels && rate > 0 && rate <= highestRate;
}

void MediaContainer::readOnly(const AVStream *stream)
{
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        m_format->streams[i]->discard = m_format->streams[i] == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

Decoded<CodecPointer> MediaContainer::openDecoder(const AVStream &stream, const AVCodec *codec) const
{
    if (!codec)
        return failed(std::string("no decoder for ") + avcodec_get_name(stream.codecpar->codec_id));
    CodecPointer decoder(avcodec_alloc_context3(codec));
    if (!decoder)
        return failed("out of memory");
    int code = avcodec_parameters_to_context(decoder.get(), stream.codecpar);
    decoder->thread_count = 1;
    decoder->request_sample_fmt = AV_SAMPLE_FMT_S16P; // planar, of whatever kind there is
    decoder->max_pixels = maxFramePixels;
    decoder->pkt_timebase = stream.time_base;
    if (code >= 0)
        code = avcodec_open2(decoder.get(), codec, nullptr);
    if (code < 0)
        return failed("it cannot be decoded: " + errorText(code));
    return decoder;
}

} // namespace cratewell::decode

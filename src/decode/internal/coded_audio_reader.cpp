#include "decode/internal/coded_audio_reader.h"

#include "decode/internal/sample_conversion.h"

#include <algorithm>

namespace cratewell::decode {

Decoded<std::unique_ptr<AudioReader>> CodedAudioReader::create(std::unique_ptr<MediaContainer> container,
                                                               AVStream *stream)
{
    std::unique_ptr<CodedAudioReader> reader(new CodedAudioReader);
    reader->m_stream = stream;
    reader->m_packet.reset(av_packet_alloc());
    reader->m_frame.reset(av_frame_alloc());
    if (!reader->m_packet || !reader->m_frame)
        return failed("out of memory");
    container->readOnly(stream);
    auto decoder = container->openDecoder(*stream, avcodec_find_decoder(stream->codecpar->codec_id));
    if (!decoder)
        return failed(decoder.error());
    reader->m_codec = std::move(*decoder);
    // The last packet of a QuickTime file is filled up; only the track's length tells where the sound ends.
    if (container->isNamed("mov") && stream->nb_frames > 0 && stream->duration > 0)
        reader->m_end = std::max<int64_t>(reader->toFrames(stream->duration - reader->beginning()), 0);
    reader->m_container = std::move(container);
    return reader;
}

int64_t CodedAudioReader::beginning() const
{
    return m_stream->start_time == AV_NOPTS_VALUE ? 0 : m_stream->start_time;
}

int64_t CodedAudioReader::toFrames(int64_t ticks) const
{
    return av_rescale_q(ticks, m_stream->time_base, {1, sampleRate()});
}

int64_t CodedAudioReader::length() const
{
    if (m_end != INT64_MAX)
        return m_end;
    if (m_stream->duration == AV_NOPTS_VALUE || m_stream->duration <= 0)
        return int64_t(m_container->duration() * sampleRate());
    // MP3 counts what encoder and decoder put before the sound.
    const int64_t before = m_container->isNamed("mp3") ? beginning() : 0;
    return std::max<int64_t>(toFrames(m_stream->duration - before), 0);
}

AudioReader::Length CodedAudioReader::lengthIs() const
{
    const bool known = m_end != INT64_MAX || (m_container->isNamed("flac") && m_stream->duration > 0);
    return known ? Length::Known : Length::Estimated;
}

std::optional<int64_t> CodedAudioReader::timeOfFrame() const
{
    if (m_frame->best_effort_timestamp == AV_NOPTS_VALUE)
        return std::nullopt;
    return toFrames(m_frame->best_effort_timestamp - beginning());
}

void CodedAudioReader::feed()
{
    while (av_read_frame(&m_container->format(), m_packet.get()) >= 0) {
        const bool fed = m_packet->stream_index == m_stream->index &&
                         avcodec_send_packet(m_codec.get(), m_packet.get()) >= 0;
        av_packet_unref(m_packet.get());
        if (fed)
            return;
    }
    avcodec_send_packet(m_codec.get(), nullptr);
}

CodedAudioReader::Step CodedAudioReader::decodeFrame()
{
    m_used = 0;
    for (;;) {
        const int code = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (code == AVERROR(EAGAIN)) {
            feed();
            continue;
        }
        if (code == AVERROR_INVALIDDATA)
            continue;
        if (code < 0)
            return Step::End;
        m_decodedAnything = true;
        return Step::Frame;
    }
}

// A decoder needs some sound before the wanted place to be in its stride.
Decoded<void> CodedAudioReader::seek(int64_t frame)
{
    m_next = std::max<int64_t>(frame, 0);
    const int64_t runUp = sampleRate() / 5;
    const auto seekTo = [&](int64_t wanted) {
        const int64_t ticks = av_rescale_q(wanted, {1, sampleRate()}, m_stream->time_base);
        return av_seek_frame(&m_container->format(), m_stream->index, beginning() + ticks,
                             AVSEEK_FLAG_BACKWARD);
    };
    // Some formats keep part of the run-up before the beginning, others know no such time.
    int code = seekTo(m_next - runUp);
    if (code < 0)
        code = seekTo(0);
    if (code < 0)
        return failed("the sound has no such place: " + errorText(code));
    avcodec_flush_buffers(m_codec.get());
    av_frame_unref(m_frame.get());
    m_used = 0;
    m_seekPending = true;
    return {};
}

int CodedAudioReader::ready(int64_t wanted)
{
    wanted = std::min(wanted, m_end - m_next);
    while (wanted > 0 && m_used == m_frame->nb_samples) {
        if (decodeFrame() == Step::End)
            return 0;
        if (m_seekPending) {
            const int64_t ahead = m_next - timeOfFrame().value_or(m_next);
            m_used = int(std::clamp<int64_t>(ahead, 0, m_frame->nb_samples));
            m_seekPending = m_used == m_frame->nb_samples;
        }
    }
    return int(std::clamp<int64_t>(wanted, 0, m_frame->nb_samples - m_used));
}

void CodedAudioReader::use(int frames)
{
    m_used += frames;
    m_next += frames;
}

Decoded<int64_t> CodedAudioReader::skip(int64_t count)
{
    int64_t done = 0;
    while (const int now = ready(count - done)) {
        use(now);
        done += now;
    }
    return done;
}

Decoded<int> CodedAudioReader::read(float *const *planes, int count)
{
    int done = 0;
    while (const int now = ready(count - done)) {
        const auto format = AVSampleFormat(m_frame->format);
        const auto kind = SampleKind::ofDecoded(format);
        if (!kind || m_frame->ch_layout.nb_channels != channels() || m_frame->sample_rate != sampleRate())
            return failed("the sound changes its kind");
        const bool planar = av_sample_fmt_is_planar(format) != 0;
        const int stride = planar ? kind->bytes() : kind->bytes() * channels();
        for (int channel = 0; channel < channels(); ++channel) {
            const uint8_t *samples = planar ? m_frame->extended_data[channel]
                                            : m_frame->extended_data[0] + channel * kind->bytes();
            toFloats(*kind, samples + int64_t{m_used} * stride, stride, planes[channel] + done, now);
        }
        use(now);
        done += now;
    }
    if (done == 0 && count > 0 && !m_decodedAnything)
        return failed("no sound could be decoded");
    return done;
}

} // namespace cratewell::decode

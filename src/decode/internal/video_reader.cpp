#include "decode/internal/video_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace cratewell::decode {

namespace {

constexpr double tolerance = 0.1; // seconds

// FFmpeg's own VP8 and VP9 decoders drop the alpha channel that WebM keeps beside the picture.
const AVCodec *decoderFor(const AVStream &stream)
{
    const AVCodecID id = stream.codecpar->codec_id;
    const AVDictionaryEntry *alpha = av_dict_get(stream.metadata, "alpha_mode", nullptr, 0);
    const AVCodec *codec = nullptr;
    if (alpha && std::strcmp(alpha->value, "1") == 0) {
        if (id == AV_CODEC_ID_VP9)
            codec = avcodec_find_decoder_by_name("libvpx-vp9");
        else if (id == AV_CODEC_ID_VP8)
            codec = avcodec_find_decoder_by_name("libvpx");
    }
    return codec ? codec : avcodec_find_decoder(id);
}

} // namespace

Decoded<std::unique_ptr<VideoReader>> VideoReader::open(int descriptor)
{
    auto container = MediaContainer::open(descriptor, MediaContainer::Purpose::Film);
    if (!container)
        return failed(container.error());
    std::unique_ptr<VideoReader> reader(new VideoReader);
    reader->m_container = std::move(*container);
    reader->m_stream = reader->m_container->firstVideo();
    reader->m_packet.reset(av_packet_alloc());
    if (!reader->m_stream)
        return failed("there is no video in it");
    if (!reader->m_packet)
        return failed("out of memory");
    reader->m_container->readOnly(reader->m_stream);
    auto decoder = reader->m_container->openDecoder(*reader->m_stream, decoderFor(*reader->m_stream));
    if (!decoder)
        return failed(decoder.error());
    reader->m_codec = std::move(*decoder);
    return reader;
}

Orientation VideoReader::orientation() const
{
    size_t size = 0;
    const uint8_t *bytes = av_stream_get_side_data(m_stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    std::array<int32_t, 9> matrix = {};
    if (!bytes || size < sizeof matrix)
        return {};
    std::memcpy(matrix.data(), bytes, sizeof matrix);
    return Orientation::ofDisplayMatrix(matrix.data());
}

double VideoReader::pixelAspect(AVFrame *frame) const
{
    const AVRational ratio = av_guess_sample_aspect_ratio(&m_container->format(), m_stream, frame);
    const double aspect = ratio.num > 0 && ratio.den > 0 ? av_q2d(ratio) : 1.0;
    return aspect > 0.1 && aspect < 10 ? aspect : 1.0;
}

Decoded<FramePointer> VideoReader::frameNear(double seconds)
{
    const double unit = av_q2d(m_stream->time_base);
    const auto ticks = [&](double time) { return int64_t(std::llround(time / unit)); };
    // QuickTime times count from the beginning of the movie, also when the picture begins later.
    int64_t start = 0;
    const AVFormatContext &format = m_container->format();
    if (format.start_time != AV_NOPTS_VALUE && !m_container->isNamed("mov"))
        start = av_rescale_q(format.start_time, AV_TIME_BASE_Q, m_stream->time_base);
    const int64_t earliest = start + ticks(seconds - tolerance), latest = start + ticks(seconds + tolerance);

    // Indices count in decoding order, and some are wrong: when the first frame from a key frame is already
    // too late, begin further ahead. The last try is the beginning of the file.
    constexpr std::array stepsBack{0.0, 0.6, 5.0, HUGE_VAL};
    FramePointer found;
    for (const double back : stepsBack) {
        const bool fromStart = back > seconds;
        if (fromStart)
            rewind(start);
        else if (seekBefore(latest - ticks(back)) == Seeking::Failed)
            continue;
        FramePointer frame = decodeTowards(earliest, latest);
        if (frame)
            found = std::move(frame);
        if (fromStart || (found && found->best_effort_timestamp <= latest))
            break;
    }
    if (!found)
        return failed("no frame could be decoded" + (m_problem.empty() ? "" : ": " + m_problem));
    return found;
}

VideoReader::Seeking VideoReader::seekBefore(int64_t timestamp)
{
    const int code = av_seek_frame(&m_container->format(), m_stream->index, timestamp, AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(m_codec.get());
    m_awaitingKey = true;
    return code >= 0 ? Seeking::Found : Seeking::Failed;
}

void VideoReader::rewind(int64_t start)
{
    // Formats without an index search for a time by guessing positions, and miss the very first.
    const bool byPosition = m_container->format().iformat->flags & AVFMT_TS_DISCONT;
    if (byPosition || seekBefore(start) == Seeking::Failed)
        av_seek_frame(&m_container->format(), -1, 0, AVSEEK_FLAG_BYTE);
    avcodec_flush_buffers(m_codec.get());
    m_awaitingKey = false;
}

FramePointer VideoReader::decodeTowards(int64_t earliest, int64_t latest)
{
    FramePointer previous, frame(av_frame_alloc());
    while (frame) {
        const int code = avcodec_receive_frame(m_codec.get(), frame.get());
        if (code == AVERROR(EAGAIN)) {
            if (feed(earliest) == Feeding::End)
                avcodec_send_packet(m_codec.get(), nullptr);
            continue;
        }
        if (code < 0)
            break;
        const int64_t shown = frame->best_effort_timestamp;
        if (shown == AV_NOPTS_VALUE || shown >= earliest)
            return previous && shown > latest ? std::move(previous) : std::move(frame);
        previous = std::move(frame);
        frame.reset(av_frame_alloc());
    }
    return previous;
}

VideoReader::Feeding VideoReader::feed(int64_t earliest)
{
    while (av_read_frame(&m_container->format(), m_packet.get()) >= 0) {
        const bool ours = m_packet->stream_index == m_stream->index;
        int code = AVERROR(EAGAIN);
        m_awaitingKey = m_awaitingKey && !(ours && (m_packet->flags & AV_PKT_FLAG_KEY));
        if (ours && !m_awaitingKey) {
            // Frames that no other frame needs and that end before the wanted time are not decoded at all.
            const bool passed = m_packet->pts != AV_NOPTS_VALUE && m_packet->duration > 0 &&
                                m_packet->pts + m_packet->duration < earliest;
            m_codec->skip_frame = passed ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
            code = avcodec_send_packet(m_codec.get(), m_packet.get());
            if (code < 0)
                m_problem = errorText(code);
        }
        av_packet_unref(m_packet.get());
        if (code >= 0)
            return Feeding::Fed;
    }
    return Feeding::End;
}

} // namespace cratewell::decode

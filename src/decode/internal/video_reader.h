#pragma once

#include "decode/internal/film_info.h"
#include "decode/internal/media_container.h"
#include "decode/internal/orientation.h"

namespace cratewell::decode {

// The first real video stream of a file (cover art does not count), decoded by one thread.
class VideoReader
{
public:
    // The descriptor is borrowed for the life of the reader.
    static Decoded<std::unique_ptr<VideoReader>> open(int descriptor);

    MediaInfo info() const { return filmInfo(*m_container, *m_stream); }
    Orientation orientation() const;
    // Width over height of one stored pixel of this frame.
    double pixelAspect(AVFrame *frame) const;

    // The cheapest frame within 0.1 s of a time (seconds from the beginning of the file); where there is
    // none so near, the one on screen at that time, and past the end the last one.
    Decoded<FramePointer> frameNear(double seconds);

private:
    VideoReader() = default;

    enum class Seeking { Found, Failed };
    Seeking seekBefore(int64_t timestamp);
    void rewind(int64_t start);
    // Null when not a single frame could be decoded from here on.
    FramePointer decodeTowards(int64_t earliest, int64_t latest);
    enum class Feeding { Fed, End };
    Feeding feed(int64_t earliest);

    std::unique_ptr<MediaContainer> m_container;
    CodecPointer m_codec;
    PacketPointer m_packet;
    AVStream *m_stream = nullptr;
    bool m_awaitingKey = false; // since a seek that may have landed between key frames
    std::string m_problem;      // of the newest packet that could not be decoded
};

} // namespace cratewell::decode

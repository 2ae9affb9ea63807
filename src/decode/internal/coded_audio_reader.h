#pragma once

#include "decode/audio_reader.h"
#include "decode/internal/media_container.h"

namespace cratewell::decode {

// Sound that a decoder of FFmpeg has to unpack. Packets it cannot decode are left out.
class CodedAudioReader : public AudioReader
{
public:
    static Decoded<std::unique_ptr<AudioReader>> create(std::unique_ptr<MediaContainer> container,
                                                        AVStream *stream);

    int sampleRate() const override { return m_stream->codecpar->sample_rate; }
    int channels() const override { return m_stream->codecpar->ch_layout.nb_channels; }
    int64_t length() const override;
    Length lengthIs() const override;
    Decoded<void> seek(int64_t frame) override;
    Decoded<int64_t> skip(int64_t count) override;
    Decoded<int> read(float *const *planes, int count) override;

private:
    CodedAudioReader() = default;
    enum class Step { Frame, End };
    Step decodeFrame();
    void feed();
    // Of the sound that is decoded and not used yet, decoding more when there is none; 0 at the end.
    int ready(int64_t wanted);
    void use(int frames);
    // Of the decoded frame, in frames from the beginning of the sound.
    std::optional<int64_t> timeOfFrame() const;
    int64_t toFrames(int64_t ticks) const;
    int64_t beginning() const; // in ticks of the stream

    std::unique_ptr<MediaContainer> m_container;
    AVStream *m_stream = nullptr;
    CodecPointer m_codec;
    PacketPointer m_packet;
    FramePointer m_frame;
    int m_used = 0;             // of the decoded frame
    int64_t m_next = 0;         // the frame that the next read begins with
    int64_t m_end = INT64_MAX;  // nothing is given from here on
    bool m_seekPending = false; // m_next is where to go; the decoder is not there yet
    bool m_decodedAnything = false;
};

} // namespace cratewell::decode

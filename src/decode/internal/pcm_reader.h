#pragma once

#include "decode/audio_reader.h"
#include "decode/internal/media_container.h"
#include "decode/internal/sample_conversion.h"

namespace cratewell::decode {

// Sound whose samples lie in the file as they are: read at their places, without FFmpeg once the header has
// told where that is.
class PcmReader : public AudioReader
{
public:
    // Null when the samples are coded, or their places are not known for certain.
    static std::unique_ptr<PcmReader> create(MediaContainer &container, const AVStream &stream);

    int sampleRate() const override { return m_sampleRate; }
    int channels() const override { return m_channels; }
    int64_t length() const override { return m_length; }
    Length lengthIs() const override { return Length::Known; }
    Decoded<void> seek(int64_t frame) override;
    Decoded<int64_t> skip(int64_t count) override;
    Decoded<int> read(float *const *planes, int count) override;

private:
    // Frames that lie one after the other.
    struct Run
    {
        int64_t firstFrame = 0;
        int64_t frames = 0;
        int64_t position = 0; // in the file, in bytes
    };

    PcmReader(int descriptor, const AVCodecParameters &parameters, SampleKind kind);
    void findSingleRun(MediaContainer &container, const AVStream &stream, int64_t fileSize);
    void findIndexedRuns(const AVStream &stream, int64_t fileSize);
    void addRun(int64_t position, int64_t frames, int64_t fileSize);
    // Null when they cannot be read. Valid until the next call.
    const uint8_t *bytesAt(int64_t position, int64_t count);

    int m_descriptor;
    int m_sampleRate;
    int m_channels;
    SampleKind m_kind;
    int m_frameBytes;
    std::vector<Run> m_runs; // without gaps in time
    int64_t m_length = 0;
    int64_t m_frame = 0; // the next to be read
    size_t m_run = 0;    // where it lies
    // A piece of the file.
    std::vector<uint8_t> m_buffer;
    int64_t m_bufferBegin = 0;
    int64_t m_bufferEnd = 0;
};

} // namespace cratewell::decode

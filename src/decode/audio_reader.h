#pragma once

#include "decode/picture.h"

#include <memory>
#include <optional>

namespace cratewell::decode {

// The first sound of a file as planar float (full scale is 1, more is possible, never a NaN or infinity) at
// the file's own rate, frame by frame from any place; a frame is one sample of each channel. One thread at a
// time; calls block on the disk and the decoder.
class AudioReader
{
public:
    // The descriptor of a regular file is borrowed for the life of the reader.
    static Decoded<std::unique_ptr<AudioReader>> open(int descriptor);
    virtual ~AudioReader() = default;

    virtual int sampleRate() const = 0; // above 0
    virtual int channels() const = 0;   // above 0
    // In frames; 0 when unknown. When it is told, what can be read differs only where the file is damaged.
    virtual int64_t length() const = 0;
    enum class Length { Known, Estimated };
    virtual Length lengthIs() const = 0;

    // The next read begins with this frame, counted from the beginning of the sound.
    virtual Decoded<void> seek(int64_t frame) = 0;
    // Passes over as many frames; over fewer at the end of the sound only. Costs less than reading them.
    virtual Decoded<int64_t> skip(int64_t count) = 0;
    // Fills as many frames of each channel's plane; fewer at the end of the sound only.
    virtual Decoded<int> read(float *const *planes, int count) = 0;
};

} // namespace cratewell::decode

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
    // In frames as the container tells it; 0 when unknown. What can be read may differ, unless every frame
    // has a place of its own in the file.
    virtual int64_t length() const = 0;
    // Samples are stored as they are: any frame is read at the cost of reading it, and the length is true.
    virtual bool isRandomAccess() const = 0;

    // The next read begins with this frame, counted from the beginning of the sound.
    virtual Decoded<void> seek(int64_t frame) = 0;
    // Fills as many as `count` frames of each channel's plane; fewer at the end of the sound only, where it
    // is 0.
    virtual Decoded<int> read(float *const *planes, int count) = 0;
};

} // namespace cratewell::decode

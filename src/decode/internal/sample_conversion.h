#pragma once

#include "decode/internal/ffmpeg_handles.h"

#include <optional>

namespace cratewell::decode {

// How one sample lies in memory; numbers are signed unless said.
enum class SampleLayout { Unsigned8, Signed8, Signed16, Signed24, Signed32, Signed64, Float32, Float64 };
enum class ByteOrder { Native, Swapped };

struct SampleKind
{
    SampleLayout layout = SampleLayout::Signed16;
    ByteOrder order = ByteOrder::Native;

    // Nothing for what is not stored as plain numbers.
    static std::optional<SampleKind> ofPcm(AVCodecID codec);
    static std::optional<SampleKind> ofDecoded(AVSampleFormat format);

    int bytes() const;
};

// Samples that are `stride` bytes apart, as floats of full scale 1. What is no finite number becomes 0.
void toFloats(SampleKind kind, const uint8_t *from, int64_t stride, float *to, int count);

} // namespace cratewell::decode

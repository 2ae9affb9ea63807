#include "decode/internal/sample_conversion.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace cratewell::decode {

namespace {

constexpr ByteOrder littleEndian =
    std::endian::native == std::endian::little ? ByteOrder::Native : ByteOrder::Swapped;
constexpr ByteOrder bigEndian =
    std::endian::native == std::endian::big ? ByteOrder::Native : ByteOrder::Swapped;

template<typename Number, ByteOrder order> Number numberAt(const uint8_t *from)
{
    std::array<uint8_t, sizeof(Number)> bytes;
    std::memcpy(bytes.data(), from, bytes.size());
    if constexpr (order == ByteOrder::Swapped)
        std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<Number>(bytes);
}

template<typename Number> float scaled(Number number)
{
    if constexpr (std::is_same_v<Number, uint8_t>)
        return float(int(number) - 128) / 128;
    else if constexpr (std::is_integral_v<Number>)
        return float(double(number) * std::ldexp(1.0, 1 - int(sizeof(Number)) * 8));
    else
        return std::isfinite(float(number)) ? float(number) : 0.0F;
}

template<typename Number, ByteOrder order>
void convert(const uint8_t *from, int64_t stride, float *to, int count)
{
    for (int i = 0; i < count; ++i, from += stride)
        to[i] = scaled(numberAt<Number, order>(from));
}

template<ByteOrder order> void convert24(const uint8_t *from, int64_t stride, float *to, int count)
{
    constexpr bool littleFirst = order == littleEndian;
    for (int i = 0; i < count; ++i, from += stride) {
        const uint32_t high = from[littleFirst ? 2 : 0], low = from[littleFirst ? 0 : 2];
        const auto number = int32_t(high << 24 | uint32_t{from[1]} << 16 | low << 8);
        to[i] = float(number) / 2147483648.0F;
    }
}

template<ByteOrder order>
void convertOrdered(SampleLayout layout, const uint8_t *from, int64_t stride, float *to, int count)
{
    switch (layout) {
    case SampleLayout::Unsigned8:
        return convert<uint8_t, order>(from, stride, to, count);
    case SampleLayout::Signed8:
        return convert<int8_t, order>(from, stride, to, count);
    case SampleLayout::Signed16:
        return convert<int16_t, order>(from, stride, to, count);
    case SampleLayout::Signed24:
        return convert24<order>(from, stride, to, count);
    case SampleLayout::Signed32:
        return convert<int32_t, order>(from, stride, to, count);
    case SampleLayout::Signed64:
        return convert<int64_t, order>(from, stride, to, count);
    case SampleLayout::Float32:
        return convert<float, order>(from, stride, to, count);
    case SampleLayout::Float64:
        return convert<double, order>(from, stride, to, count);
    }
}

} // namespace

std::optional<SampleKind> SampleKind::ofPcm(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_PCM_U8:
        return SampleKind{SampleLayout::Unsigned8, ByteOrder::Native};
    case AV_CODEC_ID_PCM_S8:
        return SampleKind{SampleLayout::Signed8, ByteOrder::Native};
    case AV_CODEC_ID_PCM_S16LE:
        return SampleKind{SampleLayout::Signed16, littleEndian};
    case AV_CODEC_ID_PCM_S16BE:
        return SampleKind{SampleLayout::Signed16, bigEndian};
    case AV_CODEC_ID_PCM_S24LE:
        return SampleKind{SampleLayout::Signed24, littleEndian};
    case AV_CODEC_ID_PCM_S24BE:
        return SampleKind{SampleLayout::Signed24, bigEndian};
    case AV_CODEC_ID_PCM_S32LE:
        return SampleKind{SampleLayout::Signed32, littleEndian};
    case AV_CODEC_ID_PCM_S32BE:
        return SampleKind{SampleLayout::Signed32, bigEndian};
    case AV_CODEC_ID_PCM_F32LE:
        return SampleKind{SampleLayout::Float32, littleEndian};
    case AV_CODEC_ID_PCM_F32BE:
        return SampleKind{SampleLayout::Float32, bigEndian};
    case AV_CODEC_ID_PCM_F64LE:
        return SampleKind{SampleLayout::Float64, littleEndian};
    case AV_CODEC_ID_PCM_F64BE:
        return SampleKind{SampleLayout::Float64, bigEndian};
    default:
        return std::nullopt;
    }
}

std::optional<SampleKind> SampleKind::ofDecoded(AVSampleFormat format)
{
    switch (av_get_packed_sample_fmt(format)) {
    case AV_SAMPLE_FMT_U8:
        return SampleKind{SampleLayout::Unsigned8, ByteOrder::Native};
    case AV_SAMPLE_FMT_S16:
        return SampleKind{SampleLayout::Signed16, ByteOrder::Native};
    case AV_SAMPLE_FMT_S32:
        return SampleKind{SampleLayout::Signed32, ByteOrder::Native};
    case AV_SAMPLE_FMT_S64:
        return SampleKind{SampleLayout::Signed64, ByteOrder::Native};
    case AV_SAMPLE_FMT_FLT:
        return SampleKind{SampleLayout::Float32, ByteOrder::Native};
    case AV_SAMPLE_FMT_DBL:
        return SampleKind{SampleLayout::Float64, ByteOrder::Native};
    default:
        return std::nullopt;
    }
}

int SampleKind::bytes() const
{
    switch (layout) {
    case SampleLayout::Unsigned8:
    case SampleLayout::Signed8:
        return 1;
    case SampleLayout::Signed16:
        return 2;
    case SampleLayout::Signed24:
        return 3;
    case SampleLayout::Signed32:
    case SampleLayout::Float32:
        return 4;
    case SampleLayout::Signed64:
    case SampleLayout::Float64:
        break;
    }
    return 8;
}

void toFloats(SampleKind kind, const uint8_t *from, int64_t stride, float *to, int count)
{
    if (kind.order == ByteOrder::Native)
        convertOrdered<ByteOrder::Native>(kind.layout, from, stride, to, count);
    else
        convertOrdered<ByteOrder::Swapped>(kind.layout, from, stride, to, count);
}

} // namespace cratewell::decode

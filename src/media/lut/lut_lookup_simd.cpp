#include "media/lut/lut_lookup.h"

#include <algorithm>
#include <array>
#include <cstring>

// This file is compiled once for each kind of machine.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "media/lut/lut_lookup_simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace cratewell {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

void lookUpSteps(const QuantizedGrid &grid, PixelRows<const std::uint8_t> source,
                 PixelRows<std::uint8_t> target, ChannelOrder order, AlphaKind alpha)
{
    applyScalar(grid, source, target, order, alpha);
}

void lookUpFloats(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target,
                  AlphaKind alpha)
{
    applyScalar(grid, source, target, alpha);
}

#else

namespace hn = hwy::HWY_NAMESPACE;
using std::int16_t;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

// Vectors of bytes, in blocks of 16: a block holds four pixels, or the two neighbours along red of one.
#if HWY_HAVE_SCALABLE
using Bytes = hn::FixedTag<uint8_t, 16>;
#else
using Bytes = hn::ScalableTag<uint8_t>;
#endif
using Words = hn::Repartition<uint16_t, Bytes>;
using Steps = hn::Repartition<int16_t, Bytes>;
using Pixels = hn::Repartition<uint32_t, Bytes>;
using Reals = hn::Repartition<float, Bytes>;
using Wholes = hn::Repartition<std::int32_t, Bytes>;
using Pairs = hn::Repartition<std::uint64_t, Bytes>;
using ByteVector = hn::Vec<Bytes>;
using StepVector = hn::Vec<Steps>;
using PixelVector = hn::Vec<Pixels>;
constexpr uint32_t pointBytes = 6;
constexpr size_t pixelsPerVector = hn::MaxLanes(Pixels());

// The same 16 byte indices for each block.
ByteVector everyBlock(const std::array<uint8_t, 16> &indices)
{
    return hn::LoadDup128(Bytes(), indices.data());
}

// Two neighbours along red for the pixel at one place of each block.
template<typename D> HWY_INLINE hn::Vec<D> loadPairs(D d, const uint8_t *points, const uint32_t *offsets)
{
    if constexpr (hn::MaxLanes(d) == 16) {
        return hn::LoadU(d, points + *offsets);
    } else {
        const hn::Half<D> half;
        const size_t pixels = hn::MaxLanes(half) / 4;
        return hn::Combine(d, loadPairs(half, points, offsets + pixels), loadPairs(half, points, offsets));
    }
}

HWY_INLINE StepVector between(StepVector from, StepVector to, StepVector part)
{
    return hn::Add(from, hn::MulFixedPoint15(hn::Sub(to, from), part));
}

// Looks a vector of pixels up after the other, all of one table.
class StepLookup
{
public:
    StepLookup(const QuantizedGrid &grid, ChannelOrder order)
        : m_points(reinterpret_cast<const uint8_t *>(grid.points())),
          m_rowOffset(pointBytes * uint32_t(grid.size())), m_planeOffset(m_rowOffset * uint32_t(grid.size())),
          m_places(hn::Set(Pixels(), grid.placesPerStep())),
          m_lastPlace(hn::Set(Pixels(), (uint32_t(grid.size() - 1) << 15) - 1)),
          m_rounding(hn::Set(Steps(), int16_t(1 << (15 - grid.shift()))))
    {
        std::array<uint8_t, 16> swap{};
        std::array<uint8_t, 16> join{};
        constexpr uint8_t nowhere = 0x80;
        for (uint8_t pixel = 0; pixel < 4; ++pixel) {
            for (uint8_t channel = 0; channel < 4; ++channel) {
                const bool swapped = order == ChannelOrder::BGRA && channel != 3;
                const auto from = uint8_t(swapped ? 2 - channel : channel);
                const auto at = size_t(4 * pixel + channel);
                swap[at] = uint8_t(4 * pixel + from);
                join[at] = channel == 3 ? nowhere : uint8_t(2 * (4 * (pixel & 1) + from) + (pixel >> 1));
            }
        }
        m_swap = everyBlock(swap);
        m_join = everyBlock(join);
    }

    template<AlphaKind alphaKind> HWY_INLINE void lookUp(const uint8_t *from, uint8_t *to) const
    {
        const PixelVector source = hn::BitCast(Pixels(), hn::LoadU(Bytes(), from));
        const PixelVector alpha = hn::ShiftRight<24>(source);
        if constexpr (alphaKind == AlphaKind::Premultiplied) {
            if (hn::AllTrue(Pixels(), hn::Eq(alpha, hn::Zero(Pixels()))))
                return hn::StoreU(hn::BitCast(Bytes(), source), Bytes(), to);
            if (!hn::AllTrue(Pixels(), hn::Eq(alpha, hn::Set(Pixels(), 255))))
                return lookUpTransparent(source, alpha, to);
        }
        const Channels channels = channelsOf(source);
        StepVector low;
        StepVector high;
        lookUp(channels, low, high);
        store(low, high, source, to);
    }

private:
    struct Channels
    {
        PixelVector red;
        PixelVector green;
        PixelVector blue;
    };

    HWY_INLINE Channels channelsOf(PixelVector pixels) const
    {
        const PixelVector swapped =
            hn::BitCast(Pixels(), hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), m_swap));
        const PixelVector byte = hn::Set(Pixels(), 255);
        return {hn::And(swapped, byte), hn::And(hn::ShiftRight<8>(swapped), byte),
                hn::And(hn::ShiftRight<16>(swapped), byte)};
    }

    HWY_INLINE PixelVector place(PixelVector channel) const
    {
        return hn::Min(hn::ShiftRight<7>(hn::Mul(channel, m_places)), m_lastPlace);
    }

    static HWY_INLINE StepVector spread(PixelVector parts, const std::array<uint8_t, 16> &indices)
    {
        return hn::BitCast(Steps(), hn::TableLookupBytes(hn::BitCast(Bytes(), parts), everyBlock(indices)));
    }

    // Along blue and green, for the pixel at one place of each block: both its neighbours along red.
    template<uint8_t pixel>
    HWY_INLINE StepVector acrossPlane(const uint32_t *offsets, PixelVector greenPart,
                                      PixelVector bluePart) const
    {
        constexpr uint8_t a = 4 * pixel;
        constexpr uint8_t b = a + 1;
        constexpr std::array<uint8_t, 16> indices{a, b, a, b, a, b, a, b, a, b, a, b, a, b, a, b};
        const StepVector green = spread(greenPart, indices);
        const StepVector blue = spread(bluePart, indices);
        const uint8_t *points = m_points;
        const auto load = [&](const uint8_t *corner) {
            return hn::BitCast(Steps(), loadPairs(Bytes(), corner, offsets + pixel));
        };
        const StepVector near = between(load(points), load(points + m_planeOffset), blue);
        points += m_rowOffset;
        const StepVector far = between(load(points), load(points + m_planeOffset), blue);
        return between(near, far, green);
    }

    // Along red, for two pixels of each block; in steps, clamped.
    template<uint8_t pixel>
    HWY_INLINE StepVector alongRed(StepVector first, StepVector second, PixelVector redPart) const
    {
        // From three words for each of both neighbours to four.
        constexpr std::array<uint8_t, 16> halves{0, 1, 2, 3, 4, 5, 6, 7, 6, 7, 8, 9, 10, 11, 12, 13};
        const auto pairs = [&](StepVector v) {
            return hn::BitCast(Pairs(), hn::TableLookupBytes(hn::BitCast(Bytes(), v), everyBlock(halves)));
        };
        const StepVector low =
            hn::BitCast(Steps(), hn::InterleaveLower(Pairs(), pairs(first), pairs(second)));
        const StepVector high =
            hn::BitCast(Steps(), hn::InterleaveUpper(Pairs(), pairs(first), pairs(second)));
        const StepVector color = between(low, high, spread(redPart, ofTwoPixels<pixel>()));
        const StepVector rounded = hn::MulFixedPoint15(color, m_rounding);
        return hn::Min(hn::Max(rounded, hn::Zero(Steps())), hn::Set(Steps(), 255));
    }

    template<uint8_t pixel> static constexpr std::array<uint8_t, 16> ofTwoPixels()
    {
        constexpr uint8_t a = 4 * pixel;
        constexpr uint8_t b = a + 4;
        return {a, a + 1, a, a + 1, a, a + 1, a, a + 1, b, b + 1, b, b + 1, b, b + 1, b, b + 1};
    }

    // The first two pixels of each block into `low`, the others into `high`; a word for each channel.
    HWY_INLINE void lookUp(const Channels &channels, StepVector &low, StepVector &high) const
    {
        const PixelVector red = place(channels.red);
        const PixelVector green = place(channels.green);
        const PixelVector blue = place(channels.blue);
        const PixelVector offset =
            hn::Add(hn::Mul(hn::ShiftRight<15>(red), hn::Set(Pixels(), pointBytes)),
                    hn::Add(hn::Mul(hn::ShiftRight<15>(green), hn::Set(Pixels(), m_rowOffset)),
                            hn::Mul(hn::ShiftRight<15>(blue), hn::Set(Pixels(), m_planeOffset))));
        HWY_ALIGN uint32_t offsets[pixelsPerVector];
        hn::Store(offset, Pixels(), offsets);

        const PixelVector part = hn::Set(Pixels(), 0x7FFF);
        const PixelVector greenPart = hn::And(green, part);
        const PixelVector bluePart = hn::And(blue, part);
        const PixelVector redPart = hn::And(red, part);
        low = alongRed<0>(acrossPlane<0>(offsets, greenPart, bluePart),
                          acrossPlane<1>(offsets, greenPart, bluePart), redPart);
        high = alongRed<2>(acrossPlane<2>(offsets, greenPart, bluePart),
                           acrossPlane<3>(offsets, greenPart, bluePart), redPart);
    }

    // With the alpha of `source`.
    HWY_INLINE void store(StepVector low, StepVector high, PixelVector source, uint8_t *to) const
    {
        const ByteVector both = hn::BitCast(Bytes(), hn::Or(low, hn::ShiftLeft<8>(high)));
        const PixelVector colors = hn::BitCast(Pixels(), hn::TableLookupBytesOr0(both, m_join));
        const PixelVector alpha = hn::And(source, hn::Set(Pixels(), 0xFF000000U));
        hn::StoreU(hn::BitCast(Bytes(), hn::Or(colors, alpha)), Bytes(), to);
    }

    static HWY_INLINE hn::Vec<Reals> realsOf(PixelVector v)
    {
        return hn::ConvertTo(Reals(), hn::BitCast(Wholes(), v));
    }

    static HWY_INLINE StepVector multiplied(StepVector color, StepVector alpha)
    {
        const auto words = [](StepVector v) { return hn::BitCast(Words(), v); };
        const hn::Vec<Words> product = hn::Add(hn::Mul(words(color), words(alpha)), hn::Set(Words(), 128));
        return hn::BitCast(Steps(), hn::ShiftRight<8>(hn::Add(product, hn::ShiftRight<8>(product))));
    }

    void lookUpTransparent(PixelVector source, PixelVector alpha, uint8_t *to) const
    {
        const hn::Vec<Reals> opacity = hn::Max(realsOf(alpha), hn::Set(Reals(), 1));
        const auto straight = [&](PixelVector channel) {
            const hn::Vec<Reals> doubled = hn::Mul(realsOf(channel), hn::Set(Reals(), 510));
            const hn::Vec<Reals> value = hn::Div(hn::Add(doubled, opacity), hn::Add(opacity, opacity));
            return hn::BitCast(Pixels(), hn::ConvertTo(Wholes(), hn::Min(value, hn::Set(Reals(), 255))));
        };
        Channels channels = channelsOf(source);
        channels = {straight(channels.red), straight(channels.green), straight(channels.blue)};
        StepVector low;
        StepVector high;
        lookUp(channels, low, high);
        low = multiplied(low, spread(alpha, ofTwoPixels<0>()));
        high = multiplied(high, spread(alpha, ofTwoPixels<2>()));

        HWY_ALIGN uint8_t result[4 * pixelsPerVector];
        store(low, high, source, result);
        const auto unseen = hn::Eq(alpha, hn::Zero(Pixels()));
        const PixelVector colors = hn::BitCast(Pixels(), hn::Load(Bytes(), result));
        hn::StoreU(hn::BitCast(Bytes(), hn::IfThenElse(unseen, source, colors)), Bytes(), to);
    }

    const uint8_t *m_points;
    uint32_t m_rowOffset;   // bytes from one green to the next
    uint32_t m_planeOffset; // and one blue to the next
    PixelVector m_places;
    PixelVector m_lastPlace;
    StepVector m_rounding;
    ByteVector m_swap; // to red, green, blue, alpha
    ByteVector m_join; // from the words of two vectors to colors in the pixels' order
};

template<AlphaKind alpha>
void lookUpStepRows(const StepLookup &lookup, PixelRows<const uint8_t> source, PixelRows<uint8_t> target)
{
    constexpr size_t vectorBytes = 4 * pixelsPerVector;
    const size_t rowBytes = 4 * size_t(source.width);
    for (int y = 0; y < source.height; ++y) {
        const uint8_t *from = source.row(y);
        uint8_t *to = target.row(y);
        size_t at = 0;
        for (; at + vectorBytes <= rowBytes; at += vectorBytes)
            lookup.lookUp<alpha>(from + at, to + at);
        if (at < rowBytes) {
            std::array<uint8_t, vectorBytes> rest{};
            std::memcpy(rest.data(), from + at, rowBytes - at);
            lookup.lookUp<alpha>(rest.data(), rest.data());
            std::memcpy(to + at, rest.data(), rowBytes - at);
        }
    }
}

void lookUpSteps(const QuantizedGrid &grid, PixelRows<const uint8_t> source, PixelRows<uint8_t> target,
                 ChannelOrder order, AlphaKind alpha)
{
    const StepLookup lookup(grid, order);
    if (alpha == AlphaKind::Premultiplied)
        lookUpStepRows<AlphaKind::Premultiplied>(lookup, source, target);
    else
        lookUpStepRows<AlphaKind::Straight>(lookup, source, target);
}

using Color = hn::FixedTag<float, 4>;
using ColorVector = hn::Vec<Color>;

HWY_INLINE ColorVector between(ColorVector from, ColorVector to, ColorVector part)
{
    return hn::MulAdd(part, hn::Sub(to, from), from);
}

HWY_INLINE ColorVector lookUpColor(const Lut3DGrid &grid, ColorVector color)
{
    const hn::RebindToSigned<Color> wholes;
    const ColorVector zero = hn::Zero(Color());
    // NaN is not above 0.
    const ColorVector clamped =
        hn::Min(hn::IfThenElse(hn::Gt(color, zero), color, zero), hn::Set(Color(), 1));
    const ColorVector position = hn::Mul(clamped, hn::Set(Color(), float(grid.size - 1)));
    const auto below = hn::Min(hn::ConvertTo(wholes, position), hn::Set(wholes, grid.size - 2));
    const ColorVector part = hn::Sub(position, hn::ConvertTo(Color(), below));
    HWY_ALIGN std::int32_t indices[4];
    hn::Store(below, wholes, indices);

    const auto size = size_t(grid.size);
    const float *points =
        grid.points + 4 * ((size_t(indices[2]) * size + size_t(indices[1])) * size + size_t(indices[0]));
    const ColorVector bluePart = hn::Broadcast<2>(part);
    const auto alongBlue = [&](size_t offset) {
        const float *point = points + 4 * offset;
        return between(hn::LoadU(Color(), point), hn::LoadU(Color(), point + 4 * size * size), bluePart);
    };
    const ColorVector greenPart = hn::Broadcast<1>(part);
    const ColorVector first = between(alongBlue(0), alongBlue(size), greenPart);
    const ColorVector second = between(alongBlue(1), alongBlue(size + 1), greenPart);
    return between(first, second, hn::Broadcast<0>(part));
}

void lookUpFloats(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target,
                  AlphaKind alphaKind)
{
    const bool premultiplied = alphaKind == AlphaKind::Premultiplied;
    for (int y = 0; y < source.height; ++y) {
        const float *from = source.row(y);
        float *to = target.row(y);
        for (const float *end = from + 4 * size_t(source.width); from < end; from += 4, to += 4) {
            const ColorVector pixel = hn::LoadU(Color(), from);
            const float alpha = from[3];
            ColorVector result = pixel;
            if (!premultiplied)
                result = lookUpColor(grid, pixel);
            else if (const ColorVector scale = hn::Set(Color(), alpha); alpha > 0)
                result = hn::Mul(lookUpColor(grid, hn::Div(pixel, scale)), scale);
            hn::StoreU(result, Color(), to);
            to[3] = alpha;
        }
    }
}

#endif

} // namespace
} // namespace HWY_NAMESPACE
} // namespace cratewell
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace cratewell {

HWY_EXPORT(lookUpSteps);
HWY_EXPORT(lookUpFloats);

void lookUp(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target, AlphaKind alpha)
{
    HWY_DYNAMIC_DISPATCH(lookUpFloats)(grid, source, target, alpha);
}

void lookUp(const QuantizedGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
            ChannelOrder order, AlphaKind alpha)
{
    HWY_DYNAMIC_DISPATCH(lookUpSteps)(grid, source, target, order, alpha);
}

} // namespace cratewell
#endif

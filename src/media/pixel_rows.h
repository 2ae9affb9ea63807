#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace cratewell {

enum class ChannelOrder : std::uint8_t { RGBA, BGRA }; // in memory, byte by byte
enum class AlphaKind : std::uint8_t { Straight, Premultiplied };

// Rows of pixels of four channels each. `stride` is the distance from one row to the next in bytes, a
// multiple of the channel's alignment; negative for pictures that stand on their head.
template<typename Channel> struct PixelRows
{
    Channel *first = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;

    Channel *row(int index) const
    {
        using Byte = std::conditional_t<std::is_const_v<Channel>, const std::byte, std::byte>;
        return reinterpret_cast<Channel *>(reinterpret_cast<Byte *>(first) + stride * index);
    }
};

} // namespace cratewell

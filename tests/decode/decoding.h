#pragma once

#include "decode/still_image.h"
#include "decode/video_frame.h"
#include "made_media.h"

#include <fcntl.h>
#include <unistd.h>

namespace cratewell::test {

// Opens a file for the time of one call.
template<typename Decode> auto decodeFile(const QString &path, const Decode &decode)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    auto result = decode(descriptor);
    close(descriptor);
    return result;
}

inline decode::Decoded<decode::Picture> video(const QString &path, double fraction = 0.5, int maxSide = 640)
{
    return decodeFile(path, [&](int file) { return decode::videoFrame(file, fraction, maxSide); });
}

inline decode::Decoded<decode::Picture> still(const QString &path, int maxSide = 640)
{
    return decodeFile(path, [&](int file) { return decode::stillImage(file, maxSide); });
}

inline decode::Picture decoded(const decode::Decoded<decode::Picture> &picture)
{
    return picture ? *picture : throw std::runtime_error(picture.error());
}

// At parts of width and height.
inline QRgb pixel(const decode::Picture &picture, double x = 0.5, double y = 0.5)
{
    const auto column = size_t(x * picture.width), row = size_t(y * picture.height);
    const uint8_t *at = &picture.pixels[(row * size_t(picture.width) + column) * 4];
    return qRgba(at[2], at[1], at[0], at[3]);
}

// The middles of the four quarters as letters, top left first and row by row: "RG BY" for fourColors();
// "?" for what is none of its colors within the tolerance.
inline std::string quarters(const decode::Picture &picture, int tolerance)
{
    const auto name = [&](double x, double y) {
        for (const auto &[color, letter] :
             {std::pair(0xffff0000, 'R'), {0xff00ff00, 'G'}, {0xff0000ff, 'B'}, {0xffffff00, 'Y'}}) {
            if (isNear(pixel(picture, x, y), color, tolerance))
                return letter;
        }
        return '?';
    };
    return {name(0.25, 0.25), name(0.75, 0.25), ' ', name(0.25, 0.75), name(0.75, 0.75)};
}

} // namespace cratewell::test

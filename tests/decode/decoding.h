#pragma once

#include "decode/still_image.h"
#include "decode/video_frame.h"

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QPoint>
#include <cmath>
#include <fcntl.h>
#include <ostream>
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

inline QRgb pixel(const decode::Picture &picture, QPoint place)
{
    const uint8_t *at = &picture.pixels[(size_t(place.y()) * size_t(picture.width) + size_t(place.x())) * 4];
    return qRgba(at[2], at[1], at[0], at[3]);
}

// The middles of the four quarters as letters, top left first and row by row: "RG BY" for fourColors();
// "?" for what is none of its colors within the tolerance.
inline std::string quarters(const decode::Picture &picture, int tolerance)
{
    const auto name = [&](QRgb found) -> char {
        const std::pair<QRgb, char> colors[]{
            {0xffff0000, 'R'}, {0xff00ff00, 'G'}, {0xff0000ff, 'B'}, {0xffffff00, 'Y'}};
        for (const auto &[wanted, letter] : colors) {
            if (std::abs(qRed(found) - qRed(wanted)) <= tolerance &&
                std::abs(qGreen(found) - qGreen(wanted)) <= tolerance &&
                std::abs(qBlue(found) - qBlue(wanted)) <= tolerance && qAlpha(found) == 255)
                return letter;
        }
        return '?';
    };
    const int left = picture.width / 4, right = picture.width * 3 / 4;
    const int top = picture.height / 4, bottom = picture.height * 3 / 4;
    return {name(pixel(picture, {left, top})), name(pixel(picture, {right, top})), ' ',
            name(pixel(picture, {left, bottom})), name(pixel(picture, {right, bottom}))};
}

} // namespace cratewell::test

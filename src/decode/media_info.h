#pragma once

#include <cstdint>
#include <initializer_list>

namespace cratewell {

// What the header of a media file says, from the decoder to the card. 0 stands for what is unknown or not
// there. Plain numbers: the worker sends them, and the cache keeps them, byte by byte.
struct MediaInfo
{
    double duration = 0;  // seconds; 0 for a still
    double frameRate = 0; // of the video, on average
    int64_t frames = 0;   // length of the sound
    int32_t width = 0;    // of the video or still as stored, before any turning
    int32_t height = 0;
    uint32_t codec = 0;     // of the video: four printable characters, the first in the highest byte
    int32_t sampleRate = 0; // of the sound
    int32_t channels = 0;

    bool hasVideo() const { return codec != 0; }
    bool hasAudio() const { return sampleRate != 0; }
    // Whether a file can be like that: whoever sent this may have been taken over by one.
    bool isPossible() const
    {
        const auto isBetween = [](double low, double value, double high) {
            return value >= low && value <= high; // false for what is no number
        };
        bool printable = true;
        for (const int shift : {0, 8, 16, 24})
            printable = printable && isBetween(' ', codec >> shift & 0xff, '~');
        return (printable || codec == 0) && isBetween(0, duration, 1e9) && isBetween(0, frameRate, 1e5) &&
               frames >= 0 && width >= 0 && height >= 0 && isBetween(0, sampleRate, 1e8) &&
               isBetween(0, channels, 1024);
    }

    friend bool operator==(const MediaInfo &, const MediaInfo &) = default;
};

} // namespace cratewell

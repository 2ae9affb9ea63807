#pragma once

#include "decode/picture.h"

namespace cratewell::decode {

// What a file's header tells; 0 is unknown.
struct FileInfo
{
    double duration = 0; // seconds
    int width = 0;       // as stored, before any turning; of a still its first image
    int height = 0;
    double frameRate = 0; // on average
    // Of the first video track, as QuickTime names it: four characters, the first in the highest byte.
    uint32_t codec = 0;
    int sampleRate = 0;
    int channels = 0;
    int64_t frames = 0; // length of the sound
    bool hasVideo = false;
    bool hasAudio = false;
};

// Of a still, a video or a sound; the content decides which it is. The descriptor of a regular file is
// borrowed. Any thread; blocks.
Decoded<FileInfo> fileInfo(int descriptor);

} // namespace cratewell::decode

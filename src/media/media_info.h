#pragma once

#include <QString>
#include <QtGlobal>

namespace cratewell {

// What a media file's header tells. 0 and empty stand for what is unknown or not there.
struct MediaInfo
{
    double duration = 0; // seconds
    int width = 0;       // natural, without rotation; of a still its first image in pixels
    int height = 0;
    double frameRate = 0; // nominal
    // Four-character code of the first video track, trimmed; "?" when it is not printable.
    QString codec;
    int sampleRate = 0;
    int channels = 0;
    qint64 frames = 0; // length of the sound
    bool hasVideo = false;
    bool hasAudio = false;

    friend bool operator==(const MediaInfo &, const MediaInfo &) = default;
};

} // namespace cratewell

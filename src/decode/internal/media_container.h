#pragma once

#include "decode/internal/descriptor_input.h"
#include "decode/picture.h"

namespace cratewell::decode {

// An open media file: its streams and what the header says of them. One descriptor is one file: whatever
// further files or addresses a container names are refused.
class MediaContainer
{
public:
    // What must be known when open() returns: the video and what to say of it, or the sound. Where the header
    // says it nothing more is read, else the beginning of the file is probed.
    enum class Purpose { Film, Sound };

    // The descriptor is borrowed for the life of the container.
    static Decoded<std::unique_ptr<MediaContainer>> open(int descriptor, Purpose purpose);

    AVFormatContext &format() const { return *m_format; }
    bool isNamed(const char *name) const; // one of FFmpeg's short names of the format
    int descriptor() const { return m_input.descriptor(); }

    // Null when there is none. Cover art is no video.
    AVStream *firstVideo() const;
    AVStream *firstAudio() const;
    // Of the whole file in seconds; 0 when unknown or beyond belief.
    double duration() const;

    // All other streams are skipped from here on.
    void readOnly(const AVStream *stream);
    // On one thread, ready to be fed.
    Decoded<CodecPointer> openDecoder(const AVStream &stream, const AVCodec *codec) const;

private:
    explicit MediaContainer(int descriptor) : m_input(descriptor) {}
    bool headerKnows(Purpose purpose) const;

    DescriptorInput m_input;
    FormatPointer m_format;
};

// Headers may claim what no sound has.
bool isPossibleAudio(const AVStream &stream);

} // namespace cratewell::decode

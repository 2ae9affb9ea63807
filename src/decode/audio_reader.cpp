#include "decode/audio_reader.h"

#include "decode/internal/coded_audio_reader.h"
#include "decode/internal/pcm_reader.h"

namespace cratewell::decode {

Decoded<std::unique_ptr<AudioReader>> AudioReader::open(int descriptor)
{
    auto container = MediaContainer::open(descriptor, MediaContainer::Purpose::Sound);
    if (!container)
        return failed(container.error());
    AVStream *stream = (*container)->firstAudio();
    if (!stream)
        return failed("there is no sound in it");
    if (!isPossibleAudio(*stream))
        return failed("a sound of an impossible kind");
    if (auto reader = PcmReader::create(**container, *stream))
        return reader;
    return CodedAudioReader::create(std::move(*container), stream);
}

} // namespace cratewell::decode

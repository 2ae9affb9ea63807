#pragma once

#include "decode/media_info.h"

#include <cstddef>
#include <cstdint>

// What the program and its decoding helper say to each other. The helper inherits two descriptors: one end of
// a SOCK_SEQPACKET pair, and shared memory of `memoryBytes` whose size is sealed, so that neither side can
// make the other fault. The program sends a Request with the descriptor of the open media file beside it
// (SCM_RIGHTS); the helper puts pixels or peaks at the start of the memory and answers with a Reply. One job
// at a time; the memory belongs to the helper from Request to Reply, else to the program. End of file on the
// socket ends the helper. Both sides are built together: the structures have no version.
namespace cratewell::worker {

inline constexpr int socketDescriptor = 3;
inline constexpr int memoryDescriptor = 4;
inline constexpr size_t memoryBytes = size_t{32} << 20;
// The largest square that fits.
inline constexpr int maxPictureSide = 2896;
inline constexpr int maxPeakCount = 1 << 16;

enum class JobKind : uint32_t { VideoFrame = 1, StillImage = 2, AudioPeaks = 3, Info = 4 };
enum class JobStatus : uint32_t { Done = 1, Failed = 2 };

struct Request
{
    uint64_t job = 0;
    JobKind kind = JobKind::VideoFrame;
    int32_t maxSide = 0;           // pictures: 1 to maxPictureSide
    int32_t count = 0;             // peaks: 1 to maxPeakCount
    double fraction = 0;           // of the duration, 0 to 1; video only
    int32_t processorSeconds = 20; // that it may take; the worker ends over what takes longer
};

struct Reply
{
    uint64_t job = 0;
    JobStatus status = JobStatus::Failed;
    int32_t width = 0; // of the picture
    int32_t height = 0;
    uint32_t hasAlpha = 0; // 1 when some pixel of the picture is not opaque
    // In the memory. Pictures: width x height x 4, upright BGRA rows without gaps, premultiplied. Peaks:
    // count x 4, 32-bit floats from 0 to 1.
    uint64_t bytes = 0;
    MediaInfo info;       // of the file, whatever was requested
    char error[240] = {}; // UTF-8, ended by a zero byte
};

} // namespace cratewell::worker

#include "decode/audio_peaks.h"
#include "decode/file_info.h"
#include "decode/still_image.h"
#include "decode/video_frame.h"
#include "worker/job_channel.h"
#include "worker/limits.h"
#include "worker/trim_memory.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace cratewell;
using namespace cratewell::worker;

uint8_t *mapMemory()
{
    struct stat info = {};
    if (fstat(memoryDescriptor, &info) != 0 || info.st_size < off_t(memoryBytes))
        return nullptr;
    void *memory = mmap(nullptr, memoryBytes, PROT_READ | PROT_WRITE, MAP_SHARED, memoryDescriptor, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<uint8_t *>(memory);
}

template<typename T> const T &orThrow(const decode::Decoded<T> &decoded)
{
    if (!decoded)
        throw std::runtime_error(decoded.error());
    return *decoded;
}

void put(const decode::Picture &picture, uint8_t *memory, Reply &reply)
{
    if (picture.pixels.size() > memoryBytes)
        throw std::runtime_error("the picture is too large");
    std::memcpy(memory, picture.pixels.data(), picture.pixels.size());
    reply.width = picture.width;
    reply.height = picture.height;
    reply.hasAlpha = picture.hasAlpha ? 1 : 0;
    reply.bytes = picture.pixels.size();
    reply.info = picture.info;
}

void putPeaks(int file, int count, uint8_t *memory, Reply &reply)
{
    const auto decoded = decode::audioPeaks(file, count);
    const std::vector<float> &peaks = orThrow(decoded);
    reply.bytes = peaks.size() * sizeof(float);
    std::memcpy(memory, peaks.data(), reply.bytes);
    reply.info = decode::fileInfo(file).value_or(MediaInfo());
}

void work(const ReceivedJob &job, uint8_t *memory, Reply &reply)
{
    const Request &request = job.request();
    const bool sizeIsPossible = request.maxSide >= 1 && request.maxSide <= maxPictureSide;
    const bool countIsPossible = request.count >= 1 && request.count <= maxPeakCount;
    if (job.file() >= 0 && request.kind == JobKind::VideoFrame && sizeIsPossible)
        put(orThrow(decode::videoFrame(job.file(), request.fraction, request.maxSide)), memory, reply);
    else if (job.file() >= 0 && request.kind == JobKind::StillImage && sizeIsPossible)
        put(orThrow(decode::stillImage(job.file(), request.maxSide)), memory, reply);
    else if (job.file() >= 0 && request.kind == JobKind::AudioPeaks && countIsPossible)
        putPeaks(job.file(), request.count, memory, reply);
    else if (job.file() >= 0 && request.kind == JobKind::Info)
        reply.info = orThrow(decode::fileInfo(job.file()));
    else
        throw std::runtime_error("a request that makes no sense");
}

Reply answer(const ReceivedJob &job, uint8_t *memory)
{
    Reply reply;
    reply.job = job.request().job;
    try {
        work(job, memory, reply);
        reply.status = JobStatus::Done;
    } catch (const std::exception &problem) {
        std::snprintf(reply.error, sizeof reply.error, "%s", problem.what());
    }
    return reply;
}

} // namespace

int main()
{
    behaveAsHelper();
    uint8_t *memory = mapMemory();
    if (!memory) {
        std::fputs("This program decodes media for Cratewell, which starts it.\n", stderr);
        return 1;
    }

    prepareTrimming();
    decode::prepareStillImages();
    installSyscallFilter();

    const JobChannel channel(socketDescriptor);
    const std::chrono::milliseconds idle(300);
    for (;;) {
        if (!channel.wait(idle)) {
            trimMemory();
            channel.wait(std::chrono::milliseconds(-1));
        }
        auto job = channel.receive();
        if (!job)
            return 0;
        allowProcessorTime(std::chrono::seconds(job->request().processorSeconds));
        const Reply reply = answer(*job, memory);
        job.reset(); // whoever has the reply may unmount the disk
        if (!channel.send(reply))
            return 0;
    }
}

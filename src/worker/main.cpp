#include "decode/still_image.h"
#include "decode/video_frame.h"
#include "worker/give_back_memory.h"
#include "worker/job_channel.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__linux__)
#include <malloc.h>
#include <sys/prctl.h>
#endif

namespace {

using namespace cratewell;
using namespace cratewell::worker;

// A worker dies with the program, leaves no core file of the user's media behind, and gives way to the
// window.
void limitThisProcess()
{
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    setrlimit(RLIMIT_CORE, &none);
    setpriority(PRIO_PROCESS, 0, 5);
#if defined(__linux__)
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Pictures come and go in big blocks; from threads they should not leave arenas behind.
    mallopt(M_ARENA_MAX, 2);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
}

uint8_t *mapMemory()
{
    struct stat facts = {};
    if (fstat(memoryDescriptor, &facts) != 0 || facts.st_size < off_t(memoryBytes))
        return nullptr;
    void *memory = mmap(nullptr, memoryBytes, PROT_READ | PROT_WRITE, MAP_SHARED, memoryDescriptor, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<uint8_t *>(memory);
}

decode::Decoded<decode::Picture> decodePicture(const ReceivedJob &job)
{
    const Request &request = job.request();
    if (job.file() < 0 || request.maxSide < 1 || request.maxSide > maxPictureSide)
        return decode::failed("a request without a file or a size");
    try {
        switch (request.kind) {
        case JobKind::VideoFrame:
            return decode::videoFrame(job.file(), request.fraction, request.maxSide);
        case JobKind::StillImage:
            return decode::stillImage(job.file(), request.maxSide);
        case JobKind::AudioPeaks:
        case JobKind::Facts:
            break;
        }
    } catch (const std::exception &problem) {
        return decode::failed(problem.what());
    }
    return decode::failed("a request of an unknown kind");
}

Reply answer(const ReceivedJob &job, uint8_t *memory)
{
    Reply reply;
    reply.job = job.request().job;
    const auto picture = decodePicture(job);
    if (!picture || picture->pixels.size() > memoryBytes) {
        const std::string text = picture ? "the picture is too large" : picture.error();
        std::snprintf(reply.error, sizeof reply.error, "%s", text.c_str());
        return reply;
    }
    std::memcpy(memory, picture->pixels.data(), picture->pixels.size());
    reply.status = JobStatus::Done;
    reply.width = picture->width;
    reply.height = picture->height;
    reply.bytes = picture->pixels.size();
    reply.hasAlpha = picture->hasAlpha ? 1 : 0;
    reply.duration = picture->duration;
    return reply;
}

} // namespace

int main()
{
    limitThisProcess();
    uint8_t *memory = mapMemory();
    if (!memory) {
        std::fputs("This program decodes media for Cratewell, which starts it.\n", stderr);
        return 1;
    }

    const JobChannel channel(socketDescriptor);
    const std::chrono::milliseconds idle(300);
    for (;;) {
        if (!channel.wait(idle)) {
            giveBackMemory();
            channel.wait(std::chrono::milliseconds(-1));
        }
        const auto job = channel.receive();
        if (!job || !channel.send(answer(*job, memory)))
            return 0;
    }
}

// Speaks the worker's protocol and does what the file says instead of decoding it. Each job is noted, as the
// file's text, on a line of the file that CRATEWELL_STAND_IN_LOG names.

#include "worker/job_channel.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace cratewell::worker;

namespace {

std::string textOf(int file)
{
    char text[64] = {};
    const ssize_t got = pread(file, text, sizeof text - 1, 0);
    return std::string(text, got > 0 ? size_t(got) : 0);
}

void answerWithPeaks(const Request &request, const std::string &text, Reply &reply)
{
    void *memory = mmap(nullptr, memoryBytes, PROT_READ | PROT_WRITE, MAP_SHARED, memoryDescriptor, 0);
    auto *peaks = static_cast<float *>(memory);
    std::fill_n(peaks, request.count, 0.5F);
    reply.bytes = uint64_t(request.count) * sizeof(float);
    if (text == "few")
        reply.bytes -= sizeof(float);
    else if (text == "nan")
        peaks[request.count - 1] = std::numeric_limits<float>::quiet_NaN();
    else if (text == "loud")
        peaks[0] = 1.01F;
    munmap(memory, memoryBytes);
}

void answerWithInfo(const std::string &text, Reply &reply)
{
    reply.info = {.duration = 2, .frameRate = 25, .codec = 0x61766331};
    if (text == "endless")
        reply.info.duration = std::numeric_limits<double>::infinity();
    else if (text == "backwards")
        reply.info.frames = -1;
    else if (text == "channels")
        reply.info.channels = 1 << 30;
    else if (text == "unprintable")
        reply.info.codec = 0x01020304;
}

Reply answer(const Request &request, const std::string &text)
{
    Reply reply;
    reply.job = request.job;
    reply.status = JobStatus::Done;
    reply.width = 1;
    reply.height = 1;
    reply.bytes = 4;
    if (request.kind == JobKind::AudioPeaks)
        answerWithPeaks(request, text, reply);
    else if (request.kind == JobKind::Info)
        answerWithInfo(text, reply);
    if (text == "crash")
        raise(SIGSEGV);
    else if (text == "hang" || (text == "slow" && request.processorSeconds < 60))
        pause();
    else if (text == "huge")
        reply.width = reply.height = 1 << 20;
    else if (text == "short")
        reply.bytes = 3;
    else if (text == "unasked")
        ++reply.job;
    return reply;
}

} // namespace

int main()
{
    std::signal(SIGSEGV, SIG_DFL);
    const JobChannel channel(socketDescriptor);
    while (const auto job = channel.receive()) {
        const std::string text = textOf(job->file());
        if (const char *log = std::getenv("CRATEWELL_STAND_IN_LOG"))
            std::ofstream(log, std::ios::app) << text << '\n';
        if (text == "garbage")
            (void)!write(socketDescriptor, "?", 1);
        else if (!channel.send(answer(job->request(), text)))
            return 0;
    }
    return 0;
}

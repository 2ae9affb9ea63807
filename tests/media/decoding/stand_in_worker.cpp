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

Reply answer(const Request &request, const std::string &text)
{
    Reply reply;
    reply.job = request.job;
    reply.status = JobStatus::Done;
    reply.width = 1;
    reply.height = 1;
    reply.bytes = text == "short" ? 3 : 4;
    if (request.kind == JobKind::AudioPeaks) {
        reply.bytes = uint64_t(request.count - (text == "few" ? 1 : 0)) * sizeof(float);
        void *memory = mmap(nullptr, memoryBytes, PROT_WRITE, MAP_SHARED, memoryDescriptor, 0);
        std::fill_n(static_cast<float *>(memory), request.count,
                    text == "nan" ? std::numeric_limits<float>::quiet_NaN() : 0.5F);
        munmap(memory, memoryBytes);
    }
    if (text == "crash")
        raise(SIGSEGV);
    else if (text == "hang" || (text == "slow" && request.processorSeconds < 60))
        pause();
    else if (text == "huge")
        reply.width = reply.height = 1 << 20;
    else if (text == "unasked")
        ++reply.job;
    else if (text == "endless")
        reply.info.duration = std::numeric_limits<double>::infinity();
    return reply;
}

} // namespace

int main()
{
    std::signal(SIGSEGV, SIG_DFL);
    const JobChannel channel(socketDescriptor);
    while (const auto job = channel.receive()) {
        char content[64] = {};
        const std::string text(content,
                               size_t(std::max<ssize_t>(pread(job->file(), content, sizeof content, 0), 0)));
        if (const char *log = std::getenv("CRATEWELL_STAND_IN_LOG"))
            std::ofstream(log, std::ios::app) << text << '\n';
        if (text == "garbage")
            (void)!write(socketDescriptor, "?", 1);
        else if (!channel.send(answer(job->request(), text)))
            return 0;
    }
    return 0;
}

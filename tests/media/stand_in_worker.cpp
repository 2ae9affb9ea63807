// Speaks the worker's protocol and does what the file says instead of decoding it. Each job is noted, as the
// file's text, on a line of the file that CRATEWELL_STAND_IN_LOG names.

#include "worker/job_channel.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

using namespace cratewell::worker;

namespace {

std::string textOf(int file)
{
    char text[64] = {};
    const ssize_t got = pread(file, text, sizeof text - 1, 0);
    return std::string(text, got > 0 ? size_t(got) : 0);
}

Reply answer(const Request &request, const std::string &text)
{
    Reply reply;
    reply.job = request.job;
    reply.status = JobStatus::Done;
    reply.width = 1;
    reply.height = 1;
    reply.bytes = 4;
    if (text == "die")
        raise(SIGKILL);
    else if (text == "hang")
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

#pragma once

#include <csignal>
#include <sys/resource.h>

namespace cratewell::test {

// While this lives, no file of this process grows beyond so many bytes: the write that crosses the limit is
// short, the next one fails with EFBIG.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit &) = delete;

private:
    rlimit m_before = {};
};

} // namespace cratewell::test

#include "worker/limits.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace cratewell::worker {

// Runs in a child process, which ends with what it returns; the test itself keeps its rights.
template<typename Deed> int statusOfChild(const Deed &deed)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(deed());
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

char trueName[] = "true";
char *trueArguments[]{trueName, nullptr};
const rlimit nothing{.rlim_cur = 0, .rlim_max = 0};

bool spawns()
{
    pid_t child = 0;
    errno = posix_spawn(&child, "/bin/true", nullptr, nullptr, trueArguments, environ);
    return errno == 0;
}

// Whether it is so in another thread.
bool inThread(bool (*deed)())
{
    bool done = false;
    std::thread([&] { done = deed(); }).join();
    return done;
}

bool setsItsOwnLimits()
{
    rlimit now = {};
    return getrlimit(RLIMIT_CPU, &now) == 0 && setrlimit(RLIMIT_CPU, &now) == 0;
}

struct Attempt
{
    const char *name;
    bool (*succeeds)();
    int error = EPERM; // 0 where it has to succeed
};

const Attempt attempts[]{
    {"internet socket", [] { return socket(AF_INET, SOCK_STREAM, 0) >= 0; }},
    {"local socket", [] { return socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }},
    {"new process", [] { return fork() >= 0; }},
    {"new program", [] { return execv("/bin/true", trueArguments) == 0; }},
    {"spawned program", spawns},
    {"reading a path", [] { return open("/proc/self/status", O_RDONLY) >= 0; }},
    {"writing a path", [] { return open("/tmp", O_TMPFILE | O_WRONLY, 0600) >= 0; }},
    {"removing", [] { return unlink("/no such file") == 0; }},
    {"signal to another", [] { return kill(getppid(), 0) == 0; }},
    {"limits of another", [] { return prlimit(getppid(), RLIMIT_CORE, &nothing, nullptr) == 0; }},
    {"priority of another", [] { return setpriority(PRIO_PROCESS, id_t(getppid()), 19) == 0; }},
    {"attributes of a path", [] { return removexattr("/tmp", "user.none") == 0; }},
    {"mode of a path", [] { return syscall(452, AT_FDCWD, "/no such file", 0600, 0) == 0; }},
    {"shared memory", [] { return shmget(IPC_PRIVATE, 4096, 0600) >= 0; }},
    {"thread", [] { return inThread([] { return true; }); }, 0},
    {"filter for threads, too", [] { return inThread([] { return socket(AF_INET, SOCK_STREAM, 0) < 0; }); },
     0},
    {"own limits", setsItsOwnLimits, 0},
    {"memory", [] { return std::malloc(size_t{64} << 20) != nullptr; }, 0},
    {"descriptor it has", [] { return dup(STDERR_FILENO) >= 0; }, 0},
};

TEST(SyscallFilter, LeaveADecoderWhatItNeedsAndNothingElse)
{
    constexpr int noFilter = 255;
    for (const Attempt &attempt : attempts) {
        const int status = statusOfChild([&] {
            installSyscallFilter();
            if (prctl(PR_GET_SECCOMP) != 2)
                return noFilter;
            errno = 0;
            return attempt.succeeds() ? 0 : errno;
        });
        ASSERT_TRUE(WIFEXITED(status)) << attempt.name;
        if (WEXITSTATUS(status) == noFilter)
            GTEST_SKIP() << "this system offers no filter of system calls";
        EXPECT_EQ(WEXITSTATUS(status), attempt.error) << attempt.name;
    }
}

#if !defined(CRATEWELL_SANITIZED)
TEST(SyscallFilter, BoundTheAddressSpace)
{
    const int status = statusOfChild([] {
        installSyscallFilter();
        return mmap(nullptr, size_t{4} << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED
                   ? errno
                   : 0;
    });
    EXPECT_EQ(WEXITSTATUS(status), ENOMEM);
}
#endif

TEST(ProcessorTime, EndsAJobThatNeverEnds)
{
    const int status = statusOfChild([] {
        behaveAsHelper();
        allowProcessorTime(std::chrono::seconds(0));
        volatile bool forever = true;
        while (forever) {
        }
        return 0;
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGXCPU);
}

} // namespace cratewell::worker

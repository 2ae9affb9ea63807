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

// Runs in a child process, which ends with what it gives back; the test itself keeps its freedom.
template<typename Deed> int statusOfChild(const Deed &deed)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(deed());
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

struct Attempt
{
    const char *name;
    bool (*succeeds)();
    int error; // 0 where it has to succeed
};

const Attempt attempts[]{
    {"internet socket", [] { return socket(AF_INET, SOCK_STREAM, 0) >= 0; }, EPERM},
    {"local socket", [] { return socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }, EPERM},
    {"new process", [] { return fork() >= 0; }, EPERM},
    {"new program",
     [] {
         char name[] = "true";
         char *arguments[]{name, nullptr};
         return execv("/bin/true", arguments) == 0;
     },
     EPERM},
    {"spawned program",
     [] {
         char name[] = "true";
         char *arguments[]{name, nullptr};
         pid_t child = 0;
         errno = posix_spawn(&child, "/bin/true", nullptr, nullptr, arguments, environ);
         return errno == 0;
     },
     EPERM},
    {"reading a path", [] { return open("/proc/self/status", O_RDONLY) >= 0; }, EPERM},
    {"writing a path", [] { return open("/tmp", O_TMPFILE | O_WRONLY, 0600) >= 0; }, EPERM},
    {"removing", [] { return unlink("/no such file") == 0; }, EPERM},
    {"signal to another", [] { return kill(getppid(), 0) == 0; }, EPERM},
    {"limits of another",
     [] {
         const rlimit none{.rlim_cur = 0, .rlim_max = 0};
         return prlimit(getppid(), RLIMIT_CORE, &none, nullptr) == 0;
     },
     EPERM},
    {"priority of another", [] { return setpriority(PRIO_PROCESS, id_t(getppid()), 19) == 0; }, EPERM},
    {"attributes of a path", [] { return removexattr("/tmp", "user.none") == 0; }, EPERM},
    {"mode of a path", [] { return syscall(452, AT_FDCWD, "/no such file", 0600, 0) == 0; }, EPERM},
    {"shared memory", [] { return shmget(IPC_PRIVATE, 4096, 0600) >= 0; }, EPERM},
    {"thread",
     [] {
         bool ran = false;
         std::thread([&] { ran = true; }).join();
         return ran;
     },
     0},
    {"filter for threads, too",
     [] {
         bool denied = false;
         std::thread([&] { denied = socket(AF_INET, SOCK_STREAM, 0) < 0; }).join();
         return denied;
     },
     0},
    {"own limits",
     [] {
         rlimit now = {};
         return getrlimit(RLIMIT_CPU, &now) == 0 && setrlimit(RLIMIT_CPU, &now) == 0;
     },
     0},
    {"memory", [] { return std::malloc(size_t{64} << 20) != nullptr; }, 0},
    {"descriptor it has", [] { return dup(STDERR_FILENO) >= 0; }, 0},
};

TEST(ClosedDoors, LeaveADecoderWhatItNeedsAndNothingElse)
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
TEST(ClosedDoors, BoundTheAddressSpace)
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

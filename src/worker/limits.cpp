#include "worker/limits.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <sys/resource.h>

#if defined(__linux__)
#include <cerrno>
#include <malloc.h>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <unistd.h>
#endif

namespace cratewell::worker {

namespace {

void limit(decltype(RLIMIT_CORE) what, rlim_t most)
{
    const rlimit both{.rlim_cur = most, .rlim_max = most};
    setrlimit(what, &both);
}

#if defined(__linux__)

// Names that this system's library does not know are names that its kernel headers do not have either.
void deny(scmp_filter_ctx filter, int code, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        const int number = seccomp_syscall_resolve_name(name);
        if (number != __NR_SCMP_ERROR)
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(uint32_t(code)), number, 0);
    }
}

// Younger than the library that resolves names.
constexpr int fchmodat2 = 452; // on every architecture

void denyNumber(scmp_filter_ctx filter, int code, int number)
{
    seccomp_rule_add(filter, SCMP_ACT_ERRNO(uint32_t(code)), number, 0);
}

// What is not named stays allowed: a newer C library may need calls that nobody knows today.
int loadFilter()
{
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ALLOW),
                                                                   &seccomp_release);
    if (!filter)
        return -ENOMEM;
    seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1);

    deny(filter.get(), EPERM, {"socket", "socketpair", "connect", "bind", "listen", "accept", "accept4"});
    deny(filter.get(), EPERM,
         {"execve", "execveat", "fork", "vfork", "ptrace", "process_vm_readv", "process_vm_writev",
          "pidfd_getfd", "pidfd_open", "pidfd_send_signal"});
    deny(filter.get(), EPERM,
         {"open", "openat", "creat", "open_by_handle_at", "memfd_create", "memfd_secret"});
    deny(filter.get(), EPERM,
         {"unlink", "unlinkat",  "rename",    "renameat",    "renameat2",    "link",
          "linkat", "symlink",   "symlinkat", "mkdir",       "mkdirat",      "rmdir",
          "mknod",  "mknodat",   "chmod",     "fchmod",      "fchmodat",     "chown",
          "fchown", "lchown",    "fchownat",  "truncate",    "ftruncate",    "utime",
          "utimes", "utimensat", "futimesat", "setxattr",    "lsetxattr",    "fsetxattr",
          "chroot", "chdir",     "fchdir",    "removexattr", "lremovexattr", "fremovexattr"});
    denyNumber(filter.get(), EPERM, fchmodat2);
    deny(filter.get(), EPERM,
         {"shmget", "shmat", "shmctl", "msgget", "msgctl", "msgsnd", "msgrcv", "semget", "semctl", "semop",
          "mq_open", "mq_unlink"});
    deny(filter.get(), EPERM,
         {"setpriority", "sched_setscheduler", "sched_setparam", "sched_setattr", "sched_setaffinity",
          "ioprio_set", "process_madvise", "process_mrelease", "migrate_pages", "move_pages", "kcmp"});
    deny(filter.get(), EPERM,
         {"mount", "umount2", "pivot_root", "setns", "unshare", "bpf", "perf_event_open", "userfaultfd",
          "keyctl", "add_key", "request_key", "init_module", "finit_module"});
    // Ways around the above; whoever meets this answer takes the older call.
    deny(filter.get(), ENOSYS, {"clone3", "openat2", "io_uring_setup"});
    // Threads are made by the same call as processes.
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
                     SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0));
    // A signal to itself is how a failed assertion ends a program.
    deny(filter.get(), EPERM, {"kill", "tkill", "rt_sigqueueinfo", "rt_tgsigqueueinfo"});
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(tgkill), 1,
                     SCMP_A0(SCMP_CMP_NE, uint64_t(getpid())));
    // Limits of others are not its own to set; 0 stands for the caller.
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(prlimit64), 1, SCMP_A0(SCMP_CMP_NE, 0));
    return seccomp_load(filter.get());
}

#endif

} // namespace

void behaveAsHelper()
{
    limit(RLIMIT_CORE, 0);
    setpriority(PRIO_PROCESS, 0, 5);
#if defined(__linux__)
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // While jobs follow each other, what one frees the next takes, without asking the system for fresh pages;
    // trimMemory() returns it when they do not.
    mallopt(M_ARENA_MAX, 1); // malloc_trim() leaves what lies at the ends of further ones
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

void installSyscallFilter()
{
    // AddressSanitizer reserves terabytes of address space, and opens files to tell what it found.
#if !defined(CRATEWELL_SANITIZED)
    limit(RLIMIT_AS, rlim_t{3} << 30);
#endif
#if defined(__linux__)
    if (const int code = loadFilter(); code != 0)
        std::fprintf(stderr, "cratewell-worker: goes on without a filter of system calls: %s\n",
                     std::strerror(-code));
#endif
}

void allowProcessorTime(std::chrono::seconds time)
{
    rusage used = {};
    rlimit allowed = {};
    if (getrusage(RUSAGE_SELF, &used) != 0 || getrlimit(RLIMIT_CPU, &allowed) != 0)
        return;
    const auto soFar = rlim_t(used.ru_utime.tv_sec + used.ru_stime.tv_sec + 2); // both cut down
    allowed.rlim_cur = soFar + rlim_t(time.count());
    setrlimit(RLIMIT_CPU, &allowed);
}

} // namespace cratewell::worker

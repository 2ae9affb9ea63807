// The program's own definitions go before those of the C library, which they call.

#include "vault/files/system_calls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::test {

namespace {

thread_local const WatchedCalls::Watch *current = nullptr;

bool refuses(std::string_view call, std::string &path)
{
    const WatchedCalls::Watch *watch = std::exchange(current, nullptr);
    const int before = errno;
    const int error = (*watch)(call, path);
    errno = error ? error : before;
    current = watch;
    return error != 0;
}

// Whether the call is to fail; errno says why.
bool refused(std::string_view call, const char *path)
{
    std::string copy = current ? path : "";
    return current && refuses(call, copy);
}

bool refused(std::string_view call, int descriptor)
{
    if (!current)
        return false;
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    std::string found(path, length > 0 ? size_t(length) : 0);
    return refuses(call, found);
}

template<typename Function> Function *original(Function *, const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

mode_t modeOf(int flags, va_list arguments)
{
    return flags & O_CREAT ? mode_t(va_arg(arguments, unsigned)) : 0;
}

} // namespace

WatchedCalls::WatchedCalls(Watch watch) : m_watch(std::move(watch))
{
    current = &m_watch;
}

WatchedCalls::~WatchedCalls()
{
    current = nullptr;
}

} // namespace cratewell::test

using cratewell::test::modeOf;
using cratewell::test::original;
using cratewell::test::refused;

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static const auto next = original(&::open, "open");
    return refused("open", path) ? -1 : next(path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static const auto next = original(&::openat, "openat");
    return refused("open", path) ? -1 : next(folder, path, flags, mode);
}

DIR *opendir(const char *path)
{
    static const auto next = original(&::opendir, "opendir");
    return refused("open", path) ? nullptr : next(path);
}

dirent *readdir(DIR *folder)
{
    static const auto next = original(&::readdir, "readdir");
    return refused("readdir", ::dirfd(folder)) ? nullptr : next(folder);
}

ssize_t read(int descriptor, void *bytes, size_t count)
{
    static const auto next = original(&::read, "read");
    return refused("read", descriptor) ? -1 : next(descriptor, bytes, count);
}

ssize_t write(int descriptor, const void *bytes, size_t count)
{
    static const auto next = original(&::write, "write");
    return refused("write", descriptor) ? -1 : next(descriptor, bytes, count);
}

int fsync(int descriptor)
{
    static const auto next = original(&::fsync, "fsync");
    return refused("fsync", descriptor) ? -1 : next(descriptor);
}

int syncfs(int descriptor) noexcept
{
    static const auto next = original(&::syncfs, "syncfs");
    return refused("syncfs", descriptor) ? -1 : next(descriptor);
}

int rename(const char *from, const char *to) noexcept
{
    static const auto next = original(&::rename, "rename");
    return refused("rename", from) ? -1 : next(from, to);
}

int renameat2(int from, const char *fromPath, int to, const char *toPath, unsigned flags) noexcept
{
    static const auto next = original(&::renameat2, "renameat2");
    return refused("renameat2", fromPath) ? -1 : next(from, fromPath, to, toPath, flags);
}

int link(const char *from, const char *to) noexcept
{
    static const auto next = original(&::link, "link");
    return refused("link", from) ? -1 : next(from, to);
}

int unlink(const char *path) noexcept
{
    static const auto next = original(&::unlink, "unlink");
    return refused("unlink", path) ? -1 : next(path);
}

int rmdir(const char *path) noexcept
{
    static const auto next = original(&::rmdir, "rmdir");
    return refused("rmdir", path) ? -1 : next(path);
}

int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto next = original(&::mkdir, "mkdir");
    return refused("mkdir", path) ? -1 : next(path, mode);
}

int lstat(const char *path, struct stat *facts) noexcept
{
    static const auto next = original(&::lstat, "lstat");
    std::string actual(path);
    const bool refusal = cratewell::test::current && cratewell::test::refuses("lstat", actual);
    return refusal ? -1 : next(actual.c_str(), facts);
}

} // extern "C"

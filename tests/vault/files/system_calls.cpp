// The program's own definitions go before those of the C library, which they call.

#include "vault/files/system_calls.h"

#include <cerrno>
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

// The call of that name: refused, or made as it would have been. `shown` is its path or descriptor.
#define WATCHED_CALL(result, name, parameters, exceptions, shown, refusal, arguments)                        \
    extern "C" result name parameters exceptions                                                             \
    {                                                                                                        \
        static const auto next = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name));             \
        return cratewell::test::refused(#name, shown) ? refusal : next arguments;                            \
    }

// Whatever is made by open here is for its owner alone.
WATCHED_CALL(int, open, (const char *path, int flags, ...), , path, -1, (path, flags, 0600))
WATCHED_CALL(int, openat, (int folder, const char *path, int flags, ...), , path, -1,
             (folder, path, flags, 0600))
WATCHED_CALL(DIR *, opendir, (const char *path), , path, nullptr, (path))
WATCHED_CALL(dirent *, readdir, (DIR * folder), , ::dirfd(folder), nullptr, (folder))
WATCHED_CALL(ssize_t, read, (int file, void *bytes, size_t count), , file, -1, (file, bytes, count))
WATCHED_CALL(ssize_t, write, (int file, const void *bytes, size_t count), , file, -1, (file, bytes, count))
WATCHED_CALL(int, fsync, (int file), , file, -1, (file))
WATCHED_CALL(int, syncfs, (int file), noexcept, file, -1, (file))
WATCHED_CALL(int, rename, (const char *from, const char *to), noexcept, from, -1, (from, to))
WATCHED_CALL(int, renameat2, (int a, const char *from, int b, const char *to, unsigned flags), noexcept, from,
             -1, (a, from, b, to, flags))
WATCHED_CALL(int, link, (const char *from, const char *to), noexcept, from, -1, (from, to))
WATCHED_CALL(int, unlink, (const char *path), noexcept, path, -1, (path))
WATCHED_CALL(int, rmdir, (const char *path), noexcept, path, -1, (path))
WATCHED_CALL(int, mkdir, (const char *path, mode_t mode), noexcept, path, -1, (path, mode))

extern "C" int lstat(const char *path, struct stat *facts) noexcept
{
    static const auto next = reinterpret_cast<decltype(&::lstat)>(::dlsym(RTLD_NEXT, "lstat"));
    std::string actual(path);
    const bool refusal = cratewell::test::current && cratewell::test::refuses("lstat", actual);
    return refusal ? -1 : next(actual.c_str(), facts);
}

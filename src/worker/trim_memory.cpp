#include "worker/trim_memory.h"

#if defined(__linux__)
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <sys/mman.h>
#endif

namespace cratewell::worker {

#if defined(__linux__)

namespace {

struct Mapping
{
    uintptr_t begin = 0;
    uintptr_t end = 0;
    char access[5] = {}; // "r-xp"
    bool ofFile = false;
};

bool parse(const char *line, Mapping &mapping)
{
    uint64_t inode = 0;
    const int fields = std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s %*s %*s %" SCNu64, &mapping.begin,
                                   &mapping.end, mapping.access, &inode);
    mapping.ofFile = inode != 0;
    return fields == 4;
}

FILE *maps = nullptr; // stays open for the life of the process

} // namespace

void prepareTrimming()
{
    maps = std::fopen("/proc/self/maps", "re");
}

void trimMemory()
{
    malloc_trim(0);
    if (maps)
        std::rewind(maps);
    char line[4096 + 128];
    while (maps && std::fgets(line, sizeof line, maps)) {
        // Only code, which nobody has written to: dropping a page that differs from its file would lose it.
        Mapping mapping;
        if (parse(line, mapping) && mapping.ofFile && std::strcmp(mapping.access, "r-xp") == 0)
            madvise(reinterpret_cast<void *>(mapping.begin), mapping.end - mapping.begin, MADV_DONTNEED);
    }
}

#else

void prepareTrimming() {}

void trimMemory() {}

#endif

} // namespace cratewell::worker

#include "media/lut/cube_reader.h"
#include "support/naive_cube_reader.h"

#include <cstring>
#include <string>

// Any bytes: reads nothing outside them, and what comes of it is what a plain reading gives.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // A copy of just this size, so that reading past its end is seen.
    const auto exact = std::make_unique<char[]>(size);
    if (size > 0)
        std::memcpy(exact.get(), data, size);
    const std::optional<cratewell::CubeTable> table = cratewell::readCube({exact.get(), size});

    cratewell::test::NaiveCubeReader naive;
    const bool accepted = naive.read(std::string(exact.get(), size));
    if (accepted != table.has_value())
        __builtin_trap();
    if (!table)
        return 0;
    if (table->size != naive.size || table->title != naive.title)
        __builtin_trap();
    for (std::size_t i = 0; i < naive.points.size(); ++i) {
        const float ours = table->points[i];
        const float theirs = naive.points[i];
        if (std::memcmp(&ours, &theirs, sizeof ours) != 0 && !(ours != ours && theirs != theirs))
            __builtin_trap();
    }
    return 0;
}

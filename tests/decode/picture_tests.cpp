#include "decode/internal/orientation.h"

#include <cmath>
#include <gtest/gtest.h>

namespace cratewell::decode {

TEST(FittedInside, KeepsTheShapeAndNeverEnlarges)
{
    EXPECT_EQ(fittedInside(1920, 1080, 640), (Size{640, 360}));
    EXPECT_EQ(fittedInside(1080, 1920, 640), (Size{360, 640}));
    EXPECT_EQ(fittedInside(100, 40, 640), (Size{100, 40}));
    EXPECT_EQ(fittedInside(10000, 3, 640), (Size{640, 1}));
}

TEST(DisplayMatrix, NamesTheOrientationForWholeAndNearlyWholeTurns)
{
    const auto turned = [](double degrees, int mirror) {
        const double radians = degrees * M_PI / 180;
        const auto along = int32_t(std::cos(radians) * 65536), across = int32_t(std::sin(radians) * 65536);
        const int32_t matrix[9]{along * mirror, across * mirror, 0, -across, along, 0, 0, 0, 1 << 30};
        return Orientation::ofDisplayMatrix(matrix);
    };
    for (const double slant : {-5.0, 0.0, 5.0}) {
        EXPECT_EQ(turned(slant, 1), (Orientation{false, false, false}));
        EXPECT_EQ(turned(90 + slant, 1), (Orientation{true, true, false}));
        EXPECT_EQ(turned(180 + slant, 1), (Orientation{false, true, true}));
        EXPECT_EQ(turned(270 + slant, 1), (Orientation{true, false, true}));
        EXPECT_EQ(turned(slant, -1), (Orientation{false, true, false}));
    }
    EXPECT_EQ(Orientation::ofDisplayMatrix(nullptr), Orientation{});
}

} // namespace cratewell::decode

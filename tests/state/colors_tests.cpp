#include "state/colors.h"

#include <gtest/gtest.h>

namespace cratewell {

TEST(Colors, ReadsHexTextsAndFallsBackToTheAccent)
{
    const QColor accent(0x7b, 0x5c, 0xff);
    const QColor abc(0xaa, 0xbb, 0xcc);
    const std::pair<const char *, QColor> cases[] = {
        {"#abc", abc},
        {"  abc\n", abc},
        {"ABC", abc},
        {"#aabbcc", abc},
        {"#aa#bbcc#", abc},
        {"+aabbcc", abc},
        {"77aabbcc", abc}, // only the last six digits count
        {"00000000000000000aabbcc", abc},
        {"7", QColor(0, 0, 7)},
        {"", accent},
        {"#", accent},
        {"xyz", accent},
        {"+ab", accent}, // three characters double the sign as well
        {"-aabbcc", accent},
        {"0xaabbcc", accent},
        {"aa bbcc", accent},
        {"\xd9\xa1\xd9\xa2\xd9\xa3\xd9\xa4\xd9\xa5\xd9\xa6", accent}, // digits of another script
        {"10000000000aabbcc", accent},                                // more than 64 bits
    };
    for (const auto &[text, color] : cases)
        EXPECT_EQ(colorFromHex(QString::fromUtf8(text)), color) << text;
}

TEST(Colors, WritesWhatItReadsTruncatesChannelsAndTakesOtherSpaces)
{
    for (int value = 0; value < 256; ++value) {
        const QColor color(value, 255 - value, value / 2);
        EXPECT_EQ(colorFromHex(hexFromColor(color)), color);
    }
    EXPECT_EQ(hexFromColor(QColor(0x7b, 0x5c, 0xff)), QStringLiteral("#7B5CFF"));
    EXPECT_EQ(hexFromColor(QColor::fromRgbF(0.999f, 0.5f, 0.0f)), QStringLiteral("#FE7F00"));
    EXPECT_EQ(hexFromColor(QColor::fromHsv(0, 255, 255)), QStringLiteral("#FF0000"));
    EXPECT_EQ(hexFromColor(QColor()), QStringLiteral("#FFFFFF"));
}

} // namespace cratewell

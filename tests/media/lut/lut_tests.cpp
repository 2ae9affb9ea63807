#include "media/lut/float_text.h"
#include "media/lut/plain_float.h"
#include "media/lut.h"
#include "support/naive_cube_reader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <sys/stat.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

const std::string eightRows = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";
const std::string valid = "TITLE \"Warm Film\"\nLUT_3D_SIZE 2\n" + eightRows;

std::string replaced(std::string text, const std::string &from, const std::string &to)
{
    return text.replace(text.find(from), from.size(), to);
}

std::optional<LUT> lutFrom(const std::string &text)
{
    return LUT::fromText(QByteArrayView(text.data(), qsizetype(text.size())), u"File"_s);
}

} // namespace

TEST(LUTText, IsRefusedWhereItIsBroken)
{
    const std::pair<const char *, std::string> cases[]{
        {"empty", ""},
        {"no size", replaced(valid, "LUT_3D_SIZE 2", "")},
        {"the size's keyword alone", replaced(valid, "SIZE 2", "SIZE")},
        {"a size that is no number", replaced(valid, "SIZE 2", "SIZE 2 points")},
        {"a size with a fraction", replaced(valid, "SIZE 2", "SIZE 2.0")},
        {"a negative size", replaced(valid, "SIZE 2", "SIZE -2")},
        {"a size of 1", "LUT_3D_SIZE 1\n0 0 0\n"},
        {"a size of 0", "LUT_3D_SIZE 0\n"},
        {"a size too large for the rows", replaced(valid, "SIZE 2", "SIZE 3")},
        {"a size whose cube is 2^64", replaced(valid, "SIZE 2", "SIZE 4294967296")},
        {"a size beyond 64 bits", replaced(valid, "SIZE 2", "SIZE 18446744073709551618")},
        {"a later size that is wrong", valid + "LUT_3D_SIZE 3\n"},
        {"a row too few", replaced(valid, "0 1 1\n", "")},
        {"a row too many", valid + "0 0 0\n"},
        {"a row of two numbers", replaced(valid, "0 1 1\n", "0 1\n")},
        {"a third number that is none", replaced(valid, "0 1 1\n", "0 1 abc\n")},
        {"a number with a comma", replaced(valid, "0 1 1\n", "0 0,5 1\n")},
        {"a row in a comment", replaced(valid, "0 1 1\n", "#0 1 1\n")},
        {"a table of one dimension", "LUT_1D_SIZE 2\n" + valid},
        {"a table of one dimension behind", valid + "  lut_1d_size"},
        {"a domain without numbers", "DOMAIN_MIN r g b\n" + valid},
        {"a domain without anything", "DOMAIN_MAX\n" + valid},
        {"bytes that are no UTF-8 in a comment", "# \xFF\n" + valid},
        {"a surrogate in the title", replaced(valid, "Film", "\xED\xA0\x80")},
        {"an overlong line end", replaced(valid, "Film", "\xC0\x8A")},
        {"a sequence cut short by the end", valid + "#\xE2\x80"},
    };
    ASSERT_TRUE(lutFrom(valid));
    for (const auto &[what, text] : cases)
        EXPECT_FALSE(lutFrom(text)) << what;
}

TEST(LUTText, IsReadWithoutMindingWhatDoesNotMatter)
{
    const std::pair<const char *, std::string> cases[]{
        {"a size line in lower case", replaced(valid, "LUT_3D_SIZE", "lut_3d_size")},
        {"the last word is the size", replaced(valid, "SIZE 2", "SIZE 17 of 2")},
        {"a size with signs and zeros", replaced(valid, "SIZE 2", "SIZE +0002")},
        {"the last size counts", "LUT_3D_SIZE 99\n" + valid},
        {"the size below the rows", replaced(valid, "LUT_3D_SIZE 2\n", "") + "LUT_3D_SIZE 2"},
        {"no end of the last line", valid.substr(0, valid.size() - 1)},
        {"more words on a row", replaced(valid, "0 1 1\n", "0 1 1 9 nine # nine\n")},
        {"blanks of all kinds", replaced(valid, "0 1 1\n", "\t\u00A0 0 \t 1\t1\u3000 \n")},
        {"blanks around the size", replaced(valid, "LUT_3D_SIZE 2", "\u2003 LUT_3D_SIZE\t2 \t")},
        {"comments, empty lines and unknown words",
         replaced(valid, "0 1 1\n", " # 1 1 1\n\n \t\nLUT_3D_INPUT_RANGE 0 1\n\"\n0 1 1\n")},
        {"a byte order mark", "\uFEFF" + valid},
        {"other ways to write numbers", replaced(valid, "0 1 1\n", "-0e5 +1. 0x.8p1\n")},
        {"a domain without numbers that is replaced", "DOMAIN_MAX one\nDOMAIN_MAX 1\n" + valid},
        {"a domain without numbers below the rows", valid + "DOMAIN_MIN\n"},
    };
    const std::optional<LUT> plain = lutFrom(valid);
    ASSERT_TRUE(plain);
    for (const auto &[what, text] : cases) {
        const std::optional<LUT> lut = lutFrom(text);
        ASSERT_TRUE(lut) << what;
        EXPECT_TRUE(std::ranges::equal(lut->data(), plain->data())) << what;
        EXPECT_EQ(lut->title(), u"Warm Film"_s) << what;
    }
    for (const char *lineEnd : {"\r", "\r\n", "\v", "\f", "\u0085", "\u2028", "\u2029", "\n\r\n"}) {
        std::string text;
        for (const char c : valid)
            text += c == '\n' ? std::string(lineEnd) : std::string(1, c);
        EXPECT_TRUE(lutFrom(text)) << testing::PrintToString(lineEnd);
    }
}

TEST(LUTText, NamesItsTable)
{
    const std::pair<std::string, QString> cases[]{
        {"", u"File"_s},
        {"TITLE\n", u""_s},
        {"TITLE \"\"\n", u""_s},
        {"title\tRed # one\n", u"Red # one"_s},
        {"TITLE First\n TITLE  \"\"\"Sec\"ond\"\" \n", u"Sec\"ond"_s},
        {"TITLE \" in blanks \"\n", u" in blanks "_s},
        {"TITLED Film\n", u"File"_s},
        {"TITLE \"Größe \U0001F3A8\"\n", u"Größe 🎨"_s},
    };
    for (const auto &[line, title] : cases) {
        const std::optional<LUT> lut = lutFrom(line + "LUT_3D_SIZE 2\n" + eightRows);
        ASSERT_TRUE(lut) << line;
        EXPECT_EQ(lut->title(), title) << line;
    }
}

TEST(LUTText, ScalesItsRowsByTheDomain)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    using Color = std::array<float, 3>;
    const std::pair<std::string, Color> cases[]{
        {"", {0.5F, -1, 3}},
        {"DOMAIN_MIN 0 0 0\nDOMAIN_MAX 2 2 2\n", {0.25F, -0.5F, 1.5F}},
        {"domain_max 0.5\n", {1, -2, 6}},
        {"DOMAIN_MIN -1 none 1\nDOMAIN_MAX 3\n", {0.375F, -1, 1}},
        {"DOMAIN_MAX 1 2 3 nan\n", {0.5F, -0.5F, 1}},
        {"DOMAIN_MIN 1\n", {-0.5F / 0.0001F, -2 / 0.0001F, 2 / 0.0001F}},
        {"DOMAIN_MIN 5\n", {-4.5F / 0.0001F, -6 / 0.0001F, -2 / 0.0001F}},
        {"DOMAIN_MAX 1 nan 1\n", {0.5F, nan, 3}},
    };
    for (const auto &[domain, expected] : cases) {
        const std::optional<LUT> lut =
            lutFrom("LUT_3D_SIZE 2\n" + domain + replaced(eightRows, "1 0 0", "0.5 -1 3"));
        ASSERT_TRUE(lut) << domain;
        EXPECT_THAT(lut->sample(1, 0, 0), testing::Pointwise(testing::NanSensitiveFloatEq(), expected))
            << domain;
    }
}

TEST(LUTText, KeepsItsRowsInOrder)
{
    std::string text = "LUT_3D_SIZE 3\n";
    for (int row = 0; row < 27; ++row)
        text += std::to_string(row) + " 0.5 -1\n";
    const std::optional<LUT> lut = lutFrom(text);
    ASSERT_TRUE(lut);
    EXPECT_EQ(lut->size(), 3);
    EXPECT_THAT(lut->data().subspan(4 * 26), ElementsAre(26, 0.5F, -1, 1));
    EXPECT_THAT(lut->sample(0, 0, 0), ElementsAre(0, 0.5F, -1));
    EXPECT_EQ(lut->sample(2, 0, 0)[0], 2);
    EXPECT_EQ(lut->sample(0, 1, 0)[0], 3);
    EXPECT_EQ(lut->sample(1, 0, 2)[0], 19);
}

TEST(LUTFile, IsReadByItsNameAndKind)
{
    const QTemporaryDir folder;
    const auto location = [&](const QString &name) { return Location::fromText(folder.filePath(name)); };
    for (const QString &name :
         {u"Teal.and.orange.CUBE"_s, u"film.cube"_s, u"film.txt"_s, u".cube"_s, u"cube"_s}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_GT(file.write(replaced(valid, "TITLE", "#").c_str()), 0);
    }
    const std::optional<LUT> lut = LUT::read(location(u"Teal.and.orange.CUBE"_s));
    ASSERT_TRUE(lut);
    EXPECT_EQ(lut->title(), u"Teal.and.orange"_s);
    EXPECT_TRUE(LUT::read(location(u"film.cube"_s)));
    for (const QString &name : {u"film.txt"_s, u".cube"_s, u"cube"_s, u"missing.cube"_s})
        EXPECT_FALSE(LUT::read(location(name))) << name.toStdString();

    ASSERT_TRUE(QDir(folder.path()).mkdir(u"folder.cube"_s));
    EXPECT_FALSE(LUT::read(location(u"folder.cube"_s)));
    ASSERT_EQ(mkfifo(location(u"pipe.cube"_s).c_str(), 0600), 0);
    EXPECT_FALSE(LUT::read(location(u"pipe.cube"_s)));
    QFile huge(folder.filePath(u"huge.cube"_s));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(qint64{1} << 40));
    EXPECT_FALSE(LUT::read(location(u"huge.cube"_s)));
}

TEST(FloatText, IsTheNearestFloatHoweverItIsWritten)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<const char *, std::optional<float>> cases[]{
        {"1", 1.0F},
        {"+1", 1.0F},
        {"-.5", -0.5F},
        {"5.", 5.0F},
        {"1e3", 1000.0F},
        {"2.5E-1", 0.25F},
        {"0x10", 16.0F},
        {"-0X1.8p-1", -0.75F},
        {"inf", infinity},
        {"-Infinity", -infinity},
        {"1e39", infinity},
        {"-1e999999999999999999999", -infinity},
        {"0x1p200", infinity},
        {"1e-60", 0.0F},
        {"-0.0000001e-99999", -0.0F},
        {"0e99999", 0.0F},
        {"0x0.01p-300", 0.0F},
        {"1e-45", 1e-45F},
        {"16777217", 16777216.0F},
        {"16777219", 16777220.0F},
        {"0.000000000000000000000000000001", 1e-30F},
        {"", {}},
        {".", {}},
        {"+", {}},
        {"-", {}},
        {"+-1", {}},
        {"--1", {}},
        {"1,5", {}},
        {"1 ", {}},
        {" 1", {}},
        {"1e", {}},
        {"1e+", {}},
        {"0x", {}},
        {"0x-1", {}},
        {"0xinf", {}},
        {"1.5f", {}},
        {"infin", {}},
        {"1_000", {}},
    };
    for (const auto &[text, value] : cases) {
        const std::optional<float> found = floatFromText(text);
        ASSERT_EQ(found.has_value(), value.has_value()) << text;
        if (found) {
            EXPECT_EQ(std::bit_cast<quint32>(*found), std::bit_cast<quint32>(*value)) << text;
        }
    }
    for (const char *text : {"nan", "-NaN", "+nan(12)"})
        EXPECT_TRUE(std::isnan(floatFromText(text).value_or(0))) << text;
}

// Numbers as programs write them, and numbers that lie on and beside the middle between two floats.
TEST(FloatText, IsReadFastAsItIsReadExactly)
{
    std::mt19937 random(4);
    const auto below = [&](unsigned count) { return random() % count; };
    int fast = 0;
    constexpr int rounds = 300000;
    for (int round = 0; round < rounds; ++round) {
        char text[128] = {};
        const char *const formats[]{"%.*f", "%.*g", "%.*e", "%+.*f"};
        const double scale = std::pow(10.0, int(below(12)) - 8);
        double value = double(random()) / 4294967296.0 * scale;
        if (below(4) == 0) {
            const float at = float(value);
            value = (double(at) + double(std::nextafter(at, 10.0F))) / 2;
        }
        const int length = std::snprintf(text, sizeof text, formats[below(4)], int(below(18)), value);
        text[length] = " \n#,"[below(4)];
        float found = -7;
        const char *end = readPlainFloat(text, found);
        if (end == nullptr)
            continue;
        ++fast;
        const std::optional<float> exact = floatFromText({text, size_t(end - text)});
        ASSERT_TRUE(exact) << text;
        ASSERT_EQ(end - text, length) << text;
        ASSERT_EQ(std::bit_cast<quint32>(found), std::bit_cast<quint32>(*exact)) << text;
        ASSERT_EQ(exact, NaiveCubeReader::number({text, size_t(length)})) << text;
    }
    EXPECT_GT(fast, rounds / 2);
}

// Texts put together from what matters to the reader.
TEST(LUTText, MeansWhatAPlainReadingFinds)
{
    const std::string pieces[]{"LUT_3D_SIZE 2\n",
                               "lut_3d_size",
                               "LUT_1D_SIZE",
                               "DOMAIN_MIN",
                               "DOMAIN_MAX",
                               "TITLE",
                               "0.25 0.5 0.75\n",
                               "1 0 0 # x\r\n",
                               "\u00A0",
                               "\u2028",
                               "\u0085",
                               "\"",
                               " ",
                               "\t",
                               "\n",
                               "#",
                               "1e-3",
                               "nan",
                               "-0x1p3",
                               "0.1234567890123",
                               "\uFEFF",
                               "3",
                               "2",
                               "\xE2\x80",
                               eightRows,
                               eightRows,
                               "0 0 0\n",
                               "-inf 2 3\v"};
    std::mt19937 random(1);
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = random() % 2 == 0 ? "LUT_3D_SIZE 2\n" : "";
        for (size_t count = random() % 8; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        text += random() % 2 == 0 ? eightRows : "";
        NaiveCubeReader naive;
        const bool valid = naive.read(text);
        const std::optional<LUT> lut = lutFrom(text);
        ASSERT_EQ(lut.has_value(), valid) << text;
        if (lut) {
            ++accepted;
            EXPECT_EQ(lut->size(), naive.size) << text;
            EXPECT_EQ(lut->title().toStdString(), naive.title.value_or("File")) << text;
            EXPECT_THAT(lut->data(), testing::Pointwise(testing::NanSensitiveFloatEq(), naive.points))
                << text;
        }
    }
    EXPECT_GT(accepted, 1000);
}

} // namespace cratewell::test

#include "made_media.h"
#include "media/lut.h"
#include "media/lut/float_text.h"
#include "media/lut/memory_budget.h"
#include "media/lut/plain_float.h"
#include "support/naive_cube_reader.h"
#include "support/wait.h"

#include <QFile>
#include <bit>
#include <cmath>
#include <future>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <sys/stat.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

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
    ASSERT_TRUE(lutFrom(valid));
    for (const char *size :
         {"", "LUT_3D_SIZE", "LUT_3D_SIZE 2 points", "LUT_3D_SIZE 2.0", "LUT_3D_SIZE -2", "LUT_3D_SIZE 0",
          "LUT_3D_SIZE 1", "LUT_3D_SIZE 3", "LUT_3D_SIZE 4294967296", "LUT_3D_SIZE 18446744073709551618"})
        EXPECT_FALSE(lutFrom(replaced(valid, "LUT_3D_SIZE 2", size))) << size;
    EXPECT_FALSE(lutFrom("LUT_3D_SIZE 1\n0 0 0\n"));
    for (const char *row : {"", "0 1\n", "0 1 abc\n", "0 0,5 1\n", "#0 1 1\n"})
        EXPECT_FALSE(lutFrom(replaced(valid, "0 1 1\n", row))) << row;
    for (const char *before : {"LUT_1D_SIZE 2\n", "DOMAIN_MIN r g b\n", "DOMAIN_MAX\n", "# no UTF-8: \xFF\n"})
        EXPECT_FALSE(lutFrom(before + valid)) << before;
    for (const char *behind : {"LUT_3D_SIZE 3\n", "0 0 0\n", "  lut_1d_size", "# cut short: \xE2\x80"})
        EXPECT_FALSE(lutFrom(valid + behind)) << behind;
    for (const char *title : {"surrogate \xED\xA0\x80", "overlong line end \xC0\x8A"})
        EXPECT_FALSE(lutFrom(replaced(valid, "Film", title))) << title;
}

TEST(LUTText, IsReadWithoutMindingWhatDoesNotMatter)
{
    std::vector<std::string> texts{"LUT_3D_SIZE 99\n" + valid,
                                   replaced(valid, "LUT_3D_SIZE 2\n", "") + "LUT_3D_SIZE 2",
                                   valid.substr(0, valid.size() - 1),
                                   "\uFEFF" + valid,
                                   "DOMAIN_MAX one\nDOMAIN_MAX 1\n" + valid,
                                   valid + "DOMAIN_MIN\n"};
    for (const char *size :
         {"lut_3d_size 2", "LUT_3D_SIZE 17 of 2", "LUT_3D_SIZE +0002", "\u2003 LUT_3D_SIZE\t2 \t"})
        texts.push_back(replaced(valid, "LUT_3D_SIZE 2", size));
    for (const char *row : {"0 1 1 9 nine # nine\n", "\t\u00A0 0 \t 1\t1\u3000 \n", "-0e5 +1. 0x.8p1\n",
                            " # 1 1 1\n\n \t\nLUT_3D_INPUT_RANGE 0 1\n\"\n0 1 1\n"})
        texts.push_back(replaced(valid, "0 1 1\n", row));
    const std::optional<LUT> plain = lutFrom(valid);
    ASSERT_TRUE(plain);
    for (const std::string &text : texts) {
        const std::optional<LUT> lut = lutFrom(text);
        ASSERT_TRUE(lut) << text;
        EXPECT_TRUE(std::ranges::equal(lut->data(), plain->data())) << text;
        EXPECT_EQ(lut->title(), u"Warm Film"_s) << text;
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
        {"TITLE \"Größe \U0001F3A8\"\n", u"Größe 🎨"_s}};
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
        {"DOMAIN_MAX 1 nan 1\n", {0.5F, nan, 3}}};
    for (const auto &[domain, expected] : cases) {
        const std::optional<LUT> lut =
            lutFrom("LUT_3D_SIZE 2\n" + domain + replaced(eightRows, "1 0 0", "0.5 -1 3"));
        ASSERT_TRUE(lut) << domain;
        EXPECT_THAT(lut->sample(1, 0, 0), testing::Pointwise(testing::NanSensitiveFloatEq(), expected))
            << domain;
    }
}

TEST(LUTFile, IsReadByItsNameAndKind)
{
    MadeMedia files;
    const auto location = [&](const QString &name) { return Location::fromText(files.path(name)); };
    for (const QString &name :
         {u"Teal.and.orange.CUBE"_s, u"film.cube"_s, u"film.txt"_s, u".cube"_s, u"cube"_s})
        files.bytes(name, replaced(valid, "TITLE", "#").c_str());
    const auto lut = LUT::read(location(u"Teal.and.orange.CUBE"_s));
    ASSERT_TRUE(lut);
    EXPECT_EQ(lut->title(), u"Teal.and.orange"_s);
    EXPECT_TRUE(LUT::read(location(u"film.cube"_s)));

    ASSERT_EQ(mkdir(location(u"folder.cube"_s).c_str(), 0700), 0);
    ASSERT_EQ(mkfifo(location(u"pipe.cube"_s).c_str(), 0600), 0);
    ASSERT_TRUE(QFile::resize(files.bytes(u"huge.cube"_s, {}), qint64{1} << 40));
    for (const QString &name : {u"film.txt"_s, u".cube"_s, u"cube"_s, u"missing.cube"_s, u"folder.cube"_s,
                                u"pipe.cube"_s, u"huge.cube"_s})
        EXPECT_FALSE(LUT::read(location(name))) << name.toStdString();
}

TEST(LUTFile, WaitsWhileOthersTakeTheMemoryForReading)
{
    MadeMedia files;
    const Location file = Location::fromText(files.bytes(u"film.cube"_s, valid.c_str()));
    std::future<bool> read;
    {
        const auto all = lutReadingBudget().take(qint64{1} << 40);
        read = std::async(std::launch::async, [&] { return LUT::read(file).has_value(); });
        EXPECT_TRUE(waitUntil([] { return lutReadingBudget().waiting() == 1; }));
    }
    EXPECT_TRUE(read.get());
}

TEST(FloatText, IsTheNearestFloatHoweverItIsWritten)
{
    for (const char *text : {"1",         "+1",          "-.5",
                             "5.",        "1e3",         "2.5E-1",
                             "0x10",      "-0X1.8p-1",   "inf",
                             "-Infinity", "1e39",        "-1e999999999999999999999",
                             "0x1p200",   "1e-60",       "-0.0000001e-99999",
                             "0e99999",   "0x0.01p-300", "1e-45",
                             "16777217",  "16777219",    "0.000000000000000000000000000001"}) {
        const std::optional<float> found = floatFromText(text), expected = NaiveCubeReader::number(text);
        ASSERT_TRUE(found && expected) << text;
        EXPECT_EQ(std::bit_cast<quint32>(*found), std::bit_cast<quint32>(*expected)) << text;
    }
    for (const char *text : {"", ".", "+", "-", "+-1", "--1", "1,5", "1 ", " 1", "1e", "1e+", "0x", "0x-1",
                             "0xinf", "1.5f", "infin", "1_000"})
        EXPECT_FALSE(floatFromText(text)) << text;
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
    const QByteArrayList pieces =
        QByteArray("LUT_3D_SIZE 2\n|lut_3d_size|LUT_1D_SIZE|DOMAIN_MIN|DOMAIN_MAX|TITLE|0.25 0.5 0.75\n|3|2|"
                   "1 0 0 # x\r\n|0 0 0\n|-inf 2 3\v|\"| |\t|\n|#|1e-3|nan|-0x1p3|0.1234567890123|\u00A0|"
                   "\u2028|\u0085|\uFEFF|\xE2\x80")
            .split('|') +
        QByteArrayList(2, eightRows.c_str());
    std::mt19937 random(1);
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = random() % 2 == 0 ? "LUT_3D_SIZE 2\n" : "";
        for (size_t count = random() % 8; count > 0; --count)
            text += pieces[random() % unsigned(pieces.size())].toStdString();
        text += random() % 2 == 0 ? eightRows : "";
        NaiveCubeReader naive;
        const bool readable = naive.read(text);
        const std::optional<LUT> lut = lutFrom(text);
        ASSERT_EQ(lut.has_value(), readable) << text;
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

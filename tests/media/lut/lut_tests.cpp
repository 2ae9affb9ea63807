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
    for (const char *size : {"", "LUT_3D_SIZE 2 points", "LUT_3D_SIZE 2.0", "LUT_3D_SIZE -2", "LUT_3D_SIZE 3",
                             "LUT_3D_SIZE 4294967296", "LUT_3D_SIZE 18446744073709551618"})
        EXPECT_FALSE(lutFrom(replaced(valid, "LUT_3D_SIZE 2", size))) << size;
    EXPECT_FALSE(lutFrom("LUT_3D_SIZE 1\n0 0 0\n"));
    for (const char *row : {"", "0 1\n", "0 1 abc\n", "0 0,5 1\n", "#0 1 1\n"})
        EXPECT_FALSE(lutFrom(replaced(valid, "0 1 1\n", row))) << row;
    for (const char *before : {"LUT_1D_SIZE 2\n", "DOMAIN_MAX\n", "# no UTF-8: \xFF\n",
                               "# surrogate \xED\xA0\x80\n", "# overlong line end \xC0\x8A"})
        EXPECT_FALSE(lutFrom(before + valid)) << before;
    for (const char *behind : {"LUT_3D_SIZE 3\n", "0 0 0\n", "  lut_1d_size", "# cut short: \xE2\x80"})
        EXPECT_FALSE(lutFrom(valid + behind)) << behind;
}

TEST(LUTText, IsReadWithoutMindingWhatDoesNotMatter)
{
    std::vector<std::string> texts{
        "\uFEFFLUT_3D_SIZE 99\nDOMAIN_MAX one\nDOMAIN_MAX 1\n" + valid + "DOMAIN_MIN\n",
        replaced(valid, "LUT_3D_SIZE 2\n", "") + "LUT_3D_SIZE 2", valid.substr(0, valid.size() - 1)};
    for (const char *size : {"lut_3d_size 17 of 2", "LUT_3D_SIZE +0002", "\u2003 LUT_3D_SIZE\t2 \t"})
        texts.push_back(replaced(valid, "LUT_3D_SIZE 2", size));
    for (const char *row : {"0 1 1 9 nine # nine\n", "\t\u00A0 0 \t 1\t1\u3000 \n", "-0e5 +1. 0x.8p1\n",
                            " # 1 1 1\n\n \t\nLUT_3D_INPUT_RANGE 0 1\n\"\n0 1 1\n"})
        texts.push_back(replaced(valid, "0 1 1\n", row));
    for (const char *lineEnd : {"\r", "\r\n", "\v", "\f", "\u0085", "\u2028", "\u2029", "\n\r\n"}) {
        texts.emplace_back();
        for (const char c : valid)
            texts.back() += c == '\n' ? std::string(lineEnd) : std::string(1, c);
    }
    for (const std::string &text : texts) {
        const std::optional<LUT> lut = lutFrom(text);
        ASSERT_TRUE(lut) << text;
        EXPECT_TRUE(std::ranges::equal(lut->data(), lutFrom(valid)->data())) << text;
        EXPECT_EQ(lut->title(), u"Warm Film"_s) << text;
    }
}

TEST(LUTText, NamesItsTableAndScalesItsRowsByTheDomain)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Case
    {
        std::string head;
        std::array<float, 3> color = {0.5F, -1, 3};
        QString title = u"File"_s;
    };
    for (const auto &[head, color, title] :
         {Case{"DOMAIN_MIN 0 0 0\nDOMAIN_MAX 2 2 2\n", {0.25F, -0.5F, 1.5F}},
          Case{"domain_max 0.5\n", {1, -2, 6}}, Case{"DOMAIN_MIN -1 none 1\nDOMAIN_MAX 3\n", {0.375F, -1, 1}},
          Case{"DOMAIN_MAX 1 nan 1\n", {0.5F, nan, 3}},
          Case{.head = "title\tRed # one\n", .title = u"Red # one"_s},
          Case{.head = "TITLE First\n TITLE  \"\"\" Sec\"ond\"\" \n", .title = u" Sec\"ond"_s},
          Case{.head = "TITLE \"Größe \U0001F3A8\"\n", .title = u"Größe 🎨"_s}}) {
        const auto lut = lutFrom("LUT_3D_SIZE 2\n" + head + replaced(eightRows, "1 0 0", "0.5 -1 3"));
        ASSERT_TRUE(lut) << head;
        EXPECT_THAT(lut->sample(1, 0, 0), testing::Pointwise(testing::NanSensitiveFloatEq(), color)) << head;
        EXPECT_EQ(lut->title(), title) << head;
    }
}

TEST(LUTFile, IsReadByItsNameAndKind)
{
    MadeMedia files;
    const auto read = [&](const QString &name) { return LUT::read(Location::fromText(files.path(name))); };
    const QStringList otherNames{u"film.txt"_s, u".cube"_s, u"cube"_s};
    for (const QString &name : otherNames + QStringList(u"Teal.and.orange.CUBE"_s))
        files.bytes(name, replaced(valid, "TITLE", "#").c_str());
    const auto lut = read(u"Teal.and.orange.CUBE"_s);
    ASSERT_TRUE(lut);
    EXPECT_EQ(lut->title(), u"Teal.and.orange"_s);
    ASSERT_EQ(mkfifo(files.path(u"pipe.cube"_s).toUtf8(), 0600), 0);
    ASSERT_TRUE(QFile::resize(files.bytes(u"huge.cube"_s, {}), qint64{1} << 40));
    for (const QString &name : otherNames + QStringList{u"missing.cube"_s, u"pipe.cube"_s, u"huge.cube"_s})
        EXPECT_FALSE(read(name)) << name.toStdString();
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
    const QByteArray texts =
        "+1|-.5|5.|2.5E-1|0x10|-0X1.8p-1|-Infinity|1e39|-1e999999999999999999999|0x1p200|-0.0000001e-99999|"
        "0e99999|0x0.01p-300|1e-45|16777217|16777219||.|-|+-1|--1|1,5|1 |1e|1e+|0x|0x-1|0xinf|1.5f|infin";
    for (const QByteArray &text : texts.split('|')) {
        const std::string number = text.toStdString();
        const auto found = floatFromText(number), expected = NaiveCubeReader::number(number);
        ASSERT_EQ(found.has_value(), expected.has_value()) << number;
        EXPECT_EQ(std::bit_cast<quint32>(found.value_or(0)), std::bit_cast<quint32>(expected.value_or(0)))
            << number;
    }
    EXPECT_TRUE(std::isnan(floatFromText("-NaN").value_or(0)));
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
        double value = double(random()) / 4294967296.0 * std::pow(10.0, int(below(12)) - 8);
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
        ASSERT_EQ(end - text, length) << text;
        const std::optional<float> exact = floatFromText({text, end});
        ASSERT_EQ(exact, NaiveCubeReader::number({text, size_t(length)})) << text;
        ASSERT_EQ(std::bit_cast<quint32>(found), std::bit_cast<quint32>(exact.value_or(-7))) << text;
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
        if (!lut)
            continue;
        ++accepted;
        EXPECT_EQ(lut->title().toStdString(), naive.title.value_or("File")) << text;
        EXPECT_THAT(lut->data(), testing::Pointwise(testing::NanSensitiveFloatEq(), naive.points)) << text;
    }
    EXPECT_GT(accepted, 1000);
}

} // namespace cratewell::test

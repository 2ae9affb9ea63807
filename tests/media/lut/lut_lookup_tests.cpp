#include "made_media.h"
#include "media/lut.h"
#include "media/lut/lut_lookup.h"

#include <OpenColorIO/OpenColorIO.h>
#include <QColorSpace>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <hwy/targets.h>
#include <limits>
#include <random>

namespace cratewell::test {

using namespace Qt::StringLiterals;
namespace ocio = OCIO_NAMESPACE;

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

using Points = std::vector<float>;

Lut3DGrid gridOf(const Points &points)
{
    return {.points = points.data(), .size = int(std::lround(std::cbrt(double(points.size()) / 4)))};
}

// `valueAt` gets the place along the channel's own edge, 0 to 1.
Points pointsOf(int size, const std::function<float(float)> &valueAt)
{
    Points points;
    for (int index = 0; index < size * size * size; ++index) {
        for (const int place : {index % size, index / size % size, index / size / size})
            points.push_back(valueAt(float(place) / float(size - 1)));
        points.push_back(1);
    }
    return points;
}

// Random, but smooth enough to be a look: neighbors lie near each other, values stray below 0 and above 1.
Points gradedPoints(int size, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> noise(-0.2F, 0.2F);
    return pointsOf(size, [&](float place) { return std::pow(place, 0.8F) + noise(random); });
}

constexpr int height = 5;

// Random pixels; behind each row is room that has to stay as it is.
template<typename Channel> struct Picture
{
    template<typename Make> Picture(int wide, Make make) : width(wide), channels(size_t(pitch() * height))
    {
        std::ranges::generate(channels, make);
    }

    int pitch() const { return 4 * width + 12; }
    template<typename As = Channel> PixelRows<As> rows()
    {
        return {channels.data(), pitch() * qsizetype(sizeof(Channel)), width, height};
    }
    PixelRows<const Channel> source() { return rows<const Channel>(); }

    int width;
    std::vector<Channel> channels;
};

void makePremultiplied(Picture<quint8> &picture)
{
    for (size_t pixel = 0; pixel + 4 <= picture.channels.size(); pixel += 4) {
        quint8 &alpha = picture.channels[pixel + 3];
        if (pixel / 64 % 3 != 0) // some runs wholly opaque or unseen
            alpha = pixel / 64 % 3 == 1 ? 255 : 0;
        for (size_t channel = pixel; channel < pixel + 3; ++channel)
            picture.channels[channel] = quint8(picture.channels[channel] * alpha / 255);
    }
}

// Runs the rest of the test once for each kind of vectors that this machine has.
class LUTLookup : public testing::TestWithParam<int64_t>
{
protected:
    LUTLookup() { use(GetParam()); }
    ~LUTLookup() override { use(0); }

private:
    static void use(int64_t targets)
    {
        hwy::SetSupportedTargetsForTest(targets);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Targets, LUTLookup, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto &target) { return std::string(hwy::TargetName(target.param)); });

TEST_P(LUTLookup, IsThePlainOneForBytesToTheLastBitAndForFloatsWithinRounding)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> values(-0.2F, 1.2F);
    const std::array strange{nan, infinity, -infinity, -0.0F, 1e38F, -1e38F, 0.0F, 1.0F};
    for (unsigned round = 0; round < 30; ++round) {
        SCOPED_TRACE(round);
        const Points points = gradedPoints(2 + int(round) * 7 % 40, round);
        const auto alpha = round % 2 == 0 ? AlphaKind::Straight : AlphaKind::Premultiplied;
        const auto order = round % 3 == 0 ? ChannelOrder::RGBA : ChannelOrder::BGRA;
        const int width = 1 + int(round) * 37 % 83;
        const std::optional<QuantizedGrid> steps = QuantizedGrid::from(gridOf(points));
        ASSERT_TRUE(steps);
        Picture<quint8> bytes(width, [&] { return quint8(random()); });
        if (alpha == AlphaKind::Premultiplied)
            makePremultiplied(bytes);
        Picture<quint8> plain = bytes, found = bytes;
        applyScalar(*steps, bytes.source(), plain.rows(), order, alpha);
        lookUp(*steps, bytes.source(), found.rows(), order, alpha);
        lookUp(*steps, bytes.source(), bytes.rows(), order, alpha);
        ASSERT_TRUE(plain.channels == found.channels && plain.channels == bytes.channels);

        Picture<float> floats(
            width, [&] { return round % 4 == 0 ? strange[random() % strange.size()] : values(random); });
        Picture<float> plainFloats = floats;
        applyScalar(gridOf(points), floats.source(), plainFloats.rows(), alpha);
        lookUp(gridOf(points), floats.source(), floats.rows(), alpha);
        for (size_t i = 0; i < floats.channels.size(); ++i) {
            const float expected = plainFloats.channels[i], result = floats.channels[i];
            const float tolerance = 2e-6F * std::max(1.0F, std::abs(expected));
            ASSERT_TRUE(result == expected || std::abs(result - expected) <= tolerance ||
                        (std::isnan(result) && std::isnan(expected)))
                << result << " for " << expected;
        }
    }
}

TEST(QuantizedGrid, IsRefusedForWhatBytesCannotHold)
{
    for (const auto &[value, byte] : {std::pair(nan, 0), {-1e38F, 0}, {1e38F, 255}}) {
        const Points points = pointsOf(2, [value = value](float) { return value; });
        EXPECT_FALSE(QuantizedGrid::from(gridOf(points)));
        Picture<quint8> pixels(1, [] { return 77; });
        lookUp(gridOf(points), pixels.source(), pixels.rows(), ChannelOrder::RGBA, AlphaKind::Straight);
        EXPECT_EQ(pixels.channels[0], byte) << value;
    }
}

// The identity gives every value back; the others keep within a step of the exact color.
TEST(QuantizedGrid, KeepsNearTheExactColors)
{
    const auto graded = [](const auto &grid, Picture<quint8> picture) {
        applyScalar(grid, picture.source(), picture.rows(), ChannelOrder::RGBA, AlphaKind::Straight);
        return picture.channels;
    };
    const Picture<quint8> ramp(256, [next = 0]() mutable { return quint8(next++ / 4); });
    for (const int size : {2, 3, 17, 18, 33, 65}) {
        const Points identity = pointsOf(size, [](float place) { return place; });
        EXPECT_EQ(graded(*QuantizedGrid::from(gridOf(identity)), ramp), ramp.channels) << size;
    }
    const Picture<quint8> pixels(1000, [random = std::mt19937(2)]() mutable { return quint8(random()); });
    for (const float spread : {1.0F, 1.9F, 3.5F, 7.0F, 10.0F}) {
        Points points = gradedPoints(33, 3);
        for (float &value : points)
            value = (value - 0.5F) * spread;
        const std::optional<QuantizedGrid> steps = QuantizedGrid::from(gridOf(points));
        ASSERT_TRUE(steps) << spread;
        EXPECT_THAT(graded(*steps, pixels),
                    testing::Pointwise(testing::FloatNear(1), graded(gridOf(points), pixels)))
            << spread;
    }
}

TEST(LUTBesideOpenColorIO, GivesTheSameColors)
{
    const Points points = gradedPoints(33, 33);
    QByteArray text = "LUT_3D_SIZE 33\n";
    for (size_t point = 0; point < points.size(); point += 4) {
        for (size_t channel = point; channel < point + 3; ++channel)
            text += QByteArray::number(points[channel], 'g', 9) + (channel == point + 2 ? '\n' : ' ');
    }
    const std::optional<LUT> lut = LUT::fromText(text, {});
    ASSERT_TRUE(lut);

    QImage image(701, 97, QImage::Format_RGBA32FPx4);
    std::mt19937 random(8);
    std::uniform_real_distribution<float> values(-0.1F, 1.1F);
    std::generate_n(reinterpret_cast<float *>(image.bits()), image.sizeInBytes() / 4,
                    [&] { return values(random); });
    const QImage ours = lut->apply(image);
    MadeMedia files;
    const ocio::FileTransformRcPtr transform = ocio::FileTransform::Create();
    transform->setSrc(files.bytes(u"a.cube"_s, text).toUtf8());
    transform->setInterpolation(ocio::INTERP_LINEAR);
    ocio::PackedImageDesc theirs(image.bits(), image.width(), image.height(), 4);
    ocio::Config::CreateRaw()->getProcessor(transform)->getDefaultCPUProcessor()->apply(theirs);
    for (qsizetype i = 0; i < image.sizeInBytes() / 4; ++i)
        ASSERT_NEAR(reinterpret_cast<const float *>(ours.constBits())[i],
                    reinterpret_cast<const float *>(image.constBits())[i], 1e-5F);
}

TEST(LUTOnImages, GradesEveryFormatAndKeepsAlpha)
{
    // Swaps red and green and turns blue around, exactly.
    const LUT lut =
        *LUT::fromText("LUT_3D_SIZE 2\n0 0 1\n0 1 1\n1 0 1\n1 1 1\n0 0 0\n0 1 0\n1 0 0\n1 1 0\n", {});
    const QColor colors[]{{255, 0, 0}, {10, 200, 90}, {255, 119, 51, 102}, {0, 0, 0, 0}};
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        SCOPED_TRACE(format);
        QImage image = filled({37, 2}, Qt::black, QImage::Format_ARGB32);
        image.setDevicePixelRatio(2);
        image.setColorSpace(QColorSpace::SRgb);
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, 1, colors[x % 4]);
        image = image.convertToFormat(QImage::Format(format));
        const QImage graded = lut.apply(image);
        ASSERT_EQ(graded.size(), image.size());
        EXPECT_EQ(graded.devicePixelRatio(), 2);
        EXPECT_EQ(graded.colorSpace(), image.colorSpace());
        EXPECT_EQ(graded.hasAlphaChannel(), image.hasAlphaChannel());
        for (int x = 0; x < image.width(); ++x) {
            const QColor from = image.pixelColor(x, 1), to = graded.pixelColor(x, 1);
            ASSERT_EQ(to.alpha(), from.alpha());
            const QRgb expected = qRgba(from.green(), from.red(), 255 - from.blue(), from.alpha());
            const int tolerance = from.alpha() == 255 ? 1 : 6; // what premultiplied pixels can hold
            EXPECT_TRUE(from.alpha() == 0 || isNear(to.rgba(), expected, tolerance)) << x;
        }
    }
}

} // namespace cratewell::test

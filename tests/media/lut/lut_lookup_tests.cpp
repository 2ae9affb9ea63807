#include "made_media.h"
#include "media/lut.h"
#include "media/lut/lut_lookup.h"

#include <OpenColorIO/OpenColorIO.h>
#include <QColorSpace>
#include <cmath>
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

// Random, but smooth enough to be a look: neighbors lie near each other, values stray below 0 and above 1.
Points gradedPoints(int size, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> noise(-0.2F, 0.2F);
    Points points;
    points.reserve(size_t(4 * size * size * size));
    for (int index = 0; index < size * size * size; ++index) {
        const std::array color{index % size, index / size % size, index / size / size};
        for (const int place : color)
            points.push_back(std::pow(float(place) / float(size - 1), 0.8F) + noise(random));
        points.push_back(1);
    }
    return points;
}

Points pointsOf(int size, const std::function<float(int, int)> &valueAt)
{
    Points points = gradedPoints(size, 1);
    for (int index = 0; index < size * size * size; ++index) {
        for (int channel = 0; channel < 3; ++channel)
            points[size_t(4 * index + channel)] = valueAt(index, channel);
    }
    return points;
}

// Pixels of any size, with room between the rows that has to stay as it is.
template<typename Channel> struct Picture
{
    Picture(int wide, int high, int gap)
        : width(wide), height(high), pitch(4 * wide + gap), channels(size_t(pitch * high), Channel(77))
    {
    }

    PixelRows<Channel> rows() { return {channels.data(), pitch * qsizetype(sizeof(Channel)), width, height}; }
    PixelRows<const Channel> constRows() const
    {
        return {channels.data(), pitch * qsizetype(sizeof(Channel)), width, height};
    }
    template<typename Make> void fill(Make make)
    {
        for (int y = 0; y < height; ++y)
            std::generate_n(channels.begin() + y * pitch, 4 * width, make);
    }

    int width, height, pitch;
    std::vector<Channel> channels;
};

Picture<quint8> randomBytes(int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    Picture<quint8> picture(width, height, int(seed % 3) * 4);
    picture.fill([&] { return quint8(random()); });
    return picture;
}

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

TEST_P(LUTLookup, OfStepsIsEqualToThePlainOneToTheLastBit)
{
    for (unsigned round = 0; round < 30; ++round) {
        const Points points = gradedPoints(2 + int(round) * 7 % 40, round);
        const std::optional<QuantizedGrid> steps = QuantizedGrid::from(gridOf(points));
        ASSERT_TRUE(steps);
        const int width = 1 + int(round) * 37 % 83;
        Picture<quint8> source = randomBytes(width, 5, round);
        const auto alpha = round % 2 == 0 ? AlphaKind::Straight : AlphaKind::Premultiplied;
        const auto order = round % 3 == 0 ? ChannelOrder::RGBA : ChannelOrder::BGRA;
        if (alpha == AlphaKind::Premultiplied)
            makePremultiplied(source);
        Picture<quint8> plain(width, 5, 12), found(width, 5, 12);
        applyScalar(*steps, source.constRows(), plain.rows(), order, alpha);
        lookUp(*steps, source.constRows(), found.rows(), order, alpha);
        ASSERT_EQ(plain.channels, found.channels) << "round " << round;
        lookUp(*steps, source.constRows(), source.rows(), order, alpha);
        for (int y = 0; y < 5; ++y)
            ASSERT_EQ(std::memcmp(plain.rows().row(y), source.rows().row(y), size_t(4 * width)), 0);
    }
}

TEST_P(LUTLookup, OfFloatsIsThePlainOneWithinRounding)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> values(-0.2F, 1.2F);
    const std::array strange{nan, infinity, -infinity, -0.0F, 1e38F, -1e38F, 0.0F, 1.0F};
    for (unsigned round = 0; round < 24; ++round) {
        const Points points = gradedPoints(2 + int(round) * 7 % 40, round);
        const int width = 1 + int(round) * 37 % 83;
        Picture<float> source(width, 4, int(round % 3) * 4);
        source.fill([&] { return round % 4 == 0 ? strange[random() % strange.size()] : values(random); });
        const auto alpha = round % 2 == 0 ? AlphaKind::Straight : AlphaKind::Premultiplied;
        Picture<float> plain(width, 4, 4), found(width, 4, 4);
        applyScalar(gridOf(points), source.constRows(), plain.rows(), alpha);
        lookUp(gridOf(points), source.constRows(), found.rows(), alpha);
        for (size_t i = 0; i < found.channels.size(); ++i) {
            const float expected = plain.channels[i], result = found.channels[i];
            const float tolerance = 2e-6F * std::max(1.0F, std::abs(expected));
            ASSERT_TRUE(result == expected || std::abs(result - expected) <= tolerance ||
                        (std::isnan(result) && std::isnan(expected)))
                << "round " << round << ": " << result << " for " << expected;
        }
    }
}

TEST_P(LUTLookup, ReadsInsideTheTableWhateverStandsInIt)
{
    std::mt19937 random(6);
    const std::array strange{nan, infinity, -infinity, 1e38F, -1e38F, 0.5F};
    for (const int size : {2, 3, 17}) {
        const Points points = pointsOf(size, [&](int, int) { return strange[random() % strange.size()]; });
        EXPECT_FALSE(QuantizedGrid::from(gridOf(points)));
        const Picture<quint8> source = randomBytes(61, 3, 9);
        Picture<quint8> bytes(61, 3, 0);
        lookUp(gridOf(points), source.constRows(), bytes.rows(), ChannelOrder::BGRA, AlphaKind::Straight);
        Picture<float> floats(61, 3, 0);
        floats.fill([&] { return strange[random() % strange.size()]; });
        lookUp(gridOf(points), floats.constRows(), floats.rows(), AlphaKind::Premultiplied);
    }
    const auto everywhere = [](float value) {
        const Points points = pointsOf(2, [=](int, int) { return value; });
        Picture<quint8> pixel = randomBytes(1, 1, 0);
        lookUp(gridOf(points), pixel.constRows(), pixel.rows(), ChannelOrder::RGBA, AlphaKind::Straight);
        return pixel.channels[0];
    };
    EXPECT_EQ(everywhere(nan), 0);
    EXPECT_EQ(everywhere(-1e38F), 0);
    EXPECT_EQ(everywhere(1e38F), 255);
}

// The identity gives every value back; the others keep within a step of the exact color, and mostly nearer.
TEST_P(LUTLookup, OfStepsKeepsNearTheExactColors)
{
    Picture<quint8> source(256, 3, 0);
    int next = 0;
    source.fill([&] { return quint8(next++ / 4); });
    for (const int size : {2, 3, 17, 18, 33, 65}) {
        const Points identity = pointsOf(size, [=](int index, int channel) {
            const int places[]{index % size, index / size % size, index / size / size};
            return float(places[channel]) / float(size - 1);
        });
        Picture<quint8> found(256, 3, 0);
        lookUp(*QuantizedGrid::from(gridOf(identity)), source.constRows(), found.rows(), ChannelOrder::RGBA,
               AlphaKind::Straight);
        EXPECT_EQ(found.channels, source.channels) << size;
    }
    for (const float spread : {1.0F, 1.9F, 3.5F, 7.0F, 10.0F}) {
        Points points = gradedPoints(33, 3);
        for (size_t i = 0; i < points.size(); ++i)
            points[i] = i % 4 == 3 ? 1 : (points[i] - 0.5F) * spread;
        const std::optional<QuantizedGrid> steps = QuantizedGrid::from(gridOf(points));
        ASSERT_TRUE(steps) << spread;
        const Picture<quint8> pixels = randomBytes(1000, 5, 2);
        Picture<quint8> exact(1000, 5, 0), found(1000, 5, 0);
        applyScalar(gridOf(points), pixels.constRows(), exact.rows(), ChannelOrder::RGBA,
                    AlphaKind::Straight);
        lookUp(*steps, pixels.constRows(), found.rows(), ChannelOrder::RGBA, AlphaKind::Straight);
        int different = 0;
        for (size_t i = 0; i < exact.channels.size(); ++i) {
            ASSERT_NEAR(found.channels[i], exact.channels[i], 1) << spread;
            different += found.channels[i] != exact.channels[i] ? 1 : 0;
        }
        EXPECT_LT(different, int(exact.channels.size()) / (spread < 2 ? 40 : 6)) << spread;
    }
    const Points wide = pointsOf(2, [](int index, int) { return float(index) * 5; });
    EXPECT_FALSE(QuantizedGrid::from(gridOf(wide)));
}

TEST(LUTBesideOpenColorIO, GivesTheSameColors)
{
    constexpr int size = 33;
    const Points points = gradedPoints(size, unsigned(size));
    std::string text = "LUT_3D_SIZE " + std::to_string(size) + '\n';
    const ocio::Lut3DTransformRcPtr transform = ocio::Lut3DTransform::Create(unsigned(size));
    transform->setInterpolation(ocio::INTERP_LINEAR);
    for (int index = 0; index < size * size * size; ++index) {
        const float *point = &points[size_t(4 * index)];
        char line[100];
        std::snprintf(line, sizeof line, "%.9g %.9g %.9g\n", double(point[0]), double(point[1]),
                      double(point[2]));
        text += line;
        transform->setValue(unsigned(index % size), unsigned(index / size % size),
                            unsigned(index / size / size), point[0], point[1], point[2]);
    }
    const std::optional<LUT> lut = LUT::fromText(text.c_str(), {});
    ASSERT_TRUE(lut);
    ASSERT_TRUE(std::ranges::equal(lut->data(), points));
    EXPECT_EQ(lut->sample(1, 2, 3)[2], points[4 * (1 + (2 + 3 * size) * size) + 2]);
    const auto processor = ocio::Config::CreateRaw()->getProcessor(transform);

    constexpr int width = 701;
    constexpr int height = 97;
    QImage bytes(width, height, QImage::Format_RGBA8888);
    QImage floats(width, height, QImage::Format_RGBA32FPx4);
    std::mt19937 random(8);
    std::uniform_real_distribution<float> values(-0.1F, 1.1F);
    std::generate_n(bytes.bits(), bytes.sizeInBytes(), [&] { return uchar(random()); });
    std::generate_n(reinterpret_cast<float *>(floats.bits()), floats.sizeInBytes() / 4,
                    [&] { return values(random); });

    QImage theirBytes = bytes.copy();
    ocio::PackedImageDesc byteImage(theirBytes.bits(), width, height, ocio::CHANNEL_ORDERING_RGBA,
                                    ocio::BIT_DEPTH_UINT8, 1, 4, theirBytes.bytesPerLine());
    processor
        ->getOptimizedCPUProcessor(ocio::BIT_DEPTH_UINT8, ocio::BIT_DEPTH_UINT8, ocio::OPTIMIZATION_DEFAULT)
        ->apply(byteImage);
    const QImage ourBytes = lut->apply(bytes);
    for (qsizetype i = 0; i < ourBytes.sizeInBytes(); ++i)
        ASSERT_NEAR(ourBytes.constBits()[i], theirBytes.constBits()[i], i % 4 == 3 ? 0 : 1) << i;

    QImage theirFloats = floats.copy();
    ocio::PackedImageDesc floatImage(theirFloats.bits(), width, height, 4);
    processor->getDefaultCPUProcessor()->apply(floatImage);
    const QImage ourFloats = lut->apply(floats);
    const auto *ours = reinterpret_cast<const float *>(ourFloats.constBits());
    const auto *theirs = reinterpret_cast<const float *>(theirFloats.constBits());
    for (qsizetype i = 0; i < ourFloats.sizeInBytes() / 4; ++i)
        ASSERT_NEAR(ours[i], theirs[i], 1e-5F) << i;
}

// Swaps red and green and turns blue around, exactly.
class LUTOnImages : public testing::Test
{
protected:
    const LUT m_lut =
        *LUT::fromText("LUT_3D_SIZE 2\n0 0 1\n0 1 1\n1 0 1\n1 1 1\n0 0 0\n0 1 0\n1 0 0\n1 1 0\n", {});
};

TEST_F(LUTOnImages, GradesEveryFormatAndKeepsAlpha)
{
    const QColor colors[]{QColor(255, 0, 0), QColor(10, 200, 90), QColor(255, 119, 51, 51),
                          QColor(0, 0, 0, 0)};
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        QImage image(37, 3, QImage::Format_ARGB32);
        image.setDevicePixelRatio(2);
        image.setColorSpace(QColorSpace::SRgb);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixelColor(x, y, colors[(x + y) % 4]);
        }
        image = image.convertToFormat(QImage::Format(format));
        const QImage before = image.copy();
        const QImage graded = m_lut.apply(image);
        ASSERT_EQ(image, before) << format;
        ASSERT_EQ(graded.size(), image.size()) << format;
        EXPECT_EQ(graded.devicePixelRatio(), 2) << format;
        EXPECT_EQ(graded.colorSpace(), image.colorSpace()) << format;
        EXPECT_EQ(graded.hasAlphaChannel(), image.hasAlphaChannel()) << format;
        for (int x = 0; x < image.width(); ++x) {
            const QColor from = image.pixelColor(x, 1);
            const QColor to = graded.pixelColor(x, 1);
            if (from.alpha() == 0)
                continue;
            ASSERT_EQ(to.alpha(), from.alpha()) << format;
            const QRgb expected = qRgba(from.green(), from.red(), 255 - from.blue(), from.alpha());
            const int tolerance = from.alpha() == 255 ? 1 : 6; // what premultiplied pixels can hold
            EXPECT_TRUE(isNear(to.rgba(), expected, tolerance)) << format << ' ' << x;
        }
    }
    EXPECT_TRUE(m_lut.apply(QImage()).isNull());
}

TEST_F(LUTOnImages, LeavesWhatCannotBeSeen)
{
    for (const auto format : {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGBA32FPx4_Premultiplied}) {
        const QImage image = filled({21, 2}, Qt::transparent, format);
        EXPECT_EQ(m_lut.apply(image), image);
    }
}

} // namespace cratewell::test

#include "media/lut.h"

#include <QColorSpace>
#include <QFloat16>
#include <algorithm>
#include <vector>

namespace cratewell {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN,
              "ARGB32 is taken for bytes in the order blue, green, red, alpha");

namespace {

// How the pixels of a format lie, if they can be graded where they are.
struct Layout
{
    enum class Depth : quint8 { Bytes, Words, Halves, Floats } depth;
    AlphaKind alpha;
    ChannelOrder order = ChannelOrder::RGBA;
};

std::optional<Layout> layoutOf(QImage::Format format)
{
    using enum Layout::Depth;
    using enum AlphaKind;
    switch (format) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return Layout{Bytes, Straight, ChannelOrder::BGRA};
    case QImage::Format_ARGB32_Premultiplied:
        return Layout{Bytes, Premultiplied, ChannelOrder::BGRA};
    case QImage::Format_RGBX8888:
    case QImage::Format_RGBA8888:
        return Layout{Bytes, Straight};
    case QImage::Format_RGBA8888_Premultiplied:
        return Layout{Bytes, Premultiplied};
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
        return Layout{Words, Straight};
    case QImage::Format_RGBA64_Premultiplied:
        return Layout{Words, Premultiplied};
    case QImage::Format_RGBX16FPx4:
    case QImage::Format_RGBA16FPx4:
        return Layout{Halves, Straight};
    case QImage::Format_RGBA16FPx4_Premultiplied:
        return Layout{Halves, Premultiplied};
    case QImage::Format_RGBX32FPx4:
    case QImage::Format_RGBA32FPx4:
        return Layout{Floats, Straight};
    case QImage::Format_RGBA32FPx4_Premultiplied:
        return Layout{Floats, Premultiplied};
    default:
        return std::nullopt;
    }
}

// What an image of a format without a layout is graded as, and what it becomes afterwards.
struct Detour
{
    QImage::Format graded;
    QImage::Format result;
};

Detour detourOf(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_BGR30:
    case QImage::Format_RGB30:
        return {QImage::Format_RGBX64, image.format()};
    case QImage::Format_A2BGR30_Premultiplied:
    case QImage::Format_A2RGB30_Premultiplied:
        return {QImage::Format_RGBA64_Premultiplied, image.format()};
    case QImage::Format_Grayscale16:
        return {QImage::Format_RGBX64, QImage::Format_RGBX64};
    case QImage::Format_RGB888:
    case QImage::Format_BGR888:
        return {QImage::Format_RGB32, image.format()};
    default:
        return image.hasAlphaChannel() ? Detour{QImage::Format_ARGB32, QImage::Format_ARGB32}
                                       : Detour{QImage::Format_RGB32, QImage::Format_RGB32};
    }
}

template<typename Channel> PixelRows<const Channel> rowsOf(const QImage &image)
{
    return {reinterpret_cast<const Channel *>(image.constBits()), image.bytesPerLine(), image.width(),
            image.height()};
}

template<typename Channel> PixelRows<Channel> rowsOf(QImage &image)
{
    return {reinterpret_cast<Channel *>(image.bits()), image.bytesPerLine(), image.width(), image.height()};
}

float floatFrom(quint16 channel)
{
    return float(channel) / 65535;
}

float floatFrom(qfloat16 channel)
{
    return float(channel);
}

void put(float value, quint16 &channel)
{
    channel = quint16(value > 0 ? std::min(value * 65535 + 0.5F, 65535.0F) : 0.0F);
}

void put(float value, qfloat16 &channel)
{
    channel = qfloat16(value);
}

// Row by row through floats.
template<typename Channel>
void applyAsFloats(const LUT &lut, PixelRows<const Channel> source, PixelRows<Channel> target,
                   AlphaKind alpha)
{
    std::vector<float> row(4 * size_t(source.width));
    const PixelRows<float> rows{row.data(), 0, source.width, 1};
    for (int y = 0; y < source.height; ++y) {
        const Channel *from = source.row(y);
        Channel *to = target.row(y);
        std::transform(from, from + row.size(), row.begin(),
                       [](Channel channel) { return floatFrom(channel); });
        lut.apply({row.data(), 0, source.width, 1}, rows, alpha);
        for (size_t index = 0; index < row.size(); ++index) {
            if (index % 4 == 3)
                to[index] = from[index];
            else
                put(row[index], to[index]);
        }
    }
}

} // namespace

QImage LUT::apply(const QImage &image) const
{
    if (image.isNull())
        return image;
    const std::optional<Layout> layout = layoutOf(image.format());
    if (!layout) {
        const Detour detour = detourOf(image);
        const QImage converted = image.convertToFormat(detour.graded);
        const QImage result = converted.isNull() ? QImage() : apply(converted).convertToFormat(detour.result);
        return result.isNull() ? image : result;
    }
    QImage result(image.size(), image.format());
    if (result.isNull())
        return image;
    result.setDevicePixelRatio(image.devicePixelRatio());
    result.setDotsPerMeterX(image.dotsPerMeterX());
    result.setDotsPerMeterY(image.dotsPerMeterY());
    result.setColorSpace(image.colorSpace());
    switch (layout->depth) {
    case Layout::Depth::Bytes:
        apply(rowsOf<quint8>(image), rowsOf<quint8>(result), layout->order, layout->alpha);
        break;
    case Layout::Depth::Words:
        applyAsFloats(*this, rowsOf<quint16>(image), rowsOf<quint16>(result), layout->alpha);
        break;
    case Layout::Depth::Halves:
        applyAsFloats(*this, rowsOf<qfloat16>(image), rowsOf<qfloat16>(result), layout->alpha);
        break;
    case Layout::Depth::Floats:
        apply(rowsOf<float>(image), rowsOf<float>(result), layout->alpha);
        break;
    }
    return result;
}

} // namespace cratewell

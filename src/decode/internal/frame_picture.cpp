#include "decode/internal/frame_picture.h"

#include "decode/internal/color_mapping.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>

namespace cratewell::decode {

namespace {

constexpr int scalerFlags =
    SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT;

// What plays untagged video takes high definition for 709 and the rest for 601.
int matrixOf(const AVFrame &frame)
{
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return SWS_CS_ITU601;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return frame.height >= 720 || frame.width >= 1280 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

bool isFullRange(const AVFrame &frame)
{
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ411P:
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ444P:
        return true;
    default:
        return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

bool hasAlpha(const AVFrame &frame)
{
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    return format && (format->flags & AV_PIX_FMT_FLAG_ALPHA);
}

Decoded<FramePointer> newFrame(AVPixelFormat format, Size size)
{
    FramePointer frame(av_frame_alloc());
    if (!frame)
        return failed("out of memory");
    frame->format = format;
    frame->width = size.width;
    frame->height = size.height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return failed("out of memory");
    return frame;
}

// The frame as RGB of some kind and of another size; alpha as it is.
Decoded<FramePointer> scaledTo(AVPixelFormat format, const AVFrame &frame, Size size)
{
    auto result = newFrame(format, size);
    if (!result)
        return result;
    const ScalerPointer scaler(sws_getContext(frame.width, frame.height, AVPixelFormat(frame.format),
                                              size.width, size.height, format, scalerFlags, nullptr, nullptr,
                                              nullptr));
    if (!scaler)
        return failed("pixels of an unknown format");
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(matrixOf(frame)), isFullRange(frame),
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, (*result)->data,
                  (*result)->linesize) <= 0)
        return failed("the frame could not be scaled");
    return result;
}

// The frame as straight sRGB of another size.
Decoded<FramePointer> scaled(const AVFrame &frame, Size size)
{
    const auto mapping = ColorMapping::of(frame);
    if (!mapping)
        return scaledTo(AV_PIX_FMT_BGRA, frame, size);
    const auto deep = scaledTo(AV_PIX_FMT_RGBA64, frame, size);
    if (!deep)
        return failed(deep.error());
    auto result = newFrame(AV_PIX_FMT_BGRA, size);
    if (result)
        mapping->apply(**deep, **result);
    return result;
}

// Rounding and the filter's overshoot may leave a color above its alpha, which no premultiplied pixel has.
void limitToAlpha(AVFrame &frame)
{
    for (int y = 0; y < frame.height; ++y) {
        uint8_t *pixel = frame.data[0] + int64_t{y} * frame.linesize[0];
        for (const uint8_t *end = pixel + int64_t{frame.width} * 4; pixel != end; pixel += 4) {
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = std::min(pixel[channel], pixel[3]);
        }
    }
}

// Colors hidden under transparent pixels must not bleed into their neighbours: premultiply, then scale.
Decoded<FramePointer> scaledWithAlpha(const AVFrame &frame, Size size)
{
    auto result = scaled(frame, {frame.width, frame.height});
    if (!result)
        return result;
    premultiply((*result)->data[0], frame.width, frame.height, (*result)->linesize[0]);
    if (size != Size{frame.width, frame.height})
        result = scaledTo(AV_PIX_FMT_BGRA, **result, size);
    if (result)
        limitToAlpha(**result);
    return result;
}

} // namespace

Decoded<Picture> framePicture(const AVFrame &frame, double pixelAspect, Orientation orientation, int maxSide)
{
    if (frame.width < 1 || frame.height < 1 || int64_t{frame.width} * frame.height > maxFramePixels)
        return failed("a frame of an impossible size");
    const Size size = fittedInside(frame.width * pixelAspect, frame.height, maxSide);
    const auto result = hasAlpha(frame) ? scaledWithAlpha(frame, size) : scaled(frame, size);
    if (!result)
        return failed(result.error());
    Picture picture = uprightPicture((*result)->data[0], size, (*result)->linesize[0], orientation);
    picture.hasAlpha = hasTransparency(picture.pixels.data(), int64_t{size.width} * size.height);
    return picture;
}

} // namespace cratewell::decode

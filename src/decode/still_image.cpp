#include "decode/still_image.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string_view>
#include <vips/vips.h>

namespace cratewell::decode {

namespace {

struct Unreference
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
using ImagePointer = std::unique_ptr<VipsImage, Unreference>;
using SourcePointer = std::unique_ptr<VipsSource, Unreference>;

// Only the formats a library holds; libvips knows dozens more, some through whole document renderers.
constexpr std::string_view jpegLoader = "VipsForeignLoadJpeg";
constexpr std::array<std::string_view, 6> loaders{jpegLoader,
                                                  "VipsForeignLoadPng",
                                                  "VipsForeignLoadTiff",
                                                  "VipsForeignLoadWebp",
                                                  "VipsForeignLoadNsgif",
                                                  "VipsForeignLoadHeif"};

bool startLibrary()
{
    static std::once_flag once;
    static bool started = false;
    std::call_once(once, [] {
        g_setenv("VIPS_WARNING", "0", TRUE);
        g_setenv("VIPS_DISC_THRESHOLD", "100g", TRUE); // no files on the way, however large the picture
        started = VIPS_INIT("cratewell") == 0;
        if (!started)
            return;
        vips_cache_set_max(0);
        vips_concurrency_set(1);
        g_log_set_handler(
            "VIPS", GLogLevelFlags(G_LOG_LEVEL_MASK), [](auto...) {}, nullptr);
    });
    return started;
}

tl::unexpected<std::string> failure(const char *fallback)
{
    std::string text = vips_error_buffer();
    vips_error_clear();
    text.erase(text.find_last_not_of(" \n") + 1);
    std::replace(text.begin(), text.end(), '\n', ';');
    return failed(text.empty() ? fallback : text);
}

Decoded<SourcePointer> sourceOf(int descriptor)
{
    if (!startLibrary())
        return failed("the picture library could not be started");
    SourcePointer source(vips_source_new_from_descriptor(descriptor));
    if (!source)
        return failure("not a readable picture");
    return source;
}

struct Header
{
    Size size;
    bool isJpeg = false;
};

// Refuses what is no picture, or claims more pixels than anybody has.
Decoded<Header> readHeader(VipsSource *source)
{
    const char *name = vips_foreign_find_load_source(source);
    if (!name)
        return failure("not a picture");
    const std::string_view loader(name);
    if (std::none_of(loaders.begin(), loaders.end(), [&](auto known) { return loader.starts_with(known); }))
        return failed("not a picture");
    const ImagePointer header(
        vips_image_new_from_source(source, "", "access", VIPS_ACCESS_SEQUENTIAL, nullptr));
    if (!header)
        return failure("not a readable picture");
    const Size size{vips_image_get_width(header.get()), vips_image_get_height(header.get())};
    if (int64_t{size.width} * size.height > maxStillPixels)
        return failed("a picture of an impossible size");
    return Header{size, loader.starts_with(jpegLoader)};
}

// A JPEG decoder averages blocks of pixels at next to no cost. libvips would use that for half of the way at
// most; an average of whole blocks needs no finer filter, so it may go as far as the picture stays larger
// than wanted.
int shrinkOnLoad(Size size, int maxSide)
{
    constexpr double margin = 1.15;
    const double most = std::max(size.width, size.height) / (maxSide * margin);
    int shrink = 8;
    while (shrink > 1 && shrink > most)
        shrink /= 2;
    return shrink;
}

// Null on failure.
ImagePointer thumbnail(VipsSource *source, const Header &header, int maxSide)
{
    VipsImage *result = nullptr;
    if (!header.isJpeg) {
        vips_thumbnail_source(source, &result, maxSide, "height", maxSide, "size", VIPS_SIZE_DOWN, nullptr);
        return ImagePointer(result);
    }
    VipsImage *loaded = nullptr;
    if (vips_jpegload_source(source, &loaded, "shrink", shrinkOnLoad(header.size, maxSide), "access",
                             VIPS_ACCESS_SEQUENTIAL, nullptr) != 0)
        return nullptr;
    const ImagePointer reduced(loaded);
    vips_thumbnail_image(reduced.get(), &result, maxSide, "height", maxSide, "size", VIPS_SIZE_DOWN, nullptr);
    return ImagePointer(result);
}

using Step = int (*)(VipsImage *, VipsImage **);

bool replaceBy(ImagePointer &image, Step step)
{
    VipsImage *next = nullptr;
    if (step(image.get(), &next) != 0)
        return false;
    image.reset(next);
    return true;
}

int toSrgbByProfile(VipsImage *in, VipsImage **out)
{
    const int depth = vips_image_get_format(in) == VIPS_FORMAT_USHORT ? 16 : 8;
    return vips_icc_transform(in, out, "srgb", "embedded", TRUE, "input_profile", "cmyk", "depth", depth,
                              "black_point_compensation", TRUE, nullptr);
}

int toSrgb(VipsImage *in, VipsImage **out)
{
    return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
}

int toBytes(VipsImage *in, VipsImage **out)
{
    return vips_cast_uchar(in, out, nullptr);
}

int toFourBands(VipsImage *in, VipsImage **out)
{
    return vips_extract_band(in, out, 0, "n", 4, nullptr);
}

// Straight 8-bit sRGB with 3 or 4 bands. A profile that cannot be used counts as none.
bool makeRgb(ImagePointer &image)
{
    if (vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) != 0 ||
        vips_image_get_interpretation(image.get()) == VIPS_INTERPRETATION_CMYK)
        replaceBy(image, toSrgbByProfile);
    if (vips_image_get_interpretation(image.get()) != VIPS_INTERPRETATION_sRGB && !replaceBy(image, toSrgb))
        return false;
    if (vips_image_get_format(image.get()) != VIPS_FORMAT_UCHAR && !replaceBy(image, toBytes))
        return false;
    if (vips_image_get_bands(image.get()) > 4 && !replaceBy(image, toFourBands))
        return false;
    return vips_image_get_bands(image.get()) >= 3;
}

Picture pictureOf(const uint8_t *rgb, int width, int height, int bands)
{
    Picture picture{.width = width, .height = height, .pixels = {}};
    picture.pixels.resize(size_t(width) * size_t(height) * 4);
    uint8_t *out = picture.pixels.data();
    for (int64_t left = int64_t{width} * height; left > 0; --left, rgb += bands, out += 4) {
        out[0] = rgb[2];
        out[1] = rgb[1];
        out[2] = rgb[0];
        out[3] = bands == 4 ? rgb[3] : 255;
    }
    picture.hasAlpha = bands == 4 && hasTransparency(picture.pixels.data(), int64_t{width} * height);
    if (picture.hasAlpha)
        premultiply(picture.pixels.data(), width, height, int64_t{width} * 4);
    return picture;
}

} // namespace

void prepareStillImages()
{
    startLibrary();
}

Decoded<Size> stillImageSize(int descriptor)
{
    const auto source = sourceOf(descriptor);
    if (!source)
        return failed(source.error());
    return readHeader(source->get()).map([](const Header &header) { return header.size; });
}

Decoded<Picture> stillImage(int descriptor, int maxSide)
{
    const auto opened = sourceOf(descriptor);
    if (!opened)
        return failed(opened.error());
    const SourcePointer &source = *opened;
    const auto header = readHeader(source.get());
    if (!header)
        return failed(header.error());

    ImagePointer image = thumbnail(source.get(), *header, maxSide);
    if (!image)
        return failure("not a readable picture");
    if (!makeRgb(image))
        return failure("colors of an unknown kind");

    size_t size = 0;
    const std::unique_ptr<void, decltype(&g_free)> pixels(vips_image_write_to_memory(image.get(), &size),
                                                          &g_free);
    if (!pixels)
        return failure("the picture could not be decoded");
    vips_error_clear();
    Picture picture = pictureOf(static_cast<const uint8_t *>(pixels.get()), vips_image_get_width(image.get()),
                                vips_image_get_height(image.get()), vips_image_get_bands(image.get()));
    picture.info = {.width = header->size.width, .height = header->size.height};
    return picture;
}

} // namespace cratewell::decode

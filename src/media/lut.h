#pragma once

#include "media/pixel_rows.h"
#include "platform/error.h"
#include "platform/location.h"

#include <QImage>
#include <QString>
#include <array>
#include <memory>
#include <optional>
#include <span>

namespace cratewell {

// A color table: points at equal distances along red, green and blue, between which colors are interpolated
// linearly. It maps sRGB-encoded values to sRGB-encoded values. Immutable and shared: copies are cheap and
// cross threads freely, and all of it may be called on any thread.
//
// Numbers in a .cube file are scaled by its domain when they are read, so that what the file calls the
// domain's maximum is 1 in the table. Other programs take the domain for the range of the colors that are
// looked up instead; here that is always 0 to 1.
class LUT
{
public:
    // Blocks on the disk, and while others read large ones. Fails unless the name ends in ".cube", in any
    // case, and the file is a regular one that holds a whole table (see lut/cube_reader.h).
    static Result<LUT> read(const Location &url);
    // The same for the text of such a file; `title` stands in for one that the text does not have.
    static std::optional<LUT> fromText(QByteArrayView text, const QString &title);

    // Points along each edge; at least 2.
    qint64 size() const;
    // size()^3 times red, green, blue and 1, the red index running fastest, then green, then blue. Not
    // clamped.
    std::span<const float> data() const;
    const QString &title() const;
    // The point at these indices, each 0 to size() - 1.
    std::array<float, 3> sample(qint64 red, qint64 green, qint64 blue) const;

    // The image graded, in its own format where that has three channels of color of 8 bits or more, else in
    // one that has. Values are looked up as they are stored, whatever the image's color space; those outside
    // 0 to 1 take the color at the table's edge. Premultiplied colors are looked up straight. Alpha stays.
    // An image that memory does not suffice for comes back as it was.
    QImage apply(const QImage &image) const;
    // The same for bare pixels; `target` has the size of `source` and may be the same rows. 8-bit results lie
    // within one step of the exact ones (one and a half where they are premultiplied), with NaN as 0; float
    // results are not clamped.
    void apply(PixelRows<const quint8> source, PixelRows<quint8> target, ChannelOrder order,
               AlphaKind alpha) const;
    void apply(PixelRows<const float> source, PixelRows<float> target, AlphaKind alpha) const;

private:
    struct Private;
    explicit LUT(std::shared_ptr<const Private> shared);
    std::shared_ptr<const Private> d;
};

} // namespace cratewell

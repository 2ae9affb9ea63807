#include "media/lut.h"

#include "media/lut/cube_reader.h"
#include "media/lut/lut_lookup.h"
#include "media/lut/memory_budget.h"
#include "platform/posix/file_content.h"

#include <cerrno>
#include <mutex>
#include <new>
#include <unistd.h>

namespace cratewell {

using namespace Qt::StringLiterals;

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN,
              "ARGB32 is taken for bytes in the order blue, green, red, alpha");

struct LUT::Private
{
    CubeTable table;
    QString title;

    Lut3DGrid grid() const { return {.points = table.points.get(), .size = int(table.size)}; }
    // Made when first asked for; null when the table has none.
    const QuantizedGrid *steps() const
    {
        std::call_once(m_stepsMade, [this] { m_steps = QuantizedGrid::from(grid()); });
        return m_steps ? &*m_steps : nullptr;
    }

private:
    mutable std::once_flag m_stepsMade;
    mutable std::optional<QuantizedGrid> m_steps;
};

namespace {

struct Bytes
{
    std::unique_ptr<char[]> data;
    size_t size = 0;
};

Result<Bytes> readWhole(int descriptor, qint64 size)
{
    Bytes bytes{.data = std::unique_ptr<char[]>(new (std::nothrow) char[size_t(size)])};
    if (!bytes.data)
        return systemFailure(ENOMEM);
    while (bytes.size < size_t(size)) {
        const ssize_t count = ::read(descriptor, bytes.data.get() + bytes.size, size_t(size) - bytes.size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return systemFailure(errno);
        if (count == 0)
            break;
        bytes.size += size_t(count);
    }
    return bytes;
}

tl::unexpected<Error> notALut(const Location &url)
{
    return tl::unexpected(Error{url.name() + u": not a LUT"_s});
}

} // namespace

LUT::LUT(std::shared_ptr<const Private> shared) : d(std::move(shared)) {}

Result<LUT> LUT::read(const Location &url)
{
    if (url.extension().compare(u"cube"_s, Qt::CaseInsensitive) != 0)
        return notALut(url);
    const auto opened = openRegularFile(url, Links::Follow);
    if (!opened)
        return tl::unexpected(opened.error());
    const auto status = statusOf(opened->number());
    if (!status)
        return tl::unexpected(status.error());
    if (status->size > qint64(longestCubeText))
        return notALut(url);
    const MemoryBudget::Share share = lutReadingBudget().take(cubeReadingCost * status->size);
    const Result<Bytes> bytes = readWhole(opened->number(), status->size);
    if (!bytes)
        return tl::unexpected(bytes.error());
    std::optional<LUT> lut =
        fromText(QByteArrayView(bytes->data.get(), qsizetype(bytes->size)), url.baseName());
    if (!lut)
        return notALut(url);
    return *std::move(lut);
}

std::optional<LUT> LUT::fromText(QByteArrayView text, const QString &title)
{
    std::optional<CubeTable> table = readCube({text.data(), size_t(text.size())});
    if (!table)
        return std::nullopt;
    auto shared = std::make_shared<Private>();
    shared->title = table->title ? QString::fromStdString(*table->title) : title;
    shared->table = std::move(*table);
    return LUT(std::move(shared));
}

qint64 LUT::size() const
{
    return d->table.size;
}

std::span<const float> LUT::data() const
{
    return {d->table.points.get(), size_t(4 * size() * size() * size())};
}

const QString &LUT::title() const
{
    return d->title;
}

std::array<float, 3> LUT::sample(qint64 red, qint64 green, qint64 blue) const
{
    const float *point = d->table.points.get() + 4 * ((blue * size() + green) * size() + red);
    return {point[0], point[1], point[2]};
}

void LUT::apply(PixelRows<const quint8> source, PixelRows<quint8> target, ChannelOrder order,
                AlphaKind alpha) const
{
    if (const QuantizedGrid *steps = d->steps())
        lookUp(*steps, source, target, order, alpha);
    else
        lookUp(d->grid(), source, target, order, alpha);
}

void LUT::apply(PixelRows<const float> source, PixelRows<float> target, AlphaKind alpha) const
{
    lookUp(d->grid(), source, target, alpha);
}

} // namespace cratewell

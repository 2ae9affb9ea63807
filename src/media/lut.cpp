#include "media/lut.h"

#include "media/lut/cube_reader.h"
#include "media/lut/lut_lookup.h"

#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <sys/stat.h>
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

std::optional<Bytes> readWhole(int descriptor)
{
    struct stat info = {};
    if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode) || size_t(info.st_size) > longestCubeText)
        return std::nullopt;
    const auto size = size_t(info.st_size);
    Bytes bytes{.data = std::unique_ptr<char[]>(new (std::nothrow) char[size])};
    if (!bytes.data)
        return std::nullopt;
    while (bytes.size < size) {
        const ssize_t count = ::read(descriptor, bytes.data.get() + bytes.size, size - bytes.size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        bytes.size += size_t(count);
    }
    return bytes;
}

} // namespace

LUT::LUT(std::shared_ptr<const Private> shared) : d(std::move(shared)) {}

std::optional<LUT> LUT::read(const Location &url)
{
    if (url.extension().compare(u"cube"_s, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    int descriptor = -1;
    do
        descriptor = open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        return std::nullopt;
    const std::optional<Bytes> bytes = readWhole(descriptor);
    close(descriptor);
    if (!bytes)
        return std::nullopt;
    return fromText(QByteArrayView(bytes->data.get(), qsizetype(bytes->size)), url.baseName());
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

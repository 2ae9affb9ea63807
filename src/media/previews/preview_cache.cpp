#include "media/previews/preview_cache.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace cratewell {

namespace {

namespace fs = std::filesystem;

constexpr QByteArrayView magic("CWP1");
constexpr qsizetype hashBytes = 20;
constexpr qint64 largestFile = 32 << 20; // bytes
constexpr int largestSide = 4096;        // pixels
constexpr int quality = 90;              // of the JPEGs: nothing to be seen at the size of a card

QByteArray hashOf(QByteArrayView bytes)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(bytes);
    return hash.result();
}

// Colors as they are stored, that is premultiplied: JPEG knows no alpha.
QByteArray colorsOf(const QImage &image)
{
    const QImage colors(image.constBits(), image.width(), image.height(), image.bytesPerLine(),
                        QImage::Format_RGB32);
    QBuffer buffer;
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    return writer.write(colors) ? buffer.data() : QByteArray();
}

QByteArray alphaOf(const QImage &image)
{
    const QImage alpha = image.convertToFormat(QImage::Format_Alpha8);
    QByteArray bytes;
    bytes.reserve(qsizetype(image.width()) * image.height());
    for (int y = 0; y < image.height(); ++y)
        bytes.append(reinterpret_cast<const char *>(alpha.constScanLine(y)), image.width());
    return qCompress(bytes, 1);
}

QImage colorsIn(QByteArray jpeg)
{
    QBuffer buffer(&jpeg);
    QImageReader reader(&buffer, "jpeg");
    if (const QSize size = reader.size();
        size.isEmpty() || std::max(size.width(), size.height()) > largestSide)
        return {};
    QImage image = reader.read();
    image.convertTo(QImage::Format_RGB32);
    return image;
}

// Compression may have made colors brighter than their alpha allows.
QImage withAlpha(const QImage &colors, const QByteArray &compressed)
{
    const QByteArray alpha = qUncompress(compressed);
    if (alpha.size() != qsizetype(colors.width()) * colors.height())
        return {};
    QImage image(colors.size(), QImage::Format_ARGB32_Premultiplied);
    const char *next = alpha.constData();
    for (int y = 0; y < image.height(); ++y) {
        const auto *from = reinterpret_cast<const QRgb *>(colors.constScanLine(y));
        auto *to = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int a = uchar(*next++);
            to[x] = qRgba(std::min(qRed(from[x]), a), std::min(qGreen(from[x]), a),
                          std::min(qBlue(from[x]), a), a);
        }
    }
    return image;
}

QByteArray encoded(const QByteArray &key, const PreviewCache::Preview &preview)
{
    QByteArray colors, alpha;
    WaveformPeaks peaks;
    double duration = 0;
    if (const auto *picture = std::get_if<DecodedPicture>(&preview)) {
        colors = colorsOf(picture->image);
        alpha = picture->image.hasAlphaChannel() ? alphaOf(picture->image) : QByteArray();
        duration = picture->duration;
        if (colors.isEmpty())
            return {};
    } else if (const auto *sound = std::get_if<DecodedAudio>(&preview)) {
        peaks = sound->peaks;
        duration = sound->duration;
    }
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << key << duration << colors << alpha << peaks;
    return magic.toByteArray() + hashOf(payload) + payload;
}

std::optional<PreviewCache::Preview> decoded(const QByteArray &key, const QByteArray &bytes)
{
    const qsizetype head = magic.size() + hashBytes;
    if (bytes.size() < head || !bytes.startsWith(magic))
        return {};
    const QByteArray payload = bytes.sliced(head);
    if (hashOf(payload) != bytes.sliced(magic.size(), hashBytes))
        return {};
    QDataStream stream(payload);
    stream.setVersion(QDataStream::Qt_6_4);
    QByteArray writtenFor, colors, alpha;
    WaveformPeaks peaks;
    double duration = 0;
    stream >> writtenFor >> duration >> colors >> alpha >> peaks;
    if (stream.status() != QDataStream::Ok || writtenFor != key)
        return {};
    if (colors.isEmpty())
        return DecodedAudio{.peaks = peaks, .duration = duration};
    QImage image = colorsIn(colors);
    if (!alpha.isEmpty())
        image = withAlpha(image, alpha);
    if (image.isNull())
        return {};
    return DecodedPicture{.image = image, .duration = duration};
}

struct CachedFile
{
    fs::path path;
    fs::file_time_type used;
    qint64 bytes = 0;
};

std::vector<CachedFile> filesIn(const Location &folder, const std::atomic<bool> &ending)
{
    std::vector<CachedFile> files;
    std::error_code failed;
    fs::recursive_directory_iterator entry(folder.c_str(), fs::directory_options::skip_permission_denied,
                                           failed);
    for (; !ending && !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
        std::error_code gone;
        if (!entry->is_regular_file(gone) || entry->is_symlink(gone))
            continue;
        const auto used = entry->last_write_time(gone);
        const auto bytes = qint64(entry->file_size(gone));
        if (!gone)
            files.push_back({entry->path(), used, bytes});
    }
    return files;
}

} // namespace

Location PreviewCache::file(const QByteArray &key) const
{
    const QByteArray name = hashOf(key).toHex();
    return m_folder.child(name.first(2)).child(name.sliced(2));
}

std::optional<PreviewCache::Preview> PreviewCache::load(const QByteArray &key) const
{
    const int descriptor = open(file(key).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return {};
    struct stat info = {};
    const bool usable = fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= largestFile;
    QByteArray bytes;
    QFile reader;
    if (usable && reader.open(descriptor, QIODevice::ReadOnly))
        bytes = reader.readAll();
    auto preview = decoded(key, bytes);
    if (preview)
        futimens(descriptor, nullptr);
    reader.close();
    close(descriptor);
    return preview;
}

// Renamed into place, not flushed: after a crash of the machine a damaged file is found by its hash.
void PreviewCache::save(const QByteArray &key, const Preview &preview) const
{
    const QByteArray bytes = encoded(key, preview);
    const Location place = file(key);
    if (bytes.isEmpty())
        return;
    std::error_code failed;
    fs::create_directories(place.parent().c_str(), failed);
    QByteArray temporary = place.bytes() + "-XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
        return;
    const bool written = write(descriptor, bytes.constData(), size_t(bytes.size())) == bytes.size();
    close(descriptor);
    if (!written || rename(temporary.constData(), place.c_str()) != 0)
        unlink(temporary.constData());
}

void PreviewCache::prune(const std::atomic<bool> &ending) const
{
    std::vector<CachedFile> files = filesIn(m_folder, ending);
    qint64 bytes = 0;
    for (const CachedFile &cached : files)
        bytes += cached.bytes;
    if (bytes <= m_budget)
        return;
    std::ranges::sort(files, {}, &CachedFile::used);
    for (const CachedFile &cached : files) {
        if (ending || bytes <= m_budget / 5 * 4)
            return;
        std::error_code failed;
        if (fs::remove(cached.path, failed))
            bytes -= cached.bytes;
    }
}

} // namespace cratewell

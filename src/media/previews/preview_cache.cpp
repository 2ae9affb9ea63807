#include "media/previews/preview_cache.h"

#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDataStream>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace cratewell {

namespace {

namespace fs = std::filesystem;

// One file for each preview, named by the hash of its key: the magic, the SHA-1 of what follows, and a Qt
// data stream of key, info, colors as JPEG, alpha as compressed bytes (empty when opaque) and peaks. What a
// preview is like is part of its key (preview_formats.h). The magic has a number, to be raised with every
// change of encoded() or MediaInfo.
constexpr QByteArrayView magic("CWP2");
constexpr std::string_view suffix(".preview");
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

QByteArray encoded(const QByteArray &key, const DecodedFile &preview)
{
    const QByteArray info(reinterpret_cast<const char *>(&preview.info), sizeof preview.info);
    QByteArray colors, alpha;
    if (!preview.image.isNull()) {
        colors = colorsOf(preview.image);
        alpha = preview.image.hasAlphaChannel() ? alphaOf(preview.image) : QByteArray();
        if (colors.isEmpty())
            return {};
    }
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << key << info << colors << alpha << preview.peaks;
    return magic.toByteArray() + hashOf(payload) + payload;
}

std::optional<DecodedFile> decoded(const QByteArray &key, const QByteArray &bytes)
{
    const qsizetype head = magic.size() + hashBytes;
    if (bytes.size() < head || !bytes.startsWith(magic))
        return {};
    const QByteArray payload = bytes.sliced(head);
    if (hashOf(payload) != bytes.sliced(magic.size(), hashBytes))
        return {};
    QDataStream stream(payload);
    stream.setVersion(QDataStream::Qt_6_4);
    DecodedFile preview;
    QByteArray writtenFor, info, colors, alpha;
    stream >> writtenFor >> info >> colors >> alpha >> preview.peaks;
    if (stream.status() != QDataStream::Ok || writtenFor != key || info.size() != sizeof preview.info)
        return {};
    std::memcpy(&preview.info, info.constData(), sizeof preview.info);
    if (colors.isEmpty())
        return preview;
    preview.image = colorsIn(colors);
    if (!alpha.isEmpty())
        preview.image = withAlpha(preview.image, alpha);
    return preview.image.isNull() ? std::nullopt : std::optional(preview);
}

struct CachedFile
{
    fs::path path;
    fs::file_time_type used;
    qint64 bytes = 0;
};

bool beginsWithHex(std::string_view name, size_t length)
{
    return name.size() >= length &&
           name.substr(0, length).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Whether the cache itself may have made the entry. A link in its place leads to somebody else's files.
bool isOwnFolder(const fs::directory_entry &entry)
{
    std::error_code gone;
    const std::string name = entry.path().filename().string();
    return name.size() == 2 && beginsWithHex(name, 2) &&
           entry.symlink_status(gone).type() == fs::file_type::directory;
}

// Temporary ones that a killed program left go on after the suffix.
bool isOwnFile(const fs::directory_entry &entry)
{
    constexpr size_t letters = 2 * (hashBytes - 1);
    std::error_code gone;
    const std::string name = entry.path().filename().string();
    return beginsWithHex(name, letters) && std::string_view(name).substr(letters).starts_with(suffix) &&
           entry.symlink_status(gone).type() == fs::file_type::regular;
}

template<typename Visit> void forEachEntry(const fs::path &folder, const Visit &visit)
{
    std::error_code failed;
    fs::directory_iterator entry(folder, failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed))
        visit(*entry);
}

std::vector<CachedFile> filesIn(const Location &folder, const std::atomic<bool> &ending)
{
    std::vector<CachedFile> files;
    const auto add = [&](const fs::directory_entry &entry) {
        std::error_code gone;
        const auto used = entry.last_write_time(gone);
        const auto bytes = qint64(entry.file_size(gone));
        if (!gone && isOwnFile(entry))
            files.push_back({entry.path(), used, bytes});
    };
    forEachEntry(folder.c_str(), [&](const fs::directory_entry &part) {
        if (!ending && isOwnFolder(part))
            forEachEntry(part.path(), add);
    });
    return files;
}

} // namespace

Location PreviewCache::file(const QByteArray &key) const
{
    const QByteArray name = hashOf(key).toHex();
    return m_folder.child(name.first(2)).child(name.sliced(2) + QByteArray(suffix.data(), suffix.size()));
}

std::optional<DecodedFile> PreviewCache::load(const QByteArray &key) const
{
    const auto opened = openRegularFile(file(key), Links::NoFollow);
    if (!opened)
        return {};
    const auto bytes = readBounded(opened->number(), largestFile);
    auto preview = bytes ? decoded(key, *bytes) : std::nullopt;
    if (preview)
        futimens(opened->number(), nullptr);
    return preview;
}

// Not flushed: after a crash of the machine a damaged file is found by its hash.
void PreviewCache::save(const QByteArray &key, const DecodedFile &preview) const
{
    const QByteArray bytes = encoded(key, preview);
    const Location place = file(key);
    if (bytes.isEmpty())
        return;
    std::error_code failed;
    fs::create_directories(place.parent().c_str(), failed);
    // A preview that could not be kept is made again one day.
    static_cast<void>(replaceAtomically(place, bytes, {.flush = Flush::No}));
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

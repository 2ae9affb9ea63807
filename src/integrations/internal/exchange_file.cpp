#include "integrations/internal/exchange_file.h"

#include "platform/system_paths.h"

#include <QJsonDocument>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {
namespace {

constexpr qsizetype largestMessage = 1 << 20;

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    operator int() const { return m_number; }

private:
    int m_number = -1;
};

bool writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (written < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(std::max<ssize_t>(written, 0));
    }
    return true;
}

std::optional<QByteArray> readAll(const Location &file)
{
    // Without blocking: what lies at this place may be a pipe that nobody writes to.
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return {};

    QByteArray bytes(largestMessage + 1, Qt::Uninitialized);
    qsizetype size = 0;
    while (size < bytes.size()) {
        const ssize_t count = ::read(descriptor, bytes.data() + size, size_t(bytes.size() - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0)
            break;
        size += count;
    }
    if (size > largestMessage)
        return {};
    bytes.truncate(size);
    return bytes;
}

} // namespace

Location ensureSupportFolder(const SystemPaths &paths)
{
    const Location folder = paths.supportFolder();
    std::error_code ignored;
    std::filesystem::create_directories(folder.c_str(), ignored);
    return folder;
}

bool writeExchangeFile(const Location &file, const QJsonObject &object)
{
    QByteArray temporary = file.bytes() + ".XXXXXX";
    // Not forced to the disk: a request outlives no crash, and the main thread must not wait for it.
    const Descriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (descriptor < 0)
        return false;
    if (writeAll(descriptor, QJsonDocument(object).toJson(QJsonDocument::Indented)) &&
        ::rename(temporary.constData(), file.c_str()) == 0)
        return true;
    ::unlink(temporary.constData());
    return false;
}

std::optional<QJsonObject> readExchangeFile(const Location &file)
{
    const std::optional<QByteArray> bytes = readAll(file);
    const QJsonDocument document = bytes ? QJsonDocument::fromJson(*bytes) : QJsonDocument();
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

void removeExchangeFile(const Location &file)
{
    ::unlink(file.c_str());
}

} // namespace cratewell

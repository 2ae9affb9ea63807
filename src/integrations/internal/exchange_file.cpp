#include "integrations/internal/exchange_file.h"

#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"
#include "platform/system_paths.h"

#include <QJsonDocument>
#include <filesystem>
#include <unistd.h>

namespace cratewell {
namespace {

constexpr qint64 largestMessage = 1 << 20;

} // namespace

Location ensureSupportFolder(const SystemPaths &paths)
{
    const Location folder = paths.supportFolder();
    std::error_code ignored;
    std::filesystem::create_directories(folder.c_str(), ignored);
    return folder;
}

Result<void> writeExchangeFile(const Location &file, const QJsonObject &object)
{
    // Not flushed: a request outlives no crash, and the main thread must not wait for the disk.
    return replaceAtomically(file, QJsonDocument(object).toJson(QJsonDocument::Indented),
                             {.flush = Flush::No});
}

std::optional<QJsonObject> readExchangeFile(const Location &file)
{
    const Result<QByteArray> bytes = readBounded(file, largestMessage, Links::Follow);
    const QJsonDocument document = bytes ? QJsonDocument::fromJson(*bytes) : QJsonDocument();
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

void removeRequest(const Location &file, const QString &id)
{
    const std::optional<QJsonObject> request = readExchangeFile(file);
    if (request && request->value(u"id").toString() == id)
        ::unlink(file.c_str());
}

} // namespace cratewell

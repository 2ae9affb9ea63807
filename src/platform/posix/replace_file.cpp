#include "platform/posix/replace_file.h"

#include "platform/posix/file_content.h"

#include <QRandomGenerator>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr QByteArrayView temporarySuffix(".new");

// "defaults.json.4711-0123456789abcdef.new": the process shows whether it is still needed, the rest cannot be
// guessed by whoever may write to the folder.
QByteArray temporaryFor(const QByteArray &name)
{
    const QByteArray random =
        QByteArray::number(QRandomGenerator::system()->generate64(), 16).rightJustified(16, '0');
    return name + '.' + QByteArray::number(qint64(::getpid())) + '-' + random + temporarySuffix.toByteArray();
}

// 0 when this is no such name.
pid_t ownerOf(QByteArrayView temporary, const QByteArray &name)
{
    const QByteArray prefix = name + '.';
    if (!temporary.startsWith(prefix) || !temporary.endsWith(temporarySuffix))
        return 0;
    const QByteArray middle = temporary.sliced(prefix.size()).chopped(temporarySuffix.size()).toByteArray();
    const qsizetype dash = middle.indexOf('-');
    bool isRandom = false;
    middle.mid(dash + 1).toULongLong(&isRandom, 16);
    return dash > 0 && isRandom ? middle.first(dash).toInt() : 0;
}

Result<void> fill(FileDescriptor temporary, QByteArrayView bytes, const ReplaceOptions &options)
{
    if (Result<void> written = writeAll(temporary.number(), bytes); !written)
        return written;
    if (options.mode != 0600 && ::fchmod(temporary.number(), options.mode) != 0)
        return systemFailure(errno);
    if (options.flush == Flush::Yes) {
        if (Result<void> flushed = flush(temporary.number()); !flushed)
            return flushed;
    }
    return temporary.close();
}

Result<void> replaceIn(int folder, const QByteArray &name, QByteArrayView bytes,
                       const ReplaceOptions &options)
{
    const QByteArray temporary = temporaryFor(name);
    Result<FileDescriptor> opened = openAt(folder, temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!opened)
        return tl::unexpected(opened.error());
    Result<void> done = fill(std::move(*opened), bytes, options);
    if (done && ::renameat(folder, temporary.constData(), folder, name.constData()) != 0)
        done = systemFailure(errno);
    if (!done) {
        ::unlinkat(folder, temporary.constData(), 0);
        return done;
    }
    return options.flush == Flush::Yes ? flush(folder) : done;
}

} // namespace

Result<void> replaceAtomically(const Location &file, QByteArrayView bytes, const ReplaceOptions &options)
{
    const Result<FileDescriptor> folder = openFile(file.parent(), O_RDONLY | O_DIRECTORY);
    if (!folder)
        return tl::unexpected(folder.error());
    return replaceAtomically(folder->number(), file.nameBytes().toByteArray(), bytes, options);
}

Result<void> replaceAtomically(int folder, const QByteArray &name, QByteArrayView bytes,
                               const ReplaceOptions &options)
{
    const Result<void> done = replaceIn(folder, name, bytes, options);
    return done ? done : systemFailure(done.error().code, textFromBytes(name));
}

void removeAbandonedTemporaries(const Location &file)
{
    const QByteArray wanted = file.nameBytes().toByteArray();
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(file.parent().c_str(), failure), end;
         !failure && entry != end; entry.increment(failure)) {
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().string());
        const pid_t owner = ownerOf(name, wanted);
        if (owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH)
            ::unlink(file.parent().child(name).c_str());
    }
}

Result<void> keepAside(const Location &file)
{
    const QByteArray base = file.nameBytes().toByteArray() + ".kept";
    for (int number = 1;; ++number) {
        const Location place =
            file.parent().child(number == 1 ? base : base + '-' + QByteArray::number(number));
        if (statusAt(AT_FDCWD, place.c_str(), Links::NoFollow))
            continue;
        // A link never replaces what came there meanwhile; folders and some file systems have no links.
        if (::link(file.c_str(), place.c_str()) == 0)
            return {};
        if (errno == EEXIST)
            continue;
        if (std::rename(file.c_str(), place.c_str()) == 0)
            return {};
        const int code = errno;
        return systemFailure(code, file.name());
    }
}

} // namespace cratewell

#include "platform/internal/replace_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr QByteArrayView temporarySuffix(".new");

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { close(); }
    Q_DISABLE_COPY_MOVE(Descriptor)

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    bool close() { return m_number < 0 || ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

Location temporaryFor(const Location &file)
{
    const QByteArray process = QByteArray::number(qint64(::getpid()));
    return file.parent().child(file.nameBytes().toByteArray() + '.' + process +
                               temporarySuffix.toByteArray());
}

bool writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (written < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(qMax(written, ssize_t(0)));
    }
    return true;
}

void flushFolder(const Location &folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen())
        ::fsync(descriptor.number());
}

bool exists(const Location &place)
{
    struct stat facts = {};
    return ::lstat(place.c_str(), &facts) == 0;
}

} // namespace

FileContent readRegularFile(const Location &file, qint64 limit)
{
    using State = FileContent::State;
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.isOpen())
        return {errno == ENOENT || errno == ENOTDIR ? State::Absent : State::Unreadable, {}};
    struct stat facts = {};
    if (::fstat(descriptor.number(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return {State::Unreadable, {}};
    QByteArray bytes;
    std::array<char, 1 << 16> chunk;
    while (true) {
        const ssize_t count = ::read(descriptor.number(), chunk.data(), chunk.size());
        if (count == 0)
            return {State::Read, bytes};
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || bytes.size() + count > limit)
            return {State::Unreadable, {}};
        bytes.append(chunk.data(), count);
    }
}

bool replaceFile(const Location &file, const QByteArray &content)
{
    std::error_code failure;
    std::filesystem::create_directories(file.parent().c_str(), failure);
    const Location temporary = temporaryFor(file);
    Descriptor descriptor(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!descriptor.isOpen())
        return false;
    const bool complete = writeAll(descriptor.number(), content) && ::fsync(descriptor.number()) == 0;
    if (!descriptor.close() || !complete || std::rename(temporary.c_str(), file.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    flushFolder(file.parent());
    return true;
}

void removeAbandonedTemporaries(const Location &file)
{
    const QByteArray prefix = file.nameBytes().toByteArray() + '.';
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(file.parent().c_str(), failure), end;
         !failure && entry != end; entry.increment(failure)) {
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().string());
        if (!name.startsWith(prefix) || !name.endsWith(temporarySuffix))
            continue;
        bool isNumber = false;
        const QByteArray process =
            name.mid(prefix.size(), name.size() - prefix.size() - temporarySuffix.size());
        const pid_t owner = process.toInt(&isNumber);
        if (isNumber && owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH)
            ::unlink(file.parent().child(name).c_str());
    }
}

bool keepAside(const Location &file)
{
    const QByteArray base = file.nameBytes().toByteArray() + ".kept";
    for (int number = 1;; ++number) {
        const Location place =
            file.parent().child(number == 1 ? base : base + '-' + QByteArray::number(number));
        if (exists(place))
            continue;
        // A link never replaces what came there meanwhile; folders and some file systems have no links.
        if (::link(file.c_str(), place.c_str()) == 0)
            return ::unlink(file.c_str()) == 0;
        if (errno != EEXIST)
            return std::rename(file.c_str(), place.c_str()) == 0;
    }
}

} // namespace cratewell

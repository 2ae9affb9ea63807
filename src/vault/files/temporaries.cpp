#include "vault/files/temporaries.h"

#include "vault/files/disk.h"
#include "vault/files/trash_index.h"

#include <QFile>
#include <QUuid>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr QByteArrayView prefix = ".cratewell-";
constexpr QByteArrayView suffix = ".part";
constexpr qsizetype idSize = 32;

Location journalOf(const Location &root)
{
    return trashFolder(root).child("journal");
}

bool isTemporaryName(QByteArrayView name)
{
    if (name.size() != prefix.size() + idSize + suffix.size() || !name.startsWith(prefix) ||
        !name.endsWith(suffix))
        return false;
    const QByteArrayView id = name.sliced(prefix.size(), idSize);
    return std::all_of(id.begin(), id.end(), [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
    });
}

} // namespace

Temporaries::Temporaries(const Location &root) : m_root(root) {}

Temporaries::~Temporaries()
{
    if (m_journal < 0)
        return;
    ::close(m_journal);
    ::unlink(journalOf(m_root).c_str());
}

int Temporaries::open()
{
    const int error = disk::makeFolder(trashFolder(m_root));
    if (error && error != EEXIST)
        return error;
    m_journal =
        ::open(journalOf(m_root).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0600);
    return m_journal < 0 ? errno : 0;
}

int Temporaries::name(const Location &folder, Location &result)
{
    if (m_journal < 0) {
        if (const int error = open())
            return error;
    }
    const QByteArray id = QUuid::createUuid().toByteArray(QUuid::Id128);
    result = folder.child(QByteArray(prefix.toByteArray() + id + suffix.toByteArray()));
    // The closing 0 goes with it: a torn entry has none.
    const QByteArray entry = result.bytes() + '\0';
    return ::write(m_journal, entry.constData(), size_t(entry.size())) == entry.size() ? 0
           : errno                                                                     ? errno
                                                                                       : EIO;
}

void Temporaries::cleanUp(const Location &root)
{
    const Location journal = journalOf(root);
    QFile file;
    const int descriptor = ::open(journal.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0 || !file.open(descriptor, QFile::ReadOnly, QFile::AutoCloseHandle))
        return;
    const QList<QByteArray> entries = file.readAll().split('\0');
    // What stands behind the last 0 was never handed out.
    for (qsizetype i = 0; i + 1 < entries.size(); ++i) {
        const Location left = Location::fromBytes(entries[i]);
        if (left.isInside(root) && isTemporaryName(left.nameBytes()))
            disk::remove(left);
    }
    ::unlink(journal.c_str());
}

} // namespace cratewell

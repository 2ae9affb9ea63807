#pragma once

#include "platform/error.h"
#include "platform/location.h"

#include <QHash>

#include <cerrno>

namespace cratewell {

// Names for items that must not replace others: the name itself, then "base 2.ext", "base 3.ext" and so on,
// by the first that is free. Remembers where it stopped, so that many items of one name do not begin anew
// each time.
class UniqueNames
{
public:
    enum class Naming { File, Folder }; // a folder's name has no extension

    // Calls attempt(place), which gives a Result<void>, until it gives something other than EEXIST; returns
    // the place where it succeeded.
    template<typename Attempt>
    Result<Location> claim(const Location &folder, const QByteArray &name, Naming naming,
                           const Attempt &attempt)
    {
        const QByteArray first = folder.child(name).bytes();
        int &number = m_next.insert(first, m_next.value(first, 1)).value();
        for (; number <= mostNumbers; ++number) {
            const Location place = folder.child(numbered(name, number, naming));
            const Result<void> attempted = attempt(place);
            if (attempted)
                return place;
            if (!attempted.error().is(EEXIST))
                return tl::unexpected(attempted.error());
        }
        return systemFailure(EEXIST);
    }

    // At most 255 bytes: a long base loses whole characters at its end.
    static QByteArray numbered(const QByteArray &name, int number, Naming naming);

private:
    // Beyond it a file system calls every name taken.
    static constexpr int mostNumbers = 1'000'000;

    QHash<QByteArray, int> m_next;
};

} // namespace cratewell

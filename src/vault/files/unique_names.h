#pragma once

#include "platform/location.h"

#include <QHash>

namespace cratewell {

// Names for items that must not replace others: the name itself, then "base 2.ext", "base 3.ext" and so on,
// by the first that is free. Remembers where it stopped, so that many items of one name do not begin anew
// each time.
class UniqueNames
{
public:
    enum class Naming { File, Folder }; // a folder's name has no extension

    // Calls attempt(place), which gives 0 or an errno value, until it gives something other than EEXIST.
    // `result` is the place of the last attempt.
    template<typename Attempt>
    int claim(const Location &folder, const QByteArray &name, Naming naming, Location &result,
              const Attempt &attempt)
    {
        int &number =
            m_next.insert(folder.child(name).bytes(), m_next.value(folder.child(name).bytes(), 1)).value();
        for (;; ++number) {
            result = folder.child(numbered(name, number, naming));
            if (const int error = attempt(result); error != alreadyThere)
                return error;
        }
    }

    static QByteArray numbered(const QByteArray &name, int number, Naming naming);

private:
    static const int alreadyThere;

    QHash<QByteArray, int> m_next;
};

} // namespace cratewell

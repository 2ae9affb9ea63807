#include "vault/files/unique_names.h"

#include <cerrno>

namespace cratewell {

const int UniqueNames::alreadyThere = EEXIST;

QByteArray UniqueNames::numbered(const QByteArray &name, int number, Naming naming)
{
    if (number == 1)
        return name;
    const Location place = Location::fromStandardized("/" + name);
    const QByteArray extension = naming == Naming::File ? place.extensionBytes().toByteArray() : QByteArray();
    if (extension.isEmpty())
        return name + ' ' + QByteArray::number(number);
    return name.chopped(extension.size() + 1) + ' ' + QByteArray::number(number) + '.' + extension;
}

} // namespace cratewell

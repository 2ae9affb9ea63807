#include "vault/files/unique_names.h"

namespace cratewell {

namespace {

constexpr qsizetype longestName = 255; // bytes

// At most `size` bytes without half a UTF-8 character at the end.
QByteArray shortened(const QByteArray &text, qsizetype size)
{
    if (text.size() <= size)
        return text;
    const auto continues = [&](qsizetype at) { return (uchar(text[at]) & 0xc0) == 0x80; };
    while (size > 0 && continues(size))
        --size;
    return text.first(size);
}

} // namespace

QByteArray UniqueNames::numbered(const QByteArray &name, int number, Naming naming)
{
    if (number == 1)
        return name;
    const Location place = Location::fromStandardized("/" + name);
    const QByteArrayView extension = naming == Naming::File ? place.extensionBytes() : QByteArrayView();
    const qsizetype dot = extension.isEmpty() ? name.size() : name.size() - extension.size() - 1;
    const QByteArray suffix = ' ' + QByteArray::number(number) + name.sliced(dot);
    // What follows a dot in so long a name may be most of it, and then is no extension.
    if (suffix.size() >= longestName - 4)
        return numbered(name, number, Naming::Folder);
    return shortened(name.first(dot), longestName - suffix.size()) + suffix;
}

} // namespace cratewell

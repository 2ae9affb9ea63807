#pragma once

#include <QByteArrayView>
#include <QString>

namespace cratewell {

// What a typed name becomes on disk: white space and line breaks off both ends, "-" for "/". May be empty.
QString cleanedName(const QString &typed);
// One component of a path, as a file system takes it: not empty, not "." or "..", at most 255 bytes.
bool isPlainName(QByteArrayView name);

} // namespace cratewell

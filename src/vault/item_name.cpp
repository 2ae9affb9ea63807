#include "vault/item_name.h"

namespace cratewell {

QString cleanedName(const QString &typed)
{
    QString name = typed.trimmed();
    name.replace(u'/', u'-');
    return name;
}

bool isPlainName(QByteArrayView name)
{
    constexpr qsizetype longest = 255;
    return !name.isEmpty() && name.size() <= longest && name != "." && name != ".." && !name.contains('/') &&
           !name.contains('\0');
}

} // namespace cratewell

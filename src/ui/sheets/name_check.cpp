#include "ui/sheets/name_check.h"

#include "vault/asset.h"
#include "vault/item_name.h"

using namespace Qt::StringLiterals;

namespace cratewell {

QString nameProblem(const QString &typed)
{
    const QString name = cleanedName(typed);
    if (name.isEmpty())
        return u"Type a name."_s;
    if (name == u"."_s || name == u".."_s)
        return u"“%1” stands for a folder of its own on every disk."_s.arg(name);
    if (name.contains(QChar::Null))
        return u"This name has a character that no file can have."_s;
    if (!isPlainName(bytesFromText(name)))
        return u"This name is too long for a disk."_s;
    return {};
}

QString extensionWarning(const Location &file, const QString &typed)
{
    if (!nameProblem(typed).isEmpty())
        return {};
    const Location renamed = file.parent().child(cleanedName(typed));
    const QString before = file.extension();
    const QString after = renamed.extension();
    if (after.compare(before, Qt::CaseInsensitive) == 0)
        return {};
    if (!kindOf(renamed))
        return before.isEmpty() ? QString()
                                : u"Without “.%1” the file no longer shows up in your vault."_s.arg(before);
    return before.isEmpty() ? u"The file gets the extension “.%1”."_s.arg(after)
                            : u"The extension changes from “.%1” to “.%2”."_s.arg(before, after);
}

} // namespace cratewell

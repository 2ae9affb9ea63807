#include "integrations/internal/resolve_script.h"

#include <QFile>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

QString resourceText(const QString &name)
{
    QFile file(u":/cratewell/scripts/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

QString externalResolveScript()
{
    return resourceText(u"resolve_insert.py"_s) + resourceText(u"resolve_external.py"_s);
}

QProcessEnvironment resolveEnvironment(const SystemPaths &paths, QProcessEnvironment inherited)
{
    const QString modules = inherited.value(u"PYTHONPATH"_s);
    const QString api = paths.resolveApi.text();
    inherited.insert(u"RESOLVE_SCRIPT_API"_s, api);
    inherited.insert(u"RESOLVE_SCRIPT_LIB"_s, paths.resolveLibrary.text());
    inherited.insert(u"PYTHONPATH"_s,
                     (modules.isEmpty() ? QString() : modules + u':') + api + u"/Modules/"_s);
    // A script given as text looks for its modules in the current folder. Interpreters before 3.11 do not
    // know this variable: the script drops that folder as well.
    inherited.insert(u"PYTHONSAFEPATH"_s, u"1"_s);
    return inherited;
}

} // namespace cratewell

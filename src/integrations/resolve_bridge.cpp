#include "integrations/resolve_bridge.h"

#include "integrations/exchange.h"
#include "integrations/internal/exchange_file.h"
#include "integrations/internal/python_run.h"
#include "integrations/internal/resolve_script.h"
#include "state/prefs.h"

#include <QJsonDocument>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

InsertResult queuedForMenu()
{
    return {false,
            u"Queued for Resolve. Choose Workspace › Scripts › Cratewell Insert in Resolve to place it. "
            "To make this one click, allow Cratewell in System Settings › Privacy & Security › "
            "Accessibility."_s};
}

// Nothing is started: what lies in the request's place would be an older one.
QCoro::Task<InsertResult> unwritten(Error error)
{
    co_return InsertResult{false, u"The request to Resolve could not be written: "_s + error.message};
}

// Owns all it needs: the bridge may be gone when the script has ended.
QCoro::Task<InsertResult> runRequest(Location requestFile, QString id, PythonCall call)
{
    const std::optional<QString> answer = co_await runPython(std::move(call));
    std::optional<InsertResult> result = resolveResult(answer);
    if (!result)
        co_return queuedForMenu();
    removeRequest(requestFile, id);
    co_return *result;
}

} // namespace

ResolveBridge::ResolveBridge(const Prefs &prefs, SystemPaths paths, std::chrono::milliseconds limit)
    : m_prefs(prefs), m_paths(std::move(paths)), m_limit(limit)
{
}

QCoro::Task<InsertResult> ResolveBridge::insert(const Asset &asset)
{
    const int blend = blendNumber(blendModeFromRawValue(m_prefs.blendMode()));
    const Location file = ensureSupportFolder(m_paths).child("resolve-request.json");
    const QJsonObject request = insertRequest(asset, blend, m_prefs);
    if (const Result<void> written = writeExchangeFile(file, request); !written)
        return unwritten(written.error());

    const QString id = request[u"id"].toString();
    return runRequest(file, id,
                      {.interpreter = m_paths.python,
                       .script = externalResolveScript(),
                       .arguments = {file.text(), id},
                       .environment = resolveEnvironment(m_paths, QProcessEnvironment::systemEnvironment()),
                       .limit = m_limit});
}

int ResolveBridge::blendNumber(BlendMode mode)
{
    switch (mode) {
    case BlendMode::Normal:
        return 0;
    case BlendMode::Screen:
        return 5;
    case BlendMode::Add:
        return 1;
    case BlendMode::Overlay:
        return 6;
    case BlendMode::SoftLight:
        return 8;
    case BlendMode::Multiply:
        return 4;
    }
    return blendNumber(BlendMode::Screen);
}

std::optional<InsertResult> resolveResult(const std::optional<QString> &answer)
{
    const QJsonDocument document = answer ? QJsonDocument::fromJson(answer->toUtf8()) : QJsonDocument();
    if (!document.isObject() || document[u"code"].toString() == u"no-external")
        return {};
    return InsertResult{document[u"ok"].toBool(false),
                        document[u"message"].toString(u"Resolve didn't say what happened."_s)};
}

} // namespace cratewell

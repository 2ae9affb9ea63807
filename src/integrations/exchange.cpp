#include "integrations/exchange.h"

#include "integrations/internal/exchange_file.h"
#include "state/prefs.h"

#include <QCoro/QCoroTimer>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QUuid>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

QJsonObject insertRequest(const Asset &asset, int blend, const Prefs &prefs)
{
    const bool blends = asset.kind == AssetKind::Video || asset.kind == AssetKind::Image;
    return {
        {u"id"_s, QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()},
        {u"t"_s, double(QDateTime::currentMSecsSinceEpoch()) / 1000},
        {u"path"_s, asset.url.text()},
        {u"kind"_s, rawValue(asset.kind)},
        {u"name"_s, asset.url.baseName()},
        {u"blend"_s, blends && prefs.applyBlendOnInsert() ? blend : -1},
        {u"track"_s, prefs.overlayTrack()},
    };
}

QCoro::Task<std::optional<QJsonObject>> awaitResponse(Location file, QString id,
                                                      std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (!deadline.hasExpired()) {
        std::optional<QJsonObject> answer = readExchangeFile(file);
        if (answer) {
            const QJsonValue answered = answer->value(u"id"_s);
            if (answered.isString() && answered.toString() == id)
                co_return answer;
        }
        co_await QCoro::sleepFor(150ms);
    }
    co_return std::nullopt;
}

} // namespace cratewell

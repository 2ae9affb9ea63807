#include "integrations/exchange.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/prefs.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <fstream>
#include <gtest/gtest.h>

namespace cratewell::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TEST(Exchange, WaitsForTheAnswerWithItsIdUntilTheDeadline)
{
    const QTemporaryDir folder;
    const Location file = Location::fromText(folder.path()).child("answer.json");
    const auto answerWithin = [&](std::chrono::milliseconds limit) {
        return QCoro::waitFor(awaitResponse(file, u"A"_s, limit));
    };
    const auto write = [&](const QByteArray &content) { std::ofstream(file.c_str()) << content.data(); };
    EXPECT_FALSE(answerWithin(20ms));
    for (const QByteArray &content :
         {QByteArray("[]"), QByteArray(R"({"id": 1})"), QByteArray(R"({"id": "A"}x)"),
          R"({"id": "A", "x": ")" + QByteArray(1 << 20, 'x') + "\"}", QByteArray(R"({"id": "B"})")}) {
        write(content);
        EXPECT_FALSE(answerWithin(20ms)) << content.left(9).constData();
    }
    // The answer to an earlier request lies there first, then half of ours.
    QTimer::singleShot(100ms, [&] { write(R"({"id": "A", "o)"); });
    QTimer::singleShot(300ms, [&] { write(R"({"id": "A", "ok": true})"); });
    const std::optional<QJsonObject> answer = answerWithin(10s);
    ASSERT_TRUE(answer);
    EXPECT_TRUE((*answer)[u"ok"].toBool());
    EXPECT_TRUE(QFile::exists(file.text()));
}

TEST(Exchange, RequestsSayWhatIsWanted)
{
    using enum AssetKind;
    MemoryDefaults defaults;
    Prefs prefs(defaults, SystemPaths::below(Location::fromBytes("/nowhere")));
    prefs.setOverlayTrack(u"free"_s);
    QSet<QString> ids;
    for (const auto &[kind, name, blend] : {std::tuple{Video, u"video"_s, 6},
                                            {Image, u"image"_s, 6},
                                            {Audio, u"audio"_s, -1},
                                            {Lut, u"lut"_s, -1}}) {
        const Asset asset{.url = Location::fromBytes("/v/Hit.one.wav"), .kind = kind, .version = {}};
        QJsonObject request = insertRequest(asset, 6, prefs);
        EXPECT_NEAR(request.take(u"t"_s).toDouble(), double(QDateTime::currentSecsSinceEpoch()), 60);
        ids += request.take(u"id"_s).toString();
        EXPECT_EQ(request, (QJsonObject{{u"path"_s, u"/v/Hit.one.wav"_s},
                                        {u"kind"_s, name},
                                        {u"name"_s, u"Hit.one"_s},
                                        {u"blend"_s, blend},
                                        {u"track"_s, u"free"_s}}));
    }
    EXPECT_EQ(ids.size(), 4);
    const QRegularExpression uuid(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
    EXPECT_TRUE(uuid.match(*ids.begin()).hasMatch()) << qPrintable(*ids.begin());
}

} // namespace
} // namespace cratewell::test

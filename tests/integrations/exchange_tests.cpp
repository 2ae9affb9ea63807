#include "integrations/exchange.h"
#include "integrations/internal/exchange_file.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/prefs.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

namespace cratewell::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

class Exchange : public testing::Test
{
protected:
    void write(const QByteArray &content)
    {
        QFile file(m_file.text());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }

    QTemporaryDir m_temporary;
    Location m_file = Location::fromText(m_temporary.path()).child("answer.json");
};

TEST_F(Exchange, WaitsForTheAnswerWithItsId)
{
    write(R"({"id": "A", "ok": true})");
    const std::optional<QJsonObject> atOnce = QCoro::waitFor(awaitResponse(m_file, u"A"_s, 10s));
    ASSERT_TRUE(atOnce);
    EXPECT_TRUE((*atOnce)[u"ok"].toBool());
    EXPECT_TRUE(QFile::exists(m_file.text()));

    // The answer to an earlier request lies there first, then half of ours.
    QTimer::singleShot(100ms, [this] { write(R"({"id": "B", "o)"); });
    QTimer::singleShot(300ms, [this] { write(R"({"id": "B", "ok": false})"); });
    const std::optional<QJsonObject> later = QCoro::waitFor(awaitResponse(m_file, u"B"_s, 10s));
    ASSERT_TRUE(later);
    EXPECT_EQ((*later)[u"id"].toString(), u"B"_s);
}

TEST_F(Exchange, GivesUpAtTheDeadlineWhateverLiesThere)
{
    const QByteArrayList contents = {"[]", R"({"id": "B"})", R"({"id": 1})", R"({"id": "A"}x)",
                                     R"({"id": "A", "x": ")" + QByteArray(1 << 20, 'x') + "\"}"};
    for (const QByteArray &content : contents) {
        write(content);
        QElapsedTimer elapsed;
        elapsed.start();
        EXPECT_FALSE(QCoro::waitFor(awaitResponse(m_file, u"A"_s, 20ms))) << content.left(9).constData();
        EXPECT_GE(elapsed.elapsed(), 20);
    }
    ASSERT_TRUE(QFile::remove(m_file.text()));
    EXPECT_FALSE(QCoro::waitFor(awaitResponse(m_file, u"A"_s, 20ms)));
}

TEST_F(Exchange, RequestsSayWhatIsWanted)
{
    MemoryDefaults defaults;
    Prefs prefs(defaults, SystemPaths::below(m_file.parent()));
    const Location place = Location::fromText(u"/Vault/SFX/Hit.one.wav"_s);
    const std::tuple<AssetKind, bool, QString, int> cases[] = {
        {AssetKind::Video, true, u"video"_s, 6},   {AssetKind::Image, true, u"image"_s, 6},
        {AssetKind::Audio, true, u"audio"_s, -1},  {AssetKind::Lut, true, u"lut"_s, -1},
        {AssetKind::Video, false, u"video"_s, -1},
    };
    QSet<QString> ids;
    for (const auto &[kind, apply, name, blend] : cases) {
        prefs.setApplyBlendOnInsert(apply);
        prefs.setOverlayTrack(u"free"_s);
        QJsonObject request = insertRequest({.url = place, .kind = kind, .version = {}}, 6, prefs);
        const double now = double(QDateTime::currentMSecsSinceEpoch()) / 1000;
        EXPECT_NEAR(request.take(u"t"_s).toDouble(), now, 60);
        const QString id = request.take(u"id"_s).toString();
        static const QRegularExpression uuid(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
        EXPECT_TRUE(uuid.match(id).hasMatch()) << qPrintable(id);
        ids += id;
        EXPECT_EQ(request, (QJsonObject{{u"path"_s, place.text()},
                                        {u"kind"_s, name},
                                        {u"name"_s, u"Hit.one"_s},
                                        {u"blend"_s, blend},
                                        {u"track"_s, u"free"_s}}));
    }
    EXPECT_EQ(ids.size(), qsizetype(std::size(cases)));
}

} // namespace
} // namespace cratewell::test

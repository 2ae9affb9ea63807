#include "integrations/inserter.h"
#include "platform/fakes/fake_applications.h"

#include "state/notifications.h"
#include "support/small_library.h"

#include <QCoro/QCoroFuture>
#include <QPromise>
#include <QSignalSpy>
#include <QTimer>
#include <gtest/gtest.h>

namespace cratewell::test {
namespace {

using namespace Qt::StringLiterals;

const QString resolveId = u"com.blackmagic-design.DaVinciResolve"_s;
const QString premiereId = u"com.adobe.PremierePro.24"_s;

// Answers when the test says so.
class FakeBridge final : public EditorBridge
{
public:
    QCoro::Task<InsertResult> insert(const Asset &asset) override
    {
        inserted += asset.url.text();
        m_promise = QPromise<InsertResult>();
        m_promise.start();
        co_return co_await m_promise.future();
    }
    void answer(const InsertResult &result)
    {
        m_promise.addResult(result);
        m_promise.finish();
    }

    QStringList inserted;

private:
    QPromise<InsertResult> m_promise;
};

Asset asset(const QString &path, AssetKind kind)
{
    return {.url = Location::fromText(path), .kind = kind, .version = {}};
}

class InserterTest : public testing::Test
{
protected:
    SmallLibrary m_library;
    Prefs &m_prefs = m_library.prefs;
    FakeApplications m_applications;
    Notifications m_notifications;
    FakeBridge m_resolve;
    FakeBridge m_premiere;
    std::optional<Inserter> m_inserter{std::in_place,   m_prefs,   m_library.state, m_applications,
                                       m_notifications, m_resolve, m_premiere};

    const Asset m_smoke = asset(u"/v/Smoke.mov"_s, AssetKind::Video);
    const Asset m_hit = asset(u"/v/Hit.wav"_s, AssetKind::Audio);
    const Asset m_lut = asset(u"/v/Teal.cube"_s, AssetKind::Lut);
};

TEST_F(InserterTest, PicksTheEditorByPreferenceThenByWhatRunsThenByLastUse)
{
    using enum Target;
    const struct
    {
        QString preference;
        QStringList running;
        QString activated;
        std::optional<Target> asked, picked;
    } cases[] = {
        {u"auto"_s, {u"org.example.Resolve"_s}, {}, {}, {}},
        {u"auto"_s, {resolveId + u"Lite"_s}, {}, {}, Resolve},
        {u"auto"_s, {premiereId, resolveId}, {}, {}, Resolve},
        {u"auto"_s, {premiereId, resolveId}, premiereId, {}, Premiere},
        {u"auto"_s, {resolveId}, premiereId, {}, Resolve},
        {u"whatever"_s, {premiereId}, {}, {}, Premiere},
        {u"resolve"_s, {premiereId}, {}, {}, Resolve},
        {u"premiere"_s, {}, {}, {}, Premiere},
        {u"premiere"_s, {}, {}, Resolve, Resolve},
    };
    for (const auto &[preference, running, activated, asked, picked] : cases) {
        Inserter inserter(m_prefs, m_library.state, m_applications, m_notifications, m_resolve, m_premiere);
        m_prefs.setInsertTarget(preference);
        m_applications.setRunningSilently({});
        inserter.start();
        m_applications.activate(activated);
        m_applications.activate(u"llc.tolvan.cratewell"_s);
        m_applications.setRunningSilently(running);
        const bool decided = asked || preference == u"resolve" || preference == u"premiere";
        EXPECT_EQ(inserter.pick(asked, Inserter::Refresh::No).has_value(), decided);
        EXPECT_EQ(inserter.pick(asked, Inserter::Refresh::Yes), picked) << qPrintable(running.join(u' '));
    }
}

TEST_F(InserterTest, FollowsWhichEditorsRun)
{
    m_applications.setRunningSilently({premiereId});
    m_inserter->start();
    EXPECT_TRUE(m_inserter->premiereRunning());
    const QSignalSpy running(&*m_inserter, &Inserter::runningChanged);
    const QSignalSpy target(&*m_inserter, &Inserter::targetChanged);
    m_applications.setRunning({premiereId, resolveId});
    EXPECT_TRUE(m_inserter->resolveRunning());
    m_applications.setRunning({resolveId, premiereId});
    m_applications.setRunning({});
    EXPECT_FALSE(m_inserter->resolveRunning() || m_inserter->premiereRunning());
    EXPECT_EQ(running.size(), 2);
    m_applications.activate(resolveId);
    m_prefs.setBlendMode(u"add"_s);
    EXPECT_EQ(target.size(), 4);
}

TEST_F(InserterTest, SaysWhereAnAssetWillGo)
{
    EXPECT_EQ(m_inserter->targetDescription(m_lut),
              u"Open Resolve or Premiere to insert, or drag the asset onto your timeline."_s);
    const struct
    {
        QString target, track, mode, editor, place;
    } cases[] = {
        {u"resolve"_s, u"newTop"_s, u"screen"_s, u"DaVinci Resolve"_s, u"a new top track, Screen blend."_s},
        {u"premiere"_s, u"free"_s, u"softLight"_s, u"Premiere Pro"_s,
         u"the highest free track, Soft Light blend."_s},
        {u"resolve"_s, u"newTop"_s, {}, u"DaVinci Resolve"_s, u"a new top track."_s},
    };
    for (const auto &[target, track, mode, editor, place] : cases) {
        m_prefs.setInsertTarget(target);
        m_prefs.setOverlayTrack(track);
        m_prefs.setBlendMode(mode);
        m_prefs.setApplyBlendOnInsert(!mode.isEmpty());
        const QString goesTo = u"Goes to %1 at the playhead on "_s.arg(editor);
        EXPECT_EQ(m_inserter->targetDescription(m_smoke), goesTo + place);
        EXPECT_EQ(m_inserter->targetDescription(m_hit), goesTo + u"the first free audio track."_s);
        EXPECT_EQ(m_inserter->targetDescription(m_lut),
                  u"LUTs are kept in your library. Drag one onto a clip or node to use it."_s);
    }
}

TEST_F(InserterTest, CarriesOneInsertAtATime)
{
    QStringList effects;
    QObject::connect(&*m_inserter, &Inserter::busyChanged,
                     [&] { effects += m_inserter->busy() ? u"busy"_s : u"idle"_s; });
    QObject::connect(&m_notifications, &Notifications::toastChanged,
                     [&] { effects += m_notifications.toastText(); });
    QObject::connect(&m_prefs, &Prefs::recentChanged, [&] { effects += u"recent"_s; });

    m_applications.setRunningSilently({resolveId});
    m_library.state.setSelection(m_smoke);
    m_inserter->insertSelected();
    m_inserter->insert(m_hit);
    m_inserter->insert(m_hit, Target::Premiere);
    m_resolve.answer({true, u"Inserted"_s});
    ASSERT_TRUE(waitUntil([&] { return !m_inserter->busy(); }));
    effects.removeDuplicates();
    EXPECT_EQ(effects, (QStringList{u"busy"_s, u"idle"_s, u"Inserted"_s, u"recent"_s}));
    EXPECT_TRUE(m_notifications.toastOk());

    m_inserter->insert(m_hit, Target::Premiere);
    m_premiere.answer({false, u"No panel"_s});
    ASSERT_TRUE(waitUntil([&] { return !m_inserter->busy(); }));
    EXPECT_EQ(m_notifications.toastText(), u"No panel"_s);
    EXPECT_FALSE(m_notifications.toastOk());
    EXPECT_EQ(m_prefs.recent().size(), 1);
    EXPECT_EQ(m_resolve.inserted, QStringList(u"/v/Smoke.mov"_s));
    EXPECT_EQ(m_premiere.inserted, QStringList(u"/v/Hit.wav"_s));
}

TEST_F(InserterTest, IgnoresLutsAndAsksForAnEditorWhereNoneRuns)
{
    m_inserter->insertSelected();
    m_inserter->insert(m_lut, Target::Resolve);
    EXPECT_EQ(m_notifications.toastText(), QString());
    m_inserter->insert(m_smoke);
    EXPECT_FALSE(m_inserter->busy());
    EXPECT_FALSE(m_notifications.toastOk());
    EXPECT_TRUE(m_notifications.toastText().startsWith(u"Open DaVinci Resolve or Premiere Pro first."));
    EXPECT_EQ(m_resolve.inserted, QStringList());
}

TEST_F(InserterTest, MayGoWhileAnInsertIsUnderWay)
{
    m_inserter->insert(m_smoke, Target::Resolve);
    m_inserter.reset();
    m_resolve.answer({true, u"Inserted"_s});
    // The answer is on its way before this.
    bool passed = false;
    QTimer::singleShot(0, [&] { passed = true; });
    ASSERT_TRUE(waitUntil([&] { return passed; }));
    EXPECT_EQ(m_prefs.recent().size(), 0);
}

} // namespace
} // namespace cratewell::test

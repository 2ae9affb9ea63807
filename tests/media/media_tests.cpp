#include "made_media.h"
#include "media/media.h"
#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <cmath>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;
using State = Media::State;

// A vault of real files, a real worker.
class MediaTest : public testing::Test
{
protected:
    SystemPaths pathsWith(const QString &worker) const
    {
        SystemPaths paths = SystemPaths::below(Location::fromText(m_files.path(u"home"_s)));
        paths.workerProgram = Location::fromText(worker);
        return paths;
    }
    void scan()
    {
        QSignalSpy scanned(&m_vault, &Vault::rescanned);
        m_vault.rescan();
        ASSERT_TRUE(waitUntil([&] { return !scanned.isEmpty(); }));
    }
    Asset asset(const Location &url) const
    {
        return m_vault.snapshot()->asset(m_vault.snapshot()->find(url).value());
    }
    Asset added(const QString &name, const QByteArray &content)
    {
        const QString place = u"vault/"_s + name;
        EXPECT_TRUE(QDir().mkpath(QFileInfo(m_files.path(place)).path()));
        m_files.bytes(place, content);
        scan();
        return asset(Location::fromText(m_files.path(place)));
    }
    Asset addedFilm()
    {
        return added(u"Overlays/film.mp4"_s, MadeMedia::content(m_files.grayRamp(u"film.mp4"_s)));
    }
    QString blue(QSize size) { return m_files.image(u"blue.png"_s, filled(size, Qt::blue)); }
    // Two seconds, one of silence and one of sound.
    QByteArray tone()
    {
        return MadeMedia::content(m_files.ffmpeg(
            u"tone.wav"_s, {}, u"-f lavfi -i aevalsrc='if(gte(t,1),sin(2000*t),0)':s=48000:d=2"_s));
    }
    static State settled(Media &media, const Asset &wanted)
    {
        const auto request = media.requestThumbnail(wanted);
        EXPECT_TRUE(waitUntil([&] { return media.thumbnailState(wanted) != State::Missing; }));
        return media.thumbnailState(wanted);
    }
    static WaveformPeaks peaksOf(Media &media, const Asset &sound)
    {
        const auto request = media.requestWaveform(sound);
        EXPECT_TRUE(waitUntil([&] { return media.waveform(sound).has_value(); }));
        return media.waveform(sound).value_or(WaveformPeaks());
    }

    MadeMedia m_files;
    MemoryDefaults m_defaults;
    SystemPaths m_paths = pathsWith(QStringLiteral(CRATEWELL_REAL_WORKER));
    Prefs m_prefs{m_defaults, m_paths};
    Vault m_vault{Location::fromText(m_files.path(u"vault"_s)), m_defaults,
                  std::make_unique<FakeFileEvents>()};
    Media m_media{m_vault, m_prefs, m_paths};
};

TEST_F(MediaTest, MakesPicturesOfVideosAndImages)
{
    const Asset film = addedFilm();
    const Asset picture = added(u"Overlays/four.png"_s,
                                MadeMedia::content(m_files.image(u"four.png"_s, fourColors({1600, 800}))));
    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    ASSERT_EQ(settled(m_media, film), State::Ready);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.value(0).value(0).value<Location>(), film.url);
    // At 35 hundredths of ten seconds the ramp is at frame 87.5, one gray level a frame.
    EXPECT_NEAR(qRed(m_media.thumbnail(film).pixel(32, 32)), 87.5, 5);
    ASSERT_EQ(settled(m_media, picture), State::Ready);
    EXPECT_EQ(m_media.thumbnail(picture).size(), QSize(640, 320));
    EXPECT_EQ(m_media.thumbnail(picture).pixel(630, 310), qRgb(255, 255, 0));

    for (const auto &[fraction, bucket] : {std::pair(0.5, 11), {1.0, 23}, {7.0, 23}, {std::nan(""), 0}})
        EXPECT_EQ(Media::scrubBucket(fraction), bucket) << fraction;
    for (const auto &[bucket, gray] : {std::pair(23, 245), {0, 0}}) {
        const auto request = m_media.requestScrubFrame(film, bucket);
        ASSERT_TRUE(waitUntil([&, bucket = bucket] { return !m_media.scrubFrame(film, bucket).isNull(); }));
        EXPECT_NEAR(qRed(m_media.scrubFrame(film, bucket).pixel(20, 20)), gray, 6);
    }

    const Asset text = added(u"Overlays/text.mov"_s, "only text");
    const auto frame = m_media.frame(film.url, 0.5, 32), bad = m_media.frame(text.url, 0, 32);
    const auto strip = m_media.filmstrip(film.url, 3), none = m_media.filmstrip(film.url, 0);
    ASSERT_TRUE(waitUntil([&] { return frame.isFinished() && bad.isFinished() && strip.isFinished(); }));
    EXPECT_EQ(frame.result().size(), QSize(32, 32));
    EXPECT_NEAR(qRed(frame.result().pixel(5, 5)), 125, 5);
    EXPECT_TRUE(bad.result().isNull() && none.result().isEmpty());
    ASSERT_EQ(strip.result().size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(qRed(strip.result()[i].pixel(5, 5)), 250 * (2 * i + 1) / 6.0, 5) << i;
}

TEST_F(MediaTest, RemembersFailuresUntilTheFileChanges)
{
    const Asset text = added(u"Overlays/text.mov"_s, "only text");
    Asset empty = added(u"Overlays/empty.png"_s, QByteArray());
    const Location pipe = text.url.parent().child("pipe.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(settled(m_media, {.url = pipe, .kind = AssetKind::Image, .version = {}}), State::Failed);
    for (const Asset &bad : {text, empty}) {
        EXPECT_EQ(settled(m_media, bad), State::Failed) << bad.url.bytes().toStdString();
        EXPECT_EQ(m_media.requestThumbnail(bad), nullptr);
    }

    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    empty = added(u"Overlays/empty.png"_s, MadeMedia::content(blue({64, 64})));
    EXPECT_EQ(changed.size(), 1);
    ASSERT_EQ(settled(m_media, empty), State::Ready);
    EXPECT_EQ(m_media.thumbnailState(text), State::Failed);

    // What a change of permissions may have mended is tried again; what is there stays.
    for (const Asset &file : {text, empty})
        ASSERT_EQ(chmod(file.url.c_str(), 0640), 0);
    scan();
    EXPECT_EQ(m_media.thumbnailState(asset(text.url)), State::Missing);
    EXPECT_EQ(m_media.thumbnailState(asset(empty.url)), State::Ready);
}

TEST_F(MediaTest, ShowsTheUsersStillOnceItIsThereAndTheBuiltInOneOtherwise)
{
    const QImage sunset = m_media.still();
    ASSERT_EQ(sunset.size(), QSize(1600, 900));
    // Sky, glow and figure, where a single shape decides.
    for (const auto &[x, y, color] :
         {std::tuple(1, 1, qRgb(41, 46, 107)), {992, 360, qRgb(238, 163, 119)}, {488, 720, qRgb(20, 20, 31)}})
        EXPECT_TRUE(isNear(sunset.pixel(x, y), color, 2)) << x << ' ' << y;

    QSignalSpy changed(&m_media, &Media::stillChanged);
    m_prefs.setPreviewStill(blue({300, 200}));
    EXPECT_EQ(m_media.still(), sunset);
    ASSERT_TRUE(waitUntil([&] { return changed.size() == 2; }));
    EXPECT_EQ(m_media.still().size(), QSize(300, 200));
    // Chosen, left and chosen again before it was ready.
    const QString other = m_files.image(u"other.png"_s, fourColors({400, 100}));
    for (const QString &choice : {other, QString(), other}) {
        m_prefs.setPreviewStill(choice);
        EXPECT_EQ(m_media.still(), sunset);
    }
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(400, 100); }));

    for (const QString &bad : {m_files.path(u"missing.png"_s), m_files.bytes(u"text.png"_s, "only text")}) {
        m_prefs.setPreviewStill(bad);
        EXPECT_EQ(m_media.still(), sunset) << bad.toStdString();
        // By then the still has had its turn, too.
        const auto frame = m_media.frame(Location::fromText(other), 0, 64);
        ASSERT_TRUE(waitUntil([&] { return frame.isFinished(); }));
        EXPECT_EQ(m_media.still(), sunset) << bad.toStdString();
    }
}

TEST_F(MediaTest, ComesBackToTheUsersStillAfterAFaultThatPasses)
{
    const SystemPaths paths = pathsWith(m_files.path(u"worker"_s));
    m_prefs.setPreviewStill(blue({300, 200}));
    Media media(m_vault, m_prefs, paths);
    EXPECT_EQ(media.still().size(), QSize(1600, 900));
    const auto frame = media.frame(Location::fromText(m_prefs.previewStill()), 0, 64);
    ASSERT_TRUE(waitUntil([&] { return frame.isFinished(); })) << "after the still's first attempt";
    ASSERT_TRUE(QFile::link(QStringLiteral(CRATEWELL_REAL_WORKER), paths.workerProgram.text()));
    EXPECT_TRUE(waitUntil([&] { return media.still().size() == QSize(300, 200); }));
}

TEST_F(MediaTest, ASecondStartFindsPicturesAndPeaksWithoutDecoding)
{
    const Asset film = addedFilm();
    const Asset sound = added(u"SFX/tone.wav"_s, tone());
    auto first = std::make_unique<Media>(m_vault, m_prefs, m_paths);
    ASSERT_EQ(settled(*first, film), State::Ready);
    const QImage shown = first->thumbnail(film);
    const WaveformPeaks peaks = peaksOf(*first, sound);
    const auto filmInfo = first->info(film), soundInfo = first->info(sound);
    ASSERT_TRUE(filmInfo && soundInfo) << "known with the preview";
    first.reset();

    Media second(m_vault, m_prefs, pathsWith(u"/nowhere/worker"_s));
    ASSERT_EQ(settled(second, film), State::Ready);
    EXPECT_NEAR(qRed(second.thumbnail(film).pixel(20, 20)), qRed(shown.pixel(20, 20)), 3);
    EXPECT_EQ(peaksOf(second, sound), peaks);
    EXPECT_EQ(second.info(film), filmInfo);
    EXPECT_EQ(second.info(sound), soundInfo);

    const Asset rewritten = added(u"Overlays/film.mp4"_s, "only text");
    EXPECT_EQ(settled(m_media, rewritten), State::Failed) << "another version has its own";
}

TEST_F(MediaTest, DecodesAPageFromItsBeginning)
{
    qputenv("CRATEWELL_STAND_IN_LOG", m_files.path(u"log"_s).toUtf8());
    Media media(m_vault, m_prefs, pathsWith(QStringLiteral(CRATEWELL_STAND_IN_WORKER)));
    QList<Asset> page;
    for (int i = 0; i < 40; ++i)
        page << added(u"Overlays/%1.png"_s.arg(i), QByteArray::number(i));
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    for (const Asset &one : page)
        requests.push_back(media.requestThumbnail(one));
    for (const Asset &one : page)
        ASSERT_TRUE(waitUntil([&] { return media.thumbnailState(one) == State::Ready; }));
    const QByteArrayList started = MadeMedia::content(m_files.path(u"log"_s)).split('\n');
    EXPECT_LT(started.indexOf("0"), 20);
    EXPECT_GT(started.indexOf("39"), 20);
}

TEST_F(MediaTest, EndsWithWorkUnderWay)
{
    const Asset film = addedFilm(), lut = added(u"LUTs/a.cube"_s, {});
    auto media = std::make_unique<Media>(m_vault, m_prefs, m_paths);
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    requests.push_back(media->requestThumbnail(film));
    requests.push_back(media->requestLut(lut));
    for (int bucket = 0; bucket < Media::scrubFrames; ++bucket)
        requests.push_back(media->requestScrubFrame(film, bucket));
    const auto frame = media->frame(film.url, 0.5, 64);
    const auto strip = media->filmstrip(film.url, 3);
    media.reset();
    EXPECT_TRUE(frame.isCanceled() && strip.isCanceled());
}

TEST_F(MediaTest, GradesTheStillForLutsAndAnewForAnotherStillOrTable)
{
    // Red and blue change places.
    const Asset swap =
        added(u"LUTs/a.cube"_s, "LUT_3D_SIZE 2\n0 0 0\n0 0 1\n0 1 0\n0 1 1\n1 0 0\n1 0 1\n1 1 0\n1 1 1\n");
    const Asset bad = added(u"LUTs/bad.cube"_s, "LUT_3D_SIZE 2\n0 0 0\n");
    ASSERT_EQ(settled(m_media, swap), State::Ready);
    const QColor sky = m_media.still().pixelColor(2, 2), graded = m_media.thumbnail(swap).pixelColor(1, 1);
    EXPECT_TRUE(isNear(graded.rgb(), qRgb(sky.blue(), sky.green(), sky.red()), 3));
    EXPECT_EQ(settled(m_media, bad), State::Failed);
    EXPECT_FALSE(m_media.requestThumbnail(bad) || m_media.requestLut(bad) || m_media.lut(bad));

    m_prefs.setPreviewStill(blue({300, 200}));
    EXPECT_EQ(m_media.thumbnailState(swap), State::Missing);
    EXPECT_EQ(m_media.thumbnailState(bad), State::Failed) << "over any still";
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(300, 200); }));
    const auto overFormerStill = m_media.requestThumbnail(swap);
    m_prefs.setPreviewStill({});
    ASSERT_EQ(settled(m_media, swap), State::Ready);
    EXPECT_EQ(m_media.thumbnail(swap).size(), QSize(640, 360));
    m_prefs.setPreviewStill(blue({300, 200}));
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(300, 200); }));
    ASSERT_EQ(settled(m_media, swap), State::Ready);
    EXPECT_EQ(m_media.thumbnail(swap).size(), QSize(120, 80));
    EXPECT_EQ(m_media.thumbnail(swap).pixel(60, 40), qRgb(255, 0, 0));

    QSignalSpy changed(&m_media, &Media::lutChanged);
    const Asset dark = added(u"LUTs/a.cube"_s, "LUT_3D_SIZE 2\n" + QByteArray("0.25 0 0\n").repeated(8));
    EXPECT_EQ(changed.count(), 1);
    ASSERT_EQ(settled(m_media, dark), State::Ready);
    EXPECT_NEAR(m_media.thumbnail(dark).pixelColor(5, 5).red(), 64, 1);
}

TEST_F(MediaTest, ReadsPeaksAndInfoAndAnewForARewrittenFile)
{
    const Asset text = added(u"SFX/a.wav"_s, "only text"), film = addedFilm();
    EXPECT_EQ(peaksOf(m_media, text), WaveformPeaks());
    EXPECT_EQ(m_media.requestWaveform(text), nullptr) << "an unreadable file is not tried again";
    const auto ofFilm = m_media.requestInfo(film), ofText = m_media.requestInfo(text);
    ASSERT_TRUE(waitUntil([&] { return m_media.infoState(film) == State::Ready; }));
    EXPECT_EQ(codecText(*m_media.info(film)), u"avc1"_s);
    ASSERT_TRUE(waitUntil([&] { return m_media.infoState(text) == State::Failed; }));

    QSignalSpy changed(&m_media, &Media::waveformChanged);
    const Asset sound = added(u"SFX/a.wav"_s, tone());
    EXPECT_EQ(changed.count(), 1);
    const WaveformPeaks peaks = peaksOf(m_media, sound);
    EXPECT_EQ(peaks.size(), 240);
    EXPECT_EQ(std::ranges::max(peaks), 1.0F);
}

TEST(TimeString, CountsTenthsBelowTenSecondsAndMinutesAbove)
{
    QStringList texts;
    for (const double seconds : {0.0, 9.96, 10.0, 3725.0, -1.0, double(INFINITY)})
        texts << timeString(seconds);
    EXPECT_EQ(texts.join(u' '), u"0.0s 10.0s 0:10 62:05 0:00 0:00"_s);
    EXPECT_EQ(timeString(0.25), u"0.2s"_s) << "as printf rounds ties";
}

} // namespace cratewell::test

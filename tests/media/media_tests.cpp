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

    // Copies a made file to a place in the vault.
    Location add(const QString &made, const QString &name)
    {
        const QString place = m_files.path(u"vault/"_s + name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(place).path()));
        QFile::remove(place);
        EXPECT_TRUE(QFile::copy(made, place));
        return Location::fromText(place);
    }
    Location addBytes(const QByteArray &content, const QString &name)
    {
        return add(m_files.bytes(u"content"_s, content), name);
    }
    Location addFilm() { return add(m_files.grayRamp(u"film.mp4"_s), u"Overlays/film.mp4"_s); }
    // Its points are the lines of a table with two points on each side.
    Location addLut(const QByteArray &points)
    {
        return addBytes("LUT_3D_SIZE 2\n" + points, u"LUTs/a.cube"_s);
    }
    void scan()
    {
        QSignalSpy scanned(&m_vault, &Vault::rescanned);
        m_vault.rescan();
        ASSERT_TRUE(waitUntil([&] { return !scanned.isEmpty(); }));
    }
    Asset asset(const Location &url) const
    {
        const auto index = m_vault.snapshot()->find(url);
        EXPECT_TRUE(index) << url.bytes().toStdString();
        return index ? m_vault.snapshot()->asset(*index) : Asset{};
    }
    Asset scanned(const Location &url)
    {
        scan();
        return asset(url);
    }
    // Two seconds, one of silence and one of sound.
    QString tone()
    {
        return m_files.ffmpeg(u"tone.wav"_s, {},
                              u"-f lavfi -i aevalsrc='if(gte(t,1),sin(2000*t),0)':s=48000:d=2"_s);
    }
    static std::optional<WaveformPeaks> peaksOf(Media &media, const Asset &sound)
    {
        const auto request = media.requestWaveform(sound);
        EXPECT_TRUE(waitUntil([&] { return media.waveform(sound).has_value(); }));
        return media.waveform(sound);
    }
    // The state once it is known.
    Media::State settled(const Asset &wanted)
    {
        const auto request = m_media.requestThumbnail(wanted);
        EXPECT_TRUE(waitUntil([&] { return m_media.thumbnailState(wanted) != Media::State::Missing; }));
        return m_media.thumbnailState(wanted);
    }
    QString blue(QSize size) { return m_files.image(u"blue.png"_s, filled(size, Qt::blue)); }

    MadeMedia m_files;
    MemoryDefaults m_defaults;
    SystemPaths m_paths = pathsWith(QStringLiteral(CRATEWELL_REAL_WORKER));
    Prefs m_prefs{m_defaults, m_paths};
    Vault m_vault{Location::fromText(m_files.path(u"vault"_s)), m_defaults,
                  std::make_unique<FakeFileEvents>()};
    Media m_media{m_vault, m_prefs, m_paths};
};

TEST_F(MediaTest, MakesThumbnailsOfVideosAndImages)
{
    const Location film = addFilm();
    const Location picture =
        add(m_files.image(u"four.png"_s, fourColors({1600, 800})), u"Overlays/four.png"_s);
    scan();
    EXPECT_TRUE(m_media.thumbnail(asset(film)).isNull());
    EXPECT_EQ(m_media.thumbnailState(asset(film)), Media::State::Missing);

    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    ASSERT_EQ(settled(asset(film)), Media::State::Ready);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.value(0).value(0).value<Location>(), film);
    // At 35 hundredths of ten seconds the ramp is at frame 87.5, one gray level a frame.
    EXPECT_NEAR(qRed(m_media.thumbnail(asset(film)).pixel(32, 32)), 87.5, 5);

    ASSERT_EQ(settled(asset(picture)), Media::State::Ready);
    const QImage image = m_media.thumbnail(asset(picture));
    EXPECT_EQ(image.size(), QSize(640, 320));
    EXPECT_EQ(image.pixel(630, 310), qRgb(255, 255, 0));
    EXPECT_EQ(m_media.requestThumbnail(asset(picture)), nullptr);

    Asset sound = asset(picture);
    sound.kind = AssetKind::Audio;
    EXPECT_EQ(m_media.thumbnailState(sound), Media::State::Failed);
    EXPECT_EQ(m_media.requestThumbnail(sound), nullptr);
}

TEST_F(MediaTest, RemembersFailuresUntilTheFileChanges)
{
    const Location text = addBytes("only text", u"Overlays/text.mov"_s);
    const Location empty = addBytes(QByteArray(), u"Overlays/empty.png"_s);
    const Location pipe = text.parent().child("pipe.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    scan();
    for (const Location &url : {text, empty}) {
        EXPECT_EQ(settled(asset(url)), Media::State::Failed) << url.bytes().toStdString();
        EXPECT_EQ(m_media.requestThumbnail(asset(url)), nullptr);
        EXPECT_TRUE(m_media.thumbnail(asset(url)).isNull());
    }
    EXPECT_EQ(settled(Asset{.url = pipe, .kind = AssetKind::Image, .version = {}}), Media::State::Failed);

    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    add(blue({64, 64}), u"Overlays/empty.png"_s);
    scan();
    EXPECT_EQ(changed.size(), 1);
    ASSERT_EQ(m_media.thumbnailState(asset(empty)), Media::State::Missing);
    EXPECT_EQ(settled(asset(empty)), Media::State::Ready);
    EXPECT_EQ(m_media.thumbnail(asset(empty)).pixel(1, 1), qRgb(0, 0, 255));
    EXPECT_EQ(m_media.thumbnailState(asset(text)), Media::State::Failed);

    // What a change of permissions may have mended is tried again; what is there stays.
    for (const Location &url : {text, empty})
        ASSERT_EQ(chmod(url.c_str(), 0640), 0);
    scan();
    EXPECT_EQ(m_media.thumbnailState(asset(text)), Media::State::Missing);
    EXPECT_EQ(m_media.thumbnailState(asset(empty)), Media::State::Ready);

    const Asset gone = asset(empty);
    QFile::remove(QFile::decodeName(empty.bytes()));
    scan();
    EXPECT_EQ(m_media.thumbnailState(gone), Media::State::Missing);
}

TEST_F(MediaTest, ShowsTheUsersStillOnceItIsThereAndTheBuiltInOneOtherwise)
{
    const QImage sunset = m_media.still();
    EXPECT_EQ(sunset.size(), QSize(1600, 900));

    QSignalSpy changed(&m_media, &Media::stillChanged);
    m_prefs.setPreviewStill(blue({300, 200}));
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(m_media.still(), sunset);
    ASSERT_TRUE(waitUntil([&] { return changed.size() == 2; }));
    EXPECT_EQ(m_media.still().size(), QSize(300, 200));
    EXPECT_EQ(m_media.still().pixel(5, 5), qRgb(0, 0, 255));

    // Chosen, left and chosen again before it was ready.
    const QString other = m_files.image(u"other.png"_s, fourColors({400, 100}));
    for (const QString &choice : {other, QString(), other}) {
        m_prefs.setPreviewStill(choice);
        EXPECT_EQ(m_media.still(), sunset);
    }
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(400, 100); }));

    const Location film = addFilm();
    for (const QString &bad :
         {m_files.path(u"missing.png"_s), m_files.bytes(u"text.png"_s, "only text"), u"x"_s}) {
        m_prefs.setPreviewStill(bad);
        EXPECT_EQ(m_media.still(), sunset) << bad.toStdString();
        // By then the still has had its turn, too.
        const auto strip = m_media.filmstrip(film, 2);
        ASSERT_TRUE(waitUntil([&] { return strip.isFinished(); }));
        EXPECT_EQ(m_media.still(), sunset) << bad.toStdString();
    }
}

TEST_F(MediaTest, ComesBackToTheUsersStillAfterAFaultThatPasses)
{
    const SystemPaths paths = pathsWith(m_files.path(u"worker"_s));
    m_prefs.setPreviewStill(blue({300, 200}));
    Media media(m_vault, m_prefs, paths);
    EXPECT_EQ(media.still().size(), QSize(1600, 900));
    // By then the still has had its turn, too.
    const auto strip = media.filmstrip(Location::fromText(m_prefs.previewStill()), 2);
    ASSERT_TRUE(waitUntil([&] { return strip.isFinished(); }));
    ASSERT_TRUE(QFile::link(QStringLiteral(CRATEWELL_REAL_WORKER), paths.workerProgram.text()));
    EXPECT_TRUE(waitUntil([&] { return media.still().size() == QSize(300, 200); }));
}

TEST_F(MediaTest, ASecondStartFindsPicturesAndPeaksWithoutDecoding)
{
    const Asset film = scanned(addFilm());
    const Asset sound = scanned(add(tone(), u"SFX/tone.wav"_s));
    const auto showsFilm = [&film](Media &media) {
        const auto request = media.requestThumbnail(film);
        return waitUntil([&] { return media.thumbnailState(film) == Media::State::Ready; });
    };
    auto first = std::make_unique<Media>(m_vault, m_prefs, m_paths);
    ASSERT_TRUE(showsFilm(*first) && peaksOf(*first, sound));
    const QImage shown = first->thumbnail(film);
    const auto peaks = first->waveform(sound);
    const auto filmInfo = first->info(film), soundInfo = first->info(sound);
    ASSERT_TRUE(filmInfo && soundInfo) << "known with the preview";
    EXPECT_EQ(first->requestInfo(film), nullptr);
    EXPECT_NEAR(filmInfo->duration, 10, 0.1);
    EXPECT_EQ(soundInfo->duration, 2);
    first.reset();

    Media second(m_vault, m_prefs, pathsWith(u"/nowhere/worker"_s));
    ASSERT_TRUE(showsFilm(second));
    EXPECT_EQ(second.thumbnail(film).size(), shown.size());
    EXPECT_NEAR(qRed(second.thumbnail(film).pixel(20, 20)), qRed(shown.pixel(20, 20)), 3);
    EXPECT_EQ(peaksOf(second, sound), peaks);
    EXPECT_EQ(second.info(film), filmInfo);
    EXPECT_EQ(second.info(sound), soundInfo);

    const Asset rewritten = scanned(addBytes("only text", u"Overlays/film.mp4"_s));
    EXPECT_EQ(settled(rewritten), Media::State::Failed) << "another version has its own";
}

TEST_F(MediaTest, DecodesAPageFromItsBeginning)
{
    qputenv("CRATEWELL_STAND_IN_LOG", m_files.path(u"log"_s).toUtf8());
    Media media(m_vault, m_prefs, pathsWith(QStringLiteral(CRATEWELL_STAND_IN_WORKER)));
    QList<Location> page;
    for (int i = 0; i < 40; ++i)
        page << addBytes(QByteArray::number(i), u"Overlays/%1.png"_s.arg(i));
    scan();
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    for (const Location &url : page)
        requests.push_back(media.requestThumbnail(asset(url)));
    ASSERT_TRUE(waitUntil([&] {
        return std::ranges::all_of(page, [&](const Location &url) {
            return media.thumbnailState(asset(url)) == Media::State::Ready;
        });
    }));
    const QByteArrayList started = MadeMedia::content(m_files.path(u"log"_s)).split('\n');
    EXPECT_LT(started.indexOf("0"), 20);
    EXPECT_GT(started.indexOf("39"), 20);
}

TEST_F(MediaTest, EndsWithWorkUnderWay)
{
    const Asset film = scanned(addFilm());
    const Asset lut = scanned(addLut({}));
    auto media = std::make_unique<Media>(m_vault, m_prefs, m_paths);
    std::vector<std::unique_ptr<PreviewRequest>> requests;
    requests.push_back(media->requestThumbnail(film));
    requests.push_back(media->requestInfo(film));
    requests.push_back(media->requestLut(lut));
    for (int bucket = 0; bucket < Media::scrubFrames; ++bucket)
        requests.push_back(media->requestScrubFrame(film, bucket));
    const auto frame = media->frame(film.url, 0.5, 64);
    const auto strip = media->filmstrip(film.url, 3);
    media.reset();
    EXPECT_TRUE(frame.isCanceled() && strip.isCanceled());
}

TEST_F(MediaTest, GradesTheStillForLutsAndAnewForAnotherStill)
{
    // Red and blue change places.
    const Asset swap = scanned(addLut("0 0 0\n0 0 1\n0 1 0\n0 1 1\n1 0 0\n1 0 1\n1 1 0\n1 1 1\n"));
    const Asset bad = scanned(addBytes("LUT_3D_SIZE 2\n0 0 0\n", u"LUTs/bad.cube"_s));
    ASSERT_EQ(settled(swap), Media::State::Ready);
    EXPECT_EQ(m_media.thumbnail(swap).size(), QSize(640, 360));
    const QColor sky = m_media.still().pixelColor(2, 2);
    const QColor graded = m_media.thumbnail(swap).pixelColor(1, 1);
    EXPECT_NEAR(graded.red(), sky.blue(), 3);
    EXPECT_NEAR(graded.blue(), sky.red(), 3);
    EXPECT_EQ(m_media.lutState(swap), Media::State::Ready);
    EXPECT_EQ(m_media.lut(swap)->size(), 2);
    EXPECT_EQ(settled(bad), Media::State::Failed);
    EXPECT_FALSE(m_media.lut(bad));
    EXPECT_EQ(m_media.requestThumbnail(bad), nullptr);
    EXPECT_EQ(m_media.requestLut(bad), nullptr);

    m_prefs.setPreviewStill(blue({300, 200}));
    EXPECT_EQ(m_media.thumbnailState(swap), Media::State::Missing);
    EXPECT_EQ(m_media.thumbnailState(bad), Media::State::Failed) << "over any still";
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(300, 200); }));
    ASSERT_EQ(settled(swap), Media::State::Ready);
    EXPECT_EQ(m_media.thumbnail(swap).size(), QSize(120, 80));
    EXPECT_EQ(m_media.thumbnail(swap).pixel(60, 40), qRgb(255, 0, 0));
}

TEST_F(MediaTest, ReadsPeaksFramesAndInfo)
{
    const Asset sound = scanned(add(tone(), u"SFX/tone.wav"_s));
    const Asset text = scanned(addBytes("only text", u"SFX/text.wav"_s));
    const Asset film = scanned(addFilm());
    QSignalSpy reported(&m_media, &Media::waveformChanged);
    EXPECT_FALSE(m_media.waveform(sound));
    ASSERT_TRUE(peaksOf(m_media, sound));
    EXPECT_EQ(reported.count(), 1);
    EXPECT_EQ(m_media.waveform(sound)->size(), 240);
    EXPECT_EQ(std::ranges::max(*m_media.waveform(sound)), 1.0F);
    ASSERT_TRUE(peaksOf(m_media, text));
    EXPECT_TRUE(m_media.waveform(text)->isEmpty());
    EXPECT_EQ(m_media.requestWaveform(text), nullptr) << "an unreadable file is not tried again";

    for (const auto &[fraction, bucket] :
         {std::pair(0.04, 0), {0.5, 11}, {1.0, 23}, {std::nan(""), 0}, {-3.0, 0}, {7.0, 23}})
        EXPECT_EQ(Media::scrubBucket(fraction), bucket) << fraction;
    QSignalSpy scrubbed(&m_media, &Media::scrubFrameChanged);
    const auto last = m_media.requestScrubFrame(film, 23);
    ASSERT_TRUE(waitUntil([&] { return scrubbed.count() == 1; }));
    EXPECT_EQ(scrubbed[0][1].toInt(), 23);
    EXPECT_NEAR(qRed(m_media.scrubFrame(film, 23).pixel(20, 20)), 245, 6);
    EXPECT_TRUE(m_media.scrubFrame(film, 0).isNull());
    EXPECT_EQ(m_media.requestScrubFrame(film, 24), nullptr);
    EXPECT_EQ(m_media.requestScrubFrame(sound, 0), nullptr);

    const auto request = m_media.requestInfo(film);
    ASSERT_TRUE(waitUntil([&] { return m_media.infoState(film) == Media::State::Ready; }));
    EXPECT_EQ(codecText(*m_media.info(film)), u"avc1"_s);
    EXPECT_EQ(m_media.info(film)->frameRate, 25);
    const auto nothing = m_media.requestInfo(text);
    ASSERT_TRUE(waitUntil([&] { return m_media.infoState(text) == Media::State::Failed; }));
}

TEST_F(MediaTest, ARewrittenSoundOrLutGetsNewPreviews)
{
    const Asset lut = scanned(addLut(QByteArray("1 0 0\n").repeated(8)));
    const Asset sound = scanned(addBytes("only text", u"SFX/a.wav"_s));
    ASSERT_EQ(settled(lut), Media::State::Ready);
    ASSERT_EQ(peaksOf(m_media, sound), WaveformPeaks());
    QSignalSpy luts(&m_media, &Media::lutChanged), sounds(&m_media, &Media::waveformChanged);

    const Asset newLut = scanned(addLut(QByteArray("0.25 0 0\n").repeated(8)));
    const Asset newSound = scanned(add(tone(), u"SFX/a.wav"_s));
    EXPECT_EQ(luts.count(), 1);
    EXPECT_EQ(sounds.count(), 1);
    EXPECT_FALSE(m_media.lut(newLut) || m_media.waveform(newSound));
    ASSERT_EQ(settled(newLut), Media::State::Ready);
    EXPECT_EQ(m_media.lut(newLut)->sample(0, 0, 0)[0], 0.25F);
    EXPECT_NEAR(m_media.thumbnail(newLut).pixelColor(5, 5).red(), 64, 1);
    EXPECT_EQ(peaksOf(m_media, newSound)->size(), 240);
}

TEST_F(MediaTest, GivesSingleFramesAndStrips)
{
    const Location film = addFilm();
    const Location text = addBytes("only text", u"Overlays/text.mov"_s);
    const auto frame = m_media.frame(film, 0.5, 64);
    const auto strip = m_media.filmstrip(film, 3);
    const auto none = m_media.filmstrip(film, 0);
    const auto missing = m_media.filmstrip(text, 2);
    const auto bad = m_media.frame(text, 0, 64);
    EXPECT_TRUE(none.isFinished());
    ASSERT_TRUE(waitUntil([&] {
        return frame.isFinished() && strip.isFinished() && missing.isFinished() && bad.isFinished();
    }));
    EXPECT_EQ(std::max(frame.result().width(), frame.result().height()), 64);
    EXPECT_NEAR(qRed(frame.result().pixel(5, 5)), 125, 5);
    ASSERT_EQ(strip.result().size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(qRed(strip.result()[i].pixel(5, 5)), 250 * (2 * i + 1) / 6.0, 5) << i;
    EXPECT_TRUE(bad.result().isNull());
    EXPECT_TRUE(none.result().isEmpty() && missing.result().isEmpty());
}

} // namespace cratewell::test

#include "made_media.h"
#include "media/media.h"
#include "platform/fakes/fake_file_events.h"
#include "platform/fakes/memory_defaults.h"
#include "platform/system_paths.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "vault/vault.h"

#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// A vault of real files, a real worker.
class MediaTest : public testing::Test
{
protected:
    static SystemPaths pathsBelow(const QString &home)
    {
        SystemPaths paths = SystemPaths::below(Location::fromText(home));
        paths.workerProgram = Location::fromText(QStringLiteral(CRATEWELL_REAL_WORKER));
        return paths;
    }

    // Adds a made file to the vault's light leaks.
    Location add(const QString &made, const QString &name)
    {
        const QString folder = m_files.path(u"vault/Overlays/Light Leaks"_s);
        EXPECT_TRUE(QDir().mkpath(folder));
        const QString place = folder + u'/' + name;
        QFile::remove(place);
        EXPECT_TRUE(QFile::copy(made, place));
        return Location::fromText(place);
    }
    void scan()
    {
        QSignalSpy scanned(&m_vault, &Vault::rescanned);
        m_vault.rescan();
        ASSERT_TRUE(waitUntil([&] { return !scanned.isEmpty(); }));
    }
    Asset asset(const Location &url) const
    {
        const auto index = m_vault.picture()->find(url);
        EXPECT_TRUE(index) << url.bytes().toStdString();
        return index ? m_vault.picture()->asset(*index) : Asset{};
    }
    // The state once it is known.
    Media::State settled(const Asset &wanted)
    {
        const auto request = m_media.requestThumbnail(wanted);
        EXPECT_TRUE(waitUntil([&] { return m_media.thumbnailState(wanted) != Media::State::Missing; }));
        return m_media.thumbnailState(wanted);
    }
    QString blue(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        return m_files.image(u"blue.png"_s, image);
    }

    MadeMedia m_files;
    MemoryDefaults m_defaults;
    SystemPaths m_paths = pathsBelow(m_files.path(u"home"_s));
    Prefs m_prefs{m_defaults, m_paths};
    Vault m_vault{Location::fromText(m_files.path(u"vault"_s)), m_defaults,
                  std::make_unique<FakeFileEvents>()};
    Media m_media{m_vault, m_prefs, m_paths};
};

TEST_F(MediaTest, MakesThumbnailsOfVideosAndImages)
{
    const Location film = add(m_files.greyRamp(u"film.mp4"_s), u"film.mp4"_s);
    const Location picture = add(m_files.image(u"four.png"_s, fourColours({1600, 800})), u"four.png"_s);
    scan();
    EXPECT_TRUE(m_media.thumbnail(asset(film)).isNull());
    EXPECT_EQ(m_media.thumbnailState(asset(film)), Media::State::Missing);

    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    ASSERT_EQ(settled(asset(film)), Media::State::Ready);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.value(0).value(0).value<Location>(), film);
    // At 35 hundredths of ten seconds the ramp is at frame 87.5, one grey level a frame.
    EXPECT_NEAR(qRed(m_media.thumbnail(asset(film)).pixel(32, 32)), 87.5, 5);

    ASSERT_EQ(settled(asset(picture)), Media::State::Ready);
    const QImage image = m_media.thumbnail(asset(picture));
    EXPECT_EQ(image.size(), QSize(640, 320));
    EXPECT_EQ(image.pixel(10, 10), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(630, 310), qRgb(255, 255, 0));
    EXPECT_EQ(m_media.requestThumbnail(asset(picture)), nullptr);

    Asset sound = asset(picture);
    sound.kind = AssetKind::Audio;
    EXPECT_EQ(m_media.thumbnailState(sound), Media::State::Failed);
    EXPECT_EQ(m_media.requestThumbnail(sound), nullptr);
}

TEST_F(MediaTest, RemembersFailuresUntilTheFileChanges)
{
    const Location text = add(m_files.bytes(u"text"_s, "only text"), u"text.mov"_s);
    const Location empty = add(m_files.bytes(u"empty"_s, {}), u"empty.png"_s);
    const Location pipe = text.parent().child(QByteArrayView("pipe.png"));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    scan();
    for (const Location &url : {text, empty}) {
        EXPECT_EQ(settled(asset(url)), Media::State::Failed) << url.bytes().toStdString();
        EXPECT_EQ(m_media.requestThumbnail(asset(url)), nullptr);
        EXPECT_TRUE(m_media.thumbnail(asset(url)).isNull());
    }
    EXPECT_EQ(settled(Asset{.url = pipe, .kind = AssetKind::Image, .version = {}}), Media::State::Failed);

    QSignalSpy changed(&m_media, &Media::thumbnailChanged);
    add(blue({64, 64}), u"empty.png"_s);
    scan();
    EXPECT_EQ(changed.size(), 1);
    ASSERT_EQ(m_media.thumbnailState(asset(empty)), Media::State::Missing);
    EXPECT_EQ(settled(asset(empty)), Media::State::Ready);
    EXPECT_EQ(m_media.thumbnail(asset(empty)).pixel(1, 1), qRgb(0, 0, 255));
    EXPECT_EQ(m_media.thumbnailState(asset(text)), Media::State::Failed);

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
    const QString other = m_files.image(u"other.png"_s, fourColours({400, 100}));
    for (const QString &choice : {other, QString(), other}) {
        m_prefs.setPreviewStill(choice);
        EXPECT_EQ(m_media.still(), sunset);
    }
    ASSERT_TRUE(waitUntil([&] { return m_media.still().size() == QSize(400, 100); }));

    for (const QString &bad :
         {m_files.path(u"missing.png"_s), m_files.bytes(u"text.png"_s, "only text"), u"x"_s}) {
        m_prefs.setPreviewStill(bad);
        EXPECT_EQ(m_media.still(), sunset) << bad.toStdString();
    }
}

} // namespace cratewell::test

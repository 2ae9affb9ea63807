#include "window/app_fixture.h"

#include "platform/appearance.h"
#include "platform/defaults.h"
#include "platform/fakes/fake_appearance.h"
#include "platform/fakes/fake_applications.h"
#include "platform/native.h"
#include "support/wait.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTest>
#include <QtEndian>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

QStringList collectedWarnings;

// Collects what comes from QML, and prints everything.
void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg && text.contains("qrc:"_L1))
        collectedWarnings.append(text);
    std::fprintf(stderr, "%s: %s\n", context.category ? context.category : "default", qPrintable(text));
}

} // namespace

AppFixture::AppFixture(const Prepare &prepare)
    : m_paths(SystemPaths::below(Location::fromText(m_home.path())))
{
    static const auto installed = qInstallMessageHandler(handleMessage);
    Q_UNUSED(installed)
    m_paths.workerProgram = SystemPaths::standard().workerProgram;
    m_paths.python = SystemPaths::standard().python;
    prepare(vaultFolder());
    start();
}

void AppFixture::start()
{
    Services services = Services::native(m_paths);
    const auto play = [](auto &service, auto fake) {
        auto *played = fake.get();
        service = std::move(fake);
        return played;
    };
    play(services.applications, std::make_unique<FakeApplications>());
    play(services.appearance, std::make_unique<FakeAppearance>());
    m_workspace = play(services.workspace, std::make_unique<FakeWorkspace>());
    m_chooser = play(services.fileChooser, std::make_unique<FakeFileChooser>());
    m_program = std::make_unique<Application>(m_paths, std::move(services));
    if (!m_program->launch() || !QTest::qWaitForWindowExposed(&window()))
        qFatal("the window did not appear");
}

void AppFixture::restart()
{
    m_program->drain();
    m_program.reset();
    start();
}

Location AppFixture::path(const QString &relative) const
{
    return Location::fromText(vaultFolder() + u'/' + relative);
}

bool AppFixture::exists(const QString &relative) const
{
    return QFile::exists(path(relative).text());
}

std::string AppFixture::qmlWarnings()
{
    return collectedWarnings.join(u'\n').toStdString();
}

bool AppFixture::showsCards(const QStringList &names)
{
    QStringList wanted = names;
    wanted.sort();
    return waitUntil([&] {
        QStringList shown = controls().names(QAccessible::ListItem);
        shown.sort();
        return shown == wanted;
    });
}

void AppFixture::key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&window(), key, modifiers);
}

void AppFixture::type(const QString &text)
{
    for (const QChar character : text)
        QTest::keyClick(&window(), Qt::Key(character.toUpper().unicode()));
}

void WindowTest::SetUp()
{
    window.resize(1320, 1400);
    ASSERT_TRUE(waitUntil([this] {
        const QAccessibleInterface *grid = controls.find(QAccessible::List, u"Assets"_s);
        return grid && grid->rect().height() > 1200;
    }));
    state.setSort(AssetOrder::Name);
    ASSERT_TRUE(app.showsCards(cards));
}

void WindowTest::TearDown()
{
    EXPECT_EQ(app.controls().accessibilityIssues(), "");
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

bool WindowTest::arrives(const QString &relative) const
{
    return waitUntil([&] { return app.exists(relative); });
}

void smallVault(const QString &vault)
{
    for (const auto name :
         {"SFX/Hits/Hit 1", "SFX/Hits/Hit 2", "SFX/Hits/Hit 3", "SFX/Hits/Deep/Boom", "SFX/Claps/Rush",
          "SFX/Whooshes/Soft/Rush", "../Outside/Door", "../Outside/Low/Thud"})
        writeSound(vault + u"/%1.wav"_s.arg(QLatin1StringView(name)));
    writePicture(vault + u"/Overlays/Light Leaks/Warm/Amber.png"_s, Qt::red);
    writePicture(vault + u"/Overlays/Flashes/White.png"_s, Qt::white);
    writeFile(vault + u"/LUTs/Noir.cube"_s, "LUT_3D_SIZE 2\n");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

void writePicture(const QString &path, Qt::GlobalColor color)
{
    writeFile(path, {});
    QImage image(64, 36, QImage::Format_RGB32);
    image.fill(color);
    if (!image.save(path))
        qFatal("cannot write %s", qPrintable(path));
}

void writeSound(const QString &path, const QByteArray &samples)
{
    QByteArray header("RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\xBB\0\0\0\x77\1\0\2\0\x10\0data\0\0\0\0",
                      44);
    qToLittleEndian(quint32(36 + samples.size()), header.data() + 4);
    qToLittleEndian(quint32(samples.size()), header.data() + 40);
    writeFile(path, header + samples);
}

} // namespace cratewell::test

#pragma once

#include "app/application.h"
#include "platform/fakes/fake_file_chooser.h"
#include "platform/fakes/fake_workspace.h"
#include "state/app_state.h"
#include "window/controls.h"

#include <QQuickWindow>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace cratewell::test {

// Gets the vault's folder before the program starts.
using Prepare = std::function<void(const QString &vault)>;

// Nine assets of every kind, two of one name, in folders up to three deep; beside the vault "Outside" with
// two sounds.
void smallVault(const QString &vault);

// The whole program over a home of its own: real disk, real defaults, real file events, real window on the
// test's platform; only the desktop around it (other programs, file manager, looks) is played.
class AppFixture
{
public:
    explicit AppFixture(const Prepare &prepare = smallVault);

    // Ends the program and starts it again in the same home.
    void restart();

    Application &program() { return *m_program; }
    QQuickWindow &window() { return *m_program->window(); }
    Controls controls() { return Controls(window()); }
    FakeWorkspace &workspace() { return *m_workspace; }
    FakeFileChooser &chooser() { return *m_chooser; }
    QString vaultFolder() const { return m_paths.defaultVault().text(); }
    QString home() const { return m_home.path(); }
    // A place in the vault.
    Location path(const QString &relative) const;
    bool exists(const QString &relative) const;
    // Of the QML engine since the start, a line each; must stay empty.
    static std::string qmlWarnings();

    // Waits until the window shows cards of exactly these names, in any order.
    [[nodiscard]] bool showsCards(const QStringList &names);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void type(const QString &text);

private:
    void start();

    QTemporaryDir m_home;
    SystemPaths m_paths;
    FakeWorkspace *m_workspace = nullptr;
    FakeFileChooser *m_chooser = nullptr;
    std::unique_ptr<Application> m_program;
};

// Most suites: the program in a tall window, sorted by name, on a small vault beside a folder "Outside" (see
// app_fixture.cpp). In the end nothing may be wrong with the controls or have made the QML engine complain.
class WindowTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
    // Whether it lies, or comes to lie, in the vault.
    bool arrives(const QString &relative) const;

    const QStringList cards{QStringLiteral("Amber"), QStringLiteral("Boom"),  QStringLiteral("Hit 1"),
                            QStringLiteral("Hit 2"), QStringLiteral("Hit 3"), QStringLiteral("Noir"),
                            QStringLiteral("Rush"),  QStringLiteral("Rush"),  QStringLiteral("White")};
    AppFixture app;
    AppState &state = app.program().state();
    QQuickWindow &window = app.window();
    const Controls controls{window};
};

// Writes a small picture / a sound of these 16-bit samples, mono at 48 kHz / a file of these bytes, with its
// folders.
void writePicture(const QString &path, Qt::GlobalColor color);
void writeSound(const QString &path, const QByteArray &samples = {});
void writeFile(const QString &path, const QByteArray &bytes);

} // namespace cratewell::test

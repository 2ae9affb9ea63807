#pragma once

#include "app/application.h"
#include "window/controls.h"

#include <QTemporaryDir>
#include <memory>

namespace cratewell {
class FakeApplications;
class FakeFileChooser;
class FakeWorkspace;
} // namespace cratewell

namespace cratewell::test {

// The whole program over a home of its own: real disk, real defaults, real file events, real window on the
// test's platform; only the desktop around it (other programs, file manager, looks) is played.
class AppFixture
{
public:
    // `prepare` gets the vault's folder before the program starts.
    explicit AppFixture(const std::function<void(const QString &vault)> &prepare = {});
    ~AppFixture();

    // Ends the program and starts it again in the same home.
    void restart();

    Application &program() { return *m_program; }
    QQuickWindow &window() { return *m_program->window(); }
    Controls controls() { return Controls(window()); }
    const SystemPaths &paths() const { return m_paths; }
    FakeApplications &applications() { return *m_applications; }
    FakeWorkspace &workspace() { return *m_workspace; }
    FakeFileChooser &chooser() { return *m_chooser; }
    QString vaultFolder() const;
    QString home() const { return m_home.path(); }
    // Complaints of the QML engine since the start, a line each; must stay empty.
    static std::string qmlWarnings();

    // Waits until the window shows cards of exactly these names, in any order.
    [[nodiscard]] bool showsCards(const QStringList &names);
    // Makes the window so tall that it shows every folder and card.
    [[nodiscard]] bool makesRoom();
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void type(const QString &text);

private:
    void start();

    QTemporaryDir m_home;
    SystemPaths m_paths;
    FakeApplications *m_applications = nullptr;
    FakeWorkspace *m_workspace = nullptr;
    FakeFileChooser *m_chooser = nullptr;
    std::unique_ptr<Application> m_program;
};

// Writes a small picture / a sound of these 16-bit samples, mono at 48 kHz / a file of these bytes, with its
// folders.
void writePicture(const QString &path, Qt::GlobalColor color);
void writeSound(const QString &path, const QByteArray &samples = {});
void writeFile(const QString &path, const QByteArray &bytes);

} // namespace cratewell::test

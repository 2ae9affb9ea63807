#include "platform/linux/proc_applications.h"

#include "platform/linux/editors_linux.h"
#include "platform/linux/x11_windows.h"

#include <QMetaMethod>
#include <algorithm>
#include <array>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

Location linkTarget(int folder, const QByteArray &path)
{
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlinkat(folder, path.constData(), target.data(), target.size());
    return length > 0 ? Location::fromBytes(QByteArrayView(target.data(), length)) : Location();
}

const LinuxEditor *editorRunning(const Location &program)
{
    // What the system adds when the file was replaced while it runs.
    constexpr QByteArrayView replaced(" (deleted)");
    QByteArrayView name = program.nameBytes();
    if (name.endsWith(replaced))
        name.chop(replaced.size());
    const auto editor = std::ranges::find_if(linuxEditors, [&](const LinuxEditor &candidate) {
        return name == candidate.executable && program.parent().nameBytes() == candidate.folder;
    });
    return editor == linuxEditors.end() ? nullptr : &*editor;
}

} // namespace

ProcApplications::ProcApplications(Location processes) : m_processes(std::move(processes))
{
    m_timer.setInterval(std::chrono::seconds(1));
    connect(&m_timer, &QTimer::timeout, this, &ProcApplications::check);
}

ProcApplications::~ProcApplications() = default;

QStringList ProcApplications::look() const
{
    QStringList found;
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(m_processes.c_str()), ::closedir);
    if (!folder)
        return found;
    while (const dirent *entry = ::readdir(folder.get())) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
            continue;
        const Location program = linkTarget(::dirfd(folder.get()), QByteArray(entry->d_name) + "/exe");
        const LinuxEditor *editor = editorRunning(program);
        if (editor && !found.contains(editor->identifier))
            found += editor->identifier;
    }
    return found;
}

QStringList ProcApplications::running()
{
    return look();
}

void ProcApplications::check()
{
    const QStringList now = look();
    if (now != std::exchange(m_last, now))
        Q_EMIT changed();
}

Result<void> ProcApplications::bringToFront(const QString &identifier)
{
    const auto editor = std::ranges::find(linuxEditors, identifier, &LinuxEditor::identifier);
    if (editor == linuxEditors.end())
        return tl::unexpected(Error{identifier + QStringLiteral(": not an editor known here")});
    return ensureWindows().activate(editor->windowClass);
}

X11Windows &ProcApplications::ensureWindows()
{
    if (!m_windows) {
        m_windows = std::make_unique<X11Windows>();
        connect(m_windows.get(), &X11Windows::activated, this, [this](const QStringList &classes) {
            for (const LinuxEditor &editor : linuxEditors) {
                if (classes.contains(editor.windowClass, Qt::CaseInsensitive))
                    Q_EMIT activated(editor.identifier);
            }
        });
    }
    return *m_windows;
}

void ProcApplications::connectNotify(const QMetaMethod &signal)
{
    if (signal == QMetaMethod::fromSignal(&Applications::activated))
        ensureWindows();
    if (signal != QMetaMethod::fromSignal(&Applications::changed) || m_timer.isActive())
        return;
    m_last = look();
    m_timer.start();
}

void ProcApplications::disconnectNotify(const QMetaMethod &)
{
    // Not here: Qt calls this under a lock of the vanishing listener that may be the one asked for below.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!isSignalConnected(QMetaMethod::fromSignal(&Applications::changed)))
                m_timer.stop();
        },
        Qt::QueuedConnection);
}

} // namespace cratewell

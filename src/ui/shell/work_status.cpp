#include "ui/shell/work_status.h"

#include "ui/controls/formats.h"
#include "ui/shell/ui_objects.h"
#include "vault/vault.h"

namespace cratewell {

void WorkStatus::follow(FileProgress &progress)
{
    m_progress = &progress;
    connect(&progress, &FileProgress::changed, this, &WorkStatus::changed);
    Q_EMIT changed();
}

void WorkStatus::componentComplete()
{
    follow(uiObjects(*this).vault.progress());
}

bool WorkStatus::isActive() const
{
    return m_progress && m_progress->isActive();
}

QString WorkStatus::title() const
{
    return m_progress ? m_progress->title() : QString();
}

QString WorkStatus::detail() const
{
    return m_progress ? progressText(m_progress->filesDone(), m_progress->filesTotal(),
                                     m_progress->bytesDone(), m_progress->bytesTotal())
                      : QString();
}

QString WorkStatus::remaining() const
{
    return m_progress ? remainingText(m_progress->secondsLeft()) : QString();
}

double WorkStatus::fraction() const
{
    return m_progress ? m_progress->fraction() : 0;
}

void WorkStatus::cancel()
{
    if (m_progress)
        m_progress->cancel();
}

} // namespace cratewell

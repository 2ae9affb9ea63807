#include "ui/shell/operation_status.h"

#include "ui/controls/formats.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

namespace cratewell {

void OperationStatus::follow(FileProgress &progress)
{
    m_progress = &progress;
    connect(&progress, &FileProgress::changed, this, &OperationStatus::changed);
    Q_EMIT changed();
}

void OperationStatus::componentComplete()
{
    follow(uiContext(*this).vault.progress());
}

bool OperationStatus::isActive() const
{
    return m_progress && m_progress->isActive();
}

QString OperationStatus::title() const
{
    return m_progress ? m_progress->title() : QString();
}

QString OperationStatus::detail() const
{
    return m_progress ? progressText(m_progress->filesDone(), m_progress->filesTotal(),
                                     m_progress->bytesDone(), m_progress->bytesTotal())
                      : QString();
}

QString OperationStatus::remaining() const
{
    return m_progress ? remainingText(m_progress->secondsLeft()) : QString();
}

double OperationStatus::fraction() const
{
    return m_progress ? m_progress->fraction() : 0;
}

void OperationStatus::cancel()
{
    if (m_progress)
        m_progress->cancel();
}

} // namespace cratewell

#include "ui/file_work.h"

#include "ui/formats.h"
#include "ui/ui_objects.h"
#include "vault/vault.h"

namespace cratewell {

void FileWork::follow(FileProgress &progress)
{
    m_progress = &progress;
    connect(&progress, &FileProgress::changed, this, &FileWork::changed);
    Q_EMIT changed();
}

void FileWork::componentComplete()
{
    follow(uiObjects(*this).vault.progress());
}

bool FileWork::isActive() const
{
    return m_progress && m_progress->isActive();
}

QString FileWork::title() const
{
    return m_progress ? m_progress->title() : QString();
}

QString FileWork::detail() const
{
    return m_progress ? progressText(m_progress->filesDone(), m_progress->filesTotal(),
                                     m_progress->bytesDone(), m_progress->bytesTotal())
                      : QString();
}

QString FileWork::remaining() const
{
    return m_progress ? remainingText(m_progress->secondsLeft()) : QString();
}

double FileWork::fraction() const
{
    return m_progress ? m_progress->fraction() : 0;
}

void FileWork::cancel()
{
    if (m_progress)
        m_progress->cancel();
}

} // namespace cratewell

#include "ui/shell/operation_status.h"

#include "ui/controls/formats.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

namespace cratewell {

OperationStatus::OperationStatus(FileProgress &progress) : m_progress(progress)
{
    connect(&progress, &FileProgress::changed, this, &OperationStatus::changed);
}

OperationStatus *OperationStatus::create(QQmlEngine *engine, QJSEngine *)
{
    return new OperationStatus(UiEngine::contextOf(engine).vault.progress());
}

bool OperationStatus::isActive() const
{
    return m_progress.isActive();
}

QString OperationStatus::title() const
{
    return m_progress.title();
}

QString OperationStatus::detail() const
{
    return progressText(m_progress.filesDone(), m_progress.filesTotal(), m_progress.bytesDone(),
                        m_progress.bytesTotal());
}

QString OperationStatus::remaining() const
{
    return remainingText(m_progress.secondsLeft());
}

double OperationStatus::fraction() const
{
    return m_progress.fraction();
}

void OperationStatus::cancel()
{
    m_progress.cancel();
}

} // namespace cratewell

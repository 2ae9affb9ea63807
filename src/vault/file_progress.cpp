#include "vault/file_progress.h"

namespace cratewell {

void FileProgress::show(const Values &values)
{
    if (values == m_now)
        return;
    m_now = values;
    Q_EMIT changed();
}

} // namespace cratewell

#pragma once

#include "platform/error.h"

#include <QObject>
#include <QStringList>

namespace cratewell {

// The video editors that run beside us, by application identifier ("com.blackmagic-design.DaVinciResolve",
// "com.adobe.PremierePro"...). Main thread.
class Applications : public QObject
{
    Q_OBJECT
public:
    // Looks afresh; identifiers of running editors, each once.
    virtual QStringList running() = 0;
    // Asks the desktop to raise that application's window; an error when it has none or the desktop cannot.
    [[nodiscard]] virtual Result<void> bringToFront(const QString &identifier) = 0;

Q_SIGNALS:
    // One was started or ended.
    void changed();
    // The user brought one to the front.
    void activated(const QString &identifier);
};

} // namespace cratewell

#pragma once

#include <QObject>

namespace cratewell {

// What the desktop asks of every program's looks. Main thread.
class Appearance : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool dark READ dark NOTIFY changed FINAL)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed FINAL)
public:
    // True as well when the desktop says nothing.
    virtual bool dark() const = 0;
    virtual bool reducedMotion() const = 0;

Q_SIGNALS:
    void changed();
};

} // namespace cratewell

#pragma once

#include "ui/controls/drawn_item.h"

#include <QColor>
#include <QtQml/qqml.h>

namespace cratewell {

// What lies behind everything in the window.
struct BackdropLook
{
    QString style;        // "aurora", "chrome", "midnight", "plain"; any other is "aurora"
    double intensity = 0; // 0 leaves the base alone, 1 is strongest
    QColor accent;
    QColor base;
    bool dark = true;

    friend bool operator==(const BackdropLook &, const BackdropLook &) = default;
};

// Opaque and free of visible steps between shades (dithered).
QImage drawBackdrop(const BackdropLook &look, QSize pixels);

class Backdrop : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString style READ style WRITE setStyle NOTIFY lookChanged FINAL)
    Q_PROPERTY(double intensity READ intensity WRITE setIntensity NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor accent READ accent WRITE setAccent NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor base READ base WRITE setBase NOTIFY lookChanged FINAL)
    Q_PROPERTY(bool dark READ dark WRITE setDark NOTIFY lookChanged FINAL)
public:
    QString style() const { return m_look.style; }
    void setStyle(const QString &style) { change(m_look.style, style); }
    double intensity() const { return m_look.intensity; }
    void setIntensity(double intensity) { change(m_look.intensity, intensity); }
    QColor accent() const { return m_look.accent; }
    void setAccent(const QColor &accent) { change(m_look.accent, accent); }
    QColor base() const { return m_look.base; }
    void setBase(const QColor &base) { change(m_look.base, base); }
    bool dark() const { return m_look.dark; }
    void setDark(bool dark) { change(m_look.dark, dark); }

Q_SIGNALS:
    void lookChanged();

protected:
    QImage draw(QSize pixels, qreal ratio) const override;

private:
    template<typename T> void change(T &member, const T &value)
    {
        if (!assignIfDifferent(member, value))
            return;
        redraw();
        Q_EMIT lookChanged();
    }

    BackdropLook m_look;
};

} // namespace cratewell

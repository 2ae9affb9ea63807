#pragma once

#include "platform/file_chooser.h"

#include <QPointer>

class QQmlEngine;

namespace cratewell {

// The program's own file dialog over its window, for desktops that have none to offer. Questions that are
// open when the engine goes are not answered.
class DialogFileChooser final : public FileChooser
{
public:
    explicit DialogFileChooser(QQmlEngine &engine);

    void choose(const ChooseRequest &request, Done done) override;

private:
    QPointer<QQmlEngine> m_engine;
};

} // namespace cratewell

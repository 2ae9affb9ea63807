#pragma once

#include "platform/file_chooser.h"

#include <QDBusConnection>
#include <QObject>
#include <memory>

namespace cratewell {

// The desktop portal's file chooser. What goes wrong there counts as canceled; questions that are open when
// the chooser goes are not answered.
class PortalFileChooser final : public FileChooser
{
public:
    // Null when no portal on this bus offers choosing files. Waits for its word, a second at most.
    static std::unique_ptr<PortalFileChooser> create(const QDBusConnection &bus);

    void choose(const ChooseRequest &request, Done done) override;

private:
    explicit PortalFileChooser(QDBusConnection bus);

    QDBusConnection m_bus;
    QObject m_requests;
    int m_count = 0;
};

} // namespace cratewell

#pragma once

#include "platform/location.h"

#include <QList>
#include <functional>

namespace cratewell {

struct ChooseRequest
{
    enum class What { Files, Folders, Images };
    What what = What::Files;
    QString title;
    QString acceptLabel;
    bool several = false;
};

// The desktop's file chooser. Main thread; `done` is called there exactly once, with nothing when canceled,
// and never from inside choose().
class FileChooser
{
public:
    using Done = std::function<void(const QList<Location> &)>;
    virtual ~FileChooser() = default;
    virtual void choose(const ChooseRequest &request, Done done) = 0;
};

} // namespace cratewell

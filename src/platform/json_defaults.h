#pragma once

#include "platform/defaults.h"
#include "platform/location.h"

#include <memory>

namespace cratewell {

// Defaults in one JSON object, replaced atomically by a writer thread of its own that always writes the
// newest snapshot (a burst of changes costs one or two writes). A file that cannot be read as a JSON object
// is kept aside under another name and the store starts empty. An unwritable place keeps the values in memory
// only.
class JsonDefaults final : public Defaults
{
public:
    explicit JsonDefaults(Location file);
    ~JsonDefaults() override; // drains

    QJsonValue value(const QString &key) const override;
    void setValue(const QString &key, const QJsonValue &value) override;
    void remove(const QString &key) override;
    void drain() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell

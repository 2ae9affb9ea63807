#pragma once

#include "platform/location.h"

#include <QMetaType>

namespace cratewell {

// Which part of the library the main area shows.
class Scope
{
    Q_GADGET
    Q_PROPERTY(Kind kind READ kind CONSTANT)
    Q_PROPERTY(cratewell::Location folder READ folder CONSTANT)
    Q_PROPERTY(QString page READ page CONSTANT)
public:
    enum class Kind { Plugin, Folder, All, Favorites, Recent, Importer, Trash };
    Q_ENUM(Kind)

    Scope() = default; // all
    static Scope all() { return {}; }
    static Scope of(Kind kind); // any kind without a payload
    static Scope inFolder(const Location &folder);
    static Scope plugin(const QString &page);

    Kind kind() const { return m_kind; }
    const Location &folder() const { return m_folder; }
    const QString &page() const { return m_page; }
    // Fixed texts; a folder's is its name.
    QString title() const;

    friend bool operator==(const Scope &, const Scope &) = default;

private:
    Kind m_kind = Kind::All;
    Location m_folder;
    QString m_page;
};

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::Scope)

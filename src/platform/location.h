#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QUrl>

namespace cratewell {

// Where a file is: an absolute path with no ".", "..", doubled or trailing slash, in the file system's own
// bytes (a name need not be UTF-8). Empty means nowhere. A cheap value: copying shares, comparing compares
// bytes. As text, bytes that are not valid UTF-8 travel as U+DC80 to U+DCFF; in URIs as percent escapes.
class Location
{
    Q_GADGET
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString baseName READ baseName CONSTANT)
    Q_PROPERTY(bool empty READ isEmpty CONSTANT)
public:
    Location() = default;

    // Standardizes; a relative path is nowhere.
    static Location fromBytes(QByteArrayView path);
    static Location fromText(const QString &path);
    // Local file URIs only; any other scheme or a foreign host is nowhere. The encoded form keeps stray
    // bytes.
    static Location fromUri(QByteArrayView encoded);
    static Location fromUrl(const QUrl &url) { return fromUri(url.toEncoded()); }
    // For callers that join standardized parts themselves (the scan): nothing is checked.
    static Location fromStandardized(QByteArray path);

    bool isEmpty() const { return m_path.isEmpty(); }
    const QByteArray &bytes() const { return m_path; }
    const char *c_str() const { return m_path.constData(); }
    QString text() const;
    // "file:///..." with every byte outside the unreserved set percent-escaped.
    QByteArray uri() const;

    QByteArrayView nameBytes() const;
    QString name() const;
    // The name without its extension.
    QString baseName() const;
    // Text after the last "." of the name, as written; empty when there is none. A leading dot alone starts
    // no extension: ".cube" has none.
    QString extension() const;
    QByteArrayView extensionBytes() const;

    // The folder that holds this; the parent of "/" is "/".
    Location parent() const;
    // `name` is one plain component.
    Location child(QByteArrayView name) const;
    Location child(const QString &name) const;
    Location child(const QByteArray &name) const { return child(QByteArrayView(name)); }
    Location child(const char *name) const { return child(QByteArrayView(name)); }

    // True below `folder` at any depth, false for `folder` itself: /a/Hits is not inside /a/Hit.
    bool isInside(const Location &folder) const;
    // Symbolic links resolved as far as the path exists (touches the disk); the rest is kept as it is.
    Location resolved() const;

    friend bool operator==(const Location &a, const Location &b) { return a.m_path == b.m_path; }
    friend bool operator<(const Location &a, const Location &b) { return a.m_path < b.m_path; }
    friend size_t qHash(const Location &location, size_t seed = 0) { return qHash(location.m_path, seed); }

private:
    QByteArray m_path;
};

// Whether a file or folder of this name is kept from view: by a leading dot.
inline bool isHiddenName(QByteArrayView name)
{
    return name.startsWith('.');
}

// Text for bytes and back, by the rule above; exact in both directions for names that came from bytes.
QString textFromBytes(QByteArrayView bytes);
QByteArray bytesFromText(QStringView text);

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::Location)

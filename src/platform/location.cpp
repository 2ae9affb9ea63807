#include "platform/location.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>

namespace cratewell {

namespace {

constexpr char16_t firstStray = 0xDC80;
constexpr char16_t lastStray = 0xDCFF;
constexpr char16_t strayBase = 0xDC00;

// Length of the well-formed UTF-8 sequence at the front of `bytes` (Unicode, table 3-7), 0 when there is
// none.
qsizetype sequenceLength(QByteArrayView bytes)
{
    const auto at = [&bytes](qsizetype i) { return i < bytes.size() ? uchar(bytes[i]) : uchar(0); };
    const auto within = [](uchar byte, uchar low, uchar high) { return byte >= low && byte <= high; };
    const auto continues = [&](qsizetype i) { return within(at(i), 0x80, 0xBF); };
    const uchar lead = at(0);
    if (lead < 0x80)
        return 1;
    if (within(lead, 0xC2, 0xDF))
        return continues(1) ? 2 : 0;
    if (within(lead, 0xE0, 0xEF)) {
        const bool second = within(at(1), lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF);
        return second && continues(2) ? 3 : 0;
    }
    if (within(lead, 0xF0, 0xF4)) {
        const bool second = within(at(1), lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
        return second && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

// The decoder of the library takes a leading byte order mark away; in a name it is part of the name.
QString textFromValid(QByteArrayView bytes)
{
    constexpr QByteArrayView mark("\xEF\xBB\xBF");
    QString text;
    while (bytes.startsWith(mark)) {
        text += QChar::ByteOrderMark;
        bytes = bytes.sliced(mark.size());
    }
    return text.isEmpty() ? QString::fromUtf8(bytes) : text + QString::fromUtf8(bytes);
}

QByteArray standardized(QByteArrayView path)
{
    if (!path.startsWith('/') || path.contains('\0'))
        return {};
    QByteArray result;
    result.reserve(path.size());
    qsizetype at = 0;
    while (at < path.size()) {
        qsizetype end = path.indexOf('/', at);
        if (end < 0)
            end = path.size();
        const QByteArrayView part = path.sliced(at, end - at);
        at = end + 1;
        if (part.isEmpty() || part == ".")
            continue;
        if (part == "..") {
            result.truncate(qMax(result.lastIndexOf('/'), qsizetype(0)));
            continue;
        }
        result += '/';
        result += part;
    }
    return result.isEmpty() ? QByteArray("/") : result;
}

// What is no escape of two hexadecimal digits stays as written.
QByteArray percentDecoded(QByteArrayView encoded)
{
    QByteArray bytes;
    bytes.reserve(encoded.size());
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        uchar value = 0;
        const char *digits = encoded.data() + i + 1;
        const bool escape = encoded[i] == '%' && i + 2 < encoded.size() &&
                            std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
        bytes += escape ? char(value) : encoded[i];
        i += escape ? 2 : 0;
    }
    return bytes;
}

// Where the dot before the extension stands in a name; -1 when the name has no extension.
qsizetype extensionDot(QByteArrayView name)
{
    const qsizetype dot = name.lastIndexOf('.');
    return dot > 0 && dot + 1 < name.size() ? dot : -1;
}

} // namespace

QString textFromBytes(QByteArrayView bytes)
{
    if (bytes.isValidUtf8())
        return textFromValid(bytes);
    QString text;
    while (!bytes.isEmpty()) {
        qsizetype valid = 0;
        while (valid < bytes.size()) {
            const qsizetype length = sequenceLength(bytes.sliced(valid));
            if (length == 0)
                break;
            valid += length;
        }
        text += textFromValid(bytes.first(valid));
        if (valid < bytes.size())
            text += QChar(char16_t(strayBase + uchar(bytes[valid++])));
        bytes = bytes.sliced(valid);
    }
    return text;
}

QByteArray bytesFromText(QStringView text)
{
    QByteArray bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        const char16_t unit = text[i].unicode();
        if (unit < firstStray || unit > lastStray)
            continue;
        bytes += text.sliced(start, i - start).toUtf8();
        bytes += char(unit - strayBase);
        start = i + 1;
    }
    return bytes + text.sliced(start).toUtf8();
}

Location Location::fromBytes(QByteArrayView path)
{
    return fromStandardized(standardized(path));
}

Location Location::fromText(const QString &path)
{
    return fromBytes(bytesFromText(path));
}

Location Location::fromUri(QByteArrayView encoded)
{
    constexpr QByteArrayView scheme("file:");
    if (encoded.size() < scheme.size() ||
        encoded.first(scheme.size()).compare(scheme, Qt::CaseInsensitive) != 0)
        return {};
    QByteArrayView rest = encoded.sliced(scheme.size());
    if (rest.startsWith("//")) {
        const qsizetype slash = rest.indexOf('/', 2);
        if (slash < 0)
            return {};
        const QByteArrayView host = rest.sliced(2, slash - 2);
        if (!host.isEmpty() && host.compare("localhost", Qt::CaseInsensitive) != 0)
            return {};
        rest = rest.sliced(slash);
    }
    const auto end = std::find_if(rest.begin(), rest.end(), [](char c) { return c == '?' || c == '#'; });
    return fromBytes(percentDecoded(rest.first(end - rest.begin())));
}

Location Location::fromStandardized(QByteArray path)
{
    Location location;
    location.m_path = std::move(path);
    return location;
}

QString Location::text() const
{
    return textFromBytes(m_path);
}

QByteArray Location::uri() const
{
    return m_path.isEmpty() ? QByteArray() : "file://" + m_path.toPercentEncoding("/");
}

QByteArrayView Location::nameBytes() const
{
    return QByteArrayView(m_path).sliced(m_path.lastIndexOf('/') + 1);
}

QString Location::name() const
{
    return textFromBytes(nameBytes());
}

QString Location::baseName() const
{
    const QByteArrayView name = nameBytes();
    const qsizetype dot = extensionDot(name);
    return textFromBytes(dot < 0 ? name : name.first(dot));
}

QString Location::extension() const
{
    return textFromBytes(extensionBytes());
}

QByteArrayView Location::extensionBytes() const
{
    const QByteArrayView name = nameBytes();
    const qsizetype dot = extensionDot(name);
    return dot < 0 ? QByteArrayView() : name.sliced(dot + 1);
}

Location Location::parent() const
{
    if (m_path.isEmpty())
        return {};
    return fromStandardized(m_path.first(qMax(m_path.lastIndexOf('/'), qsizetype(1))));
}

Location Location::child(QByteArrayView name) const
{
    if (m_path.isEmpty() || name.isEmpty() || name == "." || name == ".." || name.contains('/') ||
        name.contains('\0'))
        return {};
    QByteArray path;
    path.reserve(m_path.size() + 1 + name.size());
    path += m_path;
    if (!path.endsWith('/'))
        path += '/';
    path += name;
    return fromStandardized(std::move(path));
}

Location Location::child(const QString &name) const
{
    return child(bytesFromText(name));
}

bool Location::isInside(const Location &folder) const
{
    const qsizetype length = folder.m_path.size();
    if (length == 0 || m_path.size() <= length || !m_path.startsWith(folder.m_path))
        return false;
    return folder.m_path.endsWith('/') || m_path[length] == '/';
}

Location Location::resolved() const
{
    if (m_path.isEmpty())
        return {};
    for (Location existing = *this;; existing = existing.parent()) {
        const std::unique_ptr<char, decltype(&std::free)> real(::realpath(existing.c_str(), nullptr),
                                                               std::free);
        if (!real && existing.m_path.size() > 1)
            continue;
        const QByteArrayView rest = QByteArrayView(m_path).sliced(existing.m_path.size());
        return fromBytes(QByteArray(real ? real.get() : "/").append('/').append(rest));
    }
}

} // namespace cratewell

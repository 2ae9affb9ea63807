#include "platform/mac/listed_applications.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <algorithm>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

const QString tool = u"lsappinfo"_s;

// Editions extend these identifiers: "com.adobe.PremierePro.24".
bool isEditor(const QString &identifier)
{
    return identifier.startsWith(u"com.blackmagic-design.DaVinciResolve"_s) ||
           identifier.startsWith(u"com.adobe.PremierePro"_s);
}

QStringList identifiersOf(const QList<ListedApplication> &listed)
{
    QStringList identifiers;
    for (const ListedApplication &application : listed) {
        if (!identifiers.contains(application.identifier))
            identifiers += application.identifier;
    }
    identifiers.sort();
    return identifiers;
}

} // namespace

QList<ListedApplication> parseApplicationList(QByteArrayView output)
{
    // 12) "DaVinci Resolve" ASN:0x0-0x1d01d: (in front)
    //     bundleID="com.blackmagic-design.DaVinciResolve"
    static const QRegularExpression pattern(
        u"^\\s*\\d+\\) .*?(ASN:0x[0-9a-f]+-0x[0-9a-f]+)|^\\s*bundleID=\"([^\"]+)\""_s,
        QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption);
    QList<ListedApplication> editors;
    QString serial;
    for (auto matches = pattern.globalMatch(QString::fromUtf8(output)); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (!match.captured(1).isEmpty())
            serial = match.captured(1);
        else if (isEditor(match.captured(2)))
            editors += ListedApplication{serial, match.captured(2)};
    }
    return editors;
}

ListedApplications::ListedApplications(const Location &toolsFolder) : m_tools(toolsFolder)
{
    m_timer.setInterval(std::chrono::seconds(1));
    connect(&m_timer, &QTimer::timeout, this, &ListedApplications::look);
}

QStringList ListedApplications::running()
{
    const auto outcome = m_tools.runAndWait(tool, {u"list"_s}, std::chrono::milliseconds(500));
    if (outcome.finished && outcome.exitCode == 0)
        m_listed = parseApplicationList(outcome.output);
    return identifiersOf(m_listed);
}

Result<void> ListedApplications::bringToFront(const QString &identifier)
{
    if (!running().contains(identifier))
        return tl::unexpected(Error{identifier + u": does not run"_s});
    m_tools.launch(u"open"_s, {u"-b"_s, identifier});
    return {};
}

void ListedApplications::look()
{
    if (std::exchange(m_looking, true))
        return;
    // The list comes second, so that it knows whatever was in front before.
    m_tools.run(tool, {u"front"_s}, [this](const CommandLineTools::Outcome &outcome) {
        const QString front = QString::fromUtf8(outcome.output).trimmed();
        m_tools.run(tool, {u"list"_s}, [this, front](const CommandLineTools::Outcome &list) {
            m_looking = false;
            if (list.finished && list.exitCode == 0)
                take(parseApplicationList(list.output), front);
        });
    });
}

void ListedApplications::take(const QList<ListedApplication> &listed, const QString &front)
{
    const QStringList before = identifiersOf(m_listed);
    m_listed = listed;
    if (identifiersOf(m_listed) != before)
        Q_EMIT changed();
    if (front == std::exchange(m_front, front))
        return;
    for (const ListedApplication &application : listed) {
        if (front == application.serial + u':')
            Q_EMIT activated(application.identifier);
    }
}

void ListedApplications::connectNotify(const QMetaMethod &)
{
    if (!m_timer.isActive()) {
        m_timer.start();
        look();
    }
}

void ListedApplications::disconnectNotify(const QMetaMethod &)
{
    // Not here: Qt calls this under a lock of the vanishing listener that may be the one asked for below.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!isSignalConnected(QMetaMethod::fromSignal(&Applications::changed)) &&
                !isSignalConnected(QMetaMethod::fromSignal(&Applications::activated)))
                m_timer.stop();
        },
        Qt::QueuedConnection);
}

} // namespace cratewell

#include "platform/linux/portal_file_chooser.h"

#include "platform/linux/portal_names.h"
#include "platform/linux/portal_request.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QWindow>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr int probeTimeout = 1000; // milliseconds

// As the portal writes a filter: (sa(us)).
struct FilterRule
{
    enum Kind : uint { Pattern = 0, MimeType = 1 };
    uint kind = Pattern;
    QString text;
};

struct Filter
{
    QString name;
    QList<FilterRule> rules;
};

QDBusArgument &operator<<(QDBusArgument &argument, const FilterRule &rule)
{
    argument.beginStructure();
    argument << rule.kind << rule.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FilterRule &rule)
{
    argument.beginStructure();
    argument >> rule.kind >> rule.text;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Filter &filter)
{
    argument.beginStructure();
    argument << filter.name << filter.rules;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Filter &filter)
{
    argument.beginStructure();
    argument >> filter.name >> filter.rules;
    argument.endStructure();
    return argument;
}

// So that the desktop puts its dialog over our window.
QString parentWindow()
{
    const QWindow *window = QGuiApplication::focusWindow();
    if (!window || QGuiApplication::platformName() != u"xcb"_s)
        return {};
    return u"x11:"_s + QString::number(window->winId(), 16);
}

QVariantMap optionsFor(const ChooseRequest &request, const QString &token)
{
    QVariantMap options = {
        {u"handle_token"_s, token},
        {u"modal"_s, true},
        {u"multiple"_s, request.several},
        {u"directory"_s, request.what == ChooseRequest::What::Folders},
    };
    if (!request.acceptLabel.isEmpty())
        options.insert(u"accept_label"_s, request.acceptLabel);
    if (request.what == ChooseRequest::What::Images) {
        const Filter images = {u"Images"_s, {{FilterRule::MimeType, u"image/*"_s}}};
        options.insert(u"filters"_s, QVariant::fromValue(QList<Filter>{images}));
    }
    return options;
}

} // namespace

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::FilterRule)
Q_DECLARE_METATYPE(cratewell::Filter)

namespace cratewell {

std::unique_ptr<PortalFileChooser> PortalFileChooser::create(const QDBusConnection &bus)
{
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(portal::service()))
        return nullptr;
    QDBusMessage probe = QDBusMessage::createMethodCall(portal::service(), portal::path(),
                                                        u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    probe << portal::fileChooser() << u"version"_s;
    if (bus.call(probe, QDBus::Block, probeTimeout).type() != QDBusMessage::ReplyMessage)
        return nullptr;
    return std::unique_ptr<PortalFileChooser>(new PortalFileChooser(bus));
}

PortalFileChooser::PortalFileChooser(QDBusConnection bus) : m_bus(std::move(bus))
{
    qDBusRegisterMetaType<FilterRule>();
    qDBusRegisterMetaType<QList<FilterRule>>();
    qDBusRegisterMetaType<Filter>();
    qDBusRegisterMetaType<QList<Filter>>();
}

void PortalFileChooser::choose(const ChooseRequest &request, Done done)
{
    const QString token = u"cratewell%1"_s.arg(++m_count);
    const auto decode = [done = std::move(done)](const QVariantMap &results) {
        QList<Location> chosen;
        for (const QString &uri : results.value(u"uris"_s).toStringList()) {
            if (const Location place = Location::fromUri(uri.toUtf8()); !place.isEmpty())
                chosen += place;
        }
        done(chosen);
    };
    auto *question = new PortalRequest(m_bus, token, decode, &m_requests);
    QDBusMessage call = QDBusMessage::createMethodCall(portal::service(), portal::path(),
                                                       portal::fileChooser(), u"OpenFile"_s);
    call << parentWindow() << request.title << optionsFor(request, token);
    question->send(call);
}

} // namespace cratewell

#include "platform/linux/x11_windows.h"

#include <QSocketNotifier>
#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <vector>
#include <xcb/xcb.h>

namespace cratewell {

namespace {

// Largest answers we read, in units of four bytes: window lists and class names are far smaller.
constexpr uint32_t longestList = 4096;
constexpr uint32_t longestClass = 256;

// In a client message of the window manager's protocol: the request comes from a tool, not the window itself.
constexpr uint32_t sourcePager = 2;

struct Freed
{
    void operator()(void *memory) const { std::free(memory); }
};
template<typename T> using Reply = std::unique_ptr<T, Freed>;

Error noServer()
{
    return {QStringLiteral("There is no X server")};
}

} // namespace

struct X11Windows::Private
{
    ~Private();
    [[nodiscard]] Result<void> open();
    void listen(X11Windows &owner);
    void readEvents(X11Windows &owner);

    xcb_atom_t atom(QByteArrayView name) const;
    xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                                  uint32_t length) const;
    std::vector<xcb_window_t> windows(xcb_atom_t property) const;
    QStringList classes(xcb_get_property_cookie_t cookie) const;

    xcb_connection_t *connection = nullptr;
    xcb_window_t root = XCB_NONE;
    xcb_atom_t activeWindow = XCB_NONE;
    xcb_atom_t stacking = XCB_NONE;
    xcb_window_t active = XCB_NONE;
    std::unique_ptr<QSocketNotifier> notifier;
};

X11Windows::Private::~Private()
{
    notifier.reset();
    if (connection)
        xcb_disconnect(connection);
}

Result<void> X11Windows::Private::open()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return tl::unexpected(noServer());
    int screenNumber = 0;
    connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection))
        return tl::unexpected(noServer());
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (screenNumber-- > 0 && screens.rem > 1)
        xcb_screen_next(&screens);
    root = screens.data->root;
    activeWindow = atom("_NET_ACTIVE_WINDOW");
    stacking = atom("_NET_CLIENT_LIST_STACKING");
    return {};
}

xcb_atom_t X11Windows::Private::atom(QByteArrayView name) const
{
    const auto cookie = xcb_intern_atom(connection, 0, uint16_t(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_NONE);
}

xcb_get_property_cookie_t X11Windows::Private::ask(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                                                   uint32_t length) const
{
    return xcb_get_property(connection, 0, window, property, type, 0, length);
}

std::vector<xcb_window_t> X11Windows::Private::windows(xcb_atom_t property) const
{
    const auto cookie = ask(root, property, XCB_ATOM_WINDOW, longestList);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / int(sizeof(xcb_window_t))};
}

QStringList X11Windows::Private::classes(xcb_get_property_cookie_t cookie) const
{
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    const auto *text = static_cast<const char *>(xcb_get_property_value(reply.get()));
    const QByteArray names(text, xcb_get_property_value_length(reply.get()));
    return QString::fromLatin1(names).split(QChar(u'\0'), Qt::SkipEmptyParts);
}

void X11Windows::Private::listen(X11Windows &owner)
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection);
    notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &owner,
                     [this, &owner] { readEvents(owner); });
}

void X11Windows::Private::readEvents(X11Windows &owner)
{
    // Waiting for an answer takes events off the socket as well: they are read until none is left.
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY)
            continue;
        if (reinterpret_cast<const xcb_property_notify_event_t *>(event.get())->atom != activeWindow)
            continue;
        const std::vector<xcb_window_t> now = windows(activeWindow);
        const xcb_window_t window = now.empty() ? xcb_window_t(XCB_NONE) : now.front();
        if (window == std::exchange(active, window) || window == XCB_NONE)
            continue;
        Q_EMIT owner.activated(classes(ask(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, longestClass)));
    }
    // A server that is gone keeps its socket readable for ever.
    if (xcb_connection_has_error(connection))
        notifier->setEnabled(false);
}

X11Windows::X11Windows() : d(std::make_unique<Private>())
{
    if (d->open())
        d->listen(*this);
}

X11Windows::~X11Windows() = default;

Result<void> X11Windows::activate(const QString &windowClass)
{
    if (!d->notifier || xcb_connection_has_error(d->connection))
        return tl::unexpected(noServer());
    std::vector<xcb_window_t> windows = d->windows(d->stacking);
    std::reverse(windows.begin(), windows.end());
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back(d->ask(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, longestClass));
    xcb_window_t found = XCB_NONE;
    for (size_t i = 0; i < windows.size(); ++i) {
        const bool matches = d->classes(cookies[i]).contains(windowClass, Qt::CaseInsensitive);
        if (matches && found == XCB_NONE)
            found = windows[i];
    }
    if (found == XCB_NONE)
        return tl::unexpected(Error{windowClass + QStringLiteral(": no such window")});
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = found;
    message.type = d->activeWindow;
    message.data.data32[0] = sourcePager;
    xcb_send_event(d->connection, 0, d->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(d->connection);
    QMetaObject::invokeMethod(
        this, [this] { d->readEvents(*this); }, Qt::QueuedConnection);
    return {};
}

} // namespace cratewell

#include "platform/x11/X11Activation.h"

#include <sys/utsname.h>

#include <QDesktopServices>
#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <cstdlib>

#include "platform/x11/X11Connection.h"

Q_LOGGING_CATEGORY(lcActivation, "lattica.x11.activation", QtInfoMsg)

namespace {

constexpr uint32_t kNetWmStateRemove = 0;
constexpr uint32_t kNetWmStateAdd = 1;
// Source indication of a pager: the window manager follows it even when another application is active.
constexpr uint32_t kSourcePager = 2;

QString osReleaseValue(const QByteArray& text, const QByteArray& key) {
    for (const QByteArray& rawLine : text.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (!line.startsWith(key + '=')) {
            continue;
        }
        QByteArray value = line.mid(key.size() + 1);
        if (value.size() >= 2 && (value.startsWith('"') || value.startsWith('\'')) && value.endsWith(value.at(0))) {
            value = value.mid(1, value.size() - 2);
        }
        return QString::fromUtf8(value).replace(QStringLiteral("\\\""), QStringLiteral("\""));
    }
    return {};
}

}  // namespace

X11Activation::X11Activation(X11Connection& connection) : m_connection(connection) {
    m_connection.internAtoms(
        {"_NET_WM_STATE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_ACTIVE_WINDOW"});
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

X11Activation::~X11Activation() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool X11Activation::isOrdinaryTopLevel(const QWindow& window) {
    if (!window.isTopLevel()) {
        return false;
    }
    switch (window.type()) {
        case Qt::Window:
        case Qt::Dialog:
        case Qt::Sheet:
        case Qt::Drawer:
        case Qt::Tool:
            return true;
        default:
            return false;  // popups, tooltips, splash screens and desktop windows never show in a taskbar
    }
}

void X11Activation::setActivationPolicy(ActivationPolicy policy) {
    m_policy = policy;
    const bool skip = policy != ActivationPolicy::Regular;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!isOrdinaryTopLevel(*window) || window->handle() == nullptr) {
            continue;
        }
        const auto xid = static_cast<xcb_window_t>(window->winId());
        if (window->isVisible()) {
            requestStateChange(xid, skip);
        } else {
            writeStateProperty(xid, skip);
        }
    }
    sync();
    qCDebug(lcActivation) << "activation policy" << static_cast<int>(policy);
}

bool X11Activation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWindowType()) {
        auto* window = static_cast<QWindow*>(watched);
        if (isOrdinaryTopLevel(*window) && window->handle() != nullptr) {
            m_lastShown = window;
            // The window is not mapped yet: its state property is read by the window manager on mapping.
            if (m_policy != ActivationPolicy::Regular) {
                writeStateProperty(static_cast<xcb_window_t>(window->winId()), true);
                sync();
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

void X11Activation::writeStateProperty(xcb_window_t window, bool skip) {
    xcb_connection_t* xcb = m_connection.xcb();
    const xcb_atom_t state = m_connection.atom("_NET_WM_STATE");
    const xcb_atom_t skipTaskbar = m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR");
    const xcb_atom_t skipPager = m_connection.atom("_NET_WM_STATE_SKIP_PAGER");

    QList<xcb_atom_t> atoms;
    xcb_get_property_reply_t* reply =
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, window, state, XCB_ATOM_ATOM, 0, 1024), nullptr);
    if (reply != nullptr && reply->format == 32 && reply->type == XCB_ATOM_ATOM) {
        const auto* values = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply));
        const int count = xcb_get_property_value_length(reply) / 4;
        for (int i = 0; i < count; ++i) {
            if (values[i] != skipTaskbar && values[i] != skipPager) {
                atoms.append(values[i]);
            }
        }
    }
    std::free(reply);
    if (skip) {
        atoms.append(skipTaskbar);
        atoms.append(skipPager);
    }
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, state, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(atoms.size()), atoms.constData());
}

void X11Activation::requestStateChange(xcb_window_t window, bool skip) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_connection.atom("_NET_WM_STATE");
    message.data.data32[0] = skip ? kNetWmStateAdd : kNetWmStateRemove;
    message.data.data32[1] = m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR");
    message.data.data32[2] = m_connection.atom("_NET_WM_STATE_SKIP_PAGER");
    message.data.data32[3] = 1;  // a normal application
    xcb_send_event(m_connection.xcb(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void X11Activation::sync() {
    // A round trip: the server has applied our requests before Qt's own connection touches the window.
    xcb_connection_t* xcb = m_connection.xcb();
    std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

void X11Activation::activateIgnoringOtherApps() {
    QWindow* target = m_lastShown && m_lastShown->isVisible() ? m_lastShown.data() : nullptr;
    if (target == nullptr) {
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible() && isOrdinaryTopLevel(*window)) {
                target = window;
                break;
            }
        }
    }
    if (target == nullptr) {
        return;
    }
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(target->winId());
    message.type = m_connection.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = kSourcePager;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection.xcb(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    m_connection.flush();
}

bool X11Activation::openURL(const QUrl& url) {
    if (!url.isValid()) {
        return false;
    }
    return QDesktopServices::openUrl(url);
}

QString X11Activation::operatingSystemVersionString() {
    QFile osRelease(QStringLiteral("/etc/os-release"));
    if (!osRelease.open(QIODevice::ReadOnly)) {
        osRelease.setFileName(QStringLiteral("/usr/lib/os-release"));
        (void)osRelease.open(QIODevice::ReadOnly);
    }
    const QByteArray text = osRelease.isOpen() ? osRelease.readAll() : QByteArray();
    struct utsname system {};
    if (::uname(&system) != 0) {
        return versionLine(text, QString(), QString());
    }
    return versionLine(text, QString::fromUtf8(system.sysname), QString::fromUtf8(system.release));
}

QString X11Activation::versionLine(const QByteArray& osRelease, const QString& kernelName,
                                   const QString& kernelRelease) {
    QString name = osReleaseValue(osRelease, "PRETTY_NAME");
    if (name.isEmpty()) {
        name = osReleaseValue(osRelease, "NAME");
    }
    const QString kernel = (kernelName + QLatin1Char(' ') + kernelRelease).trimmed();
    if (name.isEmpty()) {
        return kernel.isEmpty() ? QStringLiteral("Unknown") : kernel;
    }
    return kernel.isEmpty() ? name : name + QStringLiteral(", kernel ") + kernel;
}

// SPDX-License-Identifier: MIT
#include "platform/x11/X11Monitors.h"

#include <xcb/randr.h>

#include <QLoggingCategory>
#include <QSet>

#include "platform/x11/Edid.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11MonitorIdentities.h"
#include "platform/x11/XcbReply.h"

Q_LOGGING_CATEGORY(lcMonitors, "lattica.x11.monitors", QtInfoMsg)

namespace {

// Events of one configuration change arrive in bursts; announce the change once they settle.
constexpr int kCoalesceMilliseconds = 40;

}  // namespace

X11Monitors::X11Monitors(X11Connection& connection) : m_connection(connection), m_capture(connection.displayName()) {
    xcb_connection_t* xcb = m_connection.xcb();
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(xcb, &xcb_randr_id);
    if (randr != nullptr && randr->present) {
        m_randrFirstEvent = randr->first_event;
        XcbReply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(xcb, xcb_randr_query_version(xcb, 1, 5), nullptr));
        m_hasRandr15 = version && (version->major_version > 1 || version->minor_version >= 5);
        xcb_randr_select_input(xcb, m_connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY |
                                   XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    }
    // Monitors defined with `xrandr --setmonitor` (a split ultrawide, a virtual desktop) come and go
    // without any RandR event; the server tells of them with a ConfigureNotify of the root window.
    XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, xcb_get_window_attributes(xcb, m_connection.root()), nullptr));
    const uint32_t rootMask = (attributes ? attributes->your_event_mask : 0) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb, m_connection.root(), XCB_CW_EVENT_MASK, &rootMask);
    m_connection.flush();
    m_coalesceTimer.setSingleShot(true);
    m_coalesceTimer.setInterval(kCoalesceMilliseconds);
    connect(&m_coalesceTimer, &QTimer::timeout, this, &X11Monitors::checkForConfigurationChange);
    m_eventHandler = m_connection.addEventHandler([this](xcb_generic_event_t* event) { return handleEvent(event); });
    m_signalledMonitors = fetchMonitors();
}

X11Monitors::~X11Monitors() {
    m_connection.removeEventHandler(m_eventHandler);
}

bool X11Monitors::handleEvent(xcb_generic_event_t* event) {
    const uint8_t type = event->response_type & 0x7f;
    const bool randrEvent = m_randrFirstEvent != 0 && (type == m_randrFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                                       type == m_randrFirstEvent + XCB_RANDR_NOTIFY);
    const bool rootConfigured = type == XCB_CONFIGURE_NOTIFY &&
                                reinterpret_cast<xcb_configure_notify_event_t*>(event)->window == m_connection.root();
    if (randrEvent || rootConfigured) {
        m_coalesceTimer.start();
    }
    return false;
}

void X11Monitors::checkForConfigurationChange() {
    const QList<RandrMonitor> monitors = fetchMonitors();
    if (monitors != m_signalledMonitors) {
        m_signalledMonitors = monitors;
        Q_EMIT changed();
    }
}

QList<X11Monitors::RandrMonitor> X11Monitors::fetchMonitors() {
    QList<RandrMonitor> monitors;
    xcb_connection_t* xcb = m_connection.xcb();
    if (!m_hasRandr15 || m_connection.hasError()) {
        return monitors;
    }
    const xcb_atom_t edidAtom = m_connection.atom("EDID");

    // Stage 1: the monitors and the screen's outputs (for unit numbers).
    auto monitorsCookie = xcb_randr_get_monitors(xcb, m_connection.root(), 1);
    auto resourcesCookie = xcb_randr_get_screen_resources_current(xcb, m_connection.root());
    XcbReply<xcb_randr_get_monitors_reply_t> monitorsReply(xcb_randr_get_monitors_reply(xcb, monitorsCookie, nullptr));
    XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(xcb, resourcesCookie, nullptr));
    if (!monitorsReply) {
        return monitors;
    }
    QList<xcb_randr_output_t> screenOutputs;
    if (resources) {
        const xcb_randr_output_t* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
        const int count = xcb_randr_get_screen_resources_current_outputs_length(resources.get());
        screenOutputs = QList<xcb_randr_output_t>(outputs, outputs + count);
    }

    // Stage 2: for every monitor its name, its first output's name and EDID, all requests sent first.
    struct Pending {
        Monitor monitor;
        QRect rootRect;
        xcb_randr_output_t output = XCB_NONE;
        xcb_get_atom_name_cookie_t nameCookie{};
        xcb_randr_get_output_info_cookie_t outputCookie{};
        xcb_randr_get_output_property_cookie_t edidCookie{};
    };
    QList<Pending> pending;
    QStringList connectors;
    QStringList serialTexts;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(monitorsReply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const xcb_randr_monitor_info_t* info = it.data;
        Pending entry;
        entry.rootRect = QRect(info->x, info->y, info->width, info->height);
        entry.monitor.primary = info->primary != 0;
        const int outputCount = xcb_randr_monitor_info_outputs_length(info);
        entry.output = outputCount > 0 ? xcb_randr_monitor_info_outputs(info)[0] : XCB_NONE;
        // A monitor without an output is numbered by its name atom.
        entry.monitor.id = entry.output != XCB_NONE ? entry.output : info->name;
        entry.nameCookie = xcb_get_atom_name(xcb, info->name);
        if (entry.output != XCB_NONE) {
            entry.outputCookie = xcb_randr_get_output_info(xcb, entry.output, XCB_CURRENT_TIME);
            entry.edidCookie = xcb_randr_get_output_property(xcb, entry.output, edidAtom, XCB_ATOM_ANY, 0, 256, 0, 0);
            entry.monitor.unit = static_cast<quint32>(qMax<qsizetype>(0, screenOutputs.indexOf(entry.output)));
        }
        pending.append(entry);
    }
    for (Pending& entry : pending) {
        QString monitorName;
        if (XcbReply<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(xcb, entry.nameCookie, nullptr)); name) {
            monitorName =
                QString::fromLatin1(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get()));
        }
        QString outputName;
        std::optional<Edid> edid;
        if (entry.output != XCB_NONE) {
            XcbReply<xcb_randr_get_output_info_reply_t> output(
                xcb_randr_get_output_info_reply(xcb, entry.outputCookie, nullptr));
            if (output) {
                outputName =
                    QString::fromUtf8(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(output.get())),
                                      xcb_randr_get_output_info_name_length(output.get()));
            }
            XcbReply<xcb_randr_get_output_property_reply_t> property(
                xcb_randr_get_output_property_reply(xcb, entry.edidCookie, nullptr));
            if (property && property->format == 8) {
                const QByteArray data(reinterpret_cast<const char*>(xcb_randr_get_output_property_data(property.get())),
                                      xcb_randr_get_output_property_data_length(property.get()));
                edid = parseEdid(data);
            }
        }
        connectors.append(!outputName.isEmpty() ? outputName : monitorName);
        serialTexts.append(edid ? edid->serialText : QString());
        if (edid) {
            entry.monitor.vendor = edid->vendor;
            entry.monitor.model = edid->model;
            entry.monitor.serial = edid->serial;
        }
        if (edid && !edid->monitorName.isEmpty()) {
            entry.monitor.name = edid->monitorName;
        } else if (!outputName.isEmpty()) {
            entry.monitor.name = outputName;
        } else {
            entry.monitor.name = monitorName;
        }
        monitors.append({entry.monitor, entry.rootRect});
    }
    QList<X11MonitorIdentities::Candidate> candidates;
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        candidates.append({&monitors[i].monitor, connectors[i], serialTexts[i]});
    }
    for (const QString& change : X11MonitorIdentities::makeDistinct(candidates)) {
        // Said once per configuration that needs it, not at every look at the monitors.
        if (!m_reportedIdentityChanges.contains(change)) {
            m_reportedIdentityChanges.insert(change);
            qCWarning(lcMonitors).noquote() << change;
        }
    }
    // A duplicate here would bind two rows of the settings to one shortcut.
    QSet<QString> keys;
    for (const RandrMonitor& monitor : monitors) {
        keys.insert(X11MonitorIdentities::key(monitor.monitor));
    }
    Q_ASSERT_X(keys.size() == monitors.size(), "X11Monitors", "two monitors share one identity");
    std::stable_partition(monitors.begin(), monitors.end(),
                          [](const RandrMonitor& monitor) { return monitor.monitor.primary; });

    QMutexLocker lock(&m_rectMutex);
    for (const RandrMonitor& monitor : monitors) {
        m_rootRects.insert(monitor.monitor.id, monitor.rootRect);
    }
    if (!monitors.isEmpty()) {
        m_globalOrigin = monitors.first().rootRect.topLeft();
    }
    return monitors;
}

QList<Monitor> X11Monitors::monitors() {
    const QList<RandrMonitor> found = fetchMonitors();
    QList<Monitor> monitors;
    if (found.isEmpty()) {
        return monitors;
    }
    const QPoint origin = found.first().rootRect.topLeft();
    for (const RandrMonitor& entry : found) {
        Monitor monitor = entry.monitor;
        monitor.bounds = QRectF(entry.rootRect.translated(-origin));
        monitors.append(monitor);
    }
    return monitors;
}

QImage X11Monitors::capture(MonitorId id) {
    QRect rect;
    {
        QMutexLocker lock(&m_rectMutex);
        const auto found = m_rootRects.constFind(id);
        if (found == m_rootRects.constEnd()) {
            return {};
        }
        rect = *found;
    }
    return m_capture.capture(rect);
}

void X11Monitors::prepareCapture(const QRectF& area) {
    // Only the area's picture is taken while the opening waits; the monitors' come after the panel is painted.
    m_capture.prepare({area.toAlignedRect().size()});
}

bool X11Monitors::canCaptureAreas() const {
    return true;
}

QImage X11Monitors::captureArea(const QRectF& area) {
    QPoint origin;
    {
        QMutexLocker lock(&m_rectMutex);
        origin = m_globalOrigin;
    }
    // The whole pixels the area touches. The capture answers only once the server has taken the picture,
    // so a window mapped after this call returns cannot be in it.
    const QRect rect = area.toAlignedRect().translated(origin);
    QImage picture = m_capture.capture(rect);
    // Cut at the screen's edge, it would no longer be a picture of the area.
    return picture.size() == rect.size() ? picture : QImage();
}

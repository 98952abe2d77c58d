// SPDX-License-Identifier: MIT
#include "platform/fake/FakeMonitors.h"

#include <algorithm>

void FakeMonitors::changeMonitors(const QList<Monitor>& monitors) {
    m_monitors = monitors;
    Q_EMIT changed();
}

QImage FakeMonitors::capture(MonitorId id) {
    ++m_captureCount;
    // Tests script monitors and pictures before captures start, so reading them here from another thread is
    // safe. A monitor that is not connected gives no picture, as on a real desktop.
    const bool connected =
        std::any_of(m_monitors.cbegin(), m_monitors.cend(), [id](const Monitor& monitor) { return monitor.id == id; });
    return connected ? m_pictures.value(id) : QImage();
}

QImage FakeMonitors::captureArea(const QRectF& area) {
    m_capturedAreas.append(area);
    m_capturesBeforeAreas.append(m_captureCount);
    // Like a real screen, an area that reaches past the monitors gives no picture.
    QRectF screen;
    for (const Monitor& monitor : m_monitors) {
        screen = screen.united(monitor.bounds);
    }
    if (!m_areaColour.isValid() || area.isEmpty() || !screen.contains(area)) {
        return {};
    }
    QImage picture(area.toAlignedRect().size(), QImage::Format_RGB32);
    picture.fill(m_areaColour);
    return picture;
}

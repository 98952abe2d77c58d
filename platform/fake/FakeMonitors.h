// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <atomic>

#include "platform/Monitors.h"

// Scripted monitors for tests.
class FakeMonitors : public Monitors {
    Q_OBJECT
public:
    // Replaces the connected monitors (primary first) without signalling.
    void setMonitors(const QList<Monitor>& monitors) { m_monitors = monitors; }
    // Replaces them and emits the change signal, as a real configuration change would.
    void changeMonitors(const QList<Monitor>& monitors);
    // What capture returns for the monitor; a null image (the default) means the capture fails.
    void setPicture(MonitorId id, const QImage& picture) { m_pictures.insert(id, picture); }
    QImage picture(MonitorId id) const { return m_pictures.value(id); }
    int captureCount() const { return m_captureCount; }

    QList<Monitor> monitors() override { return m_monitors; }
    QImage capture(MonitorId id) override;

private:
    QList<Monitor> m_monitors;
    QHash<MonitorId, QImage> m_pictures;
    std::atomic<int> m_captureCount = 0;
};

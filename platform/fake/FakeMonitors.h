// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
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
    // Lets captureArea answer, with pictures in this colour; an invalid colour (the default) leaves it unable.
    void setAreaColour(const QColor& colour) { m_areaColour = colour; }
    // The areas captureArea was asked for, and how many monitor captures had been taken before each.
    QList<QRectF> capturedAreas() const { return m_capturedAreas; }
    QList<int> capturesBeforeAreas() const { return m_capturesBeforeAreas; }

    // How many times the monitors were read.
    int readCount() const { return m_readCount; }

    QList<Monitor> monitors() override {
        ++m_readCount;
        return m_monitors;
    }
    QImage capture(MonitorId id) override;
    bool canCaptureAreas() const override { return m_areaColour.isValid(); }
    // Called on the main thread only: the controller takes these pictures there.
    QImage captureArea(const QRectF& area) override;

private:
    QList<Monitor> m_monitors;
    QHash<MonitorId, QImage> m_pictures;
    std::atomic<int> m_captureCount = 0;
    std::atomic<int> m_readCount = 0;
    QColor m_areaColour;
    QList<QRectF> m_capturedAreas;
    QList<int> m_capturesBeforeAreas;
};

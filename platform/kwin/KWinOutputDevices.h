// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QPoint>
#include <QRectF>
#include <QSize>
#include <QString>
#include <memory>

struct wl_display;
struct wl_registry;

// One output as KWin describes it to Wayland clients (the kde_output_device_v2 protocol).
struct KWinOutputDevice {
    QString name;     // the connector, such as "DP-1"
    QString uuid;     // KWin's own id for the output
    QByteArray edid;  // the raw EDID; empty where the output has none (virtual outputs)
    QPoint position;  // in KWin's global logical space
    QSize modeSize;   // the current mode, in device pixels
    double scale = 1;
    bool enabled = false;

    // Where the output lies in KWin's global logical space.
    QRectF geometry() const;

    bool operator==(const KWinOutputDevice&) const = default;
};

// KWin's output devices, read over a Wayland connection of its own: KWin's scripts tell no EDID, and the
// program's toolkit connection may not be Wayland at all (the command line has none). The protocol is
// open to every client, unlike KWin's output management.
class KWinOutputDevices {
public:
    // Nothing when there is no Wayland display to connect to. The connection is made at the first call
    // of devices().
    static std::unique_ptr<KWinOutputDevices> connect();
    ~KWinOutputDevices();
    KWinOutputDevices(const KWinOutputDevices&) = delete;
    KWinOutputDevices& operator=(const KWinOutputDevices&) = delete;

    // The devices as KWin describes them once it has answered everything asked before; an empty list
    // when it does not answer in time. Connects again after a failure or after KWin has gone away. Safe
    // from any thread.
    QList<KWinOutputDevice> devices();

    // How long KWin may take to answer.
    static constexpr int kAnswerTimeoutMs = 5000;

    struct Device;

private:
    KWinOutputDevices() = default;
    bool open();
    void close();
    // Waits until KWin has handled everything sent so far and its events are dispatched.
    bool roundTrip(int timeoutMs);

    QMutex m_mutex;
    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    QList<Device*> m_devices;
};

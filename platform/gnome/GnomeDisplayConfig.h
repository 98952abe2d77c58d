// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QList>
#include <QPoint>
#include <QString>
#include <optional>

// One monitor in Mutter's display configuration: its connector and identity, and where its logical
// monitor sits in the layout.
struct GnomeConnectedMonitor {
    QString connector;  // "HDMI-1", "eDP-1"; "Meta-0" for a virtual one
    QString vendor;     // the EDID's manufacturer code ("GSM"), or the name Mutter gives it
    QString product;
    QString serial;
    QPoint position;  // the logical monitor's top-left corner
    bool primary = false;

    bool operator==(const GnomeConnectedMonitor&) const = default;
};

// Reads org.gnome.Mutter.DisplayConfig, which names the monitors the Shell only numbers.
namespace GnomeDisplayConfig {
// The enabled monitors; nothing when Mutter does not answer.
std::optional<QList<GnomeConnectedMonitor>> currentMonitors(const QDBusConnection& bus);
}  // namespace GnomeDisplayConfig

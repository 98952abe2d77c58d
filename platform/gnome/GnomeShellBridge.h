// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <memory>
#include <optional>

#include "platform/gnome/GnomeShellState.h"

// Lattica's Shell extension as seen over the session bus: it lives inside GNOME Shell's process, under
// the Shell's bus name. Calls block for at most a few seconds; safe from any thread.
class GnomeShellBridge : public QObject {
    Q_OBJECT
public:
    static constexpr const char* kExtensionUuid = "lattica@lattica.app";

    // Nothing when the extension does not answer on the bus; why is then in *problem.
    static std::unique_ptr<GnomeShellBridge> connect(QString* problem = nullptr);
    explicit GnomeShellBridge(const QDBusConnection& bus);

    // Whether the extension answers now.
    bool ping() const;
    std::optional<QList<GnomeShellMonitor>> monitors() const;
    std::optional<QList<GnomeShellWindow>> windows() const;
    // The focused window's id; 0 when no window has the focus, nothing when the extension is not there.
    std::optional<quint64> focusedWindow() const;
    GnomeChangeAnswer moveResize(quint64 window, const QRect& frame) const;
    GnomeChangeAnswer moveToMonitor(quint64 window, int monitor) const;
    GnomeChangeAnswer setMaximized(quint64 window, bool maximized) const;
    GnomeChangeAnswer unminimize(quint64 window) const;
    GnomeChangeAnswer activate(quint64 window) const;

    QDBusConnection bus() const { return m_bus; }

Q_SIGNALS:
    void monitorsChanged();
    void windowsChanged();

private:
    std::optional<QVariantList> call(const QString& method, const QVariantList& arguments = {}) const;
    GnomeChangeAnswer change(const QString& method, const QVariantList& arguments) const;

    QDBusConnection m_bus;
};

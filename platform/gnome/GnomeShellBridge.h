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
    // Asks the Shell to activate the process's window with the title once it shows it, closing an open
    // top bar menu first; returns at once (the window is to be shown, which takes this thread's turn).
    void activateWhenShown(quint32 pid, const QString& title) const;
    // The monitor's picture as PNG, by the Shell's index; nothing with the Shell's error in *problem.
    std::optional<QByteArray> captureMonitor(int monitor, QString* problem = nullptr) const;
    // Grabs a Mutter accelerator ("<Control><Alt>0x0b"); its action number, 0 when it is taken or the
    // extension does not answer. Presses and releases then arrive as acceleratorPressed/Released.
    uint grabAccelerator(const QString& accelerator) const;
    void ungrabAccelerator(uint action) const;
    // Whether nothing holds the accelerator; nothing when the extension does not answer.
    std::optional<bool> acceleratorFree(const QString& accelerator) const;

    QDBusConnection bus() const { return m_bus; }

Q_SIGNALS:
    void monitorsChanged();
    void windowsChanged();
    void acceleratorPressed(uint action);
    void acceleratorReleased(uint action);

private:
    std::optional<QVariantList> call(const QString& method, const QVariantList& arguments = {},
                                     QString* error = nullptr) const;
    GnomeChangeAnswer change(const QString& method, const QVariantList& arguments) const;

    QDBusConnection m_bus;
};

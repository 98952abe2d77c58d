#pragma once

#include <xcb/xcb.h>

#include <QObject>
#include <QPointer>
#include <QWindow>

#include "platform/Activation.h"

class X11Connection;

// How the program presents itself on an X11 desktop. Regular: its windows show in the taskbar and
// pager. Accessory: every top-level window carries _NET_WM_STATE_SKIP_TASKBAR and _SKIP_PAGER,
// including windows shown later.
class X11Activation : public QObject, public Activation {
public:
    explicit X11Activation(X11Connection& connection);
    ~X11Activation() override;

    void setActivationPolicy(ActivationPolicy policy) override;
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void activateIgnoringOtherApps() override;
    bool openURL(const QUrl& url) override;
    QString operatingSystemVersionString() override;

    // The version line from the text of an os-release file and the kernel's name and release.
    static QString versionLine(const QByteArray& osRelease, const QString& kernelName, const QString& kernelRelease);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static bool isOrdinaryTopLevel(const QWindow& window);
    // Sets or clears the two states on a window that is about to be mapped.
    void writeStateProperty(xcb_window_t window, bool skip);
    // Asks the window manager to set or clear them on a mapped window.
    void requestStateChange(xcb_window_t window, bool skip);
    void sync();

    X11Connection& m_connection;
    ActivationPolicy m_policy = ActivationPolicy::Regular;
    QPointer<QWindow> m_lastShown;
};
